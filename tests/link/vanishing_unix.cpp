// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/link/vanishing.h"

#ifdef __linux__
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#endif

bool Vanish(QTcpSocket& socket)
{
#ifdef __linux__
    // A connection under repair is closed without telling anybody; it is how running programs are moved away.
    const int on = 1;
    if (setsockopt(static_cast<int>(socket.socketDescriptor()), IPPROTO_TCP, TCP_REPAIR, &on, sizeof on) != 0)
        return false;
    socket.abort();
    return true;
#else
    (void)socket;
    return false;
#endif
}
