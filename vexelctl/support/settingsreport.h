// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "vexelctl/commandline.h"

#include <QString>

class Settings;
class SupportReport;

/// A value and its origin.
struct Setting
{
    QString value;
    QString origin;
};

/// Returns the data directory that a session with `options` uses. Needs the open configuration.
Setting DataDirectorySetting(const CtlOptions& options, const Settings& settings);

/// Adds a section on the settings: the value of each, and whether it is from the command line (`options`), the
/// configuration (`data`), a file or built in; the files, and what is wrong in them; and whether the session starts the
/// host. The host takes its traces from the files; those of this command are from its command line alone.
void ReportSettings(SupportReport& report, const CtlOptions& options, const Settings& settings, const Setting& data);
