#include "host/statusmonitor.h"

#include "host/connectdialog.h"

#include <algorithm>

namespace {

constexpr int s_status = static_cast<int>(EntryColumn::Status);
constexpr int s_name = static_cast<int>(EntryColumn::Name);

} // namespace

StatusMonitor::StatusMonitor(QAbstractItemModel* entries, QObject* parent)
    : QObject(parent)
    , m_pEntries(entries)
{
    connect(entries, &QAbstractItemModel::dataChanged, this, &StatusMonitor::OnDataChanged);
    connect(entries, &QAbstractItemModel::rowsInserted, this, &StatusMonitor::OnRowsInserted);
    connect(entries, &QAbstractItemModel::rowsRemoved, this, &StatusMonitor::OnRowsRemoved);
    connect(entries, &QAbstractItemModel::rowsMoved, this, &StatusMonitor::Reread);
    connect(entries, &QAbstractItemModel::layoutChanged, this, &StatusMonitor::Reread);
    connect(entries, &QAbstractItemModel::modelReset, this, &StatusMonitor::Reread);
    Reread();
}

StatusMonitor::State StatusMonitor::Read(int row) const
{
    const QModelIndex index = m_pEntries->index(row, s_status);
    return {index.data(Qt::EditRole).toInt(), index.data(Qt::DisplayRole).toString()};
}

void StatusMonitor::Reread()
{
    m_States.clear();
    int inUse = 0;
    for (int row = 0; row < m_pEntries->rowCount(); ++row) {
        m_States.push_back(Read(row));
        inUse += m_States.back().value != ConnectDialog::Free ? 1 : 0;
    }
    SetCountInUse(inUse);
}

void StatusMonitor::OnDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight)
{
    if (topLeft.column() > s_status || bottomRight.column() < s_status)
        return;
    for (int row = topLeft.row(); row <= bottomRight.row(); ++row) {
        State& known = m_States.at(static_cast<std::size_t>(row));
        State now = Read(row);
        if (now.value == known.value)
            continue;
        const QString from = known.text;
        const int difference =
            static_cast<int>(now.value != ConnectDialog::Free) - static_cast<int>(known.value != ConnectDialog::Free);
        known = std::move(now);
        const QString to = known.text;
        emit StatusChanged(row, m_pEntries->index(row, s_name).data(Qt::EditRole).toString(), from, to);
        SetCountInUse(m_InUse + difference);
    }
}

void StatusMonitor::OnRowsInserted(const QModelIndex& parent, int first, int last)
{
    if (parent.isValid())
        return;
    std::vector<State> added;
    int inUse = m_InUse;
    for (int row = first; row <= last; ++row) {
        added.push_back(Read(row));
        inUse += added.back().value != ConnectDialog::Free ? 1 : 0;
    }
    m_States.insert(m_States.begin() + first, added.begin(), added.end());
    SetCountInUse(inUse);
}

void StatusMonitor::OnRowsRemoved(const QModelIndex& parent, int first, int last)
{
    if (parent.isValid())
        return;
    const auto begin = m_States.begin() + first;
    const auto end = m_States.begin() + last + 1;
    const auto inUse = std::count_if(begin, end, [](const State& state) { return state.value != ConnectDialog::Free; });
    m_States.erase(begin, end);
    SetCountInUse(m_InUse - static_cast<int>(inUse));
}

void StatusMonitor::SetCountInUse(int count)
{
    if (count == m_InUse)
        return;
    m_InUse = count;
    emit InUseChanged(count);
}
