#include "platform/standardstreams.h"

#include <cstdio>

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

} // namespace StandardStreams
