// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "starter/linksocket.h"

#include <algorithm>

#include <winsock2.h>

// The system refuses a connection if the queue is full or nobody listens, after some seconds of its own attempts.
std::chrono::milliseconds ConnectTime()
{
    return std::chrono::hours(1);
}

bool SendLine(qintptr handle, const QByteArray& line)
{
    // The line fits into the buffer of a new connection.
    return send(static_cast<SOCKET>(handle), line.constData(), static_cast<int>(line.size()), 0) != SOCKET_ERROR;
}

void ShutdownSending(qintptr handle)
{
    (void)shutdown(static_cast<SOCKET>(handle), SD_SEND);
}

// The read is started before waiting: not every system reports a reset twice, so polling first and then reading could
// take a reset for a close.
PeerEvent WaitForPeer(qintptr handle, QDeadlineTimer deadline)
{
    const auto socket = static_cast<SOCKET>(handle);
    char received = 0;
    WSABUF buffer{1, &received};
    WSAOVERLAPPED reading{};
    reading.hEvent = WSACreateEvent();
    DWORD count = 0;
    DWORD flags = 0;
    PeerEvent event = PeerEvent::Reset;
    if (WSARecv(socket, &buffer, 1, nullptr, &flags, &reading, nullptr) == 0 || WSAGetLastError() == WSA_IO_PENDING) {
        constexpr qint64 kHourMs = 3'600'000;
        do {
            const qint64 left = deadline.isForever() ? kHourMs : std::min(deadline.remainingTime(), kHourMs);
            if (WaitForSingleObject(reading.hEvent, static_cast<DWORD>(left)) != WAIT_TIMEOUT)
                break;
        } while (!deadline.hasExpired());
        // Does nothing if the read has finished, even at this very moment.
        CancelIoEx(reinterpret_cast<HANDLE>(socket), &reading); // NOLINT(performance-no-int-to-ptr)
        // The event may be signalled just before the result is set, which would look like a close.
        while (!HasOverlappedIoCompleted(&reading))
            Sleep(1);
        if (WSAGetOverlappedResult(socket, &reading, &count, TRUE, &flags))
            event = count > 0 ? PeerEvent::SentData : PeerEvent::Closed;
        else if (WSAGetLastError() == WSA_OPERATION_ABORTED)
            event = PeerEvent::None;
    }
    WSACloseEvent(reading.hEvent);
    return event;
}
