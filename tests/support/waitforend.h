// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QProcess>
#include <QTest>

/// Waits until `process`, which was started, has ended; at most `timeoutMs`. Returns whether it has run and ended.
///
/// Unlike `QProcess::waitForFinished` it runs an event loop. Under Wine, an end that only that function notices may be
/// notified later, when the receiver is gone: the test crashes, or its next process seems to end at once.
inline bool WaitForEnd(const QProcess& process, int timeoutMs = 60'000)
{
    return QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; }, timeoutMs) &&
           process.error() != QProcess::FailedToStart;
}
