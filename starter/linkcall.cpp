#include "starter/linkcall.h"

#include "starter/linkending.h"

#include <QHostAddress>
#include <QNetworkProxy>
#include <QTcpSocket>

#include <algorithm>
#include <chrono>
#include <limits>

namespace {

using namespace std::chrono_literals;

// The dialog comes to the front at the connection, so this costs only the caller time.
constexpr auto kHearingTime = 50ms;

LinkAnswer Call(const QHostAddress& address, quint16 port, QDeadlineTimer deadline)
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
    // Many a service that would answer gives up when it sees the end first.
    const QDeadlineTimer hearing(kHearingTime);
    LinkEnding ending = WaitForEnding(socket.socketDescriptor(), std::min(hearing, deadline));
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

LinkAnswer CallLink(quint16 port, QDeadlineTimer deadline)
{
    const LinkAnswer four = Call(QHostAddress(QHostAddress::LocalHost), port, deadline);
    if (four != LinkAnswer::Refused)
        return four;
    return Call(QHostAddress(QHostAddress::LocalHostIPv6), port, deadline);
}
