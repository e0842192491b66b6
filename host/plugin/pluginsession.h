// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/options/sessionoptions.h"
#include "host/output/exitcode.h"
#include "host/output/failurekind.h"
#include "host/output/notices.h"
#include "host/plugin/pluginlibrary.h"
#include "host/store/configsaver.h"

#include <functional>

class ConnectDialog;
struct StoredSet;

/// One run of the plug-in: opens the configuration, creates the plug-in's instance, and gives its dialog to some work.
/// On every way out it saves and tears down.
class PluginSession
{
public:
    enum class Mode {
        Desktop,  ///< a user works with the dialog
        Headless, ///< the dialog is off screen; callers of the starter's link do not find it
        ReadOnly  ///< same, and nothing is written to the configuration
    };
    /// Receives why the session cannot be run; `error` is one line.
    using Failed = std::function<void(FailureKind kind, const QString& error)>;
    /// Works with the dialog, and may run the event loop.
    using Work = std::function<ExitCode(const ConnectDialog& dialog)>;

    /// `notices` must outlive the session.
    PluginSession(SessionOptions options, Mode mode, Notices& notices, Failed failed);

    /// Loads the plug-in's library. Call this first: it writes nothing. Returns false if it cannot be used.
    bool LoadPlugin();

    /// Does everything else, and `work` in between. The caller holds the lock of the configuration directory, except in
    /// the mode `ReadOnly`. Returns the result of `work`, or why the session failed.
    ExitCode Run(const Work& work);

    /// Store what the plug-in knows and save it; for use by `work`. Return, or call `done` with, why that failed; empty
    /// on success. `SaveAsync` does not store the list, which its caller does, and saves in another thread.
    QString Save();
    void SaveAsync(std::function<void(const QString& error)> done);

    /// Returns whether the installed samples are used, because nobody has set a data directory; for use by `work`.
    bool UsesSamples() const { return m_usesSamples; }

private:
    ExitCode Fail(FailureKind kind, const QString& error);
    bool OpenConfiguration();
    ExitCode RunWithConfiguration(const Work& work);
    ExitCode RunWithInstance(IDllInstance& instance, const Work& work);
    void SetUpEnvironment() const;
    void StoreWindowSize() const;
    PluginLibrary::Instance CreateInstance();
    void ReportLoss(const StoredSet& set);

    const SessionOptions m_options;
    const Mode m_mode;
    Notices& m_notices;
    const Failed m_failed;
    PluginLibrary m_library;
    ConfigSaver m_saver;
    bool m_usesSamples = false;
    IDllInstance* m_pInstance = nullptr;      // while `work` runs
    const ConnectDialog* m_pDialog = nullptr; // likewise
};
