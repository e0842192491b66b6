// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/crashdump.h"

void CrashDumps::Install(const QString& /*configDirectory*/)
{
}

QFileInfoList CrashDumps::Stored(const QString& /*configDirectory*/)
{
    return {};
}
