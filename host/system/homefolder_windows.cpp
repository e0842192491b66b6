// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/homefolder.h"

QString PrepareHomeFolder()
{
    return {};
}
