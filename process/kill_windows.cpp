// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/kill.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEvent>
#include <QProcess>
#include <QThread>
#include <QWinEventNotifier>

// Not with waitForFinished(): it destroys the notifier of the end. Under Wine, the notification may still come, and
// then crashes the program.
void KillAndWait(QProcess& process)
{
    constexpr int kTimeoutMs = 30'000;
    // QProcess creates it at the start, and destroys it at the end.
    auto* const notifier = process.findChild<QWinEventNotifier*>(QString(), Qt::FindDirectChildrenOnly);
    process.kill();
    const QDeadlineTimer deadline(kTimeoutMs);
    while (process.state() != QProcess::NotRunning && notifier && !deadline.hasExpired()) {
        QThread::msleep(1);
        QCoreApplication::sendPostedEvents(notifier, QEvent::WinEventAct);
    }
}
