#pragma once

#include <QList>

class QItemSelectionModel;

/// The rows that are selected as a whole: those of `QItemSelectionModel::selectedRows`, in no particular order, in a
/// time that grows with their number. The toolkit's own looks through all ranges for each row.
QList<int> SelectedRows(const QItemSelectionModel& selection);
