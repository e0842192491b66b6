#pragma once

#include <QAbstractItemModel>
#include <QObject>
#include <QString>

#include <vector>

/// Watches the status column of the list of entries, and announces real changes only: the list also announces cells
/// that stay as they are.
///
/// A change costs what it touches, not the length of the list. The list must outlive the monitor's use.
class StatusMonitor : public QObject
{
    Q_OBJECT

public:
    explicit StatusMonitor(QAbstractItemModel* entries, QObject* parent = nullptr);

    /// How many entries are not "Free".
    int CountInUse() const { return m_inUse; }

signals:
    /// The entry called `name` at `row` went from one status to another. The texts are those shown for the two.
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
