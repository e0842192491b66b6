// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/output/console.h"

#include "process/standardstreams.h"
#include "process/textline.h"

#include <QByteArray>
#include <QCoreApplication>

using StandardStreams::Stream;

namespace {

bool CheckWritten(bool isWritten)
{
    if (!isWritten)
        Console::PrintError(QStringLiteral("cannot write everything to standard output"));
    return isWritten;
}

} // namespace

namespace Console {

void Print(const QString& text)
{
    StandardStreams::Write(Stream::Output, text + QLatin1Char('\n'));
}

bool PrintRaw(const QString& text)
{
    return CheckWritten(StandardStreams::Write(Stream::Output, text));
}

bool PrintBytes(const QByteArray& bytes)
{
    return CheckWritten(StandardStreams::Write(Stream::Output, bytes));
}

void PrintError(const QString& message)
{
    StandardStreams::Write(Stream::Error,
                           QStringLiteral("%1: %2\n").arg(QCoreApplication::applicationName(), OneLine(message)));
}

} // namespace Console
