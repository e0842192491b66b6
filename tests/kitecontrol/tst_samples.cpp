// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QDomDocument>
#include <QFileInfo>
#include <QHostAddress>
#include <QMap>
#include <QSet>
#include <QTest>
#include <QXmlStreamReader>

#include <algorithm>
#include <vector>

namespace {

constexpr int kDeviceTypes = 15;
constexpr int kLinkSpeeds = 7;

QByteArray Contents(const char* name)
{
    return Files::Read(QStringLiteral(SAMPLES_DIR "/") + QLatin1String(name));
}

/// An application of the machine configuration, as far as the launcher reads it.
struct Application
{
    bool hasStartup = false;
    QString executable;
    int parameterCount = 0;
    QMap<int, QString> parameters;
};

/// A connection of the list: element names and texts, in document order.
using Entry = QList<QPair<QString, QString>>;

QString ValueOf(const Entry& entry, const char* name)
{
    for (const auto& [key, value] : entry)
        if (key == QLatin1String(name))
            return value;
    return QStringLiteral("(missing)");
}

int NumberOf(const Entry& entry, const char* name)
{
    bool isNumber = false;
    const int number = ValueOf(entry, name).toInt(&isNumber);
    return isNumber ? number : -1000;
}

/// The device type whose applications serve an entry.
int ServingType(int deviceType)
{
    return deviceType == 0 || (deviceType >= 3 && deviceType <= 8) ? 4 : deviceType;
}

void ReadStartup(QXmlStreamReader& reader, Application& application)
{
    application.hasStartup = true;
    while (reader.readNextStartElement()) {
        const QString name = reader.name().toString();
        const QString text = reader.readElementText();
        if (name == QLatin1String("exe")) {
            application.executable = text;
        } else if (name == QLatin1String("param")) {
            application.parameterCount = 1;
            application.parameters[1] = text;
        } else if (name == QLatin1String("NumParam")) {
            application.parameterCount = text.toInt();
        } else if (name.contains(QLatin1String("Param"))) {
            application.parameters[name.mid(5).toInt()] = text;
        }
    }
}

} // namespace

/// The samples are valid and cover the cases that they are meant to show.
class TestSamples : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void applicationNamesAreUnique();
    void applicationsCoverAllCases();
    void executablesAreBuilt();
    void everyMappedApplicationHasAStartup();
    void everyDeviceTypeIsServed();
    void eachExecutableServesOneDeviceType();
    void listHasStoredFormat();
    void listCoversAllValues();
    void namesAndDriverAddressesAreUnique();
    void addressesAreReservedForExamples();
    void tickedEntriesCanRunTogether();

private:
    void ReadMachine();
    void ReadMappings();
    void ReadEntries();
    int ApplicationsFor(int deviceType) const;

    QStringList m_names; ///< of the applications, in the order of the file
    QMap<QString, Application> m_applications;
    QList<QPair<int, QString>> m_mappings;
    std::vector<Entry> m_entries;
};

void TestSamples::initTestCase()
{
    ReadMachine();
    ReadMappings();
    ReadEntries();
}

void TestSamples::ReadMachine()
{
    QXmlStreamReader reader(Contents("data/CfgVEXEL.xml"));
    while (!reader.atEnd() && reader.name() != QLatin1String("Machine"))
        reader.readNext();
    while (reader.readNextStartElement()) {
        const QString name = reader.name().toString();
        m_names.append(name);
        Application& application = m_applications[name];
        while (reader.readNextStartElement()) {
            if (reader.name() == QLatin1String("Startup")) {
                QVERIFY2(!application.hasStartup, qPrintable(name));
                ReadStartup(reader, application);
            } else {
                reader.skipCurrentElement();
            }
        }
    }
    while (!reader.atEnd()) {
        // Elements after "Machine" are not allowed.
        QVERIFY(reader.readNext() != QXmlStreamReader::StartElement);
    }
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    QVERIFY(!m_names.isEmpty());
}

void TestSamples::ReadMappings()
{
    QXmlStreamReader reader(Contents("data/TypeApplicationMappings.xml"));
    QVERIFY(reader.readNextStartElement());
    QCOMPARE(reader.name().toString(), QStringLiteral("TypeApplicationMappings"));
    while (reader.readNextStartElement()) {
        QCOMPARE(reader.name().toString(), QStringLiteral("Mapping"));
        QPair<int, QString> mapping{-1, QString()};
        while (reader.readNextStartElement()) {
            const QString name = reader.name().toString();
            const QString text = reader.readElementText();
            if (name == QLatin1String("DeviceType")) {
                mapping.first = text.toInt();
            } else {
                QCOMPARE(name, QStringLiteral("Application"));
                mapping.second = text;
            }
        }
        m_mappings.append(mapping);
    }
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
}

