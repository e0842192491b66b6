// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/output/exitcode.h"
#include "vexelctl/commandline.h"

/// The commands that work with a running host: with its applications, its dialog and its life.
namespace HostCommands {

/// Without a host, this process loads the plug-in off screen and waits for the applications.
ExitCode Connect(const CtlOptions& options);
/// Likewise.
ExitCode Screenshot(const CtlOptions& options);
ExitCode Wait(const CtlOptions& options);
ExitCode Watch(const CtlOptions& options);
ExitCode Show(const CtlOptions& options);
ExitCode Save(const CtlOptions& options);
ExitCode Quit(const CtlOptions& options);

} // namespace HostCommands
