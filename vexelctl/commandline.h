// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/options/sessionoptions.h"
#include "process/parsedoptions.h"
#include "vexelctl/commands.h"

#include <QString>
#include <QStringList>

/// The parsed command line of vexelctl. Paths are absolute; `kStandardStream` stays as it is.
struct CtlOptions : SessionOptions
{
    Command command = Command::List;
    bool json = false;            ///< print JSON
    bool force = false;           ///< of quit: although entries are in use
    bool dryRun = false;          ///< of restore: change nothing
    QStringList names;            ///< of connect: names of the entries, without duplicates
    bool selected = false;        ///< of connect: the ticked entries
    bool wait = false;            ///< of connect: until no entry is in use
    bool ignoreExitCodes = false; ///< an application may end by a crash or with another code than 0
    QString screenshotDuring;     ///< screenshot file, taken after connecting; empty: none
    QString screenshot;           ///< screenshot file, taken at the end; empty: none
    QStringList files;            ///< of the commands that read or write files
    int version = 0;              ///< of restore: 1 is the newest

    /// In `files`: standard input or output.
    static inline const QString kStandardStream = QStringLiteral("-");
};

using ParsedCtlCommandLine = ParsedOptions<CtlOptions>;

/// Parses a command line; `arguments` begins with the program. Relative paths are relative to the current directory.
ParsedCtlCommandLine ParseCtlCommandLine(const QStringList& arguments);
