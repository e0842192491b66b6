// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

/// Why the host cannot start.
enum class FailureKind {
    CommandLine,           ///< the command line is invalid
    TraceFile,             ///< the trace file cannot be written
    NoConfigurationFolder, ///< the user has no folder for the configuration
    NoDisplay,             ///< there is no display
    ConfigurationUnusable, ///< the configuration directory cannot be created, read or written
    ConfigurationBusy,     ///< a program without a dialog uses the configuration directory
    ListUnreadable,        ///< the stored list is there and cannot be read
    DataDirectory,         ///< the data directory has no file of the machine
    PluginNotLoadable,     ///< there is no plug-in, or it cannot be loaded
    PluginUnusable,        ///< the plug-in is loaded, but refuses or has no usable dialog
};
