// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/views/synchronizedscrolling.h"

#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QScrollBar>
#include <QTreeView>

SynchronizedScrolling::SynchronizedScrolling(QTreeView* left, QTreeView* right)
    : QObject(left)
    , m_pLeft(left)
    , m_pRight(right)
{
    SynchronizeVerticalBars();
    // Queued, because a view emits the signal during its layout.
    for (const QTreeView* view : {left, right})
        connect(view->horizontalScrollBar(), &QScrollBar::rangeChanged, this,
                &SynchronizedScrolling::UpdateHorizontalBars, Qt::QueuedConnection);
}

void SynchronizedScrolling::SynchronizeVerticalBars()
{
    QScrollBar* const left = m_pLeft->verticalScrollBar();
    QScrollBar* const right = m_pRight->verticalScrollBar();
    connect(left, &QScrollBar::valueChanged, right, &QScrollBar::setValue);
    connect(right, &QScrollBar::valueChanged, left, &QScrollBar::setValue);
    // A hidden view keeps its size. With its own, smaller range it would scroll the left view back.
    for (const QScrollBar* bar : {left, right}) {
        connect(
            bar, &QScrollBar::rangeChanged, this,
            [this, left, right] {
                if (m_pRight->isHidden())
                    right->setRange(left->minimum(), left->maximum());
            });
    }
}

void SynchronizedScrolling::UpdateHorizontalBars()
{
    // A scroll bar in only one view would make its viewport lower than the other's, with a different scroll range.
    const auto needsBar = [](const QTreeView* view) {
        const QScrollBar* const bar = view->horizontalScrollBar();
        return !view->isHidden() && bar->maximum() > bar->minimum();
    };
    const auto policy = needsBar(m_pLeft) || needsBar(m_pRight) ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAsNeeded;
    const bool appears = policy == Qt::ScrollBarAlwaysOn && m_pLeft->horizontalScrollBarPolicy() != policy;
    m_pLeft->setHorizontalScrollBarPolicy(policy);
    m_pRight->setHorizontalScrollBarPolicy(policy);
    if (appears)
        ScrollOutFromUnderBar();
}

/// Scrolls by the height of the horizontal scroll bar if it just covered the end of the list or the current entry.
void SynchronizedScrolling::ScrollOutFromUnderBar()
{
    QScrollBar* const bar = m_pLeft->verticalScrollBar();
    // One more, because a view that scrolls to a row leaves out a pixel.
    const int covered = m_pLeft->horizontalScrollBar()->height() + 1;
    const bool atEnd = bar->value() > 0 && bar->maximum() - bar->value() <= covered;
    const QModelIndex current = m_pLeft->currentIndex().siblingAtColumn(ConnectionsModel::ColumnName);
    const int below = m_pLeft->visualRect(current).bottom() - m_pLeft->viewport()->height();
    if (atEnd || (below >= 0 && below < covered))
        bar->setValue(bar->value() + covered);
}
