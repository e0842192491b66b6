// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

/// Scope of a configuration. The values are part of the product's interface.
enum class View : int { User = 1, Application = 2, Shared = 4 };
