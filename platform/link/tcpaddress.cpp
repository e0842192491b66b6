// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/link/tcpaddress.h"

#include <QHostAddress>
#include <QStringView>

#include <algorithm>

namespace {

constexpr qsizetype kMaximumHostLength = 253; // of a DNS name
constexpr qsizetype kMaximumPortLength = 5;

/// Stricter than QString's conversion, which accepts signs and spaces.
std::optional<quint16> ParsePort(QStringView text)
{
    const auto isDigit = [](QChar unit) {
        return unit >= u'0' && unit <= u'9';
    };
    if (text.size() > kMaximumPortLength || !std::all_of(text.cbegin(), text.cend(), isDigit))
        return std::nullopt;
    const quint16 port = text.toUShort();
    return port == 0 ? std::nullopt : std::optional(port);
}

bool IsHostName(QStringView text)
{
    const auto belongsToName = [](QChar unit) {
        return unit.isLetterOrNumber() || unit.isSurrogate() || unit == u'-' || unit == u'.' || unit == u'_';
    };
    return text.size() <= kMaximumHostLength && std::all_of(text.cbegin(), text.cend(), belongsToName);
}

} // namespace

std::optional<TcpAddress> TcpAddress::Parse(const QString& text)
{
    const QStringView prefix = u"TCP:";
    if (!text.startsWith(prefix))
        return std::nullopt;
    const QStringView rest = QStringView(text).mid(prefix.size());
    const qsizetype colon = rest.lastIndexOf(u':');
    if (colon < 0)
        return std::nullopt;
    const std::optional<quint16> port = ParsePort(rest.mid(colon + 1));
    if (!port)
        return std::nullopt;

    QStringView host = rest.left(colon);
    if (host.startsWith(u'[') && host.endsWith(u']')) {
        host = host.mid(1, host.size() - 2);
        QHostAddress number;
        if (!number.setAddress(host.toString()) || number.protocol() != QAbstractSocket::IPv6Protocol)
            return std::nullopt;
    } else if (!IsHostName(host)) {
        return std::nullopt;
    }
    return TcpAddress{host.toString(), *port};
}
