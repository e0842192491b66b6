// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

class SupportReport;

/// Adds a section on what crashes of the host have left: its minidumps in `configDirectory`, or, where the system keeps
/// core dumps, where these are.
void ReportCrashes(SupportReport& report, const QString& configDirectory);

/// Returns where Linux puts core dumps if /proc/sys/kernel/core_pattern contains `pattern`, for the user.
QString CoreDumpPlace(const QString& pattern);
