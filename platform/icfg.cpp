// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/icfg.h"

// Defined here so that this library alone holds the vtable and type information.
ICfg::~ICfg() = default;
