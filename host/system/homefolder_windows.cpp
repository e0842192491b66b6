#include "host/system/homefolder.h"

QString PrepareHomeFolder()
{
    return {};
}
