// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/filter/connectionfilter.h"

#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/views/platedicon.h"

#include <QIcon>
#include <QItemSelectionModel>

#include <algorithm>
#include <tuple>
#include <utility>

namespace {

/// A selected part of a row.
struct SelectedCells
{
    int row = 0;
    int firstColumn = 0;
    int lastColumn = 0;
};

std::vector<SelectedCells> CellsOf(const QItemSelection& selection)
{
    std::vector<SelectedCells> cells;
    for (const QItemSelectionRange& range : selection)
        for (int row = range.top(); row <= range.bottom(); ++row)
            cells.push_back({row, range.left(), range.right()});
    return cells;
}

QItemSelection SelectionOf(const QAbstractItemModel& model, std::vector<SelectedCells> cells)
{
    const auto key = [](const SelectedCells& each) {
        return std::tuple(each.firstColumn, each.lastColumn, each.row);
    };
    std::sort(cells.begin(), cells.end(),
              [key](const SelectedCells& left, const SelectedCells& right) { return key(left) < key(right); });
    QItemSelection selection;
    for (auto first = cells.begin(), next = first; first != cells.end(); first = next) {
        SelectedCells last = *first;
        for (++next; next != cells.end() && key(*next) == key({last.row + 1, last.firstColumn, last.lastColumn});
             ++next)
            last = *next;
        selection.append({model.index(first->row, first->firstColumn), model.index(last.row, last.lastColumn)});
    }
    return selection;
}

constexpr qsizetype kLongestShownText = 500; // characters; wider than any screen

bool IsLineBreak(QChar c)
{
    return c == QLatin1Char('\n') || c == QLatin1Char('\r') || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

QString Shortened(const QString& text)
{
    const bool tooLong = text.size() > kLongestShownText;
    if (!tooLong && std::none_of(text.begin(), text.end(), IsLineBreak))
        return text;
    QString line = tooLong ? text.left(kLongestShownText) + QChar(0x2026) : text;
    std::replace_if(line.begin(), line.end(), IsLineBreak, QLatin1Char(' '));
    return line;
}

} // namespace

QVariant ConnectionFilterModel::data(const QModelIndex& index, int role) const
{
    if (role == Qt::AccessibleTextRole && index.isValid() && index.column() == ConnectionsModel::ColumnSelected)
        return data(index, Qt::EditRole).toBool() ? tr("selected") : tr("not selected");
    QVariant value = QSortFilterProxyModel::data(index, role);
    if (role == Qt::DisplayRole && value.metaType() == QMetaType::fromType<QString>())
        return Shortened(value.toString());
    if (role == Qt::DecorationRole && value.metaType() == QMetaType::fromType<QIcon>())
        return PlatedIcon(value.value<QIcon>());
    return value;
}

QVariant ConnectionFilterModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role == Qt::AccessibleTextRole && orientation == Qt::Horizontal && section == ConnectionsModel::ColumnSelected)
        return tr("Selected");
    return QSortFilterProxyModel::headerData(section, orientation, role);
}

bool ConnectionFilterModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                         const QModelIndex& parent)
{
    setDynamicSortFilter(false);
    const bool isDropped = QSortFilterProxyModel::dropMimeData(data, action, row, column, parent);
    setDynamicSortFilter(true);
    return isDropped;
}

ConnectionFilterModel::ConnectionFilterModel(QObject* parent)
    : QSortFilterProxyModel(parent)
{
    // The first includes all sorting.
    connect(this, &QAbstractItemModel::layoutAboutToBeChanged, this, [this] {
        if (m_accepted.empty())
            ForgetOrder();
    });
    connect(this, &QAbstractItemModel::modelAboutToBeReset, this, &ConnectionFilterModel::ForgetOrder);
}

void ConnectionFilterModel::setSourceModel(QAbstractItemModel* model)
{
    for (const QMetaObject::Connection& connection : std::exchange(m_sourceConnections, {}))
        disconnect(connection);
    QSortFilterProxyModel::setSourceModel(model);
    if (!model)
        return;
    const auto dataChanged = [this](const QModelIndex& topLeft, const QModelIndex& bottomRight) {
        if (topLeft.column() <= sortColumn() && sortColumn() <= bottomRight.column())
            ForgetOrder();
    };
    m_sourceConnections = {
        connect(model, &QAbstractItemModel::rowsInserted, this, &ConnectionFilterModel::ForgetOrder),
        connect(model, &QAbstractItemModel::rowsRemoved, this, &ConnectionFilterModel::ForgetOrder),
        connect(model, &QAbstractItemModel::dataChanged, this, dataChanged),
    };
}

