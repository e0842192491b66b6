#include "userinterface/vexelconnectdlg/commandline.h"

#include "platform/tracing.h"

#include <QRegularExpression>

namespace {

// It is the launcher's connect operation that speaks here.
constexpr const char* kTraceSource = "userinterface/vexelconnectdlg/appcounter";

/// The port of the driver application of a (normalised) device type, with its colon; empty where there is none.
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

/// The driver address of `entry`, with a port: its own, or else the device type's.
QString DriverWithPort(const Connection& entry, int deviceType)
{
    // Anywhere in the address, so that one of IPv6 mostly counts as having a port. Digits are those of ASCII.
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
        // Started all the same: an application may do with its first argument alone.
        Trace(kTraceSource, __LINE__, [&entry] {
            return QStringLiteral("AppCounter::ConnectTo() DeviceType %1 is not yet supported")
                .arg(Connection::DeviceTypeName(entry.DeviceType));
        });
        break;
    }
    return arguments;
}
