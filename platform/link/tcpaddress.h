// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>

/// A parsed address of the connections library.
struct TcpAddress
{
    /// A name or a numeric address, IPv6 without brackets; empty for a server.
    QString host;
    quint16 port;

    /// Parses `text`; returns nothing if it is malformed. Host names are checked for length and invalid characters
    /// only; the rest is left to the lookup.
    static std::optional<TcpAddress> Parse(const QString& text);
};
