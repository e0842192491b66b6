// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/options/sessionoptions.h"
#include "process/parsedoptions.h"

#include <QStringList>

/// The host's parsed command line.
struct HostOptions : SessionOptions
{
    bool hidden = false; ///< start in the system tray
};

using ParsedCommandLine = ParsedOptions<HostOptions>;

/// Parses a command line; `arguments` begins with the program. Relative paths are relative to the current directory.
ParsedCommandLine ParseCommandLine(const QStringList& arguments);
