// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "starter/privatefolder.h"

#include "files/atomicfile.h"

#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

bool EnsurePrivateFolder(const QString& path)
{
    struct stat folder = {};
    return CreateFolder(path) && ::lstat(QFile::encodeName(path).constData(), &folder) == 0 &&
           S_ISDIR(folder.st_mode) && folder.st_uid == ::geteuid() && (folder.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}
