// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>
#include <QStringList>

class SupportReport;

/// The input of `ReportMachine`.
struct MachineFiles
{
    QString dataDirectory;
    QString configuredMapping;      ///< path of the mapping from the configuration; empty: use the data directory's
    QStringList programDirectories; ///< search path for executables without a path, in this order
};

/// Adds a section on what the plug-in reads from the machine's two files, using the plug-in's own readers: which
/// applications can be started, which device types each serves, and what was ignored and why.
void ReportMachine(SupportReport& report, const MachineFiles& files);
