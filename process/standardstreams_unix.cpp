#include "process/standardstreams.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Opens the null device for streams that are closed. The next files would become the standard streams otherwise, and
/// get what is written to these.
void OccupyClosedStreams()
{
    // Opening uses the lowest free number. In the wrong direction, so that reading and writing still fail.
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(stream, F_GETFD) == -1)
            (void)::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

} // namespace

namespace StandardStreams {

void Prepare()
{
    OccupyClosedStreams();
    // Writing to a closed pipe then fails with EPIPE instead of ending the process. An existing handler is kept.
    struct sigaction action = {};
    if (::sigaction(SIGPIPE, nullptr, &action) != 0 || action.sa_handler != SIG_DFL)
        return;
    action.sa_handler = [](int) {
    }; // not SIG_IGN, which children inherit
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGPIPE, &action, nullptr);
}

bool Write(Stream stream, const QString& text)
{
    return Write(stream, text.toLocal8Bit());
}

bool Write(Stream stream, const QByteArray& bytes)
{
    std::FILE* const file = stream == Stream::Error ? stderr : stdout;
    const auto size = static_cast<std::size_t>(bytes.size());
    const bool isTaken = std::fwrite(bytes.constData(), 1, size, file) == size;
    return std::fflush(file) == 0 && isTaken;
}

std::optional<QByteArray> ReadInput(qint64 limit, QString* error)
{
    QByteArray content;
    std::array<char, 65536> part = {};
    while (content.size() <= limit) {
        const ssize_t size = ::read(STDIN_FILENO, part.data(), part.size());
        if (size == 0)
            return content;
        if (size > 0) {
            content.append(part.data(), size);
        } else if (errno != EINTR) {
            *error = qt_error_string(errno);
            return std::nullopt;
        }
    }
    *error = QStringLiteral("more than %1 bytes").arg(limit);
    return std::nullopt;
}

bool HasReader(Stream stream)
{
    const int descriptor = stream == Stream::Error ? STDERR_FILENO : STDOUT_FILENO;
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0)
        return false;
    return S_ISREG(status.st_mode) || S_ISFIFO(status.st_mode) || ::isatty(descriptor) == 1;
}

} // namespace StandardStreams
