#include "starter/foreground.h"

void AllowForegroundActivation()
{
}
