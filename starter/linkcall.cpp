#include "starter/linkcall.h"

#include "starter/linkending.h"

#include <QHostAddress>
#include <QNetworkProxy>
#include <QTcpSocket>

#include <algorithm>
#include <limits>

namespace {

LinkAnswer Call(const QHostAddress& address, quint16 port, QDeadlineTimer deadline, std::chrono::milliseconds hearing)
{
    QTcpSocket socket;
    socket.setProxy(QNetworkProxy::NoProxy);
    socket.connectToHost(address, port);
    const qint64 left = std::min<qint64>(deadline.remainingTime(), std::numeric_limits<int>::max());
    if (!socket.waitForConnected(static_cast<int>(left))) {
        // Where more wait than the system's queue holds, it lets the next ones try again by themselves.
        return socket.error() == QAbstractSocket::SocketTimeoutError ? LinkAnswer::Silent : LinkAnswer::Refused;
    }

    if (!SendLine(socket.socketDescriptor(), QByteArrayLiteral("kitestarter\n")))
        return LinkAnswer::CutOff;
    LinkEnding ending = WaitForEnding(socket.socketDescriptor(), std::min(QDeadlineTimer(hearing), deadline));
    if (ending == LinkEnding::None) {
        EndSending(socket.socketDescriptor());
        ending = WaitForEnding(socket.socketDescriptor(), deadline);
    }
    switch (ending) {
    case LinkEnding::Closed:
        return LinkAnswer::Taken;
    case LinkEnding::Spoke:
        return LinkAnswer::Foreign;
    case LinkEnding::CutOff:
        return LinkAnswer::CutOff;
    case LinkEnding::None:
        break;
    }
    return LinkAnswer::Silent;
}

} // namespace

LinkAnswer CallLink(quint16 port, QDeadlineTimer deadline, std::chrono::milliseconds hearing)
{
    const LinkAnswer four = Call(QHostAddress(QHostAddress::LocalHost), port, deadline, hearing);
    if (four != LinkAnswer::Refused)
        return four;
    return Call(QHostAddress(QHostAddress::LocalHostIPv6), port, deadline, hearing);
}
