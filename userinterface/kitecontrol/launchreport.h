// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/kitecontrol/connectdata.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

struct LegacyRecords;

/// How the application was started: its command line, and the legacy record that matches it.
struct LaunchReport
{
    /// `Lines` lists at most this many candidates, and the number of the others.
    static constexpr int kMaximumCandidates = 20;

    struct Fact
    {
        const char* label; ///< source text in the translation context "LaunchReport"
        QString value;
    };

    QString program;       ///< base name of the executable
    QStringList arguments; ///< without the program
    QString application;   ///< the application name given on the command line; may be empty
    QString station;       ///< name of the entry; empty if neither record nor command line gives it
    QString configuration; ///< directory of the configuration; empty if unknown
    int recordCount = 0;   ///< number of records in the configuration
    QString finding;       ///< one sentence: which record matches, or why none does
    std::optional<ConnectData> record;
    std::vector<ConnectData> candidates; ///< possible records if there is no `record`

    static LaunchReport Make(const QString& program, const QStringList& arguments, const LegacyRecords& records);

    /// Returns the program and its arguments in one line, with quotes where needed.
    QString CommandLine() const;

    /// Returns the report as lines of "label: value": "application", "command line", "configuration", "records",
    /// "finding", then "record" and one line per entry of `Facts`, or one "candidate" line per candidate. Control
    /// characters in values are escaped, so that each value stays on one line.
    QStringList Lines() const;

    /// Returns the fields of a record, in their order.
    static QList<Fact> Facts(const ConnectData& record);

    /// Returns one line that identifies a record.
    static QString Summary(const ConnectData& record);
};
