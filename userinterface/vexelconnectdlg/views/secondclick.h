// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QObject>
#include <QPersistentModelIndex>

class QAbstractItemView;

/// Makes a view emit `clicked` for the second click of a double click, too, on one column.
///
/// By default a view emits `clicked` once for a double click. On a column where a click toggles a value, two quick
/// clicks would then toggle it only once.
class SecondClick : public QObject
{
    Q_OBJECT

public:
    /// @param view the view, which also becomes the parent.
    SecondClick(QAbstractItemView* view, int column);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QAbstractItemView* const m_pView;
    const int m_iColumn;
    QPersistentModelIndex m_first;  // pressed first, as the view knows it
    QPersistentModelIndex m_second; // pressed again, which the view does not count
};
