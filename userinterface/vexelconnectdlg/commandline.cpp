// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/commandline.h"

#include <QRegularExpression>

namespace {

/// Returns ":" and the driver application's port for an application device type; empty if there is none.
QString DefaultPort(int deviceType)
{
    switch (deviceType) {
    case Connection::KiteBravo:
        return QStringLiteral(":27061");
    case Connection::KiteCobra:
        return QStringLiteral(":27081");
    case Connection::WrenD:
        return QStringLiteral(":9446");
    case Connection::KiteFjord:
        return QStringLiteral(":27091");
    case Connection::LinnetDF:
        return QStringLiteral(":27071");
    default:
        return {};
    }
}

bool HasPort(const QString& address)
{
    // Matches anywhere, so most IPv6 addresses count as having a port. \d matches ASCII digits only.
    static const QRegularExpression kPort(QStringLiteral(":\\d+"));
    return address.contains(kPort);
}

} // namespace

CommandLine ApplicationCommandLine(const QString& application, const Connection& entry, int servedType)
{
    const QString server = QStringLiteral("Server");
    CommandLine line;
    const auto connection = [&] {
        const QString port = HasPort(entry.DriverAddress) ? QString() : DefaultPort(servedType);
        line.lacksPort = port.isEmpty() && !HasPort(entry.DriverAddress);
        return QString(QStringLiteral("Connection=") + entry.DriverAddress + port);
    };

    QStringList& arguments = line.arguments;
    arguments << application + QStringLiteral(":XMsgDlg.dll");
    switch (servedType) {
    case Connection::KiteBravo:
    case Connection::WrenD:
    case Connection::KiteAlphaFinch:
    case Connection::KiteFjord:
    case Connection::LinnetDF:
        arguments << server << connection();
        break;
    case Connection::KiteCobra:
        if (entry.ConnectionType == Connection::RemoteConnection)
            arguments << server << connection();
        else if (entry.ConnectionType == Connection::MultiChannelServer)
            arguments << server << QStringLiteral("MCS") << QStringLiteral("MCSMaster") << connection();
        break;
    case Connection::KiteEcho:
        arguments << server << entry.ConnectionName;
        break;
    default:
        // Started nevertheless: the first argument may be enough for an application.
        line.isSupported = false;
        break;
    }
    return line;
}
