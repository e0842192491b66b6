// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

class SupportReport;

/// Adds a table of what users other than this one and root can read, write or replace: the configuration in `directory`
/// with everything in it, the folders that it lies in, and the trace files of `traceFile` (empty: none). Run by root it
/// is about the owner of the configuration.
///
/// Platform-specific: adds nothing on Windows, where a profile's folders are private.
void ReportAccess(SupportReport& report, const QString& directory, const QString& traceFile);
