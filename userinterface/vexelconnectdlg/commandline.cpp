#include "userinterface/vexelconnectdlg/commandline.h"

#include "platform/tracing.h"

#include <QRegularExpression>

namespace {

// The traces are those of the launcher's ConnectTo().
constexpr const char* kTraceSource = "userinterface/vexelconnectdlg/appcounter";

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

/// Returns the driver address of `entry` with its port or, if it has none, the default port of the device type.
QString DriverWithPort(const Connection& entry, int deviceType)
{
    // Matches anywhere, so most IPv6 addresses count as having a port. \d matches ASCII digits only.
    static const QRegularExpression kPort(QStringLiteral(":\\d+"));
    if (entry.DriverAddress.contains(kPort))
        return entry.DriverAddress;
    const QString port = DefaultPort(deviceType);
    if (port.isEmpty()) {
        Trace(
            kTraceSource, __LINE__,
            [] { return QStringLiteral("AppCounter::ConnectTo() no port number added to sDriver"); });
    }
    return entry.DriverAddress + port;
}

} // namespace

QStringList ApplicationArguments(const QString& application, const Connection& entry, int servedType)
{
    const QString server = QStringLiteral("Server");
    const auto connection = [&entry, servedType] {
        return QString(QStringLiteral("Connection=") + DriverWithPort(entry, servedType));
    };

    QStringList arguments{application + QStringLiteral(":XMsgDlg.dll")};
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
        Trace(kTraceSource, __LINE__, [&entry] {
            return QStringLiteral("AppCounter::ConnectTo() DeviceType %1 is not yet supported")
                .arg(Connection::DeviceTypeName(entry.DeviceType));
        });
        break;
    }
    return arguments;
}
