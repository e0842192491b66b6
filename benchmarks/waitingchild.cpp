// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// An application for the benchmark of "Connect": does nothing until it is killed.

#include <chrono>
#include <thread>

int main()
{
    std::this_thread::sleep_for(std::chrono::hours(1));
    return 0;
}
