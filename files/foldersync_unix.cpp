// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/foldersync.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

bool SyncFolder(const QString& folder)
{
    int descriptor = -1;
    do
        descriptor = open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0)
        return false;

    int result = 0;
    do
        result = fsync(descriptor);
    while (result != 0 && errno == EINTR);
    // Some file systems, mostly network ones, cannot sync folders.
    const bool isSynced = result == 0 || errno == EINVAL || errno == ENOTSUP || errno == ENOSYS;
    close(descriptor);
    return isSynced;
}
