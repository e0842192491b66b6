// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "starter/linksocket.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <limits>

namespace {

int PollTime(const QDeadlineTimer& deadline)
{
    const qint64 left = deadline.remainingTime();
    return static_cast<int>(std::min<qint64>(left, std::numeric_limits<int>::max()));
}

} // namespace

// A connection is established at once, or the queue is full.
std::chrono::milliseconds ConnectTime()
{
    return std::chrono::milliseconds(100);
}

bool SendLine(qintptr handle, const QByteArray& line)
{
    // The line fits into the buffer of a new connection.
    return send(static_cast<int>(handle), line.constData(), static_cast<std::size_t>(line.size()), MSG_NOSIGNAL) >= 0;
}

void ShutdownSending(qintptr handle)
{
    (void)shutdown(static_cast<int>(handle), SHUT_WR);
}

PeerEvent WaitForPeer(qintptr handle, QDeadlineTimer deadline)
{
    const int socket = static_cast<int>(handle);
    for (;;) {
        pollfd waiting{socket, POLLIN, 0};
        const int ready = poll(&waiting, 1, PollTime(deadline));
        if (ready == 0)
            return PeerEvent::None;
        if (ready < 0) {
            if (errno == EINTR)
                continue;
            return PeerEvent::Reset;
        }
        char byte = 0;
        const ssize_t count = recv(socket, &byte, 1, MSG_DONTWAIT);
        if (count > 0)
            return PeerEvent::SentData;
        if (count == 0)
            return PeerEvent::Closed;
        if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)
            return PeerEvent::Reset;
    }
}
