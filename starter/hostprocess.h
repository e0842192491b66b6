// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <optional>

/// A detached host process: it outlives the starter and its terminal.
///
/// It inherits only the current directory and the environment: no pipes, files or console. Destroying the object does
/// not affect the process.
class HostProcess
{
public:
    /// How a process ended.
    struct ExitStatus
    {
        int exitCode = 0; ///< only meaningful without a crash
        QString crash;    ///< how it crashed, as in "signal 11"; empty if it exited
    };

    HostProcess() = default;
    ~HostProcess();

    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;

    /// Starts the program `file`, an absolute path. `arguments` are passed unchanged, without a shell. The process
    /// finds `errorFile` in the variable `kStartErrorFileVariable`, if it is not empty. Call once. Returns the error;
    /// empty on success.
    QString Start(const QString& file, const QStringList& arguments, const QString& errorFile = {});
    /// Returns how the process ended; none while it runs.
    std::optional<ExitStatus> Poll();
    qint64 Id() const { return m_id; }

private:
    qint64 m_id = 0;
    qintptr m_handle = 0; // process handle on Windows, owned
    std::optional<ExitStatus> m_exitStatus;
};
