#include "host/console.h"

#include "host/textline.h"

#include <QByteArray>

#include <cstdio>

namespace {

void Write(std::FILE* stream, const QString& text)
{
    const QByteArray bytes = text.toLocal8Bit();
    // A reader that has gone away is no reason to leave applications and settings behind: the result is not needed.
    (void)std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    (void)std::fflush(stream);
}

} // namespace

namespace Console {

void Print(const QString& text)
{
    Write(stdout, text + QLatin1Char('\n'));
}

void PrintRaw(const QString& text)
{
    Write(stdout, text);
}

void Complain(const QString& message)
{
    Write(stderr, QStringLiteral("vexelhost: %1\n").arg(OneLine(message)));
}

} // namespace Console
