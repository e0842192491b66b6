#include "userinterface/vexelconnectdlg/selectedrows.h"

#include <QItemSelectionModel>
#include <QSet>

namespace {

/// A row whose cells are all disabled, as of an entry in use, does not count as selected.
bool HasSelectableCell(const QAbstractItemModel& model, int row, int columns)
{
    for (int column = 0; column < columns; ++column) {
        const Qt::ItemFlags flags = model.index(row, column).flags();
        if (flags.testFlag(Qt::ItemIsSelectable) && flags.testFlag(Qt::ItemIsEnabled)) {
            return true;
        }
    }
    return false;
}

} // namespace

QList<int> SelectedRows(const QItemSelectionModel& selection)
{
    const QAbstractItemModel& model = *selection.model();
    const int columns = model.columnCount();
    QSet<int> whole;
    QSet<int> inPieces;
    const QItemSelection ranges = selection.selection();
    for (const QItemSelectionRange& range : ranges) {
        const bool wide = range.left() == 0 && range.right() == columns - 1;
        for (int row = range.top(); row <= range.bottom(); ++row) {
            if (!wide) {
                inPieces.insert(row);
            } else if (HasSelectableCell(model, row, columns)) {
                whole.insert(row);
            }
        }
    }
    // Views that select rows make no others; who selects cells by other means gets the toolkit's answer.
    for (const int row : std::as_const(inPieces)) {
        if (!whole.contains(row) && selection.isRowSelected(row, QModelIndex())) {
            whole.insert(row);
        }
    }
    return whole.values();
}
