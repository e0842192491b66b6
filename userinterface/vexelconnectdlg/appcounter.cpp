// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/appcounter.h"

#include "files/boundedfile.h"
#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "platform/tracing.h"
#include "userinterface/vexelconnectdlg/applicationinstance.h"
#include "userinterface/vexelconnectdlg/commandline.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/formats/boundedxmlreader.h"
#include "userinterface/vexelconnectdlg/formats/machineconfiguration.h"
#include "userinterface/vexelconnectdlg/formats/typemapping.h"

#include <QDir>
#include <QMessageBox>

#include <algorithm>
#include <optional>
#include <utility>

namespace {

constexpr const char* kTraceSource = "userinterface/vexelconnectdlg/appcounter";

// Characters of a name in a message box, which takes a second or more to open per 100,000 characters.
constexpr qsizetype kShownNameLength = 10'000;

QString ConfiguredText(const QString& node, const QString& key)
{
    return CfgCenter::CreateCfg(node, View::Application, QString())->GetString(key, QString(), 0);
}

void TracePath(quint16 line, const char* message, const QString& path)
{
    Trace(
        kTraceSource, line, [message, &path] { return QString::fromLatin1(message).arg(path); });
}

void TraceXmlError(quint16 line, const char* message, const QXmlStreamReader& reader)
{
    Trace(
        kTraceSource, line,
        [message, &reader] {
            return QString::fromLatin1(message).arg(QString::number(reader.lineNumber()),
                                                    QString::number(reader.columnNumber()), reader.errorString());
        });
}

} // namespace

AppCounter::AppCounter(ConnectionsModel* owner, QString configurationName)
    : m_pOwner(owner)
    , m_sConfigurationName(std::move(configurationName))
{
    UpdateInstalledApps();
    UpdateTypeDeviceMappings();
}

// QObject's destructor disconnects this object before it deletes the instances, so none of them reaches a slot.
AppCounter::~AppCounter() = default;

void AppCounter::UpdateInstalledApps()
{
    m_startupTable.clear();
    m_installedList.clear();
    for (int deviceType = 0; deviceType < Connection::kDeviceTypeCount; ++deviceType) {
        m_installedTable[deviceType].clear();
        m_runningTable[deviceType].clear();
    }

    const QString dataDirectory = ConfiguredText(QStringLiteral("Administration"), QStringLiteral("VexelDataDir"));
    const QString machineFilePath = dataDirectory + QStringLiteral("/CfgVEXEL.xml");
    m_sMappingFilePath = ConfiguredText(m_sConfigurationName, QStringLiteral("TypeApplicationMappings"));

    const std::optional<QByteArray> document = ReadRegularFile(machineFilePath);
    if (!document) {
        TracePath(__LINE__, "AppCounter::UpdateInstalledApps(): Could not open %1 for reading", machineFilePath);
        return;
    }
    if (m_sMappingFilePath.isEmpty())
        m_sMappingFilePath = dataDirectory + QStringLiteral("/TypeApplicationMappings.xml");

    BoundedXmlReader reader(*document, kMachineFileLimits);
    if (!ReadMachine(reader))
        TracePath(__LINE__, "AppCounter::UpdateInstalledApps(): Could not parse %1", machineFilePath);
}

void AppCounter::UpdateTypeDeviceMappings()
{
    m_typeTable.clear();
    if (const std::optional<QByteArray> document = ReadRegularFile(m_sMappingFilePath)) {
        BoundedXmlReader reader(*document, kMachineFileLimits);
        if (!ReadTypeApplicationMappings(reader))
            TracePath(__LINE__, "AppCounter::UpdateTypeDeviceMappings(): Could not parse %1", m_sMappingFilePath);
    } else {
        TracePath(__LINE__, "AppCounter::UpdateTypeDeviceMappings(): Could not open %1 for reading",
                  m_sMappingFilePath);
    }
    FillInstalledTable();
}

bool AppCounter::ReadMachine(QXmlStreamReader& reader)
{
    MachineConfiguration machine;
    const bool isMachine = machine.Read(reader);

    m_installedList += machine.applications;
    for (auto entry = machine.startLists.cbegin(); entry != machine.startLists.cend(); ++entry)
        m_startupTable[entry.key()] += entry.value();

    for (const QString& application : std::as_const(machine.unreadable)) {
        Trace(
            kTraceSource, __LINE__,
            [&application] {
                return QStringLiteral("AppCounter::ReadMachine(): Parameter count of application <%1> is out of range")
                    .arg(application);
            });
    }
    if (reader.hasError()) {
        TraceXmlError(__LINE__, "AppCounter::ReadMachine(): XML parsing error occurred in row %1 column %2. \"%3\"",
                      reader);
        return false;
    }
    return isMachine;
}

bool AppCounter::ReadTypeApplicationMappings(QXmlStreamReader& reader)
{
    const bool lastKept = TypeMapping::Read(reader, m_startupTable, m_typeTable);
    if (reader.hasError()) {
        TraceXmlError(__LINE__,
                      "AppCounter::ReadTypeApplicationMappings(): "
                      "XML parsing error occurred in row %1 column %2. \"%3\"",
                      reader);
        return false;
    }
    return lastKept;
}

void AppCounter::FillInstalledTable()
{
    for (QStringList& applications : m_installedTable)
        applications.clear();

    const QMap<int, QStringList> serving =
        TypeMapping::ServingApplications(m_installedList, m_startupTable, m_typeTable);
    for (auto type = serving.cbegin(); type != serving.cend(); ++type)
        m_installedTable[type.key()] = type.value();
}

