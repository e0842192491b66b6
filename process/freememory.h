// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

/// Returns freed memory to the system, for use after work that needed much of it for a short time. The C library would
/// keep most of it. Takes about a millisecond. Does nothing on Windows.
void ReturnFreeMemory();
