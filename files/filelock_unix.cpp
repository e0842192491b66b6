#include "files/filelock.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Nothing is waited for, not even at a pipe; a link could lead to a file that is none of this.
constexpr int kFlags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;

/// A lock of the whole file. It belongs to the opened file, not to the process: two objects of one process keep each
/// other out, and none loses it because another closes the file.
struct flock WholeFileLock()
{
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

bool IsFile(int descriptor)
{
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

bool IsNameOf(const QByteArray& name, int descriptor)
{
    struct stat named = {};
    struct stat opened = {};
    return ::lstat(name.constData(), &named) == 0 && ::fstat(descriptor, &opened) == 0 &&
           named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

} // namespace

FileLock::~FileLock()
{
    // First removed, then given back: who gets it in between finds that the name does not stand for it any more.
    if (!m_path.isEmpty())
        ::unlink(QFile::encodeName(m_path).constData());
    if (m_handle != -1)
        ::close(static_cast<int>(m_handle));
}

FileLock::Result FileLock::TryLock(const QString& path, QString* error)
{
    const QByteArray name = QFile::encodeName(path);
    for (;;) {
        const int descriptor = ::open(name.constData(), O_RDWR | O_CREAT | kFlags, 0666);
        if (descriptor == -1) {
            *error = qt_error_string(errno);
            return Result::Failed;
        }
        if (!IsFile(descriptor)) {
            *error = QStringLiteral("%1 is not a file").arg(path);
            ::close(descriptor);
            return Result::Failed;
        }
        struct flock lock = WholeFileLock();
        if (::fcntl(descriptor, F_OFD_SETLK, &lock) == 0) {
            if (IsNameOf(name, descriptor)) {
                m_path = path;
                m_handle = descriptor;
                return Result::Locked;
            }
            // Whoever had it has removed it meanwhile: the next one is made anew.
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
    if (IsFile(descriptor)) {
        struct flock lock = WholeFileLock();
        if (::fcntl(descriptor, F_OFD_GETLK, &lock) != 0)
            state = State::Unknown;
        else if (lock.l_type != F_UNLCK)
            state = State::Locked;
    }
    ::close(descriptor);
    return state;
}
