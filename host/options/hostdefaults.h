#pragma once

#include "host/options/hostoptions.h"

/// `options` with the plug-in and the configuration directory that the host takes when it is given none. Needs the
/// application object and its names.
HostOptions WithDefaults(HostOptions options);
