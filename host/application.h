// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/desktop/startfailure.h"
#include "host/options/hostoptions.h"
#include "host/output/exitcode.h"
#include "host/output/notices.h"

class ConnectDialog;
class InstanceLock;
class PluginSession;
class SignalWatcher;

/// Runs the host once: shows the plug-in's dialog until the user quits, or brings the dialog of a host that already
/// uses the configuration to the front.
class Application
{
public:
    explicit Application(HostOptions options);

    /// Does everything from start to end. Needs the QApplication and runs its event loop.
    ExitCode Run();

private:
    ExitCode ShowRunningDialog();
    ExitCode RunDialog(const ConnectDialog& dialog, PluginSession& session, const InstanceLock& lock,
                       SignalWatcher& signalWatcher);
    ExitCode Fail(ExitCode code, StartFailure::Kind kind, const QString& error) const;

    HostOptions m_options;
    Notices m_notices;
};
