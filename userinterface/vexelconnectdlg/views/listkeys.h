// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QList>
#include <QObject>

class QTreeView;

/// Makes views without edit triggers usable by keyboard: Space ticks the current entry, F2 edits the current cell, and
/// Left and Right move the current cell.
///
/// The views show different columns of the same rows side by side, and share one selection model. By default Space
/// selects, F2 does nothing, and Left and Right only scroll, because the views select whole rows. Keys with modifiers
/// and keys for an open editor are left alone.
///
/// - Space acts as a click on the tick of the current row, whatever column is current and also in a view without the
///   column of the ticks.
/// - F2 edits the first editable cell that the view shows if the current cell is the tick, or is not in this view.
/// - Left and Right move past cells that are disabled or hidden, and from one view into the next one.
class ListKeys : public QObject
{
    Q_OBJECT

public:
    /// @param views the views from left to right; not owned.
    ListKeys(QList<QTreeView*> views, int tickColumn, QObject* parent);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Edit(QTreeView* view) const;
    void MoveCurrent(QTreeView* view, int step) const;

    const QList<QTreeView*> m_views;
    const int m_iTickColumn;
};
