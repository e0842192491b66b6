// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QtGlobal>

/// The TCP port of this machine on which the dialog waits for calls of the starter. A header alone, because the starter
/// does not link the platform library.
inline constexpr quint16 kStarterPort = 8451;