void TestSamples::ReadEntries()
{
    QXmlStreamReader reader(Contents("connections.xml"));
    QVERIFY(reader.readNextStartElement());
    QCOMPARE(reader.name().toString(), QStringLiteral("ConnectionEntries"));
    while (reader.readNextStartElement()) {
        QCOMPARE(reader.name().toString(), QStringLiteral("Connection"));
        Entry entry;
        while (reader.readNextStartElement()) {
            const QString name = reader.name().toString();
            entry.append({name, reader.readElementText()});
        }
        m_entries.push_back(entry);
    }
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    QVERIFY(m_entries.size() >= kDeviceTypes);
}

int TestSamples::ApplicationsFor(int deviceType) const
{
    QString executable;
    for (const auto& [type, name] : m_mappings)
        if (type == ServingType(deviceType))
            executable = m_applications.value(name).executable;
    return executable.isEmpty()
               ? 0
               : int(std::count_if(m_applications.begin(), m_applications.end(), [&executable](const Application& a) {
                     return a.hasStartup && a.executable == executable;
                 }));
}

void TestSamples::applicationNamesAreUnique()
{
    QCOMPARE(QSet<QString>(m_names.begin(), m_names.end()).size(), m_names.size());
}

void TestSamples::applicationsCoverAllCases()
{
    int withoutStartup = 0;
    int withParameters = 0;
    for (auto it = m_applications.constBegin(); it != m_applications.constEnd(); ++it) {
        if (!it->hasStartup) {
            ++withoutStartup;
            continue;
        }
        withParameters += it->parameterCount > 1 ? 1 : 0;
        QList<int> numbers;
        for (int i = 1; i <= it->parameterCount; ++i)
            numbers.append(i);
        QCOMPARE(it->parameters.keys(), numbers);
    }
    QVERIFY(m_applications.value(QStringLiteral("KiteControl")).parameterCount > 1);
    QVERIFY(withParameters > 0);
    QVERIFY(withoutStartup > 0);
    QVERIFY(ApplicationsFor(4) >= 4);
    QVERIFY(ApplicationsFor(2) >= 2);
}

void TestSamples::executablesAreBuilt()
{
    for (auto it = m_applications.constBegin(); it != m_applications.constEnd(); ++it) {
        if (!it->hasStartup)
            continue;
        // Names without directory and extension work on all systems and in any directory.
        QVERIFY2(!it->executable.contains(QLatin1Char('/')) && !it->executable.contains(QLatin1Char('.')),
                 qPrintable(it->executable));
        const QDir programs(QStringLiteral(PROGRAM_DIR));
        const QStringList found = programs.entryList({it->executable, it->executable + QStringLiteral(".exe")},
                                                     QDir::Files | QDir::Executable);
        QVERIFY2(found.size() == 1, qPrintable(it.key() + QStringLiteral(": ") + it->executable));
    }
}

void TestSamples::everyMappedApplicationHasAStartup()
{
    QVERIFY(!m_mappings.isEmpty());
    for (const auto& [type, name] : m_mappings) {
        QVERIFY2(m_applications.value(name).hasStartup, qPrintable(name));
        QVERIFY2(!m_applications.value(name).executable.isEmpty(), qPrintable(name));
        QVERIFY2(type >= 0 && type < kDeviceTypes && ServingType(type) == type, qPrintable(QString::number(type)));
    }
}

void TestSamples::everyDeviceTypeIsServed()
{
    for (int type = 0; type < kDeviceTypes; ++type)
        QVERIFY2(ApplicationsFor(type) > 0, qPrintable(QString::number(type)));
}

void TestSamples::eachExecutableServesOneDeviceType()
{
    // Otherwise an entry could get an application for another device.
    QSet<QString> executables;
    for (const auto& mapping : m_mappings)
        executables.insert(m_applications.value(mapping.second).executable);
    QCOMPARE(executables.size(), m_mappings.size());
}

