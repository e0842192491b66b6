#include "host/plugin/statusmonitor.h"

#include "host/plugin/connectdialog.h"

#include <algorithm>

namespace {

constexpr int kStatus = static_cast<int>(EntryColumn::Status);
constexpr int kName = static_cast<int>(EntryColumn::Name);

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
        const QString from = known.text;
        const int difference =
            static_cast<int>(now.value != ConnectDialog::kFree) - static_cast<int>(known.value != ConnectDialog::kFree);
        known = std::move(now);
        const QString to = known.text;
        emit StatusChanged(row, m_pEntries->index(row, kName).data(Qt::EditRole).toString(), from, to);
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
