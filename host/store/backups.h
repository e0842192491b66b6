#pragma once

#include "host/options/hostoptions.h"
#include "host/output/exitcode.h"

/// The versions of the document that holds the list of entries, looked at and brought back without the plug-in. What is
/// found or done is printed, what fails is complained of.
namespace Backups {

/// Prints the present state and the versions, newest first; as JSON where `options` says so. Writes nothing into the
/// configuration.
ExitCode Print(const HostOptions& options);

/// Brings back the version that `options` names, unless a host works on the configuration directory.
ExitCode Restore(const HostOptions& options);

} // namespace Backups
