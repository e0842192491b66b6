// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "control/entryjson.h"

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
const QString kProgram = QStringLiteral("program");
const QString kProcess = QStringLiteral("process");
const QString kSince = QStringLiteral("since");
const QString kExitCode = QStringLiteral("exitCode");
const QString kCrashed = QStringLiteral("crashed");
const QString kSignal = QStringLiteral("signal");

} // namespace

QString TimeToJson(const QDateTime& time)
{
    QString text = time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODateWithMs);
    // Qt's form of a zero offset.
    if (text.endsWith(QLatin1Char('Z')))
        text.replace(text.size() - 1, 1, QStringLiteral("+00:00"));
    return text;
}

void InsertApplication(QJsonObject& object, const EntryApplication& application)
{
    object.insert(kProgram, application.program);
    object.insert(kProcess, application.process);
    object.insert(kSince, TimeToJson(application.since));
    if (application.exitCode)
        object.insert(kExitCode, *application.exitCode);
    if (application.isCrash)
        object.insert(kCrashed, true);
    if (application.signal)
        object.insert(kSignal, *application.signal);
}

QJsonObject EntryToJson(const Connection& entry, const std::optional<EntryApplication>& application)
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
    if (application)
        InsertApplication(object, *application);
    return object;
}

Connection EntryFromJson(const QJsonObject& object)
{
    Connection entry;
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
    return entry;
}

std::optional<EntryApplication> ApplicationFromJson(const QJsonObject& object)
{
    if (!object.contains(kProcess))
        return std::nullopt;
    EntryApplication application;
    application.program = object.value(kProgram).toString();
    application.process = object.value(kProcess).toInteger();
    application.since = QDateTime::fromString(object.value(kSince).toString(), Qt::ISODateWithMs);
    if (object.contains(kExitCode))
        application.exitCode = object.value(kExitCode).toInt();
    application.isCrash = object.value(kCrashed).toBool();
    if (object.contains(kSignal))
        application.signal = object.value(kSignal).toInt();
    return application;
}
