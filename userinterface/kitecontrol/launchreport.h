#pragma once

#include "userinterface/kitecontrol/connectdata.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

struct LegacyRecords;

/// What a started application knows about its start: its command line, and the legacy record that belongs to it.
struct LaunchReport
{
    /// No more candidates than this are listed; `Lines` then says how many there are.
    static constexpr int kMaximumCandidates = 20;

    struct Fact
    {
        const char* label; ///< a source text in the context "LaunchReport"
        QString value;
    };

    QString program;       ///< the executable's base name
    QStringList arguments; ///< without the program
    QString application;   ///< the name under which the program was started; empty: none was given
    QString station;       ///< the name of its entry, where record or command line tell it; else empty
    QString configuration; ///< the configuration's directory; empty: none is known
    int recordCount = 0;   ///< how many records the configuration holds
    QString finding;       ///< one sentence: which record belongs to the start, or why none does
    std::optional<ConnectData> record;
    std::vector<ConnectData> candidates; ///< the records that may be meant while there is no `record`

    static LaunchReport Make(const QString& program, const QStringList& arguments, const LegacyRecords& records);

    /// The program and its arguments in one line, quoted where that is needed to tell them apart.
    QString CommandLine() const;

    /// The report as text, one fact a line as "label: value": "application", "command line", "configuration",
    /// "records", "finding", then "record" with one line for each of `Facts`, or one "candidate" for each candidate.
    /// Control characters in values are written as escapes, so that no value breaks its line.
    QStringList Lines() const;

    /// What a record says, in the order of its fields.
    static QList<Fact> Facts(const ConnectData& record);

    /// What tells a record from others, in one line.
    static QString Summary(const ConnectData& record);
};
