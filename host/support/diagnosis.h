#pragma once

#include "host/options/hostoptions.h"
#include "host/output/exitcode.h"

/// Prints what a support desk asks first, as text or JSON: versions, paths, what the plug-in takes from the data
/// directory, the state of the configuration and of the starter's port.
///
/// Reports whatever it finds, also where nothing can be used, and always returns `Done`. Changes nothing, makes no
/// instance of the plug-in, needs no display, and works while a host runs.
ExitCode Diagnose(const HostOptions& given);
