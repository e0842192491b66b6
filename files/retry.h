// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QThread>

/// The result of one attempt on a file.
enum class Attempt {
    Done,
    Busy,  ///< may succeed if repeated
    Failed ///< permanent
};

/// Repeats `attempt` while it returns `Busy`, at most ten times within about one second. Returns whether it succeeded.
/// A virus scanner or a reader usually releases a file within moments; nobody should have to wait longer.
template <typename Try>
bool Retry(Try attempt)
{
    constexpr int kAttempts = 10;
    unsigned long pauseMs = 10;
    for (int i = 1;; ++i) {
        const Attempt outcome = attempt();
        if (outcome != Attempt::Busy || i == kAttempts)
            return outcome == Attempt::Done;
        QThread::msleep(pauseMs);
        pauseMs += pauseMs / 2;
    }
}
