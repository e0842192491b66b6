#include "starter/linkending.h"

#include <algorithm>

#include <winsock2.h>

LinkEnding EndAndWait(qintptr handle, const QByteArray& line, QDeadlineTimer deadline)
{
    const auto socket = static_cast<SOCKET>(handle);
    // A line fits into the buffer of a fresh connection. If the other side has gone meanwhile, reading says how.
    (void)send(socket, line.constData(), static_cast<int>(line.size()), 0);
    (void)shutdown(socket, SD_SEND);

    for (;;) {
        fd_set waiting;
        FD_ZERO(&waiting);
        FD_SET(socket, &waiting);
        const auto left = static_cast<long>(std::clamp<qint64>(deadline.remainingTime(), 0, 3'600'000));
        timeval time{left / 1000, left % 1000 * 1000};
        const int ready = select(0, &waiting, nullptr, nullptr, &time);
        if (ready == 0 && deadline.hasExpired())
            return LinkEnding::None;
        if (ready == SOCKET_ERROR)
            return LinkEnding::CutOff;
        if (ready == 0)
            continue;
        char byte = 0;
        const int count = recv(socket, &byte, 1, 0);
        if (count > 0)
            return LinkEnding::Spoke;
        if (count == 0)
            return LinkEnding::Closed;
        if (WSAGetLastError() != WSAEWOULDBLOCK)
            return LinkEnding::CutOff;
    }
}
