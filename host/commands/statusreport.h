// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/plugin/statusmonitor.h"

#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QPersistentModelIndex>
#include <QSet>

class ConnectDialog;
class ControlReply;

/// Sends changes of statuses as lines of an answer, and keeps which entries are in use and whether an application has
/// failed. Its owner is the answer.
class StatusReport : public QObject
{
    Q_OBJECT

public:
    enum class Scope {
        All, ///< reports all entries; those in `rows` are in use already
        Rows ///< reports the entries in `rows` only
    };

    /// `dialog` and `monitor` must outlive `reply`.
    StatusReport(const ConnectDialog& dialog, const StatusMonitor& monitor, ControlReply* reply, Scope scope,
                 const QList<int>& rows = {});

    /// Whether lines are sent. On from the beginning.
    void SetSending(bool isSending) { m_isSending = isSending; }

    /// Returns whether the entry has become other than "Free".
    bool HasStarted(const QPersistentModelIndex& entry) const { return m_started.contains(entry); }
    /// Returns whether all entries that were in use are "Free" again.
    bool IsOver() const;
    /// Returns whether an application has crashed or ended with another exit code than 0.
    bool HasFailed() const { return m_hasFailed; }

private:
    void OnStatusChanged(const StatusChange& change);
    QPersistentModelIndex Index(int row) const;

    const ConnectDialog& m_dialog;
    ControlReply* const m_pReply;
    const Scope m_scope;
    QSet<QPersistentModelIndex> m_rows;
    QSet<QPersistentModelIndex> m_started;
    bool m_isSending = true;
    bool m_hasFailed = false;
};
