// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/kitecontrol/launchenvironment.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Parses a number of seconds, with a decimal point; returns nothing if `text` is not a valid time.
std::optional<std::chrono::milliseconds> ParseSeconds(const QString& text)
{
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(seconds) || seconds < 0)
        return std::nullopt;
    // Qt's timers count milliseconds in an int.
    constexpr double kMaximum = std::numeric_limits<int>::max();
    return std::chrono::milliseconds(std::llround(std::min(seconds * 1000, kMaximum)));
}

} // namespace

LaunchEnvironment LaunchEnvironment::From(const QProcessEnvironment& environment)
{
    LaunchEnvironment result;
    result.configuration = environment.value(QStringLiteral("VEXEL_CONFIG_DIR"));
    result.reportDirectory = environment.value(QStringLiteral("KITECONTROL_REPORT_DIR"));
    const QString seconds = environment.value(QStringLiteral("KITECONTROL_SECONDS"));
    if (!seconds.isEmpty()) {
        result.lifetime = ParseSeconds(seconds);
        if (!result.lifetime)
            result.warnings.append(QStringLiteral("KITECONTROL_SECONDS is not a number of seconds: ") + seconds);
    }
    return result;
}
