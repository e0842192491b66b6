#include "userinterface/vexelconnectdlg/secondclick.h"

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
    if (event->type() != QEvent::MouseButtonDblClick && event->type() != QEvent::MouseButtonRelease)
        return QObject::eventFilter(watched, event);
    const auto* const mouse = static_cast<QMouseEvent*>(event);
    const QModelIndex index = m_pView->indexAt(mouse->position().toPoint());
    if (mouse->button() == Qt::LeftButton && index.isValid() && index.column() == m_iColumn) {
        if (event->type() == QEvent::MouseButtonDblClick)
            m_pressed = index;
        else if (std::exchange(m_pressed, QPersistentModelIndex()) == index)
            emit m_pView->clicked(index);
    } else {
        m_pressed = QPersistentModelIndex();
    }
    return QObject::eventFilter(watched, event);
}
