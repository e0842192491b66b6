// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QList>

class QItemSelectionModel;

/// Returns the rows of `QItemSelectionModel::selectedRows` in ascending order, in linear time. Qt's function searches
/// all ranges for each row.
QList<int> SelectedRows(const QItemSelectionModel& selection);
