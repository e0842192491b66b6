// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/platformversion.h"

QString PlatformVersion()
{
    return QStringLiteral(VEXEL_VERSION);
}
