// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/plugin/statusmonitor.h"

#include <algorithm>

namespace {

constexpr int kStatus = static_cast<int>(EntryColumn::Status);

} // namespace

StatusMonitor::StatusMonitor(const ConnectDialog& dialog, QObject* parent)
    : QObject(parent)
    , m_dialog(dialog)
    , m_pEntries(dialog.Entries())
{
    connect(m_pEntries, &QAbstractItemModel::dataChanged, this, &StatusMonitor::OnDataChanged);
    connect(m_pEntries, &QAbstractItemModel::rowsInserted, this, &StatusMonitor::OnRowsInserted);
    connect(m_pEntries, &QAbstractItemModel::rowsRemoved, this, &StatusMonitor::OnRowsRemoved);
    connect(m_pEntries, &QAbstractItemModel::rowsMoved, this, &StatusMonitor::Reread);
    connect(m_pEntries, &QAbstractItemModel::layoutChanged, this, &StatusMonitor::Reread);
    connect(m_pEntries, &QAbstractItemModel::modelReset, this, &StatusMonitor::Reread);
    Reread();
}

StatusMonitor::State StatusMonitor::Read(int row) const
{
    const QModelIndex index = m_pEntries->index(row, kStatus);
    return {index.data(Qt::EditRole).toInt(), index.data(Qt::DisplayRole).toString()};
}

void StatusMonitor::Reread()
{
    m_states.clear();
    int inUse = 0;
    for (int row = 0; row < m_pEntries->rowCount(); ++row) {
        m_states.push_back(Read(row));
        inUse += m_states.back().value != ConnectDialog::kFree ? 1 : 0;
    }
    SetCountInUse(inUse);
}

void StatusMonitor::OnDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight)
{
    if (topLeft.column() > kStatus || bottomRight.column() < kStatus)
        return;
    for (int row = topLeft.row(); row <= bottomRight.row(); ++row) {
        State& known = m_states.at(static_cast<std::size_t>(row));
        State now = Read(row);
        if (now.value == known.value)
            continue;
        const StatusChange change{row,      m_dialog.Name(row),         known.value, now.value, known.text,
                                  now.text, m_dialog.ApplicationOf(row)};
        const int difference =
            static_cast<int>(now.value != ConnectDialog::kFree) - static_cast<int>(known.value != ConnectDialog::kFree);
        known = std::move(now);
        emit StatusChanged(change);
        SetCountInUse(m_inUse + difference);
    }
}

void StatusMonitor::OnRowsInserted(const QModelIndex& parent, int first, int last)
{
    if (parent.isValid())
        return;
    std::vector<State> added;
    int inUse = m_inUse;
    for (int row = first; row <= last; ++row) {
        added.push_back(Read(row));
        inUse += added.back().value != ConnectDialog::kFree ? 1 : 0;
    }
    m_states.insert(m_states.begin() + first, added.begin(), added.end());
    SetCountInUse(inUse);
}

void StatusMonitor::OnRowsRemoved(const QModelIndex& parent, int first, int last)
{
    if (parent.isValid())
        return;
    const auto begin = m_states.begin() + first;
    const auto end = m_states.begin() + last + 1;
    const auto inUse =
        std::count_if(begin, end, [](const State& state) { return state.value != ConnectDialog::kFree; });
    m_states.erase(begin, end);
    SetCountInUse(m_inUse - static_cast<int>(inUse));
}

void StatusMonitor::SetCountInUse(int count)
{
    if (count == m_inUse)
        return;
    m_inUse = count;
    emit InUseChanged(count);
}
