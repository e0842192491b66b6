#pragma once

#include "userinterface/vexelconnectdlg/connection.h"

#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>

/// One user-interface application, started or startable, and the connection entry it was started for.
///
/// The launcher makes one for each entry that shall be connected, starts it, and learns from `ProcessExited` that the
/// application has ended. Owns the process. Every report is a trace; nothing is shown. GUI thread only.
class ApplicationInstance : public QObject
{
    Q_OBJECT

public:
    enum State : int { Free = 0, Started = 1, Error = 2 };

    /// Stores the four; starts nothing.
    ApplicationInstance(QString program, QStringList arguments, QString workingDirectory, const Connection& connection);
    /// Ends a process that is still there; `ProcessExited` is not emitted for it.
    ~ApplicationInstance() override;

    /// Starts the program and waits for the start, at most 30 s, without running an event loop. Returns whether it
    /// was started; if not, the instance is "Free" again and without a process. A working directory that does not
    /// exist is traced, and the program then starts in the current one.
    ///
    /// What the application prints goes nowhere, so that it cannot pile up here. Its input is a pipe that stays open
    /// and silent for as long as the process is held.
    bool Start();

    /// Started: asks the application politely to end, and is "Free" at once; the end itself is only traced when it
    /// comes. Any other state: "Free", and a process that is still there is ended and deleted.
    void ReleaseInstance();

    State GetState() const { return m_state; }
    /// Traces the change from one state to another. Any number is taken.
    void SetState(int state);

    const QString& GetWorkingDirectory() const { return m_sWorkingDirectory; }
    Connection GetConnection() const { return m_connection; }
    /// The first argument up to its first ":", or the whole of it without one: the name of the application. Empty
    /// without arguments.
    QString GetHostName() const;

signals:
    /// The application has ended, by itself or by a crash, while the instance was "Started".
    void ProcessExited();

public slots:
    /// The process has ended. Does nothing without a process.
    void SlotProcessExited(int iCode, QProcess::ExitStatus status);

private:
    static QString StateName(int state);

    /// Disconnects the process and has it deleted, at the latest by the event loop; one that still runs is ended.
    void DropProcess();

    QProcess* m_pProcess = nullptr;
    const QString m_sProgram;
    const QStringList m_arguments;
    const QString m_sWorkingDirectory;
    const Connection m_connection;
    State m_state = Free;
};
