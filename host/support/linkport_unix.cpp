#include "host/support/linkport.h"

QAbstractSocket::BindMode ProbeMode()
{
    // Two that bind so and do not listen can both have the port.
    return QAbstractSocket::DontShareAddress | QAbstractSocket::ReuseAddressHint;
}
