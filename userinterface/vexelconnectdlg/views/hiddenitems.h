// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

class QComboBox;

/// Hides or shows item `row` of `comboBox`. A hidden item cannot be selected from the popup, by arrow keys, wheel or
/// typing, but can still be the current item. Only for combo boxes with Qt's default view and model.
void SetItemHidden(QComboBox* comboBox, int row, bool hidden);
