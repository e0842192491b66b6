#pragma once

#include <QThread>

/// How one attempt on a file went.
enum class Attempt {
    Done,
    Busy,  ///< refused in a way that may pass
    Failed ///< refused for good
};

/// Attempts until it is done or has failed for good, ten times at most. A virus scanner or a reader that holds the file
/// is gone after moments, and where it is not, nobody should wait for longer than the second that this takes.
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
