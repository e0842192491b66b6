#pragma once

#include "host/options/hostoptions.h"
#include "host/output/exitcode.h"
#include "host/output/notices.h"
#include "host/plugin/pluginlibrary.h"
#include "host/store/configsaver.h"

class ConnectDialog;
class SignalWatcher;
struct StoredSet;

/// Runs the host once: opens the configuration, creates the plug-in's instance, shows the dialog or does the headless
/// work. On every way out it saves and tears down.
class Application
{
public:
    explicit Application(HostOptions options);

    /// Does everything from start to end. Needs the QApplication and runs its event loop.
    ExitCode Run();

private:
    bool OpenConfiguration(QString obstacle);
    ExitCode RunWithConfiguration(const PluginLibrary& library, SignalWatcher& signalWatcher);
    ExitCode RunWithInstance(IDllInstance& instance, SignalWatcher& signalWatcher);
    void RunDialog(IDllInstance& instance, const ConnectDialog& dialog, SignalWatcher& signalWatcher);
    ExitCode RunHeadless(IDllInstance& instance, const ConnectDialog& dialog, SignalWatcher& signalWatcher);

    void SetUpEnvironment() const;
    PluginLibrary::Instance CreateInstance(const PluginLibrary& library) const;
    QString SaveSettings(IDllInstance& instance, const ConnectDialog& dialog);
    QString SaveDocument();
    void ReportLoss(const StoredSet& set);

    const HostOptions m_options;
    Notices m_notices;
    ConfigSaver m_saver;
    bool m_isReadOnly = false; // the configuration must not be saved
};
