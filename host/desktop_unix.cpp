#include "host/desktop.h"

#include <QtGlobal>

bool HasDesktop()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

void ProvideLettersOffScreen()
{
}

void ChooseLettersOffScreen()
{
}
