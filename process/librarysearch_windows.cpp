// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/librarysearch.h"

#include <windows.h>

void RestrictLibrarySearch()
{
    // Not SetDllDirectory: child processes would inherit it.
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
}
