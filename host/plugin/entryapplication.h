// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

/// The application that serves an entry.
struct EntryApplication
{
    QString program;             ///< the file that was started
    qint64 process = 0;          ///< the number of its process
    QDateTime since;             ///< when it was started; local time
    std::optional<int> exitCode; ///< once it has ended without a crash
    std::optional<int> signal;   ///< once it has crashed, on Unix
    bool isCrash = false;
};
