// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/output/exitcode.h"
#include "vexelctl/commandline.h"

/// Prints a report for a support desk as text or JSON: versions, paths, settings, the desktop, what the plug-in reads
/// from the data directory, the state of the configuration and who can access it, what crashes have left, and the state
/// of the starter's port.
///
/// Reports problems without failing: returns `Done` unless the report cannot be printed. Changes nothing, creates no
/// plug-in instance, needs no display, and works while a host runs.
ExitCode Diagnose(const CtlOptions& given);
