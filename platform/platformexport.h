// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QtGlobal>

/// Marks the symbols that the shared library `vexelplatform` exports.
#if defined(VEXELPLATFORM_LIBRARY)
#define VEXELPLATFORM_EXPORT Q_DECL_EXPORT
#else
#define VEXELPLATFORM_EXPORT Q_DECL_IMPORT
#endif
