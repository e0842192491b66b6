#include "userinterface/vexelconnectdlg/filedrop.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QDropEvent>
#include <QMimeData>

FileDropForwarder::FileDropForwarder(QWidget* window)
    : QObject(window)
    , m_pWindow(window)
{
}

void FileDropForwarder::Watch(QAbstractItemView* view)
{
    view->viewport()->installEventFilter(this);
}

bool FileDropForwarder::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        if (static_cast<QDropEvent*>(event)->mimeData()->hasFormat(QStringLiteral("text/uri-list"))) {
            QCoreApplication::sendEvent(m_pWindow, event);
            return true;
        }
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}
