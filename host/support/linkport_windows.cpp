#include "host/support/linkport.h"

QAbstractSocket::BindMode ProbeMode()
{
    // With any other mode the port would be shared with its owner.
    return QAbstractSocket::DontShareAddress;
}

std::optional<LinkPort::Process> ListenerOn(quint16 /*port*/)
{
    return std::nullopt;
}
