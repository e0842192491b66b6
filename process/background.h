// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <functional>
#include <future>
#include <memory>
#include <utility>

/// Runs `work` in one of a few threads that live as long as the process.
///
/// Not `std::async`, whose threads end: with MinGW, a thread that has used `QRegularExpression` crashes at its end, and
/// Qt uses it in many places, such as writing XML.
void StartInBackground(std::function<void()> work);

/// Same, and returns its result. Destroying the future does not wait.
template <typename Work>
auto RunInBackground(Work work)
{
    using Result = decltype(work());
    const auto task = std::make_shared<std::packaged_task<Result()>>(std::move(work));
    std::future<Result> result = task->get_future();
    StartInBackground([task] { (*task)(); });
    return result;
}
