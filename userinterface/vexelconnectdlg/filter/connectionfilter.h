// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/vexelconnectdlg/filter/textmatcher.h"

#include <QCoreApplication>
#include <QSortFilterProxyModel>
#include <QString>

#include <vector>

class QItemSelectionModel;

/// Sorts and filters the connections for the views.
///
/// Differs from QSortFilterProxyModel:
///
/// - Invalid expressions, and those that take too long on a text, match nothing (`TextMatcher`).
/// - Texts are displayed on one line of limited length, because two views with different columns of a row must give it
///   the same height, and a text of a megabyte would slow down every layout. Editing, filtering and sorting use the
///   whole text.
/// - The tick and its header, which have no text, have one for screen readers.
/// - Dropped entries are sorted in all at once. One by one, a hundred thousand would take many seconds.
/// - Icons have a plate behind them in selected rows (`PlatedIcon`).
class ConnectionFilterModel : public QSortFilterProxyModel
{
    Q_DECLARE_TR_FUNCTIONS(ConnectionFilterModel)

public:
    explicit ConnectionFilterModel(QObject* parent = nullptr);

    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;
    void setSourceModel(QAbstractItemModel* model) override;

    /// Filters by `FilterExpression(pattern, mode)` in `column`. Needs a source model.
    ///
    /// Shows the same rows as the setters of the base class, but reports one layout change. The setters report each
    /// range of rows that leaves or comes, which takes seconds for a hundred thousand rows. Rows that come back take
    /// the place that they had, if they were not changed or sorted meanwhile.
    ///
    /// `selection` (may be null) keeps the selected rows that still match. If the current row does not match, the
    /// nearest row above that does becomes current, or else the first one.
    void SetFilter(int column, const QString& pattern, int mode, QItemSelectionModel* selection);

    /// Shows no entries until `EndLoading`. For replacing the whole list: the source inserts entries one by one, and
    /// the views would lay out their rows again and again.
    void BeginLoading();
    /// Shows the entries, sorted. `ranks`, if not empty, has a number for each row of the source, in the order of what
    /// they are sorted by, and takes the place of comparing that: a tenth of the time. Ignored if the number of rows
    /// has changed.
    void EndLoading(std::vector<int> ranks = {});

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

private:
    bool MatchesRow(int sourceRow, const QModelIndex& sourceParent) const;
    /// Returns the rows of the source that are shown, in the order of the views.
    std::vector<int> ShownRows() const;
    /// Returns the source's index of what becomes `current` when only accepted rows remain of `shown`.
    QModelIndex NextCurrent(const std::vector<int>& shown, const QModelIndex& current) const;
    void RememberOrder(const std::vector<int>& shown);
    void ForgetOrder();

    mutable TextMatcher m_matcher; ///< of the filter's expression when rows were last matched
    /// While the filter changes: whether each row of the source is accepted. Otherwise empty.
    std::vector<bool> m_accepted;
    /// While rows are hidden: the sort position of each row of the source from when all were shown, so that texts need
    /// not be compared again. Zero or negative in descending order. Empty if it is not known.
    std::vector<int> m_positions;
    std::vector<QMetaObject::Connection> m_sourceConnections;
    bool m_isLoading = false;
    std::vector<int> m_ranks; ///< while the entries are sorted by them
};
