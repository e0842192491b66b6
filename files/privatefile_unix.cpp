// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/privatefile.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

bool CreatePrivateFile(const QString& file)
{
    const int descriptor = ::open(QFile::encodeName(file).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    return descriptor != -1 && ::close(descriptor) == 0;
}

bool CreatePrivateFolder(const QString& folder)
{
    return ::mkdir(QFile::encodeName(folder).constData(), 0700) == 0;
}
