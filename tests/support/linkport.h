#pragma once

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

/// The port of the starter link, which one program of the machine can have at a time.
namespace LinkPort {

constexpr quint16 kNumber = 8451;

/// Whether this process could have it: another one of the product may be running on the machine.
inline bool IsFree()
{
    const auto isFree = [](QHostAddress::SpecialAddress address) {
        QTcpServer probe;
        return probe.listen(QHostAddress(address), kNumber) ||
               probe.serverError() != QAbstractSocket::AddressInUseError;
    };
    return isFree(QHostAddress::LocalHost) && isFree(QHostAddress::LocalHostIPv6);
}

/// Whether the other side has closed the call, whether or not it took what was sent. Not every system tells of the
/// latter who does not write again.
inline bool HasEnded(QTcpSocket& caller)
{
    if (caller.state() == QAbstractSocket::ConnectedState) {
        caller.write("?");
        caller.flush();
    }
    return caller.state() == QAbstractSocket::UnconnectedState;
}

} // namespace LinkPort

// Skips the test where another program has the port and keeps it.
#define NEED_PORT()                                                                                                    \
    do {                                                                                                               \
        if (!QTest::qWaitFor(LinkPort::IsFree, 30'000))                                                                \
            QSKIP("Another program has the port of the starter link");                                                 \
    } while (false)
