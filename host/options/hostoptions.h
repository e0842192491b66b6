// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/options/sessionoptions.h"
#include "process/parsedoptions.h"

#include <QStringList>

#include <optional>

/// The host's parsed command line.
struct HostOptions : SessionOptions
{
    bool hidden = false;           ///< start in the system tray
    std::optional<bool> autostart; ///< only switch the start at login on or off
    QStringList autostartOptions;  ///< given options that a host started at login needs to be the same one
    bool describesDesktop = false; ///< only describe the desktop, for a report
};

using ParsedCommandLine = ParsedOptions<HostOptions>;

/// Parses a command line; `arguments` begins with the program. Relative paths are relative to the current directory.
ParsedCommandLine ParseCommandLine(const QStringList& arguments);
