// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/system/diskrequests_unix.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

using DiskRequests::Request;

namespace {

QList<Request> g_requests;

int Record(int descriptor)
{
    const QString link = QStringLiteral("/proc/self/fd/%1").arg(descriptor);
    struct stat status = {};
    fstat(descriptor, &status);
    g_requests.append({Request::Sync, status.st_ino, QFileInfo(link).symLinkTarget(), {}});
    return static_cast<int>(::syscall(SYS_fsync, descriptor));
}

} // namespace

// The dynamic linker finds these before the system's functions.
extern "C" {
[[gnu::visibility("default")]] int fsync(int descriptor)
{
    return Record(descriptor);
}
[[gnu::visibility("default")]] int fdatasync(int descriptor)
{
    return Record(descriptor);
}
[[gnu::visibility("default")]] int rename(const char* from, const char* to)
{
    const int result = static_cast<int>(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
    struct stat status = {};
    if (result == 0 && stat(to, &status) == 0)
        g_requests.append({Request::Rename, status.st_ino, QFile::decodeName(to), QFile::decodeName(from)});
    return result;
}
}

namespace DiskRequests {

const QList<Request>& All()
{
    return g_requests;
}

void Forget()
{
    g_requests.clear();
}

qsizetype LastRenameTo(const QString& path)
{
    for (qsizetype at = g_requests.size() - 1; at >= 0; --at)
        if (g_requests.at(at).kind == Request::Rename && g_requests.at(at).path == path)
            return at;
    return -1;
}

qsizetype FirstSyncOf(const QString& path, qsizetype from)
{
    for (qsizetype at = from; at < g_requests.size(); ++at)
        if (g_requests.at(at).kind == Request::Sync && g_requests.at(at).path == path)
            return at;
    return -1;
}

bool IsSyncedBefore(qsizetype rename)
{
    return std::any_of(
        g_requests.cbegin(), g_requests.cbegin() + rename,
        [&](const Request& request) {
            return request.kind == Request::Sync && request.file == g_requests.at(rename).file;
        });
}

} // namespace DiskRequests
