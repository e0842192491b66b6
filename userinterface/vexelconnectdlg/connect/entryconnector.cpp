// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/connect/entryconnector.h"

#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <utility>

EntryConnector::EntryConnector(const QObject& dialog, ConnectionsModel& model, AppCounter& appCounter, Wanted isWanted,
                               Records writeRecords)
    : m_pDialog(&dialog)
    , m_model(model)
    , m_appCounter(appCounter)
    , m_isWanted(std::move(isWanted))
    , m_writeRecords(std::move(writeRecords))
{
}

bool EntryConnector::Run()
{
    QList<QPersistentModelIndex> waiting = EntriesToConnect(0);
    bool isFirstPass = true;
    while (WriteChangedRecords()) {
        waiting.removeIf([](const QPersistentModelIndex& entry) { return !entry.isValid(); });
        if (waiting.isEmpty())
            return true;
        // The user may have ticked entries above while the records were written.
        waiting = ConnectUntilBreak(std::exchange(isFirstPass, false) ? 0 : waiting.constFirst().row());
        if (waiting.isEmpty() || !TakeBreak())
            break;
    }
    return m_pDialog && m_goesOn;
}

bool EntryConnector::IsToConnect(const QModelIndex& entry) const
{
    return m_isWanted(entry) && m_model.GetConnection(entry.row()).ConnectionStatus == Connection::Free;
}

QList<QPersistentModelIndex> EntryConnector::EntriesToConnect(int firstRow) const
{
    QList<QPersistentModelIndex> entries;
    for (int row = firstRow; row < m_model.rowCount(); ++row)
        if (const QModelIndex entry = m_model.index(row, ConnectionsModel::ColumnName); IsToConnect(entry))
            entries.append(entry);
    return entries;
}

/// Returns whether to go on.
bool EntryConnector::WriteChangedRecords()
{
    while (m_goesOn && std::exchange(m_areRecordsOld, false))
        m_writeRecords([this] { return TakeBreak(); });
    return m_goesOn;
}

/// Starts from `row` on. Returns the entries that are left when it is time for a break.
QList<QPersistentModelIndex> EntryConnector::ConnectUntilBreak(int row)
{
    for (; m_pDialog && row < m_model.rowCount(); ++row) {
        if (!IsToConnect(m_model.index(row, ConnectionsModel::ColumnName)))
            continue;
        if (m_break.IsDue())
            return EntriesToConnect(row);
        m_appCounter.ConnectTo(m_model.GetConnection(row));
    }
    return {};
}

/// Returns whether to go on. Notes changes of the entries, because started applications read their records.
bool EntryConnector::TakeBreak()
{
    const QObject duringBreak;
    const auto note = [this] {
        m_areRecordsOld = true;
    };
    QObject::connect(&m_model, &QAbstractItemModel::rowsInserted, &duringBreak, note);
    QObject::connect(&m_model, &QAbstractItemModel::rowsRemoved, &duringBreak, note);
    QObject::connect(&m_model, &QAbstractItemModel::dataChanged, &duringBreak, note);
    m_appCounter.HoldSweeps();
    const bool isEnding = !m_break.Take();
    if (m_pDialog)
        m_appCounter.ReleaseSweeps();
    return m_goesOn = m_pDialog && !isEnding;
}
