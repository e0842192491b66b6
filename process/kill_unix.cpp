// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/kill.h"

#include <QProcess>

void KillAndWait(QProcess& process)
{
    constexpr int kTimeoutMs = 30'000;
    process.kill();
    process.waitForFinished(kTimeoutMs);
}
