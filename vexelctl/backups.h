// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/output/exitcode.h"
#include "vexelctl/commandline.h"

/// Lists and restores versions of the stored list.
namespace Backups {

/// Prints the stored list and its versions, newest first. As JSON, also what each version differs in from the stored
/// list. Does not write to the configuration.
ExitCode Print(const CtlOptions& options);

/// Replaces the entries by those of a version: an import of the list that the version holds. With `dryRun`, only prints
/// what would change.
ExitCode Restore(const CtlOptions& options);

} // namespace Backups
