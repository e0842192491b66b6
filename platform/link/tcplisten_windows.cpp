// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/link/tcplisten.h"

#include <QTcpServer>

#include <cstring>

#include <winsock2.h>
#include <ws2tcpip.h>

namespace {

void StartSockets()
{
    // Never cleaned up. Winsock counts calls, so Qt is not affected.
    static const int started = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(2, 2), &data);
    }();
    Q_UNUSED(started);
}

/// Writes a socket address to `storage` and returns its length.
int ToSystem(const QHostAddress& address, quint16 port, sockaddr_storage* storage)
{
    std::memset(storage, 0, sizeof *storage);
    if (address.protocol() == QAbstractSocket::IPv6Protocol) {
        auto* const six = reinterpret_cast<sockaddr_in6*>(storage);
        const Q_IPV6ADDR bytes = address.toIPv6Address();
        six->sin6_family = AF_INET6;
        six->sin6_port = htons(port);
        std::memcpy(&six->sin6_addr, &bytes, sizeof bytes);
        return sizeof *six;
    }
    auto* const four = reinterpret_cast<sockaddr_in*>(storage);
    four->sin_family = AF_INET;
    four->sin_port = htons(port);
    four->sin_addr.s_addr = htonl(address.toIPv4Address());
    return sizeof *four;
}

ListenResult Failed(SOCKET socket, QString* error)
{
    const int code = WSAGetLastError();
    *error = qt_error_string(code);
    if (socket != INVALID_SOCKET)
        closesocket(socket);
    // WSAEACCES: the other program listens with SO_EXCLUSIVEADDRUSE, too.
    return code == WSAEADDRINUSE || code == WSAEACCES ? ListenResult::PortTaken : ListenResult::Failed;
}

} // namespace

// Not QTcpServer::listen(): it leaves the port open to other programs that bind it with SO_REUSEADDR, which would then
// receive connections meant for this one.
ListenResult ListenExclusively(QTcpServer& server, const QHostAddress& address, quint16 port, QString* error)
{
    StartSockets();
    sockaddr_storage storage;
    const int length = ToSystem(address, port, &storage);
    const SOCKET socket = WSASocketW(storage.ss_family, SOCK_STREAM, IPPROTO_TCP, nullptr, 0,
                                     WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT);
    const BOOL yes = TRUE;
    if (socket == INVALID_SOCKET ||
        setsockopt(socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, reinterpret_cast<const char*>(&yes), sizeof yes) != 0 ||
        bind(socket, reinterpret_cast<const sockaddr*>(&storage), length) != 0 ||
        listen(socket, server.listenBacklogSize()) != 0)
        return Failed(socket, error);
    if (!server.setSocketDescriptor(static_cast<qintptr>(socket))) {
        *error = server.errorString();
        closesocket(socket);
        return ListenResult::Failed;
    }
    return ListenResult::Ok;
}

// Accepted sockets do not inherit this setting from the listening socket, and Qt does not set it.
void DisableInheritance(qintptr handle)
{
    SetHandleInformation(reinterpret_cast<HANDLE>(handle), HANDLE_FLAG_INHERIT, 0);
}
