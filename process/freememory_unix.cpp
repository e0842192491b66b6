// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/freememory.h"

#include <malloc.h>

void ReturnFreeMemory()
{
    malloc_trim(0);
}
