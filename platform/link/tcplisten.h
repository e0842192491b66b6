// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QHostAddress>
#include <QString>

class QTcpServer;

enum class ListenResult { Ok, Failed, PortTaken };

/// Makes `server` listen on `address` and `port` with the server's backlog. No other program can listen there at the
/// same time, and child processes do not inherit the socket.
/// @param error receives the reason if the result is not `Ok`; must not be null.
ListenResult ListenExclusively(QTcpServer& server, const QHostAddress& address, quint16 port, QString* error);

/// Prevents child processes from inheriting `handle`, the socket of an accepted connection. They would keep the
/// connection open after this process has closed it.
void DisableInheritance(qintptr handle);
