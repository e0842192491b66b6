// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/link/tcplisten.h"

#include <QTcpServer>

// On Unix, Qt listens in this way.
ListenResult ListenExclusively(QTcpServer& server, const QHostAddress& address, quint16 port, QString* error)
{
    if (server.listen(address, port))
        return ListenResult::Ok;
    *error = server.errorString();
    return server.serverError() == QAbstractSocket::AddressInUseError ? ListenResult::PortTaken : ListenResult::Failed;
}

void DisableInheritance(qintptr /*handle*/)
{
}
