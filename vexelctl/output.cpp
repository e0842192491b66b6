// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/output.h"

#include "files/atomicfile.h"
#include "host/output/console.h"
#include "vexelctl/commandline.h"

#include <QFile>
#include <QFileInfo>

ExitCode Fail(ExitCode code, const QString& error)
{
    Console::PrintError(error);
    return code;
}

ExitCode PrintResult(const QString& text)
{
    return Console::PrintRaw(text) ? ExitCode::Done : ExitCode::Unusable;
}

ExitCode PrintResult(const QByteArray& bytes)
{
    return Console::PrintBytes(bytes) ? ExitCode::Done : ExitCode::Unusable;
}

ExitCode WriteResult(const QString& file, const QByteArray& content)
{
    if (file == CtlOptions::kStandardStream)
        return PrintResult(content);
    const QString error = ReplaceRegularFile(file, content);
    return error.isEmpty() ? ExitCode::Done
                           : Fail(ExitCode::Unusable, QStringLiteral("cannot write %1: %2").arg(file, error));
}

QString WritingObstacle(const QString& file)
{
    const QFileInfo info(file);
    if (!info.exists())
        return CreationObstacle(info.path());
    if (!info.isFile())
        return QStringLiteral("not a regular file");
    QFile existing(file);
    return existing.open(QIODevice::ReadWrite) ? QString() : existing.errorString();
}
