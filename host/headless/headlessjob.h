#pragma once

#include "host/headless/messageboxautoresponder.h"
#include "host/options/hostoptions.h"
#include "host/output/exitcode.h"
#include "host/plugin/connectdialog.h"
#include "host/plugin/statusmonitor.h"

#include <QObject>
#include <QSet>

/// Does the headless work that the command line asks for: import, add, export, list, connect, wait, screenshots.
///
/// Message boxes are answered automatically, and their texts go to standard error. Runs inside the application's event
/// loop.
class HeadlessJob : public QObject
{
    Q_OBJECT

public:
    /// `options` and `dialog` must outlive the job.
    HeadlessJob(const HostOptions& options, const ConnectDialog& dialog, QObject* parent = nullptr);

    /// Does the steps in the documented order. Returns when all are done or `Stop` was called, with the code of the
    /// first failure.
    ExitCode Run();

    /// Ends a wait and skips the remaining steps.
    void Stop();

    /// True while the list is in an intermediate state that must not be saved.
    bool IsChangingEntries() const { return m_isChangingEntries; }

signals:
    void Stopped();

private:
    bool ImportAndAdd();
    void RemoveEntries(int first, int count);
    bool Append(const QString& fileName);
    void Export();
    void List();
    bool Connect();
    QList<int> RowsToConnect() const;
    void ConnectRows(const QList<int>& rows);
    void Wait();
    void TakeScreenshot(const QString& fileName);
    void Fail(ExitCode code, const QString& message);
    void CheckPrinted(bool isPrinted);
    void RecordFailure(ExitCode code);

    void OnBoxOpened(const QString& title, const QString& text);
    void OnStatusChanged(const StatusChange& change);

    const HostOptions& m_options;
    const ConnectDialog& m_dialog;
    StatusMonitor m_monitor;
    MessageBoxAutoResponder m_autoResponder;
    QSet<int> m_rowsStarted; // rows that became other than "Free" while connecting
    bool m_boxOpened = false;
    bool m_stopped = false;
    bool m_isChangingEntries = false;
    ExitCode m_result = ExitCode::Done;
};
