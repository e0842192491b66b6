// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QList>
#include <QObject>

class QTimer;
class QTreeView;
class SizingDelegate;

/// Makes the columns of views as wide and their rows as high as the visible rows need, when rows come into view.
///
/// By default a view measures up to a thousand rows after every change and none when it is scrolled. This measures the
/// visible rows once per burst of changes or scroll steps. Changes of the tick alone are skipped, because they change
/// no size. All views have the same row height, the largest one measured since the list was empty; a height that also
/// shrank could hide the row that made it grow, and grow again. Columns become narrower only after a change of the
/// list.
class ViewSizing : public QObject
{
public:
    /// The views have uniform row heights, header sections in mode ResizeToContents, the same model and scroll
    /// position, and `delegate`, which also becomes the parent.
    ViewSizing(QList<QTreeView*> views, SizingDelegate* delegate);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void MeasureLater();
    void Measure();
    void AlignRows();

    const QList<QTreeView*> m_views;
    SizingDelegate* const m_delegate;
    QTimer* const m_timer;
    bool m_listChanged = false;
};
