#pragma once

class QComboBox;

/// Hides item `row` of `comboBox`, or shows it again. A hidden item cannot be picked: not from the open list, nor with
/// arrow keys, wheel or typed letters. It can still be the current one. For boxes with the toolkit's own list and
/// items.
void SetItemHidden(QComboBox* comboBox, int row, bool hidden);
