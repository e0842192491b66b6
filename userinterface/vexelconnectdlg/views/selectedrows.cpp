// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/views/selectedrows.h"

#include <QItemSelectionModel>

#include <cstddef>
#include <vector>

namespace {

/// Returns whether the row can be selected. All cells of an entry in use are disabled.
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
    std::vector<bool> wholeRows(rows, false);
    std::vector<bool> partialRows(rows, false);
    const QItemSelection ranges = selection.selection();
    for (const QItemSelectionRange& range : ranges) {
        const bool coversAllColumns = range.left() == 0 && range.right() == columns - 1;
        for (int row = range.top(); row <= range.bottom(); ++row)
            if (!coversAllColumns)
                partialRows[static_cast<std::size_t>(row)] = true;
            else if (HasSelectableCell(model, row, columns))
                wholeRows[static_cast<std::size_t>(row)] = true;
    }
    QList<int> result;
    for (std::size_t i = 0; i < rows; ++i) {
        const int row = static_cast<int>(i);
        // Views that select rows create only full-width ranges; for others ask Qt.
        if (wholeRows[i] || (partialRows[i] && selection.isRowSelected(row, QModelIndex())))
            result.append(row);
    }
    return result;
}
