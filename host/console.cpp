#include "host/console.h"

#include "host/textline.h"

#include <QByteArray>

#include <cstdio>

namespace {

void Write(std::FILE* stream, const QByteArray& bytes)
{
    // A reader that has gone away is no reason to leave applications and settings behind: the result is not needed.
    (void)std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    (void)std::fflush(stream);
}

} // namespace

namespace Console {

void Print(const QString& text)
{
    Write(stdout, (text + QLatin1Char('\n')).toLocal8Bit());
}

void PrintRaw(const QString& text)
{
    Write(stdout, text.toLocal8Bit());
}

void PrintBytes(const QByteArray& bytes)
{
    Write(stdout, bytes);
}

void Complain(const QString& message)
{
    Write(stderr, QStringLiteral("vexelhost: %1\n").arg(OneLine(message)).toLocal8Bit());
}

} // namespace Console
