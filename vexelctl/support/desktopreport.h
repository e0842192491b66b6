// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

class SupportReport;

/// Adds a section on the desktop as the installed host finds it: widget style, and the screens with their scales. The
/// host is started to tell it, because a toolkit that finds no usable display ends its process.
void ReportDesktop(SupportReport& report);
