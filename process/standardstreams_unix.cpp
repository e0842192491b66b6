#include "process/standardstreams.h"

#include "process/ignoresignal_unix.h"

#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace StandardStreams {

void Prepare()
{
    IgnoreSignal(SIGPIPE);
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
