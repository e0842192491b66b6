// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/plugin/connectdialog.h"

#include <QObject>
#include <QString>

#include <optional>
#include <vector>

/// A change of an entry's status.
struct StatusChange
{
    int row = 0;
    QString name;     ///< of the entry
    int from = 0;     ///< the status before; 0 is "Free"
    int to = 0;       ///< the status now
    QString fromText; ///< as displayed
    QString toText;
    /// The application that serves the entry or, if the entry is "Free" now, served it; see `ConnectDialog`.
    std::optional<EntryApplication> application;
};

/// Watches the status column of the entries and reports real changes only: the model also emits dataChanged for
/// unchanged cells.
///
/// The cost depends on the number of changed rows, not on the length of the list. The dialog's list must outlive the
/// monitor.
class StatusMonitor : public QObject
{
    Q_OBJECT

public:
    explicit StatusMonitor(const ConnectDialog& dialog, QObject* parent = nullptr);

    /// Returns how many entries are not "Free".
    int CountInUse() const { return m_inUse; }

signals:
    void StatusChanged(const StatusChange& change);
    void InUseChanged(int count);

private:
    struct State
    {
        int value = 0;
        QString text;
    };

    State Read(int row) const;
    void Reread();
    void OnDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight);
    void OnRowsInserted(const QModelIndex& parent, int first, int last);
    void OnRowsRemoved(const QModelIndex& parent, int first, int last);
    void SetCountInUse(int count);

    const ConnectDialog m_dialog;
    QAbstractItemModel* const m_pEntries;
    std::vector<State> m_states;
    int m_inUse = 0;
};
