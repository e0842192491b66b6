// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/kitecontrol/launchreport.h"

#include "process/textline.h"
#include "userinterface/kitecontrol/legacyrecords.h"
#include "userinterface/kitecontrol/recordmatch.h"

#include <QtGlobal>

#include <algorithm>
#include <array>

namespace {

/// Returns for example "2 (multichannel server)", or the number alone if there is no word for it.
template <std::size_t N>
QString NumberAndWord(int value, const std::array<const char*, N>& words)
{
    const QString number = QString::number(value);
    if (value < 0 || static_cast<std::size_t>(value) >= N)
        return number;
    return number + QStringLiteral(" (") + QString::fromLatin1(words[static_cast<std::size_t>(value)]) +
           QLatin1Char(')');
}

QString ConnectionTypeText(int value)
{
    return NumberAndWord(value, std::array<const char*, 3>{"direct", "remote", "multichannel server"});
}

QString SpeedText(int value)
{
    return NumberAndWord(
        value, std::array<const char*, 7>{"LAN", "ISDN", "fast modem", "slow modem", "GSM", "UMTS", "radio link"});
}

QString TimeoutText(const ConnectData& record)
{
    return record.m_bTimeoutActive ? QStringLiteral("%1 s").arg(record.m_nTimeoutSeconds) : QStringLiteral("none");
}

QString RecordName(const ConnectData& record)
{
    return QStringLiteral("ConnectData%1").arg(record.m_nIndex);
}

/// Returns `text` on one line, with backslashes doubled to tell them from those of escape sequences.
QString Escaped(const QString& text)
{
    return OneLine(QString(text).replace(QLatin1Char('\\'), QStringLiteral("\\\\")));
}

QString Quoted(const QString& argument)
{
    const bool plain = !argument.isEmpty() && std::none_of(argument.begin(), argument.end(), [](QChar character) {
        return character.isSpace() || character == QLatin1Char('"');
    });
    if (plain)
        return argument;
    return QLatin1Char('"') + QString(argument).replace(QLatin1Char('"'), QStringLiteral("\\\"")) + QLatin1Char('"');
}

QString Line(const QString& label, const QString& value)
{
    return label + QStringLiteral(": ") + value;
}

QString FindingWithout(const LaunchReport& report, bool severalFit)
{
    if (report.arguments.isEmpty())
        return QStringLiteral("started without arguments, so no record matches");
    if (severalFit)
        return QStringLiteral("%1 records match this command line").arg(report.candidates.size());
    return QStringLiteral("no record matches this command line");
}

} // namespace

LaunchReport LaunchReport::Make(const QString& program, const QStringList& arguments, const LegacyRecords& records)
{
    const LaunchArguments launch = LaunchArguments::Parse(arguments);
    RecordMatch match = RecordMatch::Find(launch, records.records);

    LaunchReport report;
    report.program = program;
    report.arguments = arguments;
    report.application = launch.application;
    report.configuration = records.configuration;
    report.recordCount = int(records.records.size());
    if (match.fitting.size() == 1) {
        report.record = match.fitting.front();
        report.station = report.record->m_sStationName;
        report.finding = QStringLiteral("%1 matches this command line").arg(RecordName(*report.record));
        return report;
    }
    // "Connection=..." after "Server" is taken as an address, unless a record has that name.
    if (launch.hasStation && !launch.hasAddress)
        report.station = launch.station;
    const bool severalFit = !match.fitting.empty();
    report.candidates = std::move(severalFit ? match.fitting : match.sameDevice);
    report.finding = records.problem.isEmpty() ? FindingWithout(report, severalFit) : records.problem;
    return report;
}

QString LaunchReport::CommandLine() const
{
    QStringList words{Quoted(program)};
    for (const QString& argument : arguments)
        words.append(Quoted(argument));
    return words.join(QLatin1Char(' '));
}

QStringList LaunchReport::Lines() const
{
    QStringList lines{
        Line(QStringLiteral("application"), application.isEmpty() ? QStringLiteral("(none)") : Escaped(application)),
        Line(QStringLiteral("command line"), Escaped(CommandLine())),
        Line(QStringLiteral("configuration"),
             configuration.isEmpty() ? QStringLiteral("(none)") : Escaped(configuration)),
        Line(QStringLiteral("records"), QString::number(recordCount)),
        Line(QStringLiteral("finding"), finding),
    };
    if (record) {
        lines.append(Line(QStringLiteral("record"), RecordName(*record)));
        for (const Fact& fact : Facts(*record))
            lines.append(Line(QString::fromLatin1(fact.label).toLower(), Escaped(fact.value)));
        return lines;
    }
    const int listed = std::min(int(candidates.size()), kMaximumCandidates);
    for (int i = 0; i < listed; ++i)
        lines.append(Line(QStringLiteral("candidate"), Escaped(Summary(candidates[std::size_t(i)]))));
    const int left = int(candidates.size()) - listed;
    if (left > 0)
        lines.append(Line(QStringLiteral("further candidates"), QString::number(left)));
    return lines;
}

QList<LaunchReport::Fact> LaunchReport::Facts(const ConnectData& record)
{
    return {
        {QT_TRANSLATE_NOOP("LaunchReport", "Station name"), record.m_sStationName},
        {QT_TRANSLATE_NOOP("LaunchReport", "Device type"), record.m_sDeviceType},
        {QT_TRANSLATE_NOOP("LaunchReport", "Connection type"), ConnectionTypeText(record.m_nConnectionType)},
        {QT_TRANSLATE_NOOP("LaunchReport", "Device address"), record.m_sDeviceAddress},
        {QT_TRANSLATE_NOOP("LaunchReport", "Remote address"), record.m_sRemoteAddress},
        {QT_TRANSLATE_NOOP("LaunchReport", "Connection speed"), SpeedText(record.m_nConnectionSpeed)},
        {QT_TRANSLATE_NOOP("LaunchReport", "Time-out"), TimeoutText(record)},
        {QT_TRANSLATE_NOOP("LaunchReport", "Type category"), QString::number(record.GetTypeCategory())},
    };
}

QString LaunchReport::Summary(const ConnectData& record)
{
    return QStringLiteral("%1 \"%2\" (%3, %4; device \"%5\", remote \"%6\")")
        .arg(RecordName(record), record.m_sStationName, record.m_sDeviceType,
             ConnectionTypeText(record.m_nConnectionType), record.m_sDeviceAddress, record.m_sRemoteAddress);
}
