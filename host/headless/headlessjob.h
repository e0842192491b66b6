#pragma once

#include "host/headless/messageboxautoresponder.h"
#include "host/options/hostoptions.h"
#include "host/output/exitcode.h"
#include "host/plugin/connectdialog.h"
#include "host/plugin/statusmonitor.h"

#include <QObject>
#include <QSet>

/// What the command line asks for without a person at the dialog: import, add, export, list, connect, wait, and
/// the pictures.
///
/// Message boxes are answered, and what they say goes to standard error. Runs inside the application's event loop.
class HeadlessJob : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive the job.
    HeadlessJob(const HostOptions& options, const ConnectDialog& dialog, QObject* parent = nullptr);

    /// Does all of it in the documented order, and returns when it is done or `Stop` was called. The result is that of
    /// the first thing that failed.
    ExitCode Run();

    /// Ends a wait, and leaves out what would come after.
    void Stop();

    /// Whether it is in the middle of something, and the list such as it is to remain neither before nor afterwards.
    /// Nothing is to be saved then.
    bool IsChangingEntries() const { return m_isChangingEntries; }

signals:
    void Stopped();

private:
    bool ImportAndAdd();
    bool Append(const QString& fileName);
    void Export();
    void List();
    bool Connect();
    QList<int> RowsToConnect() const;
    void Press(const QList<int>& rows);
    void Wait();
    void TakePicture(const QString& fileName);
    void Fail(ExitCode code, const QString& message);
    void NotePrinted(bool isPrinted);
    void NoteFailure(ExitCode code);

    void OnBoxOpened(const QString& title, const QString& text);
    void OnStatusChanged(int row, const QString& name, const QString& from, const QString& to);

    const HostOptions& m_options;
    const ConnectDialog& m_dialog;
    StatusMonitor m_monitor;
    MessageBoxAutoResponder m_answerer;
    QSet<int> m_rowsStarted; // rows that were not "Free" at any moment of the connecting
    bool m_boxOpened = false;
    bool m_stopped = false;
    bool m_isChangingEntries = false;
    ExitCode m_result = ExitCode::Done;
};
