#include "starter/linkending.h"

#include <algorithm>

#include <winsock2.h>

void SendLine(qintptr handle, const QByteArray& line)
{
    // A line fits into the buffer of a fresh connection.
    (void)send(static_cast<SOCKET>(handle), line.constData(), static_cast<int>(line.size()), 0);
}

void EndSending(qintptr handle)
{
    (void)shutdown(static_cast<SOCKET>(handle), SD_SEND);
}

LinkEnding WaitForEnding(qintptr handle, QDeadlineTimer deadline)
{
    const auto socket = static_cast<SOCKET>(handle);
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
        char spoken = 0;
        const int count = recv(socket, &spoken, 1, 0);
        if (count > 0)
            return LinkEnding::Spoke;
        if (count == 0)
            return LinkEnding::Closed;
        if (WSAGetLastError() != WSAEWOULDBLOCK)
            return LinkEnding::CutOff;
    }
}
