// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// An application for the long run: exits after a while with success or an error, crashes, or runs until it is killed.
// Its process id determines which. Without Qt, since it is started some hundred thousand times.

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <random>
#include <thread>

#include <unistd.h>

int main()
{
    std::minstd_rand random(static_cast<unsigned>(getpid()));
    random.discard(10);
    const auto until = [&random](int most) {
        return static_cast<int>(random() % static_cast<unsigned>(most));
    };

    // One in ten ignores requests to end.
    if (until(10) == 0)
        std::signal(SIGTERM, SIG_IGN);
    std::this_thread::sleep_for(std::chrono::milliseconds(until(3000)));
    switch (until(4)) {
    case 0:
        std::abort();
    case 1:
        return 1 + until(100);
    case 2:
        for (;;)
            pause();
    default:
        return 0;
    }
}
