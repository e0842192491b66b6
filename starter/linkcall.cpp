// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "starter/linkcall.h"

#include "starter/linksocket.h"

#include <QHostAddress>
#include <QNetworkProxy>
#include <QTcpSocket>

#include <algorithm>
#include <limits>

namespace {

bool Connect(QTcpSocket& socket, const QHostAddress& address, quint16 port, QDeadlineTimer deadline)
{
    socket.abort();
    socket.connectToHost(address, port);
    const qint64 left = std::min<qint64>(deadline.remainingTime(), std::numeric_limits<int>::max());
    return socket.waitForConnected(static_cast<int>(left));
}

LinkAnswer Call(const QHostAddress& address, quint16 port, QDeadlineTimer deadline,
                std::chrono::milliseconds halfCloseDelay)
{
    QTcpSocket socket;
    socket.setProxy(QNetworkProxy::NoProxy);
    while (!Connect(socket, address, port, std::min(QDeadlineTimer(ConnectTime()), deadline))) {
        if (socket.error() != QAbstractSocket::SocketTimeoutError)
            return LinkAnswer::Refused;
        if (deadline.hasExpired())
            return LinkAnswer::TimedOut;
    }

    if (!SendLine(socket.socketDescriptor(), QByteArrayLiteral("kitestarter\n")))
        return LinkAnswer::Reset;
    PeerEvent event = WaitForPeer(socket.socketDescriptor(), std::min(QDeadlineTimer(halfCloseDelay), deadline));
    if (event == PeerEvent::None) {
        ShutdownSending(socket.socketDescriptor());
        event = WaitForPeer(socket.socketDescriptor(), deadline);
    }
    switch (event) {
    case PeerEvent::Closed:
        return LinkAnswer::Accepted;
    case PeerEvent::SentData:
        return LinkAnswer::OtherService;
    case PeerEvent::Reset:
        return LinkAnswer::Reset;
    case PeerEvent::None:
        break;
    }
    return LinkAnswer::TimedOut;
}

} // namespace

LinkAnswer CallLink(quint16 port, QDeadlineTimer deadline, std::chrono::milliseconds halfCloseDelay)
{
    const LinkAnswer result = Call(QHostAddress(QHostAddress::LocalHost), port, deadline, halfCloseDelay);
    if (result != LinkAnswer::Refused)
        return result;
    return Call(QHostAddress(QHostAddress::LocalHostIPv6), port, deadline, halfCloseDelay);
}
