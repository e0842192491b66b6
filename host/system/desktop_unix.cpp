// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/desktop.h"

#include <QtGlobal>

bool HasDesktop()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

void SetUpOffscreenFonts()
{
}

void ChooseOffscreenFont()
{
}
