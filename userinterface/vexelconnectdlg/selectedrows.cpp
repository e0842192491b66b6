#include "userinterface/vexelconnectdlg/selectedrows.h"

#include <QItemSelectionModel>

#include <cstddef>
#include <vector>

namespace {

/// A row whose cells are all disabled, as of an entry in use, does not count as selected.
bool HasSelectableCell(const QAbstractItemModel& model, int row, int columns)
{
    for (int column = 0; column < columns; ++column) {
        const Qt::ItemFlags flags = model.index(row, column).flags();
        if (flags.testFlag(Qt::ItemIsSelectable) && flags.testFlag(Qt::ItemIsEnabled))
            return true;
    }
    return false;
}

} // namespace

QList<int> SelectedRows(const QItemSelectionModel& selection)
{
    const QAbstractItemModel& model = *selection.model();
    const int columns = model.columnCount();
    const auto rows = static_cast<std::size_t>(model.rowCount());
    std::vector<bool> whole(rows, false);
    std::vector<bool> inPieces(rows, false);
    const QItemSelection ranges = selection.selection();
    for (const QItemSelectionRange& range : ranges) {
        const bool wide = range.left() == 0 && range.right() == columns - 1;
        for (int row = range.top(); row <= range.bottom(); ++row)
            if (!wide)
                inPieces[static_cast<std::size_t>(row)] = true;
            else if (HasSelectableCell(model, row, columns))
                whole[static_cast<std::size_t>(row)] = true;
    }
    QList<int> result;
    for (std::size_t i = 0; i < rows; ++i) {
        const int row = static_cast<int>(i);
        // Views that select rows make no others; who selects cells by other means gets the toolkit's answer.
        if (whole[i] || (inPieces[i] && selection.isRowSelected(row, QModelIndex())))
            result.append(row);
    }
    return result;
}
