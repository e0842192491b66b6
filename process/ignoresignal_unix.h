#pragma once

#include <csignal>

/// Installs a no-op handler for `signal`, so that the interrupted call fails instead of the process dying. Unlike
/// SIG_IGN, children do not inherit it. A handler that is already set is kept.
inline void IgnoreSignal(int signal)
{
    struct sigaction present = {};
    if (::sigaction(signal, nullptr, &present) != 0 || present.sa_handler != SIG_DFL)
        return;
    struct sigaction action = {};
    action.sa_handler = [](int) {
    }; // not SIG_IGN, see above
    action.sa_flags = SA_RESTART;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(signal, &action, nullptr);
}
