// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/interfaces.h"

#include <QtGlobal>

#include <algorithm>
#include <chrono>

/// Limits what a server reports by `OnRead`: a token bucket that all its peers share.
///
/// The receiver may keep what each report makes it allocate, so a report costs its bytes and the memory that an
/// allocation of any size takes besides. In any period of t seconds, the reports cost at most `kReadBurst` +
/// t * `kReadBytesPerSecond` bytes: 355 MB in the first day.
class ReadBudget
{
public:
    using Clock = std::chrono::steady_clock;

    /// The most bytes, besides those asked for, that an allocation takes.
    static constexpr qint64 kReportCost = 32;

    /// Returns whether `bytes` may be reported at the time `now`, and counts them if so. `now` must not go back.
    bool Take(qint64 bytes, Clock::time_point now)
    {
        const Clock::time_point fullAgain = std::max(m_fullAgain, now) + Earning(bytes + kReportCost);
        if (fullAgain - now > Earning(CInterfaceCreator::kReadBurst))
            return false;
        m_fullAgain = fullAgain;
        return true;
    }

private:
    /// The time after which `bytes` more may be reported.
    static constexpr Clock::duration Earning(qint64 bytes)
    {
        using PerByte = std::chrono::duration<qint64, std::ratio<1, CInterfaceCreator::kReadBytesPerSecond>>;
        return std::chrono::ceil<Clock::duration>(PerByte(bytes));
    }

    Clock::time_point m_fullAgain = Clock::time_point::min(); // when the whole burst is available again
};
