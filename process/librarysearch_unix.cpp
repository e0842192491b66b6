// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/librarysearch.h"

void RestrictLibrarySearch()
{
}
