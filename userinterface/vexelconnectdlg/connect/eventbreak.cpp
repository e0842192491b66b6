// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/connect/eventbreak.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QMetaObject>
#include <QThread>

#include <limits>

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
    constexpr int kIsOver = std::numeric_limits<int>::min();
    QMetaObject::invokeMethod(
        &loop,
        [&loop] {
            if (loop.isRunning()) // nobody else has ended it
                loop.exit(kIsOver);
        },
        Qt::QueuedConnection);
    const bool isEnding = loop.exec() != kIsOver; // also if somebody ended it later, in a nested loop
    m_clock.start();
    return !canEnd || !isEnding;
}
