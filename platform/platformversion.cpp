#include "platform/platformversion.h"

QString PlatformVersion()
{
    return QStringLiteral(VEXEL_VERSION);
}
