#include "host/support/linkport.h"

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
        // A machine need not have both kinds of address, but it has this one.
        if (address == QHostAddress::LocalHost)
            return {false, probe.errorString()};
    }
    return {true, {}};
}
