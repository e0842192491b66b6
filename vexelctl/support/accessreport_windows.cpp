// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/support/accessreport.h"

void ReportAccess(SupportReport& /*report*/, const QString& /*directory*/, const QString& /*traceFile*/)
{
}
