// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/foreground.h"

void AllowForegroundActivation(qint64 /*process*/)
{
}

void AllowForegroundActivation()
{
}
