// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/output/exitcode.h"
#include "vexelctl/commandline.h"
#include "vexelctl/entrytable.h"
#include "vexelctl/storedlist.h"

#include <optional>
#include <vector>

/// The commands that read and change the list. A running host does the work on its list; without one, the stored list
/// is read or changed, and neither the plug-in nor a display is needed.
namespace EntryCommands {

ExitCode List(const CtlOptions& options);
ExitCode Status(const CtlOptions& options);
ExitCode Export(const CtlOptions& options);
ExitCode Import(const CtlOptions& options);
ExitCode Add(const CtlOptions& options);
/// Needs neither a host nor a configuration.
ExitCode Check(const CtlOptions& options);

/// Gets the entries of the running host or of the stored list. Returns another code than `Done` after an error.
ExitCode GetEntries(const CtlOptions& options, std::vector<ListedEntry>& entries);

/// Has the running host carry out `command`, "import" or "add", with `entries`; no entries to add are an error. Without
/// a host, `change` is made to the stored list.
ExitCode Change(const CtlOptions& options, const char* command, const Entries& entries,
                const StoredList::Change& change);

} // namespace EntryCommands
