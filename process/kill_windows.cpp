// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/kill.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEvent>
#include <QProcess>
#include <QThread>
#include <QWinEventNotifier>

// Not with waitForFinished(): it destroys the receiver of the notification of the end. Under Wine, the notification may
// come all the same, and crash the program.
void KillAndWait(QProcess& process)
{
    constexpr int kTimeoutMs = 30'000;
    auto* const notifier = process.findChild<QWinEventNotifier*>();
    process.kill();
    const QDeadlineTimer deadline(kTimeoutMs);
    while (process.state() != QProcess::NotRunning && notifier && !deadline.hasExpired()) {
        QThread::msleep(1);
        QCoreApplication::sendPostedEvents(notifier, QEvent::WinEventAct);
    }
}
