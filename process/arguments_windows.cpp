// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/arguments.h"

QString ArgumentsError(int /*argc*/, char** /*argv*/)
{
    // Qt reads the command line as wide characters.
    return {};
}
