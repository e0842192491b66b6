#include "host/support/linkport.h"

QAbstractSocket::BindMode ProbeMode()
{
    // Anything less would share the port with its owner.
    return QAbstractSocket::DontShareAddress;
}
