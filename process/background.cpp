// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/background.h"

#include <QThreadPool>

void StartInBackground(std::function<void()> work)
{
    // Never destroyed, so that its threads do not end before the process.
    static auto* const pool = [] {
        auto* const created = new QThreadPool;
        created->setExpiryTimeout(-1);
        return created;
    }();
    pool->start(std::move(work));
}
