#pragma once

#include "platform/platformexport.h"

/// From then on, where a file must not grow any more by a limit that this process was started with, writing fails as on
/// a full disk, and whoever writes says so. By itself the system ends the process without a word. What this process
/// starts is as it would have been.
VEXELPLATFORM_EXPORT void EndureFileSizeLimit();
