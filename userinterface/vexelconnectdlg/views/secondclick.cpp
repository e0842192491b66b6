// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/views/secondclick.h"

#include <QAbstractItemView>
#include <QMouseEvent>

#include <utility>

SecondClick::SecondClick(QAbstractItemView* view, int column)
    : QObject(view)
    , m_pView(view)
    , m_iColumn(column)
{
    view->viewport()->installEventFilter(this);
}

bool SecondClick::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::MouseButtonDblClick &&
        event->type() != QEvent::MouseButtonRelease)
        return QObject::eventFilter(watched, event);
    const auto* const mouse = static_cast<QMouseEvent*>(event);
    const QModelIndex index = m_pView->indexAt(mouse->position().toPoint());
    const QModelIndex second = std::exchange(m_second, QPersistentModelIndex());
    if (event->type() == QEvent::MouseButtonRelease) {
        if (mouse->button() == Qt::LeftButton && index.isValid() && index.column() == m_iColumn && index == second)
            emit m_pView->clicked(index);
    } else if (event->type() == QEvent::MouseButtonPress || m_first != index) {
        // A second press on another cell, or one whose first was elsewhere, is a first one for the view.
        m_first = index;
    } else {
        m_second = index;
    }
    return QObject::eventFilter(watched, event);
}
