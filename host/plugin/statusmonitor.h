#pragma once

#include <QAbstractItemModel>
#include <QObject>
#include <QString>

#include <vector>

/// Watches the status column of the entries and reports real changes only: the model also emits dataChanged for
/// unchanged cells.
///
/// The cost depends on the number of changed rows, not on the length of the list. The model must outlive the monitor.
class StatusMonitor : public QObject
{
    Q_OBJECT

public:
    explicit StatusMonitor(QAbstractItemModel* entries, QObject* parent = nullptr);

    /// Returns how many entries are not "Free".
    int CountInUse() const { return m_inUse; }

signals:
    /// The status of the entry `name` in `row` changed. `from` and `to` are the displayed texts.
    void StatusChanged(int row, const QString& name, const QString& from, const QString& to);
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

    QAbstractItemModel* const m_pEntries;
    std::vector<State> m_states;
    int m_inUse = 0;
};
