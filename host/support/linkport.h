#pragma once

#include <QAbstractSocket>
#include <QString>

#include <optional>

/// Tells who uses a port of this machine's loopback addresses. Does not connect: that would raise the dialog.
struct LinkPort
{
    /// A process as the system names it.
    struct Process
    {
        qint64 number = 0;
        QString name;
    };

    bool isFree = false;
    std::optional<Process> owner; ///< the listening process, if the system tells this user
    QString error;                ///< why the port could not be checked; empty on success
};

/// Binds `port` for a moment without listening: a host that starts at that moment still gets it.
LinkPort ProbePort(quint16 port);

/// Platform-specific: the bind mode that fails if somebody listens and keeps nobody else out; and the listening
/// process.
QAbstractSocket::BindMode ProbeMode();
std::optional<LinkPort::Process> ListenerOn(quint16 port);
