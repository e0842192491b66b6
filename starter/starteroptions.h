// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "process/parsedoptions.h"

#include <QString>
#include <QStringList>

#include <chrono>

/// The parsed command line.
struct StarterOptions
{
    QString host;                 ///< the host's program, an absolute path; empty: the one beside the starter
    QStringList hostArguments;    ///< passed to the host unchanged
    std::chrono::seconds timeOut; ///< time for a dialog to answer, including its start
    bool callOnly = false;        ///< start nothing
};

using ParsedStarterCommandLine = ParsedOptions<StarterOptions>;

/// Parses a command line; `arguments` begins with the program. Relative paths are relative to the current directory.
ParsedStarterCommandLine ParseStarterCommandLine(const QStringList& arguments);
