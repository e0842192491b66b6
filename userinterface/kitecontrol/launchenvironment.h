// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

/// The environment variables that control the sample application.
struct LaunchEnvironment
{
    /// VEXEL_CONFIG_DIR: directory of the product configuration, set by the host and inherited; empty if not set.
    QString configuration;
    /// KITECONTROL_SECONDS: time after which the application quits. If not set, it runs until its window is closed.
    std::optional<std::chrono::milliseconds> lifetime;
    /// KITECONTROL_REPORT_DIR: directory to which the report is also written as a file; empty for none.
    QString reportDirectory;
    /// Messages about invalid values, which are ignored.
    QStringList warnings;

    static LaunchEnvironment From(const QProcessEnvironment& environment);
};
