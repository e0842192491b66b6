// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/fileversion.h"

#include <QFile>
#include <QString>

#include <array>
#include <sys/stat.h>

QByteArray FileVersion(const QString& path)
{
    struct stat status = {};
    if (stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    const std::array<qint64, 7> parts{static_cast<qint64>(status.st_dev),
                                      static_cast<qint64>(status.st_ino),
                                      status.st_size,
                                      status.st_mtim.tv_sec,
                                      status.st_mtim.tv_nsec,
                                      status.st_ctim.tv_sec,
                                      status.st_ctim.tv_nsec};
    return {reinterpret_cast<const char*>(parts.data()), sizeof parts};
}
