// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/support/machinereport.h"

#include "files/boundedfile.h"
#include "userinterface/vexelconnectdlg/connection.h"
#include "userinterface/vexelconnectdlg/formats/boundedxmlreader.h"
#include "userinterface/vexelconnectdlg/formats/machineconfiguration.h"
#include "userinterface/vexelconnectdlg/formats/typemapping.h"
#include "vexelctl/support/supportreport.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QStandardPaths>

#include <optional>
#include <utility>

namespace {

/// Reads a file like the plug-in does. If that fails, `state` says why.
std::optional<QByteArray> ReadFile(const QString& path, QString& state)
{
    QString error;
    std::optional<QByteArray> document = ReadRegularFile(path, kMaximumFileSize, &error);
    if (!document)
        state = QStringLiteral("not read: ") + (path.isEmpty() ? QStringLiteral("its path is unknown") : error);
    return document;
}

QString XmlError(const QXmlStreamReader& reader)
{
    return QStringLiteral("read up to an XML error in row %1 column %2: %3")
        .arg(QString::number(reader.lineNumber()), QString::number(reader.columnNumber()), reader.errorString());
}

QString Quoted(const QString& text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

QString TypeText(int deviceType)
{
    if (deviceType < 0 || deviceType >= Connection::kDeviceTypeCount)
        return QString::number(deviceType);
    return QStringLiteral("%1 (%2)").arg(QString::number(deviceType), Connection::DeviceTypeName(deviceType));
}

class Machine
{
public:
    explicit Machine(const MachineFiles& files);
    void AddTo(SupportReport& report) const;

private:
    void ReadMachine();
    void ReadMapping();
    void OnMapping(int deviceType, const QString& application, TypeMapping::Outcome outcome);
    void FindUnstartable();
    void AddDropped(const QString& what, const QString& why) { m_dropped.append(what + QStringLiteral(": ") + why); }

    QString FindExecutable(const QString& executable) const;
    QList<QJsonArray> ApplicationRows() const;
    QList<QJsonArray> TypeRows() const;

    const MachineFiles& m_files;
    const QString m_machineFile;
    QString m_mappingFile;
    QString m_machineState;
    QString m_mappingState;
    MachineConfiguration m_machine;
    QMap<int, QString> m_executables;
    QMap<int, QString> m_mappings; // descriptions of the effective mappings
    QMap<int, QStringList> m_serving;
    QSet<QString> m_names; // of the applications
    QStringList m_dropped;
};

Machine::Machine(const MachineFiles& files)
    : m_files(files)
    , m_machineFile(files.dataDirectory + QStringLiteral("/CfgVEXEL.xml"))
    , m_mappingFile(files.configuredMapping)
{
    ReadMachine();
    ReadMapping();
    m_serving = TypeMapping::ServingApplications(m_machine.applications, m_machine.startLists, m_executables);
    FindUnstartable();
}

void Machine::ReadMachine()
{
    const std::optional<QByteArray> document = ReadFile(m_machineFile, m_machineState);
    if (!document)
        return;
    // Without a machine configuration the plug-in does not look for the mapping in the data directory.
    if (m_mappingFile.isEmpty())
        m_mappingFile = m_files.dataDirectory + QStringLiteral("/TypeApplicationMappings.xml");

    BoundedXmlReader reader(*document, kMachineFileLimits);
    const bool isMachine = m_machine.Read(reader);
    m_names = QSet<QString>(m_machine.applications.cbegin(), m_machine.applications.cend());
    if (reader.hasError())
        m_machineState = XmlError(reader);
    else
        m_machineState = isMachine ? QStringLiteral("read") : QStringLiteral("read; it has no element \"Machine\"");
}

void Machine::ReadMapping()
{
    const std::optional<QByteArray> document = ReadFile(m_mappingFile, m_mappingState);
    if (!document)
        return;
    BoundedXmlReader reader(*document, kMachineFileLimits);
    bool any = false;
    TypeMapping::Read(reader, m_machine.startLists, m_executables,
                      [this, &any](int deviceType, const QString& application, TypeMapping::Outcome outcome) {
                          any = true;
                          OnMapping(deviceType, application, outcome);
                      });
    if (reader.hasError())
        m_mappingState = XmlError(reader);
    else
        m_mappingState = any ? QStringLiteral("read") : QStringLiteral("read; it has no mapping");
}

void Machine::OnMapping(int deviceType, const QString& application, TypeMapping::Outcome outcome)
{
    const QString mapping =
        QStringLiteral("mapping of device type ") + TypeText(deviceType) + QStringLiteral(" to ") + Quoted(application);
    switch (outcome) {
    case TypeMapping::Outcome::NoDeviceType:
        AddDropped(QStringLiteral("mapping to ") + Quoted(application), QStringLiteral("it has no valid device type"));
        return;
    case TypeMapping::Outcome::NoApplication:
        AddDropped(QStringLiteral("mapping of device type ") + TypeText(deviceType),
                   QStringLiteral("it names no application"));
        return;
    case TypeMapping::Outcome::NoStartList:
        AddDropped(mapping, m_names.contains(application) ? QStringLiteral("the application has no usable \"Startup\"")
                                                          : QStringLiteral("there is no such application"));
        return;
    case TypeMapping::Outcome::Kept:
        break;
    }
    const QString replaced = std::exchange(m_mappings[deviceType], mapping);
    if (!replaced.isEmpty())
        AddDropped(replaced, QStringLiteral("a later mapping of this device type replaces it"));
    if (deviceType >= Connection::kDeviceTypeCount)
        AddDropped(mapping, QStringLiteral("no entry has this device type"));
    else if (const int serving = Connection::ApplicationDeviceType(deviceType); serving != deviceType)
        AddDropped(mapping, QStringLiteral("device type %1 is used instead").arg(TypeText(serving)));
}

/// Finds mappings without an application, and applications that are never started.
void Machine::FindUnstartable()
{
    QSet<QString> serving;
    for (auto type = m_mappings.cbegin(); type != m_mappings.cend(); ++type) {
        if (Connection::ApplicationDeviceType(type.key()) != type.key() || type.key() >= Connection::kDeviceTypeCount)
            continue;
        const QStringList applications = m_serving.value(type.key());
        if (applications.isEmpty())
            AddDropped(type.value(), QStringLiteral("no application has this executable"));
        serving.unite(QSet<QString>(applications.cbegin(), applications.cend()));
    }
    const QSet<QString> unreadable(m_machine.unreadable.cbegin(), m_machine.unreadable.cend());

    QSet<QString> seen;
    for (const QString& name : m_machine.applications) {
        const QString application = QStringLiteral("application ") + Quoted(name);
        const QStringList startList = m_machine.startLists.value(name);
        if (seen.contains(name)) {
            AddDropped(application, QStringLiteral("listed more than once; its start descriptions are joined"));
            continue;
        }
        seen.insert(name);
        if (unreadable.contains(name))
            AddDropped(application, QStringLiteral("its parameter count is out of range"));
        if (startList.isEmpty()) {
            if (!unreadable.contains(name))
                AddDropped(application, QStringLiteral("it has no \"Startup\""));
        } else if (startList.constFirst().isEmpty()) {
            AddDropped(application, QStringLiteral("its \"Startup\" names no executable"));
        } else if (!serving.contains(name)) {
            AddDropped(application, QStringLiteral("no device type is mapped to its executable"));
        }
    }
}

/// Returns the file that starting `executable` would run; empty if there is none.
QString Machine::FindExecutable(const QString& executable) const
{
    if (executable.isEmpty())
        return {};
    // With a path, it is relative to the current directory; without one, it is searched for.
    if (executable.contains(QLatin1Char('/')) || executable != QDir::fromNativeSeparators(executable)) {
        const QFileInfo info(executable);
        return info.isFile() && info.isExecutable() ? info.absoluteFilePath() : QString();
    }
    return QStandardPaths::findExecutable(executable, m_files.programDirectories);
}

QList<QJsonArray> Machine::ApplicationRows() const
{
    QMap<QString, QJsonArray> types;
    // No entry has another device type, and a mapping file may have any number of them.
    for (int type = 0; type < Connection::kDeviceTypeCount; ++type)
        for (const QString& application : m_serving.value(type))
            types[application].append(QString::number(type));
    QList<QJsonArray> rows;
    QStringList applications = m_machine.applications;
    applications.removeDuplicates();
    for (const QString& application : std::as_const(applications)) {
        const QStringList startList = m_machine.startLists.value(application);
        if (startList.isEmpty()) {
            rows.append({application, QJsonArray(), QJsonValue(), QJsonValue(), QJsonValue()});
            continue;
        }
        const QString found = FindExecutable(startList.constFirst());
        rows.append({application, types.value(application), startList.constFirst(),
                     found.isEmpty() ? QStringLiteral("NOT FOUND") : found,
                     QJsonArray::fromStringList(startList.mid(1))});
    }
    return rows;
}

QList<QJsonArray> Machine::TypeRows() const
{
    QList<QJsonArray> rows;
    for (int type = 0; type < Connection::kDeviceTypeCount; ++type) {
        const int serving = Connection::ApplicationDeviceType(type);
        const auto executable = m_executables.constFind(serving);
        const bool isMapped = executable != m_executables.cend();
        rows.append({type, Connection::DeviceTypeName(type), serving, isMapped ? QJsonValue(*executable) : QJsonValue(),
                     m_serving.value(serving).size()});
    }
    return rows;
}

void Machine::AddTo(SupportReport& report) const
{
    report.BeginSection(QStringLiteral("Applications"));
    report.AddFact(QStringLiteral("machine file"), m_machineFile);
    report.AddFact(QStringLiteral("machine file state"), m_machineState);
    report.AddFact(QStringLiteral("mapping file"), m_mappingFile);
    report.AddFact(QStringLiteral("mapping file state"), m_mappingState);
    report.AddTable(QStringLiteral("applications"),
                    {QStringLiteral("Name"), QStringLiteral("Device types"), QStringLiteral("Executable"),
                     QStringLiteral("Found as"), QStringLiteral("Parameters")},
                    ApplicationRows());
    report.AddTable(QStringLiteral("device types"),
                    {QStringLiteral("Type"), QStringLiteral("Name"), QStringLiteral("Mapped as"),
                     QStringLiteral("Executable"), QStringLiteral("Applications")},
                    TypeRows());
    report.AddList(QStringLiteral("dropped"), m_dropped);
}

} // namespace

void ReportMachine(SupportReport& report, const MachineFiles& files)
{
    Machine(files).AddTo(report);
}
