#pragma once

#include "host/options/hostoptions.h"
#include "host/output/exitcode.h"

/// Lists and restores versions of the document that stores the entries, without the plug-in. Prints results and errors.
namespace Backups {

/// Prints the current state and the versions, newest first; as JSON if `options` says so. Does not write to the
/// configuration.
ExitCode Print(const HostOptions& options);

/// Restores the version given in `options`. Fails if a host uses the configuration directory.
ExitCode Restore(const HostOptions& options);

} // namespace Backups
