// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/filelock.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Never blocks, not even on a pipe, and does not follow a link to some other file.
constexpr int kFlags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;

/// Describes a lock of the whole file. Used with F_OFD_SETLK it belongs to the open file, not to the process: two
/// objects in one process exclude each other, and closing another descriptor does not release it.
struct flock WholeFileLock()
{
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

bool IsRegular(int descriptor)
{
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

bool IsSameFile(const QByteArray& name, int descriptor)
{
    struct stat named = {};
    struct stat opened = {};
    return ::lstat(name.constData(), &named) == 0 && ::fstat(descriptor, &opened) == 0 &&
           named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

} // namespace

FileLock::~FileLock()
{
    // Removed before it is released: a process that locks it in between finds that the name no longer refers to it.
    if (!m_path.isEmpty())
        ::unlink(QFile::encodeName(m_path).constData());
    if (m_handle != -1)
        ::close(static_cast<int>(m_handle));
}

FileLock::Result FileLock::TryOpen(const QString& path, QString* error)
{
    const QByteArray name = QFile::encodeName(path);
    for (;;) {
        const int descriptor = ::open(name.constData(), O_RDWR | O_CREAT | kFlags, 0600);
        if (descriptor == -1) {
            *error = qt_error_string(errno);
            return Result::Failed;
        }
        if (!IsRegular(descriptor)) {
            *error = QStringLiteral("%1 is not a file").arg(path);
            ::close(descriptor);
            return Result::Failed;
        }
        struct flock lock = WholeFileLock();
        if (::fcntl(descriptor, F_OFD_SETLK, &lock) == 0) {
            if (IsSameFile(name, descriptor)) {
                m_path = path;
                m_handle = descriptor;
                return Result::Locked;
            }
            // The previous owner has just removed the file: create a new one.
            ::close(descriptor);
            continue;
        }
        if (errno == EAGAIN || errno == EACCES) {
            ::close(descriptor);
            return Result::Busy;
        }
        m_handle = descriptor;
        return Result::Unsupported;
    }
}

void FileLock::Write(const QByteArray& content) const
{
    const int descriptor = static_cast<int>(m_handle);
    if (::ftruncate(descriptor, 0) == 0)
        (void)!::pwrite(descriptor, content.constData(), static_cast<std::size_t>(content.size()), 0);
}

FileLock::State FileLock::Query(const QString& path)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | kFlags);
    if (descriptor == -1)
        return errno == ENOENT || errno == ENOTDIR || errno == ELOOP ? State::Free : State::Unknown;
    State state = State::Free;
    if (IsRegular(descriptor)) {
        struct flock lock = WholeFileLock();
        if (::fcntl(descriptor, F_OFD_GETLK, &lock) != 0)
            state = State::Unknown;
        else if (lock.l_type != F_UNLCK)
            state = State::Locked;
    }
    ::close(descriptor);
    return state;
}
