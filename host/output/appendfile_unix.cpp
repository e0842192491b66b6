// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/output/appendfile.h"

#include "host/system/otherusers_unix.h"

#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Returns whether other users can create files in the folder of `name`.
bool IsInSharedFolder(const QString& name)
{
    struct stat folder = {};
    return ::stat(QFile::encodeName(QFileInfo(name).path()).constData(), &folder) == 0 &&
           CanOthersWrite(folder, ::geteuid());
}

/// Returns why a file with this status in a shared folder may be another user's trap; empty if it is the user's own.
QString Suspicion(const struct stat& status)
{
    const auto suspicion = [](const char* what) {
        return QLatin1String(what) + QStringLiteral(", and other users can create files in its folder");
    };
    if (S_ISLNK(status.st_mode))
        return suspicion("it is a symbolic link");
    if (!S_ISREG(status.st_mode))
        return suspicion("it is not a regular file");
    if (status.st_uid != ::geteuid())
        return suspicion("it belongs to another user");
    if (status.st_nlink > 1)
        return suspicion("it has several names (hard links)");
    return {};
}

} // namespace

bool OpenForAppend(QFile& file, const QString& name, QString* error)
{
    const QByteArray path = QFile::encodeName(name);
    const bool isShared = IsInSharedFolder(name);
    const int descriptor =
        ::open(path.constData(),
               O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK | (isShared ? O_NOFOLLOW : 0), 0600);
    if (descriptor == -1)
        *error = errno == ENXIO ? QStringLiteral("no process is reading from it") : qt_error_string(errno);
    struct stat status = {};
    // The open file, because the name may refer to another one by now.
    if (isShared && (descriptor != -1 ? ::fstat(descriptor, &status) : ::lstat(path.constData(), &status)) == 0) {
        if (const QString suspicion = Suspicion(status); !suspicion.isEmpty()) {
            *error = suspicion;
            ::close(descriptor);
            return false;
        }
    }
    if (descriptor == -1)
        return false;
    // O_NONBLOCK was needed for open() only. Writes may block, so that a slow reader loses nothing.
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
    // O_APPEND is set already; with QIODevice::Append Qt would seek, which fails on a pipe.
    if (file.open(descriptor, QIODevice::WriteOnly | QIODevice::Text | QIODevice::Unbuffered,
                  QFileDevice::AutoCloseHandle))
        return true;
    *error = file.errorString();
    ::close(descriptor);
    return false;
}

bool IsSameFile(const QFile& file, const QString& name)
{
    struct stat opened = {};
    struct stat named = {};
    return ::fstat(file.handle(), &opened) == 0 && ::stat(QFile::encodeName(name).constData(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}
