// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/platformexport.h"

#include <QString>

/// Returns the version of the loaded platform library, which can differ from the version the caller was built with.
VEXELPLATFORM_EXPORT QString PlatformVersion();
