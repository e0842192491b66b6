// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

/// Restricts the search for libraries on Windows to the program's folder and the system's. The current folder and the
/// PATH may contain planted libraries. Call this before anything is loaded. Does nothing on other systems, where
/// programs have a run path.
void RestrictLibrarySearch();
