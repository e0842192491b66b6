// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/foreground.h"

#include <windows.h>

// Without the right to pass on, this fails and the task bar button of the other program flashes instead.

void AllowForegroundActivation(qint64 process)
{
    AllowSetForegroundWindow(static_cast<DWORD>(process));
}

void AllowForegroundActivation()
{
    AllowSetForegroundWindow(ASFW_ANY);
}
