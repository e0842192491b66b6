#include "platform/filesizelimit.h"

// There is no such limit.
void EndureFileSizeLimit()
{
}