QStringList AppCounter::InstalledApplications(int deviceType) const
{
    return m_installedTable.value(Connection::ApplicationDeviceType(deviceType));
}

QStringList AppCounter::RunningApplications(int deviceType) const
{
    return m_runningTable.value(Connection::ApplicationDeviceType(deviceType));
}

QStringList AppCounter::FreeApplications(int deviceType) const
{
    return FreeAmongInstalled(Connection::ApplicationDeviceType(deviceType));
}

QStringList AppCounter::FreeAmongInstalled(int servedType) const
{
    const QStringList running = m_runningTable.value(servedType);
    QStringList applications = m_installedTable.value(servedType);
    applications.removeIf([&running](const QString& application) { return running.contains(application); });
    return applications;
}

QString AppCounter::ProgramForType(int deviceType) const
{
    return m_typeTable.value(Connection::ApplicationDeviceType(deviceType));
}

bool AppCounter::ConnectTo(const Connection& entry)
{
    const int servedType = Connection::ApplicationDeviceType(entry.DeviceType);
    const QStringList freeApplications = FreeAmongInstalled(servedType);
    if (freeApplications.isEmpty()) {
        ShowNoFreeApplication(entry, servedType);
        return false;
    }
    const QString& application = freeApplications.constFirst();

    const CommandLine commandLine = ApplicationCommandLine(application, entry, servedType);
    if (commandLine.lacksPort) {
        Trace(
            kTraceSource, __LINE__,
            [] { return QStringLiteral("AppCounter::ConnectTo() no port number added to sDriver"); });
    }
    if (!commandLine.isSupported) {
        Trace(
            kTraceSource, __LINE__,
            [&entry] {
                return QStringLiteral("AppCounter::ConnectTo() DeviceType %1 is not yet supported")
                    .arg(Connection::DeviceTypeName(entry.DeviceType));
            });
    }

    auto* const instance =
        new ApplicationInstance(m_typeTable.value(servedType), commandLine.arguments, QDir::currentPath(), entry);
    // The list owns it. The parent deletes removed instances whose deleteLater() has not run yet.
    instance->setParent(this);
    m_instances.append(instance);
    connect(instance, &ApplicationInstance::ProcessExited, this, &AppCounter::SlotOnProcessExit);
    if (!instance->Start())
        return false;

    if (m_pOwner)
        m_pOwner->SetConnectionStatus(entry, Connection::InUse);
    m_runningTable[servedType].append(application);
    return true;
}

void AppCounter::ShowNoFreeApplication(const Connection& entry, int servedType) const
{
    QString name = entry.ConnectionName;
    if (name.size() > kShownNameLength) {
        name.truncate(kShownNameLength);
        name += QChar(0x2026);
    }
    QMessageBox box(QMessageBox::Information, tr("Problem"),
                    tr("Could not connect to \"%1\".\n\n"
                       "There is no free userinterface available to connect to this type of hardware.\n\n"
                       "Device type: %2\n"
                       "Number of installed applications for this type: %3\n"
                       "Number of running applications for this type: %4")
                        .arg(name, Connection::DeviceTypeName(entry.DeviceType),
                             QString::number(m_installedTable.value(servedType).size()),
                             QString::number(m_runningTable.value(servedType).size())),
                    QMessageBox::Ok);
    box.setObjectName(QStringLiteral("m_problemBox"));
    // Names may contain markup.
    box.setTextFormat(Qt::PlainText);
    // No member access after this: the host may destroy the instance, and with it this object, while the box is open.
    connect(this, &QObject::destroyed, &box, &QDialog::reject);
    box.exec();
}

const ApplicationInstance* AppCounter::InstanceOf(const Connection& entry) const
{
    const ApplicationInstance* last = nullptr;
    for (const ApplicationInstance* const instance : m_instances) {
        if (!instance->GetStartTime().isValid() || instance->GetConnection() != entry)
            continue;
        // The status change that is being reported is this one's, also where an equal entry has a later one.
        if (instance->GetEnd())
            return instance;
        last = instance;
    }
    return last;
}

void AppCounter::HoldSweeps()
{
    ++m_sweepHolds;
}

void AppCounter::ReleaseSweeps()
{
    if (--m_sweepHolds == 0 && std::exchange(m_isSweepDue, false))
        QMetaObject::invokeMethod(this, &AppCounter::SlotOnProcessExit, Qt::QueuedConnection);
}

void AppCounter::SlotOnProcessExit()
{
    if (m_sweepHolds > 0) {
        m_isSweepDue = true;
        return;
    }
    const QList<ApplicationInstance*> instances = m_instances;
    for (ApplicationInstance* const instance : instances) {
        // A receiver of a status change may already have removed it.
        if (m_instances.contains(instance) && instance->GetState() == ApplicationInstance::Free)
            Sweep(instance);
    }
}

void AppCounter::Sweep(ApplicationInstance* instance)
{
    const Connection entry = instance->GetConnection();
    // A receiver of the status change may ask how the application ended, so the instance is removed afterwards.
    if (m_pOwner)
        m_pOwner->SetConnectionStatus(entry, Connection::Free);
    m_runningTable[Connection::ApplicationDeviceType(entry.DeviceType)].removeOne(instance->GetHostName());

    m_instances.removeOne(instance);
    instance->disconnect();
    // Not deleted at once: its signal may be being handled.
    instance->deleteLater();
}
