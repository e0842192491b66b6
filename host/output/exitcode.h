#pragma once

/// How the host ends; part of its command line's contract (see `--help`).
enum class ExitCode : int {
    Done = 0,         ///< everything asked for was done
    Usage = 1,        ///< the command line is wrong, it names a version that does not exist, or what it asks for cannot
                      ///< be written to the file it names or to standard output
    Unusable = 2,     ///< the plug-in, the configuration or an input file cannot be used, or there is no display
    NotConnected = 3, ///< something asked for could not be connected
    Running = 4,      ///< another host works on the same configuration directory
};
