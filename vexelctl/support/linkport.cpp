// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/support/linkport.h"

#include <QHostAddress>
#include <QTcpSocket>

LinkPort ProbePort(quint16 port)
{
    for (const auto address : {QHostAddress::LocalHost, QHostAddress::LocalHostIPv6}) {
        QTcpSocket probe;
        if (probe.bind(QHostAddress(address), port, ProbeMode()))
            continue;
        if (probe.error() == QAbstractSocket::AddressInUseError)
            return {false, {}};
        // A machine may lack IPv6, but always has 127.0.0.1.
        if (address == QHostAddress::LocalHost)
            return {false, probe.errorString()};
    }
    return {true, {}};
}
