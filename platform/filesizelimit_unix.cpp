#include "platform/filesizelimit.h"

#include <csignal>

extern "C" {
// Not SIG_IGN, which children inherit.
static void OnFileTooLarge(int)
{
}
}

void EndureFileSizeLimit()
{
    struct sigaction present = {};
    if (::sigaction(SIGXFSZ, nullptr, &present) != 0 || present.sa_handler != SIG_DFL)
        return;
    struct sigaction action = {};
    action.sa_handler = OnFileTooLarge;
    action.sa_flags = SA_RESTART;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(SIGXFSZ, &action, nullptr);
}
