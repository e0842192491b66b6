// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QObject>

class QTreeView;

/// Makes two views, side by side, show the same rows at the same height: both scroll together, and either both have a
/// horizontal scroll bar or none. The right view may be hidden, and exists as long as the left one, which owns this.
class SynchronizedScrolling : public QObject
{
    Q_OBJECT

public:
    SynchronizedScrolling(QTreeView* left, QTreeView* right);

    /// Call when the right view has been shown or hidden.
    void UpdateHorizontalBars();

private:
    void SynchronizeVerticalBars();
    void ScrollOutFromUnderBar();

    QTreeView* const m_pLeft;
    QTreeView* const m_pRight;
};
