#pragma once

#include <QAbstractSocket>
#include <QString>

#include <optional>

/// Who has a port of this machine's loopback addresses. Nobody is called: a call would raise the dialog.
struct LinkPort
{
    /// A process as the system names it.
    struct Process
    {
        qint64 number = 0;
        QString name;
    };

    bool isFree = false;
    std::optional<Process> owner; ///< of a port that is not free, where the system lets this user know
    QString error;                ///< why it could not be found out; empty where it could
};

/// Tries to take `port` for a moment, without listening: a host that starts at that moment still gets it.
LinkPort ProbePort(quint16 port);

/// The system's part: how to bind so that a port that somebody listens on is found taken and nobody else is kept from
/// it; and who listens on it.
QAbstractSocket::BindMode ProbeMode();
std::optional<LinkPort::Process> ListenerOn(quint16 port);
