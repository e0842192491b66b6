#include "host/console.h"

#include "host/textline.h"
#include "platform/standardstreams.h"

#include <QByteArray>

using StandardStreams::Stream;

namespace Console {

void Print(const QString& text)
{
    StandardStreams::Write(Stream::Output, text + QLatin1Char('\n'));
}

void PrintRaw(const QString& text)
{
    StandardStreams::Write(Stream::Output, text);
}

void PrintBytes(const QByteArray& bytes)
{
    StandardStreams::Write(Stream::Output, bytes);
}

void Complain(const QString& message)
{
    StandardStreams::Write(Stream::Error, QStringLiteral("vexelhost: %1\n").arg(OneLine(message)));
}

} // namespace Console
