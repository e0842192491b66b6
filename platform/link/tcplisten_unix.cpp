#include "platform/link/tcplisten.h"

#include <QTcpServer>

// All of it is what Qt asks for on Unix.
Listening ListenAlone(QTcpServer& server, const QHostAddress& address, quint16 port, QString* error)
{
    if (server.listen(address, port))
        return Listening::Yes;
    *error = server.errorString();
    return server.serverError() == QAbstractSocket::AddressInUseError ? Listening::Taken : Listening::Unavailable;
}

void KeepToThisProcess(qintptr /*handle*/)
{
}
