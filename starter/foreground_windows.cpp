#include "starter/foreground.h"

#include <qt_windows.h>

void HandOverForeground()
{
    // To any process: whose the link is shows only when it has answered. Without the right to hand on it fails, and the
    // dialog's button in the task bar flashes instead.
    AllowSetForegroundWindow(ASFW_ANY);
}
