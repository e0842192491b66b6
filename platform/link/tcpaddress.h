#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>

/// An address of the connections library, taken apart.
struct TcpAddress
{
    /// A name or a number, an IPv6 address without its brackets; empty for a server.
    QString host;
    /// From 1 on.
    quint16 port;

    /// Takes `text` apart; nothing when it is malformed. What a host's name may be is left to who looks it up, but for
    /// characters that no name has.
    static std::optional<TcpAddress> Parse(const QString& text);
};
