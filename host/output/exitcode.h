#pragma once

/// The host's exit codes, documented in `--help`.
enum class ExitCode : int {
    Done = 0,         ///< everything was done
    Usage = 1,        ///< invalid command line, no such version, or an output file or standard output cannot be written
    Unusable = 2,     ///< the plug-in, the configuration or an input file cannot be used, or there is no display
    NotConnected = 3, ///< an entry could not be connected
    Running = 4,      ///< another host uses the same configuration directory
};
