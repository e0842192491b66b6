#pragma once

#include "host/options/hostoptions.h"

/// Returns why there is no default for the configuration directory; empty if there is one or `options` name another.
QString ConfigDirectoryError(const HostOptions& options);

/// Returns `options` with defaults for the plug-in and the configuration directory, which stays empty if there is none.
/// Needs the application object with its names set.
HostOptions WithDefaults(HostOptions options);
