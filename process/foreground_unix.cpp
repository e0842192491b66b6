#include "process/foreground.h"

void AllowForegroundActivation(qint64 /*process*/)
{
}

void AllowForegroundActivation()
{
}