void TestSamples::listHasStoredFormat()
{
    const QStringList texts{QStringLiteral("ConnectionName"), QStringLiteral("DeviceAddress"),
                            QStringLiteral("DriverAddress"), QStringLiteral("Subsystem")};
    const QStringList order{QStringLiteral("ConnectionName"), QStringLiteral("DeviceType"),
                            QStringLiteral("ConnectionType"), QStringLiteral("DeviceAddress"),
                            QStringLiteral("DriverAddress"),  QStringLiteral("LinkSpeed"),
                            QStringLiteral("TimeoutSeconds"), QStringLiteral("ConnectionStatus"),
                            QStringLiteral("Selected"),       QStringLiteral("Subsystem")};

    QDomDocument document;
    document.appendChild(document.createProcessingInstruction(QStringLiteral("xml"),
                                                              QStringLiteral("version=\"1.0\" encoding=\"utf-8\"")));
    QDomElement root = document.createElement(QStringLiteral("ConnectionEntries"));
    document.appendChild(root);
    for (const Entry& entry : m_entries) {
        QStringList names;
        QDomElement connection = document.createElement(QStringLiteral("Connection"));
        root.appendChild(connection);
        for (const auto& [name, value] : entry) {
            names.append(name);
            QDomElement child = document.createElement(name);
            if (texts.contains(name))
                child.appendChild(document.createCDATASection(value));
            else
                child.appendChild(document.createTextNode(value));
            connection.appendChild(child);
        }
        QCOMPARE(names, order);
    }
    QCOMPARE(QString::fromUtf8(Contents("connections.xml")), QString::fromUtf8(document.toByteArray(2)));
}

void TestSamples::listCoversAllValues()
{
    QSet<int> deviceTypes;
    QSet<int> connectionTypes;
    QSet<int> linkSpeeds;
    int withPort = 0;
    int withTimeout = 0;
    int withSubsystem = 0;
    for (const Entry& entry : m_entries) {
        deviceTypes.insert(NumberOf(entry, "DeviceType"));
        connectionTypes.insert(NumberOf(entry, "ConnectionType"));
        linkSpeeds.insert(NumberOf(entry, "LinkSpeed"));
        QCOMPARE(NumberOf(entry, "ConnectionStatus"), 0);
        QVERIFY(NumberOf(entry, "TimeoutSeconds") >= 0);
        withTimeout += NumberOf(entry, "TimeoutSeconds") > 0 ? 1 : 0;
        withPort += ValueOf(entry, "DriverAddress").contains(QLatin1Char(':')) ? 1 : 0;
        withSubsystem += ValueOf(entry, "Subsystem").isEmpty() ? 0 : 1;
    }
    const auto isRange = [](const QSet<int>& values, int count) {
        return values.size() == count && *std::min_element(values.begin(), values.end()) == 0 &&
               *std::max_element(values.begin(), values.end()) == count - 1;
    };
    QVERIFY(isRange(deviceTypes, kDeviceTypes));
    QVERIFY(isRange(connectionTypes, 3));
    QVERIFY(isRange(linkSpeeds, kLinkSpeeds));
    QVERIFY(withPort >= 2);
    QVERIFY(withTimeout >= 2);
    QVERIFY(withSubsystem >= 2);
}

void TestSamples::namesAndDriverAddressesAreUnique()
{
    QSet<QString> names;
    QSet<QString> drivers;
    for (const Entry& entry : m_entries) {
        const QString name = ValueOf(entry, "ConnectionName");
        QVERIFY2(!names.contains(name), qPrintable(name));
        names.insert(name);
        // Otherwise a started application could not find its record.
        const QString driver = ValueOf(entry, "DriverAddress").section(QLatin1Char(':'), 0, 0);
        QVERIFY2(driver.isEmpty() || !drivers.contains(driver), qPrintable(driver));
        drivers.insert(driver);
    }
}

void TestSamples::addressesAreReservedForExamples()
{
    // Networks for documentation and private use, so that no real device is called.
    const QStringList networks{QStringLiteral("192.0.2.0/24"),   QStringLiteral("198.51.100.0/24"),
                               QStringLiteral("203.0.113.0/24"), QStringLiteral("10.0.0.0/8"),
                               QStringLiteral("172.16.0.0/12"),  QStringLiteral("192.168.0.0/16")};
    for (const Entry& entry : m_entries) {
        for (const char* const field : {"DeviceAddress", "DriverAddress"}) {
            const QString address = ValueOf(entry, field).section(QLatin1Char(':'), 0, 0);
            const bool isExample = std::any_of(networks.begin(), networks.end(), [&address](const QString& network) {
                return QHostAddress(address).isInSubnet(QHostAddress::parseSubnet(network));
            });
            QVERIFY2(address.isEmpty() || isExample, qPrintable(address));
        }
    }
}

void TestSamples::tickedEntriesCanRunTogether()
{
    QMap<int, int> ticked;
    for (const Entry& entry : m_entries) {
        const QString selected = ValueOf(entry, "Selected");
        QVERIFY(selected == QLatin1String("true") || selected == QLatin1String("false"));
        if (selected == QLatin1String("true"))
            ++ticked[ServingType(NumberOf(entry, "DeviceType"))];
    }
    QCOMPARE(ticked.size(), 4);
    for (auto it = ticked.constBegin(); it != ticked.constEnd(); ++it) {
        QCOMPARE(it.value(), 1);
        QVERIFY(ApplicationsFor(it.key()) >= it.value());
    }
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestSamples)
#include "tst_samples.moc"
