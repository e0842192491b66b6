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
