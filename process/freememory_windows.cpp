// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/freememory.h"

// The system's heap returns large blocks by itself.
void ReturnFreeMemory()
{
}
