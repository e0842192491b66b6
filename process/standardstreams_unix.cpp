#include "process/standardstreams.h"

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

bool HasReader(Stream stream)
{
    const int descriptor = stream == Stream::Error ? STDERR_FILENO : STDOUT_FILENO;
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0)
        return false;
    return S_ISREG(status.st_mode) || S_ISFIFO(status.st_mode) || ::isatty(descriptor) == 1;
}

} // namespace StandardStreams
