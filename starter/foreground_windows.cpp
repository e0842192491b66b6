#include "starter/foreground.h"

#include <qt_windows.h>

void AllowForegroundActivation()
{
    // Any process, because the link's owner is not known before it has answered. Without the right to pass on, this
    // fails and the dialog's task bar button flashes instead.
    AllowSetForegroundWindow(ASFW_ANY);
}
