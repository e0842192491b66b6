#pragma once

#include <QList>

class QItemSelectionModel;

/// The rows that are selected as a whole: those of `QItemSelectionModel::selectedRows`, from the first to the last,
/// in a time that grows with the number of rows. The toolkit's own looks through all ranges for each row.
QList<int> SelectedRows(const QItemSelectionModel& selection);
