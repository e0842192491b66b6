#include "host/desktop.h"

bool HasDesktop()
{
    return true;
}
