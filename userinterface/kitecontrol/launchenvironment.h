#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

/// What the environment asks of a started application.
struct LaunchEnvironment
{
    /// VEXEL_CONFIG_DIR: the product configuration's directory, set by the host and inherited. Empty: none is known.
    QString configuration;
    /// KITECONTROL_SECONDS: the time after which the application ends by itself. Without it: when its window is closed.
    std::optional<std::chrono::milliseconds> lifetime;
    /// KITECONTROL_REPORT_DIR: the folder that gets the report as a file too. Empty: no file.
    QString reportDirectory;
    /// What could not be understood, for the operator; it is ignored.
    QStringList complaints;

    static LaunchEnvironment From(const QProcessEnvironment& environment);
};
