#include "host/output/appendfile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

bool OpenForAppend(QFile& file, const QString& name, QString* error)
{
    const int descriptor = ::open(QFile::encodeName(name).constData(),
                                  O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
    if (descriptor == -1) {
        *error = errno == ENXIO ? QStringLiteral("no process is reading from it") : qt_error_string(errno);
        return false;
    }
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
