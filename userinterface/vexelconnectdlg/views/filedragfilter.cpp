// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/views/filedragfilter.h"

#include <QDragEnterEvent>
#include <QMimeData>

void FileDragFilter::Watch(QObject* receiver)
{
    receiver->installEventFilter(this);
}

bool FileDragFilter::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::DragEnter) {
        const auto* const drag = static_cast<QDragEnterEvent*>(event);
        if (drag->mimeData()->hasFormat(QStringLiteral("text/uri-list"))) {
            event->ignore();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}
