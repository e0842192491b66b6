// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/support/crashreport.h"

#include "control/entryjson.h"
#include "host/system/crashdump.h"
#include "vexelctl/support/supportreport.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

QString CoreDumpPlace(const QString& pattern)
{
    if (pattern.isEmpty())
        return QStringLiteral("switched off");
    if (pattern.startsWith(QLatin1Char('|'))) {
        const QString program = pattern.mid(1).section(QLatin1Char(' '), 0, 0, QString::SectionSkipEmpty);
        return program.endsWith(QLatin1String("/systemd-coredump"))
                   ? QStringLiteral("kept by systemd: \"coredumpctl list vexelhost\" lists them")
                   : QStringLiteral("given to the program %1").arg(program);
    }
    return pattern.startsWith(QLatin1Char('/'))
               ? QStringLiteral("files %1, if \"ulimit -c\" allows them").arg(pattern)
               : QStringLiteral("files %1 in the current directory of the program, if \"ulimit -c\" allows them")
                     .arg(pattern);
}

void ReportCrashes(SupportReport& report, const QString& configDirectory)
{
    report.BeginSection(QStringLiteral("Crashes"));
    if (QFile file(QStringLiteral("/proc/sys/kernel/core_pattern")); file.open(QIODevice::ReadOnly))
        report.AddFact(QStringLiteral("core dumps"), CoreDumpPlace(QString::fromLocal8Bit(file.readAll()).trimmed()));
    QList<QJsonArray> rows;
    const QFileInfoList dumps = CrashDumps::Stored(configDirectory);
    for (const QFileInfo& dump : dumps)
        rows.append({QDir::toNativeSeparators(dump.filePath()), dump.size(), TimeToJson(dump.lastModified())});
    report.AddTable(QStringLiteral("minidumps"),
                    {QStringLiteral("File"), QStringLiteral("Bytes"), QStringLiteral("Time")}, rows);
}
