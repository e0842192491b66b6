// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/commands/messageboxautoresponder.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <utility>

namespace {

void Answer(QMessageBox* box)
{
    QAbstractButton* button = box->defaultButton();
    if (!button && !box->buttons().isEmpty())
        button = box->buttons().constFirst();
    if (button)
        button->click();
    else
        box->accept();
}

} // namespace

MessageBoxAutoResponder::MessageBoxAutoResponder(QString boxName, QObject* parent)
    : QObject(parent)
    , m_boxName(std::move(boxName))
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool MessageBoxAutoResponder::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show && watched->objectName() == m_boxName) {
        if (auto* box = qobject_cast<QMessageBox*>(watched)) {
            emit BoxOpened(box->windowTitle(), box->text());
            // Queued: the box is still being shown, and its event loop does not run yet.
            QTimer::singleShot(0, box, [box] { Answer(box); });
        }
    }
    return QObject::eventFilter(watched, event);
}
