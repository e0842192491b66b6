// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

/// The exit codes of `vexelhost` and `vexelctl`, documented in their `--help`. A program that a signal interrupts ends
/// with 128 + its number.
enum class ExitCode : int {
    Done = 0,         ///< everything was done
    Usage = 1,        ///< invalid command line
    Unusable = 2,     ///< the plug-in, the configuration or a file cannot be used, or there is no display
    NotConnected = 3, ///< an entry could not be connected, or its application failed
    Busy = 4,         ///< refused, or another process uses the configuration directory or does not answer
};
