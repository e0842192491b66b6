#pragma once

#include <csignal>

/// From then on `signal` does nothing to this process, and the call that it would come from fails. Where somebody has
/// arranged for it already, that stays. What this process starts is as it would have been.
inline void IgnoreSignal(int signal)
{
    struct sigaction present = {};
    if (::sigaction(signal, nullptr, &present) != 0 || present.sa_handler != SIG_DFL)
        return;
    struct sigaction action = {};
    action.sa_handler = [](int) {
    }; // not SIG_IGN, which children inherit
    action.sa_flags = SA_RESTART;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(signal, &action, nullptr);
}
