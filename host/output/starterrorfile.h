// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

/// Environment variable by which a starter asks a host why its start fails. It names an existing file, and the host
/// writes its error there, as one line of UTF-8 without a line break.
inline constexpr const char* kStartErrorFileVariable = "VEXEL_START_ERROR_FILE";
