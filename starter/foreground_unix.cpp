#include "starter/foreground.h"

void HandOverForeground()
{
}