void ConnectionFilterModel::SetFilter(int column, const QString& pattern, int mode, QItemSelectionModel* selection)
{
    const std::vector<int> shown = ShownRows();
    std::vector<bool> accepted(static_cast<std::size_t>(sourceModel()->rowCount()));
    for (const int row : shown)
        accepted[static_cast<std::size_t>(row)] = true;

    // The base class must not notice a change before all rows have been matched.
    m_accepted = accepted;
    setFilterKeyColumn(column);
    m_matcher = TextMatcher(pattern, mode);
    setFilterRegularExpression(m_matcher.Expression());
    for (std::size_t row = 0; row < m_accepted.size(); ++row)
        m_accepted[row] = MatchesRow(static_cast<int>(row), QModelIndex());
    if (m_accepted == accepted) {
        m_accepted.clear();
        return;
    }

    if (shown.size() == accepted.size())
        RememberOrder(shown);
    // Qt's selection would keep only enabled cells, and take the wrong rows if all were selected.
    QPersistentModelIndex current;
    std::vector<SelectedCells> selected;
    if (selection) {
        current = NextCurrent(shown, selection->currentIndex());
        selected = CellsOf(selection->selection());
        selection->clearSelection();
    }
    invalidate();
    rowCount(); // maps the rows, if no view has
    m_accepted.clear();
    if (rowCount() == sourceModel()->rowCount())
        ForgetOrder();

    for (SelectedCells& cells : selected)
        cells.row = mapFromSource(sourceModel()->index(shown[static_cast<std::size_t>(cells.row)], 0)).row();
    std::erase_if(selected, [](const SelectedCells& cells) { return cells.row < 0; });
    if (!selected.empty())
        selection->select(SelectionOf(*this, selected), QItemSelectionModel::Select);
    if (current.isValid())
        selection->setCurrentIndex(mapFromSource(current), QItemSelectionModel::NoUpdate);
}

std::vector<int> ConnectionFilterModel::ShownRows() const
{
    std::vector<int> rows(static_cast<std::size_t>(rowCount()));
    for (std::size_t row = 0; row < rows.size(); ++row)
        rows[row] = mapToSource(index(static_cast<int>(row), 0)).row();
    return rows;
}

QModelIndex ConnectionFilterModel::NextCurrent(const std::vector<int>& shown, const QModelIndex& current) const
{
    const auto isAccepted = [this](int row) {
        return m_accepted[static_cast<std::size_t>(row)];
    };
    const auto first = std::find_if(shown.begin(), shown.end(), isAccepted);
    if (!current.isValid() || first == shown.end())
        return {};
    const auto above = std::find_if(shown.rend() - current.row() - 1, shown.rend(), isAccepted);
    return sourceModel()->index(above == shown.rend() ? *first : *above, current.column());
}

void ConnectionFilterModel::RememberOrder(const std::vector<int>& shown)
{
    m_positions.resize(shown.size());
    int position = 0;
    for (const int row : shown)
        m_positions[static_cast<std::size_t>(row)] = sortOrder() == Qt::AscendingOrder ? position++ : position--;
}

void ConnectionFilterModel::ForgetOrder()
{
    m_positions = {};
}

bool ConnectionFilterModel::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    const bool isFiltering = !m_accepted.empty();
    const std::vector<int>& places = isFiltering && !m_positions.empty() ? m_positions : m_ranks;
    if (places.empty())
        return QSortFilterProxyModel::lessThan(left, right);
    return places[static_cast<std::size_t>(left.row())] < places[static_cast<std::size_t>(right.row())];
}

void ConnectionFilterModel::BeginLoading()
{
    m_isLoading = true;
    invalidateRowsFilter();
}

void ConnectionFilterModel::EndLoading(std::vector<int> ranks)
{
    m_isLoading = false;
    if (ranks.size() == static_cast<std::size_t>(sourceModel()->rowCount()))
        m_ranks = std::move(ranks);
    invalidateRowsFilter();
    m_ranks = {};
}

bool ConnectionFilterModel::MatchesRow(int sourceRow, const QModelIndex& sourceParent) const
{
    if (m_matcher.MatchesEverything())
        return true;
    const auto matches = [&](int column) {
        return m_matcher.Matches(sourceModel()->index(sourceRow, column, sourceParent).data(filterRole()).toString());
    };
    const int columns = sourceModel()->columnCount(sourceParent);
    if (filterKeyColumn() >= 0)
        return filterKeyColumn() >= columns || matches(filterKeyColumn());
    // No column selected: search all.
    for (int column = 0; column < columns; ++column)
        if (matches(column))
            return true;
    return false;
}

bool ConnectionFilterModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    if (m_isLoading)
        return false;
    if (static_cast<std::size_t>(sourceRow) < m_accepted.size())
        return m_accepted[static_cast<std::size_t>(sourceRow)];
    if (filterRegularExpression() != m_matcher.Expression())
        m_matcher = TextMatcher(filterRegularExpression());
    return MatchesRow(sourceRow, sourceParent);
}
