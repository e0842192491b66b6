// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QWidget>

struct LaunchReport;

/// The window of the sample user-interface application. Shows its name, how it was started, and its legacy record.
class KiteControlWindow : public QWidget
{
    Q_OBJECT

public:
    explicit KiteControlWindow(const LaunchReport& report, QWidget* parent = nullptr);

private:
    void AddHeading(const LaunchReport& report);
    void AddRecord(const LaunchReport& report);
    void AddCandidates(const LaunchReport& report);
    void AddStart(const LaunchReport& report);
    void AddButtons();
};
