// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

/// The starter's exit codes, documented in `--help`.
enum class StarterExit : int {
    Called = 0,     ///< a dialog, or what cannot be told from one, accepted a call
    Usage = 1,      ///< invalid command line, or its output cannot be printed
    NotStarted = 2, ///< the host cannot be started
    HostEnded = 3,  ///< the host ended before its link answered, or its configuration is in use
    NoAnswer = 4,   ///< the host or another starter was started, but no link answered in time
    PortTaken = 5,  ///< something that is not a dialog's link uses the port
    NotRunning = 6, ///< no dialog is running, and nothing was to be started
};
