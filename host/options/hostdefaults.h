#pragma once

#include "host/options/hostoptions.h"

/// Returns `options` with defaults for the plug-in and the configuration directory. Needs the application object with
/// its names set.
HostOptions WithDefaults(HostOptions options);
