// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

/// The fixed port of the starter link; only one program at a time can listen on it.
namespace LinkPort {

constexpr quint16 kNumber = 8451;

/// Whether the port is free. Another host may be running on this machine.
inline bool IsFree()
{
    const auto isFree = [](QHostAddress::SpecialAddress address) {
        QTcpServer probe;
        return probe.listen(QHostAddress(address), kNumber) ||
               probe.serverError() != QAbstractSocket::AddressInUseError;
    };
    return isFree(QHostAddress::LocalHost) && isFree(QHostAddress::LocalHostIPv6);
}

/// Whether the other side has closed the connection, even if it has not read everything. Writes to find out, because
/// some systems report a reset only on the next write.
inline bool HasEnded(QTcpSocket& caller)
{
    if (caller.state() == QAbstractSocket::ConnectedState) {
        caller.write("?");
        caller.flush();
    }
    return caller.state() == QAbstractSocket::UnconnectedState;
}

} // namespace LinkPort

// Skips the test if another program keeps using the port.
#define NEED_PORT()                                                                                                    \
    do {                                                                                                               \
        if (!QTest::qWaitFor(LinkPort::IsFree, 30'000))                                                                \
            QSKIP("Another program has the port of the starter link");                                                 \
    } while (false)
