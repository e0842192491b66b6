#pragma once

#include <QString>
#include <QStringList>

class SupportReport;

/// What `ReportMachine` looks at.
struct MachineFiles
{
    QString dataDirectory;
    QString configuredMapping;      ///< the mapping's path as the configuration has it; empty: the data directory's
    QStringList programDirectories; ///< where an executable without a path is looked for, in this order
};

/// Adds a section on what the plug-in takes from the machine's two files, read by the plug-in's own readers: which
/// applications can be started, which device type each serves, and what was dropped and why.
void ReportMachine(SupportReport& report, const MachineFiles& files);
