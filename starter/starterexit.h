#pragma once

/// How the starter ends; part of its command line's contract (see `--help`).
enum class StarterExit : int {
    Called = 0,     ///< a dialog has taken the call, be it one that was running or one that was started
    Usage = 1,      ///< the command line is wrong, or what it asks for cannot be printed
    NotStarted = 2, ///< the host cannot be started
    HostEnded = 3,  ///< the host was started and ended before its link answered, also for another one without a link
    NoAnswer = 4,   ///< the host was started, or another starter is starting one, but its link did not answer in time
    Foreign = 5,    ///< something has the port that does not behave as a dialog's link does
    NotRunning = 6, ///< nobody answers, and nothing was to be started
};
