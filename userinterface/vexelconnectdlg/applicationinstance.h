// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/vexelconnectdlg/connection.h"

#include <QDateTime>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <optional>

/// One user-interface application process and the connection entry it serves.
///
/// The launcher creates one for each entry to connect and starts it; `ProcessExited` reports the end of the
/// application. Owns the process. Errors are traced, nothing is shown. GUI thread only.
class ApplicationInstance : public QObject
{
    Q_OBJECT

public:
    enum State : int { Free = 0, Started = 1, Error = 2 };

    /// How an application ended.
    struct End
    {
        QProcess::ExitStatus status = QProcess::NormalExit;
        int code = 0; ///< the exit code; after a crash on Unix the signal number, on Windows the system's error code
    };

    /// Stores the parameters; starts nothing.
    ApplicationInstance(QString program, QStringList arguments, QString workingDirectory, const Connection& connection);
    /// Kills a process that still runs, without emitting `ProcessExited`.
    ~ApplicationInstance() override;

    /// Starts the program and waits up to 30 s for the start, without running an event loop. Returns whether it was
    /// started; if not, the instance is "Free" again and has no process. If the working directory does not exist, that
    /// is traced and the program starts in the current directory.
    ///
    /// The application's output is discarded, because buffered output would grow without limit. Its input is a pipe
    /// that stays open and empty while this object holds the process.
    bool Start();

    /// In state "Started": asks the application to terminate and becomes "Free" at once; the end of the process is only
    /// traced. In any other state: becomes "Free" and kills and deletes a remaining process.
    void ReleaseInstance();

    State GetState() const { return m_state; }
    /// Sets the state and traces the change. Accepts any number.
    void SetState(int state);

    const QString& GetWorkingDirectory() const { return m_sWorkingDirectory; }
    Connection GetConnection() const { return m_connection; }
    /// Returns the name of the application: the first argument up to its first ":". Empty without arguments.
    QString GetHostName() const;
    /// Returns the file to start.
    const QString& GetProgram() const { return m_sProgram; }
    /// Return the number of the process and when it was started, also after its end. The number is 0 and the time
    /// invalid if the last start failed or there was none.
    qint64 GetProcess() const { return m_process; }
    const QDateTime& GetStartTime() const { return m_startTime; }
    /// Returns how the application ended; none before.
    const std::optional<End>& GetEnd() const { return m_end; }

signals:
    /// The application has exited or crashed while the instance was "Started".
    void ProcessExited();

public slots:
    /// Handles the end of the process. Does nothing without a process.
    void SlotProcessExited(int iCode, QProcess::ExitStatus status);

private:
    static QString StateName(int state);

    /// Disconnects the process, kills it if it still runs, and deletes it later.
    void DropProcess();

    QProcess* m_pProcess = nullptr;
    const QString m_sProgram;
    const QStringList m_arguments;
    const QString m_sWorkingDirectory;
    const Connection m_connection;
    State m_state = Free;
    qint64 m_process = 0;
    QDateTime m_startTime;
    std::optional<End> m_end;
};
