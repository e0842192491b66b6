#include "userinterface/vexelconnectdlg/connectionjson.h"

namespace {

const QString kName = QStringLiteral("name");
const QString kSelected = QStringLiteral("selected");
const QString kStatus = QStringLiteral("status");
const QString kDeviceType = QStringLiteral("deviceType");
const QString kConnectionType = QStringLiteral("connectionType");
const QString kDeviceAddress = QStringLiteral("deviceAddress");
const QString kDriverAddress = QStringLiteral("driverAddress");
const QString kLinkSpeed = QStringLiteral("linkSpeed");
const QString kTimeout = QStringLiteral("timeoutSeconds");
const QString kSubsystem = QStringLiteral("subsystem");
const QString kSince = QStringLiteral("since");
const QString kProgram = QStringLiteral("program");
const QString kProcess = QStringLiteral("process");

} // namespace

namespace ConnectionJson {

QString Time(const QDateTime& time)
{
    QString text = time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODateWithMs);
    // Qt's form of a zero offset.
    if (text.endsWith(QLatin1Char('Z')))
        text.replace(text.size() - 1, 1, QStringLiteral("+00:00"));
    return text;
}

QJsonObject Write(const Connection& entry, const std::optional<EntryUse>& use)
{
    QJsonObject object{
        {kName, entry.ConnectionName},
        {kSelected, entry.Selected},
        {kStatus, entry.ConnectionStatus},
        {QStringLiteral("statusText"), Connection::EnglishStatusName(entry.ConnectionStatus)},
        {kDeviceType, entry.DeviceType},
        {QStringLiteral("deviceTypeText"), Connection::EnglishDeviceTypeName(entry.DeviceType)},
        {kConnectionType, entry.ConnectionType},
        {QStringLiteral("connectionTypeText"), Connection::EnglishConnectionTypeName(entry.ConnectionType)},
        {kDeviceAddress, entry.DeviceAddress},
        {kDriverAddress, entry.DriverAddress},
        {kLinkSpeed, entry.LinkSpeed},
        {QStringLiteral("linkSpeedText"), Connection::EnglishLinkSpeedName(entry.LinkSpeed)},
        {kTimeout, entry.TimeoutSeconds},
        {QStringLiteral("timeoutText"),
         entry.TimeoutSeconds > 0 ? QString::number(entry.TimeoutSeconds) : QStringLiteral("No Timeout")},
        {kSubsystem, entry.Subsystem},
    };
    if (use) {
        object.insert(kSince, Time(use->since));
        object.insert(kProgram, use->program);
        object.insert(kProcess, use->process);
    }
    return object;
}

ListedEntry Read(const QJsonObject& object)
{
    ListedEntry listed;
    Connection& entry = listed.entry;
    entry.ConnectionName = object.value(kName).toString();
    entry.Selected = object.value(kSelected).toBool();
    entry.ConnectionStatus = object.value(kStatus).toInt();
    entry.DeviceType = object.value(kDeviceType).toInt();
    entry.ConnectionType = object.value(kConnectionType).toInt();
    entry.DeviceAddress = object.value(kDeviceAddress).toString();
    entry.DriverAddress = object.value(kDriverAddress).toString();
    entry.LinkSpeed = object.value(kLinkSpeed).toInt();
    entry.TimeoutSeconds = object.value(kTimeout).toInt();
    entry.Subsystem = object.value(kSubsystem).toString();
    if (object.contains(kProcess)) {
        listed.use = {object.value(kProgram).toString(), object.value(kProcess).toInteger(),
                      QDateTime::fromString(object.value(kSince).toString(), Qt::ISODateWithMs)};
    }
    return listed;
}

} // namespace ConnectionJson
