#pragma once

#include <QAbstractSocket>
#include <QString>

/// Whether a port of this machine's loopback addresses is free. Nobody is called: a call would raise the dialog.
struct LinkPort
{
    bool isFree = false;
    QString error; ///< why it could not be found out; empty where it could
};

/// Tries to take `port` for a moment, without listening: a host that starts at that moment still gets it.
LinkPort ProbePort(quint16 port);

/// The system's part: how to bind so that a port that somebody listens on is found taken and nobody else is kept from
/// it.
QAbstractSocket::BindMode ProbeMode();
