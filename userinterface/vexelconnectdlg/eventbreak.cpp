// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/eventbreak.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QMetaObject>
#include <QThread>

bool EventBreak::IsDue() const
{
    constexpr qint64 kUnnoticedMs = 20;
    return m_clock.hasExpired(kUnnoticedMs);
}

bool EventBreak::Take()
{
    const bool canEnd = QThread::currentThread()->loopLevel() > 0;
    // On Windows, and on Unix without GLib, an event loop that a posted event ends handles only posted events.
    QCoreApplication::processEvents();
    // Unlike processEvents(), an event loop tells whether the program ends.
    QEventLoop loop;
    bool isEnding = true;
    QMetaObject::invokeMethod(
        &loop,
        [&] {
            isEnding = !loop.isRunning(); // somebody else has ended it
            loop.quit();
        },
        Qt::QueuedConnection);
    loop.exec();
    m_clock.start();
    return !canEnd || !isEnding;
}
