#include "starter/linkending.h"

#include <algorithm>

#include <winsock2.h>

bool SendLine(qintptr handle, const QByteArray& line)
{
    // A line fits into the buffer of a fresh connection.
    return send(static_cast<SOCKET>(handle), line.constData(), static_cast<int>(line.size()), 0) != SOCKET_ERROR;
}

void EndSending(qintptr handle)
{
    (void)shutdown(static_cast<SOCKET>(handle), SD_SEND);
}

// Asked for beforehand: who looks at the connection and reads afterwards may find that it was closed where it broke
// off, since not every system tells that twice.
LinkEnding WaitForEnding(qintptr handle, QDeadlineTimer deadline)
{
    const auto socket = static_cast<SOCKET>(handle);
    char spoken = 0;
    WSABUF buffer{1, &spoken};
    WSAOVERLAPPED reading{};
    reading.hEvent = WSACreateEvent();
    DWORD count = 0;
    DWORD flags = 0;
    LinkEnding ending = LinkEnding::CutOff;
    if (WSARecv(socket, &buffer, 1, nullptr, &flags, &reading, nullptr) == 0 || WSAGetLastError() == WSA_IO_PENDING) {
        constexpr qint64 hourMs = 3'600'000;
        do {
            const qint64 left = deadline.isForever() ? hourMs : std::min(deadline.remainingTime(), hourMs);
            if (WaitForSingleObject(reading.hEvent, static_cast<DWORD>(left)) != WAIT_TIMEOUT)
                break;
        } while (!deadline.hasExpired());
        // Does nothing where it is done, also when that happens at this very moment.
        CancelIoEx(reinterpret_cast<HANDLE>(socket), &reading); // NOLINT(performance-no-int-to-ptr)
        // The event may come a moment before the outcome, which would then pass for an end without a byte.
        while (!HasOverlappedIoCompleted(&reading))
            Sleep(1);
        if (WSAGetOverlappedResult(socket, &reading, &count, TRUE, &flags))
            ending = count > 0 ? LinkEnding::Spoke : LinkEnding::Closed;
        else if (WSAGetLastError() == WSA_OPERATION_ABORTED)
            ending = LinkEnding::None;
    }
    WSACloseEvent(reading.hEvent);
    return ending;
}
