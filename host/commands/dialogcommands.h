// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "control/controlreply.h"
#include "host/plugin/connectdialog.h"
#include "host/plugin/statusmonitor.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <deque>
#include <functional>
#include <future>

class DialogHost;
class StatusReport;

/// Carries out the requests of the control channel on the dialog. Long lists are put into text in another thread.
class DialogCommands : public QObject
{
    Q_OBJECT

public:
    /// `dialog` and `host` must outlive this object.
    DialogCommands(const ConnectDialog& dialog, DialogHost& host, QObject* parent = nullptr);
    /// Waits for the other thread.
    ~DialogCommands() override;

    /// Carries out `request`. `reply`, which is not owned, gets an `End` at once or later.
    void Execute(const ControlRequest& request, ControlReply* reply);

private:
    // The commands, by name.
    void List(const ControlRequest& request, ControlReply* reply);
    void Status(const ControlRequest& request, ControlReply* reply);
    void Export(const ControlRequest& request, ControlReply* reply);
    void Picture(const ControlRequest& request, ControlReply* reply);
    void Connect(const ControlRequest& request, ControlReply* reply);
    void Wait(const ControlRequest& request, ControlReply* reply);
    void Watch(const ControlRequest& request, ControlReply* reply);
    void Import(const ControlRequest& request, ControlReply* reply);
    void Add(const ControlRequest& request, ControlReply* reply);
    void Save(const ControlRequest& request, ControlReply* reply);
    void Show(const ControlRequest& request, ControlReply* reply);
    void Quit(const ControlRequest& request, ControlReply* reply);

    /// Return why the dialog cannot be used, or its list not replaced, at this moment; empty if it can.
    QString BoxError() const;
    QString ChangeError() const;

    void EndOfChange(int before, ControlReply* reply);
    void SendPicture(const char* moment, ControlReply* reply);

    /// The three steps of long work: `Begin` takes from the dialog what the work needs, the work takes place in another
    /// thread, and what it returns gives the answer.
    using Finish = std::function<void()>;
    using Work = std::function<Finish()>;
    using Begin = std::function<Work()>;
    /// Does the work when its turn comes, one at a time, and not at all if the peer has gone by then.
    void DoInBackground(ControlReply* reply, Begin begin);
    void DoNext();
    void AnswerInBackground(ControlReply* reply, std::function<std::function<QByteArray()>()> begin);
    /// Checks that the document of `request` is a connection list before `change` is made.
    void CheckInBackground(const ControlRequest& request, ControlReply* reply, Finish change);
    void Replace(const QByteArray& document, ControlReply* reply);

    /// Returns the rows that the request asks for; none, with `error` set, if one of its names is unknown or no entry
    /// is ticked.
    QList<int> RowsToConnect(const QJsonObject& request, QString* error) const;
    /// Connects the entries in `rows`. Answers "Problem" message boxes, sends their texts to `reply` and sets `hadBox`.
    /// `reply` may be gone afterwards. Returns false if the program is ending.
    bool ConnectRows(const QList<int>& rows, ControlReply* reply, bool* hadBox);
    /// Ends the answer when the entries of `report` are free.
    void EndWhenFree(const QJsonObject& request, StatusReport* report, ControlReply* reply, bool hasFailed);

    const ConnectDialog& m_dialog;
    DialogHost& m_host;
    StatusMonitor m_monitor;

    struct Waiting
    {
        QPointer<ControlReply> reply;
        Begin begin;
    };
    std::deque<Waiting> m_waiting;
    std::future<void> m_thread;
    bool m_isWorking = false;
};
