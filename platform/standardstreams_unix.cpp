#include "platform/standardstreams.h"

#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace StandardStreams {

void Prepare()
{
}

void Write(Stream stream, const QString& text)
{
    Write(stream, text.toLocal8Bit());
}

void Write(Stream stream, const QByteArray& bytes)
{
    std::FILE* const file = stream == Stream::Error ? stderr : stdout;
    (void)std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), file);
    (void)std::fflush(file);
}

bool IsRead(Stream stream)
{
    const int descriptor = stream == Stream::Error ? STDERR_FILENO : STDOUT_FILENO;
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0)
        return false;
    return S_ISREG(status.st_mode) || S_ISFIFO(status.st_mode) || ::isatty(descriptor) == 1;
}

} // namespace StandardStreams
