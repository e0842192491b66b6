// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/system/inheritedhandles.h"

#include <climits>
#include <cstdlib>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

QStringList InheritedHandles()
{
    QStringList handles;
    DIR* const folder = opendir("/proc/self/fd");
    if (!folder)
        return {QStringLiteral("unknown on this system")};
    while (const dirent* const entry = readdir(folder)) {
        const int handle = std::atoi(entry->d_name); // 0 for "." and ".."
        if (handle <= STDERR_FILENO || (::fcntl(handle, F_GETFD) & FD_CLOEXEC) != 0)
            continue;
        char target[PATH_MAX];
        const ssize_t length = readlinkat(dirfd(folder), entry->d_name, target, sizeof target);
        handles.append(length < 0 ? QString() : QString::fromLocal8Bit(target, length));
    }
    closedir(folder);
    return handles;
}

QStringList HandlesToInherit()
{
    return InheritedHandles();
}
