#include "platform/filesizelimit.h"

#include "platform/enduresignal_unix.h"

void EndureFileSizeLimit()
{
    EndureSignal(SIGXFSZ);
}
