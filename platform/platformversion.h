#pragma once

#include "platform/platformexport.h"

#include <QString>

/// The version of the platform library that this process has loaded, which need not be the one it was built with.
VEXELPLATFORM_EXPORT QString PlatformVersion();
