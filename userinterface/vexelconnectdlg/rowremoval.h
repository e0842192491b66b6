#pragma once

#include <QModelIndexList>

class QAbstractItemModel;

/// Removes rows in a time that grows with the number of rows, however many are picked: neighbours go in one step, and
/// from the end on, so that the rows still to go keep their numbers.
///
/// @param rows any number of indexes of `model`, in any order; a row counts once.
void RemoveRows(QAbstractItemModel& model, const QModelIndexList& rows);
