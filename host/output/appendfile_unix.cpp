#include "host/output/appendfile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

bool OpenToAppend(QFile& file, const QString& name, QString* error)
{
    const int descriptor = ::open(QFile::encodeName(name).constData(),
                                  O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
    if (descriptor == -1) {
        *error = errno == ENXIO ? QStringLiteral("nobody reads from it") : qt_error_string(errno);
        return false;
    }
    // Only to open it was not to take time. A reader that is slow loses nothing.
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
    // The system appends by itself; asked to do so, Qt would look for the end of a pipe.
    if (file.open(descriptor, QIODevice::WriteOnly | QIODevice::Text | QIODevice::Unbuffered,
                  QFileDevice::AutoCloseHandle))
        return true;
    *error = file.errorString();
    ::close(descriptor);
    return false;
}

bool IsOpenAt(const QFile& file, const QString& name)
{
    struct stat opened = {};
    struct stat named = {};
    return ::fstat(file.handle(), &opened) == 0 && ::stat(QFile::encodeName(name).constData(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}
