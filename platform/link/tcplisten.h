#pragma once

#include <QHostAddress>
#include <QString>

class QTcpServer;

enum class Listening { Yes, Unavailable, Taken };

/// Lets `server` listen at `address` and `port`, so that no other program can listen there at the same time, and none
/// that is started from here inherits the socket. The backlog is the server's.
/// @param error says why, when the result is not `Yes`; must not be null.
Listening ListenAlone(QTcpServer& server, const QHostAddress& address, quint16 port, QString* error);

/// Has no program that is started from here inherit the socket `handle`, which came of a call that was taken: it would
/// keep the call open when this program has ended it.
void KeepToThisProcess(qintptr handle);
