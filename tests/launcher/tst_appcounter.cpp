// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/appcounter.h"

#include "tests/support/launcherfixture.h"
#include "tests/support/metaobject.h"
#include "tests/support/system/system.h"
#include "tests/support/tracerecorder.h"
#include "userinterface/vexelconnectdlg/formats/machineconfiguration.h"

#include <QTest>
#include <QXmlStreamReader>

#include <memory>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

QStringList l(const char* names)
{
    return s(names).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

const QString kSource = QStringLiteral("userinterface/vexelconnectdlg/appcounter");

} // namespace

/// Reading the two files, and the lookups. tst_connectto tests starting applications.
class TestAppCounter : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void declaresOneSlot();

    void missingDataDirectoryIsTraced();
    void missingMachineFileLeavesNoMappingPath();
    void missingMachineFileKeepsConfiguredMappingPath();
    void mappingFileIsBesideMachineFile();
    void mappingPathCanBeConfigured();
    void missingMappingFileIsTraced();
    void otherThanFilesAreNotOpened();
    void onlyNamedConfigurationCounts();

    void applicationsAreRead_data();
    void applicationsAreRead();
    void machineElementIsFoundAnywhere_data();
    void machineElementIsFoundAnywhere();
    void startListIsRead_data();
    void startListIsRead();
    void firstStartupCounts();
    void startListsOfSameApplicationAddUp();
    void parameterCountOutOfRangeIsTraced_data();
    void parameterCountOutOfRangeIsTraced();
    void totalParameterCountIsLimited();
    void machineXmlErrorIsTraced_data();
    void machineXmlErrorIsTraced();
    void missingMachineElementIsTraced();
    void truncatedMachineKeepsCompleteApplications();
    void readMachineReturnsSuccess();

    void mappingsAreRead_data();
    void mappingsAreRead();
    void mappingsXmlErrorIsTraced();
    void readMappingsReturnsSuccess();
    void entitiesAreRefused();

    void installedApplicationsFollowMappings();
    void applicationIsInstalledOnce();
    void updateReplacesOldContent();
    void tracesHaveSourceAndLine();
    void noTraceWhileTracesAreOff();

private:
    std::unique_ptr<AppCounter> Counter(const QString& name = QStringLiteral("Launcher")) const
    {
        return std::make_unique<AppCounter>(nullptr, name);
    }
    /// Writes both files and reads them.
    std::unique_ptr<AppCounter> Counter(const QString& machine, const QString& mappings) const
    {
        return m_pData->WriteMachine(machine) && m_pData->WriteMappings(mappings) ? Counter() : nullptr;
    }
    QString CouldNotOpenMachine() const
    {
        return s("AppCounter::UpdateInstalledApps(): Could not open ") + m_pData->MachineFile() + s(" for reading");
    }
    QString CouldNotParseMachine() const
    {
        return s("AppCounter::UpdateInstalledApps(): Could not parse ") + m_pData->MachineFile();
    }
    static QString CouldNotOpenMappings(const QString& path)
    {
        return s("AppCounter::UpdateTypeDeviceMappings(): Could not open ") + path + s(" for reading");
    }
    QString CouldNotParseMappings() const
    {
        return s("AppCounter::UpdateTypeDeviceMappings(): Could not parse ") + m_pData->MappingFile();
    }

    std::unique_ptr<DataDirectory> m_pData;
    std::unique_ptr<TraceRecorder> m_pTraces;
};

void TestAppCounter::init()
{
    m_pData = std::make_unique<DataDirectory>();
    m_pTraces = std::make_unique<TraceRecorder>();
}

void TestAppCounter::cleanup()
{
    m_pTraces.reset();
    m_pData.reset();
}

void TestAppCounter::declaresOneSlot()
{
    QCOMPARE(Declaration(AppCounter::staticMetaObject),
             (QStringList{s("AppCounter : QObject"), s("slot SlotOnProcessExit()")}));
}

void TestAppCounter::missingDataDirectoryIsTraced()
{
    DataDirectory::Configure("Administration", "VexelDataDir", QString());
    const auto counter = Counter();
    QCOMPARE(m_pTraces->Messages(),
             (QStringList{s("AppCounter::UpdateInstalledApps(): Could not open /CfgVEXEL.xml for reading"),
                          CouldNotOpenMappings(QString())}));
    QCOMPARE(counter->MappingFilePath(), QString());
    for (int deviceType = -1; deviceType <= 15; ++deviceType) {
        QVERIFY(counter->InstalledApplications(deviceType).isEmpty());
        QVERIFY(counter->RunningApplications(deviceType).isEmpty());
        QVERIFY(counter->FreeApplications(deviceType).isEmpty());
        QVERIFY(counter->ProgramForType(deviceType).isEmpty());
    }
}

void TestAppCounter::missingMachineFileLeavesNoMappingPath()
{
    // The default path is set only when the machine file was opened, so the existing mapping file is not read.
    QVERIFY(m_pData->WriteMappings(DataDirectory::Mappings(DataDirectory::Mapping(1, s("a.exe")))));
    const auto counter = Counter();
    QCOMPARE(counter->MappingFilePath(), QString());
    QCOMPARE(m_pTraces->Messages(), (QStringList{CouldNotOpenMachine(), CouldNotOpenMappings(QString())}));
    QCOMPARE(counter->ProgramForType(1), QString());
}

void TestAppCounter::missingMachineFileKeepsConfiguredMappingPath()
{
    const QString path = m_pData->Path(s("elsewhere.xml"));
    QVERIFY(DataDirectory::Write(path, DataDirectory::Mappings(DataDirectory::Mapping(1, s("a.exe")))));
    DataDirectory::Configure("Launcher", "TypeApplicationMappings", path);
    const auto counter = Counter();
    QCOMPARE(counter->MappingFilePath(), path);
    QCOMPARE(m_pTraces->Messages(), QStringList(CouldNotOpenMachine()));
    QCOMPARE(counter->ProgramForType(1), s("a.exe"));
    QVERIFY(counter->InstalledApplications(1).isEmpty());
}

void TestAppCounter::mappingFileIsBesideMachineFile()
{
    const auto counter = Counter(DataDirectory::Machine(DataDirectory::Application(s("Kite"), s("kite.exe"))),
                                 DataDirectory::Mappings(DataDirectory::Mapping(1, s("Kite"))));
    QCOMPARE(counter->MappingFilePath(), m_pData->MappingFile());
    QCOMPARE(counter->InstalledList(), l("Kite"));
    QCOMPARE(counter->InstalledApplications(1), l("Kite"));
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());
}

void TestAppCounter::mappingPathCanBeConfigured()
{
    const QString path = m_pData->Path(s("elsewhere.xml"));
    QVERIFY(DataDirectory::Write(path, DataDirectory::Mappings(DataDirectory::Mapping(2, s("Kite")))));
    DataDirectory::Configure("Launcher", "TypeApplicationMappings", path);
    const auto counter = Counter(DataDirectory::Machine(DataDirectory::Application(s("Kite"), s("kite.exe"))),
                                 DataDirectory::Mappings(DataDirectory::Mapping(1, s("Kite"))));
    QCOMPARE(counter->MappingFilePath(), path);
    QVERIFY(counter->InstalledApplications(1).isEmpty());
    QCOMPARE(counter->InstalledApplications(2), l("Kite"));
}

void TestAppCounter::missingMappingFileIsTraced()
{
    QVERIFY(m_pData->WriteMachine(DataDirectory::Machine(DataDirectory::Application(s("Kite"), s("kite.exe")))));
    const auto counter = Counter();
    QCOMPARE(m_pTraces->Messages(), QStringList(CouldNotOpenMappings(m_pData->MappingFile())));
    QCOMPARE(counter->InstalledList(), l("Kite"));
    for (int deviceType = 0; deviceType < 15; ++deviceType)
        QVERIFY(counter->InstalledApplications(deviceType).isEmpty());
}

void TestAppCounter::otherThanFilesAreNotOpened()
{
    QVERIFY(QDir().mkdir(m_pData->MachineFile()));
    const QStringList devices = System::Devices();
    for (const QString& device : devices) {
        DataDirectory::Configure("Launcher", "TypeApplicationMappings", device);
        m_pTraces->Clear();
        const auto counter = Counter();
        QCOMPARE(m_pTraces->Messages(), (QStringList{CouldNotOpenMachine(), CouldNotOpenMappings(device)}));
    }
}

void TestAppCounter::onlyNamedConfigurationCounts()
{
    // Only in the application view.
    DataDirectory::Configure("Other", "TypeApplicationMappings", s("/other"));
    CfgCenter::CreateCfg(s("Launcher"), View::User, QString())->SetString(s("TypeApplicationMappings"), s("/user"), 0);
    QCOMPARE(Counter()->MappingFilePath(), QString());
    QCOMPARE(Counter(s("Other"))->MappingFilePath(), s("/other"));
}

void TestAppCounter::applicationsAreRead_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<QString>("names");
    QTest::newRow("none") << QString() << QString();
    QTest::newRow("in document order") << s("<Zeta/><Alpha></Alpha> text <Kite><Startup/></Kite>")
                                       << s("Zeta Alpha Kite");
    QTest::newRow("nested elements") << s("<A><Startup><exe>x</exe></Startup><B/><C><D/></C></A><E/>") << s("A E");
    QTest::newRow("same name nested") << s("<A><A><A/></A><B/></A><C/>") << s("A C");
    QTest::newRow("same name inside Startup") << s("<A><Startup><A><exe>x</exe></A></Startup></A><C/>") << s("A C");
    QTest::newRow("named Startup") << s("<Startup><exe>x</exe></Startup><C/>") << s("Startup C");
    QTest::newRow("named Machine") << s("<Machine><C/></Machine><D/>") << s("Machine D");
    QTest::newRow("comments, processing instructions, CDATA sections")
        << s("<!-- <X/> --><?pi <Y/> ?><![CDATA[<Z/>]]><A/>") << s("A");
}

void TestAppCounter::applicationsAreRead()
{
    QFETCH(const QString, content);
    QFETCH(const QString, names);
    const auto counter = Counter(DataDirectory::Machine(content), DataDirectory::Mappings(QString()));
    QCOMPARE(counter->InstalledList(), names.split(QLatin1Char(' '), Qt::SkipEmptyParts));
    QCOMPARE(m_pTraces->Messages(), QStringList(CouldNotParseMappings()));
}

void TestAppCounter::machineElementIsFoundAnywhere_data()
{
    QTest::addColumn<QString>("document");
    QTest::addColumn<QString>("names");
    QTest::newRow("root element") << s("<Machine><A/></Machine>") << s("A");
    QTest::newRow("nested") << s("<x><y><z/><Machine><A/></Machine></y></x>") << s("A");
    QTest::newRow("elements before and after") << s("<x><B><C/></B><Machine><A/></Machine><D><E/></D></x>") << s("A");
    QTest::newRow("case matters") << s("<x><machine><B/></machine><Machine><A/></Machine></x>") << s("A");
    QTest::newRow("only the first") << s("<x><Machine><A/></Machine><Machine><B/></Machine></x>") << s("A");
    QTest::newRow("with a document type") << s("<!DOCTYPE x SYSTEM 'x.dtd'><x><Machine><A/></Machine></x>") << s("A");
}

void TestAppCounter::machineElementIsFoundAnywhere()
{
    QFETCH(const QString, document);
    QFETCH(const QString, names);
    const auto counter = Counter(document, DataDirectory::Mappings(DataDirectory::Mapping(1, s("a.exe"))));
    QCOMPARE(counter->InstalledList(), names.split(QLatin1Char(' ')));
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());
}

void TestAppCounter::startListIsRead_data()
{
    QTest::addColumn<QString>("startup");
    QTest::addColumn<QStringList>("startList");
    const auto row = [](const char* name, const char* startup, const QStringList& startList) {
        QTest::newRow(name) << s(startup) << startList;
    };
    const QString none = QLatin1String("");
    row("nothing", "", {none});
    row("executable", "<exe>x</exe>", {s("x")});
    row("no executable", "<param>p</param>", {none, s("p")});
    row("param", "<exe>x</exe><param>p</param>", {s("x"), s("p")});
    row("param, then count", "<exe>x</exe><param>p</param><NumParam>3</NumParam>", {s("x"), s("p"), none, none});
    row("count, then param", "<exe>x</exe><NumParam>3</NumParam><param>p</param>", {s("x"), s("p")});
    row("count 2, second given", "<exe>x</exe><NumParam>2</NumParam><Param2>p</Param2>", {s("x"), none, s("p")});
    row("order does not matter", "<Param2>q</Param2><NumParam>2</NumParam><exe>x</exe><Param1>p</Param1>",
        {s("x"), s("p"), s("q")});
    row("above the count", "<exe>x</exe><NumParam>1</NumParam><Param1>p</Param1><Param2>q</Param2>", {s("x"), s("p")});
    row("the last counts",
        "<exe>x</exe><exe>y</exe><NumParam>9</NumParam><NumParam>1</NumParam><Param1>p</Param1>"
        "<Param1>q</Param1>",
        {s("y"), s("q")});
    row("param and Param1 are one slot", "<exe>x</exe><param>p</param><Param1>q</Param1>", {s("x"), s("q")});
    row("slot 0 by index", "<exe>x</exe><Param0>y</Param0>", {s("y")});
    row("leading zeros", "<exe>x</exe><NumParam>02</NumParam><Param002>p</Param002>", {s("x"), none, s("p")});
    row("blanks in the count", "<exe>x</exe><NumParam> \n 1 </NumParam>", {s("x"), none});
    row("count is no number", "<exe>x</exe><NumParam>two</NumParam><Param1>p</Param1>", {s("x")});
    row("count with a fraction", "<exe>x</exe><NumParam>1.5</NumParam>", {s("x")});
    row("no index", "<exe>x</exe><NumParam>1</NumParam><Param>p</Param>", {s("x"), none});
    row("index is no number", "<exe>x</exe><NumParam>1</NumParam><Parameter>p</Parameter><Param1b>q</Param1b>",
        {s("x"), none});
    row("index negative", "<exe>x</exe><NumParam>1</NumParam><Param-1>p</Param-1>", {s("x"), none});
    row("index in other digits", "<exe>x</exe><NumParam>1</NumParam><Param\u0661>p</Param\u0661>", {s("x"), none});
    // The index begins at position 5 of any name that contains "Param".
    row("Param elsewhere", "<exe>x</exe><NumParam>1</NumParam><MyParam1>p</MyParam1>", {s("x"), none});
    row("huge index", "<exe>x</exe><NumParam>1</NumParam><Param1>p</Param1><Param1999999999>q</Param1999999999>",
        {s("x"), s("p")});
    row("index that no number holds",
        "<exe>x</exe><NumParam>1</NumParam><Param1>p</Param1><Param99999999999999999999>q</Param99999999999999999999>",
        {s("x"), s("p")});
    row("case matters",
        "<Exe>x</Exe><EXE>y</EXE><Param>p</Param><PARAM1>q</PARAM1><numparam>3</numparam>"
        "<exe>z</exe>",
        {s("z")});
    row("blanks", "<exe> a b </exe>", {s(" a b ")});
    row("text in a CDATA section", "<exe><![CDATA[a&b]]></exe>", {s("a&b")});
    row("only the text directly after the tag", "<exe>x<!-- c -->y</exe><param>p<b/>q</param>", {s("x"), s("p")});
    row("no text directly after the tag", "<exe><!-- c -->x</exe>", {none});
    row("element instead of text", "<exe><b>x</b></exe>", {none});
    row("nested elements are not read", "<exe>x<param>p</param></exe><other><param>q</param></other>", {s("x")});
    row("nested Startup", "<Startup><exe>y</exe></Startup><exe>x</exe>", {s("x")});
    const QStringList manyParameters = QStringList(s("x")) + QList<QString>(1000, none);
    row("largest count", "<exe>x</exe><NumParam>1000</NumParam>", manyParameters);
}

void TestAppCounter::startListIsRead()
{
    QFETCH(const QString, startup);
    QFETCH(const QStringList, startList);
    const auto counter = Counter(DataDirectory::Machine(s("<A><Startup>") + startup + s("</Startup></A><B/>")),
                                 DataDirectory::Mappings(DataDirectory::Mapping(1, s("a.exe"))));
    QCOMPARE(counter->StartupTable().value(s("A")), startList);
    QCOMPARE(counter->InstalledList(), l("A B"));
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());
}

void TestAppCounter::firstStartupCounts()
{
    const auto counter =
        Counter(DataDirectory::Machine(s("<A><Startup><exe>a</exe></Startup><Startup><exe>b</exe></Startup></A>"
                                         "<B><x><Startup><exe>c</exe></Startup></x><Startup><exe>d</exe></Startup></B>"
                                         "<C/><D>Startup</D>")),
                DataDirectory::Mappings(QString()));
    QCOMPARE(counter->StartupTable(), (QMap<QString, QStringList>{{s("A"), l("a")}, {s("B"), l("c")}}));
    QCOMPARE(counter->InstalledList(), l("A B C D"));
}

void TestAppCounter::startListsOfSameApplicationAddUp()
{
    const auto counter = Counter(
        DataDirectory::Machine(DataDirectory::Application(s("A"), s("x")) + DataDirectory::Application(s("A"), s("y"))),
        DataDirectory::Mappings(DataDirectory::Mapping(1, s("A"))));
    QCOMPARE(counter->InstalledList(), l("A A"));
    QCOMPARE(counter->StartupTable().value(s("A")), l("x y"));
    QCOMPARE(counter->InstalledApplications(1), l("A"));
}

void TestAppCounter::parameterCountOutOfRangeIsTraced_data()
{
    QTest::addColumn<QString>("count");
    for (const char* const count : {"2000000000", "1001", "-1", "99999999999999999999", "-99999999999999999999"})
        QTest::newRow(count) << s(count);
}

void TestAppCounter::parameterCountOutOfRangeIsTraced()
{
    QFETCH(const QString, count);
    const auto counter =
        Counter(DataDirectory::Machine(s("<A><Startup><exe>a</exe><NumParam>%1</NumParam></Startup></A>").arg(count) +
                                       DataDirectory::Application(s("B"), s("b"))),
                DataDirectory::Mappings(DataDirectory::Mapping(1, s("A")) + DataDirectory::Mapping(2, s("B"))));
    // Like an application without a start description; others are not affected.
    QVERIFY(counter->StartupTable().value(s("A")).isEmpty());
    QCOMPARE(counter->ProgramForType(1), QString());
    QCOMPARE(counter->InstalledList(), l("A B"));
    QCOMPARE(counter->InstalledApplications(2), l("B"));
    QCOMPARE(m_pTraces->Messages(),
             QStringList(s("AppCounter::ReadMachine(): Parameter count of application <A> is out of range")));
}

void TestAppCounter::totalParameterCountIsLimited()
{
    // A small file must not make the launcher allocate much memory.
    QString applications;
    for (int i = 0; i < 2000; ++i)
        applications += s("<A%1><Startup><exe>a</exe><NumParam>1000</NumParam></Startup></A%1>").arg(i);
    const auto counter = Counter(DataDirectory::Machine(applications), DataDirectory::Mappings(QString()));
    QCOMPARE(counter->InstalledList().size(), 2000);
    qsizetype slotCount = 0;
    for (const QStringList& startList : counter->StartupTable())
        slotCount += startList.size();
    QVERIFY(slotCount > 0);
    QVERIFY(slotCount <= MachineConfiguration::kMaximumSlotCount);
    QCOMPARE(m_pTraces->Messages().filter(s("is out of range")).size(), 2000 - slotCount / 1001);
}

void TestAppCounter::machineXmlErrorIsTraced_data()
{
    QTest::addColumn<QString>("document");
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("names");
    QTest::newRow("empty") << QString() << 1 << QString();
    QTest::newRow("plain text") << s("hello") << 1 << QString();
    QTest::newRow("before Machine") << s("<x>\n<y></z>") << 2 << QString();
    QTest::newRow("wrong end tag") << s("<x><Machine>\n<A/>\n<B></C></Machine></x>") << 3 << s("A B");
    QTest::newRow("after Machine") << s("<x><Machine><A/></Machine>\n\n<y></x>") << 3 << s("A");
    QTest::newRow("two roots") << s("<Machine><A/></Machine>\n<Machine/>") << 2 << s("A");
    QTest::newRow("control character") << s("<Machine><A/>\x01</Machine>") << 1 << s("A");
}

void TestAppCounter::machineXmlErrorIsTraced()
{
    QFETCH(const QString, document);
    QFETCH(const int, row);
    QFETCH(const QString, names);

    // The trace contains the message of Qt's reader.
    QXmlStreamReader reader(document.toUtf8());
    while (!reader.atEnd())
        reader.readNext();
    QCOMPARE(reader.lineNumber(), row);
    const QString xmlError =
        s("AppCounter::ReadMachine(): XML parsing error occurred in row %1 column %2. \"%3\"")
            .arg(QString::number(row), QString::number(reader.columnNumber()), reader.errorString());

    const auto counter = Counter(document, DataDirectory::Mappings(DataDirectory::Mapping(1, s("a.exe"))));
    QCOMPARE(m_pTraces->Messages(), (QStringList{xmlError, CouldNotParseMachine()}));
    QCOMPARE(counter->InstalledList(), names.split(QLatin1Char(' '), Qt::SkipEmptyParts));
    QCOMPARE(counter->ProgramForType(1), s("a.exe"));
}

void TestAppCounter::missingMachineElementIsTraced()
{
    const auto counter = Counter(s("<Configuration><Other><A/></Other></Configuration>"),
                                 DataDirectory::Mappings(DataDirectory::Mapping(1, s("a.exe"))));
    QVERIFY(counter->InstalledList().isEmpty());
    QVERIFY(counter->StartupTable().isEmpty());
    QCOMPARE(m_pTraces->Messages(), QStringList(CouldNotParseMachine()));
    // The file was opened, so the default mapping path is set.
    QCOMPARE(counter->MappingFilePath(), m_pData->MappingFile());
}

void TestAppCounter::truncatedMachineKeepsCompleteApplications()
{
    // A start list is added at the end of its "Startup" element.
    const auto counter = Counter(s("<Machine><A><Startup><exe>a</exe></Startup></A><B><Startup><exe>b</exe>"),
                                 DataDirectory::Mappings(DataDirectory::Mapping(1, s("A"))));
    QCOMPARE(counter->InstalledList(), l("A B"));
    QCOMPARE(counter->StartupTable(), (QMap<QString, QStringList>{{s("A"), l("a")}}));
    QCOMPARE(counter->InstalledApplications(1), l("A"));
    QCOMPARE(m_pTraces->Reports().size(), 2);
    QCOMPARE(m_pTraces->Messages().constLast(), CouldNotParseMachine());
}

void TestAppCounter::readMachineReturnsSuccess()
{
    const auto counter = Counter();
    m_pTraces->Clear();
    QXmlStreamReader good(s("<Machine><A><Startup><exe>a</exe></Startup></A></Machine>"));
    QVERIFY(counter->ReadMachine(good));
    QVERIFY(good.atEnd());
    QCOMPARE(counter->InstalledList(), l("A"));
    QCOMPARE(counter->StartupTable().value(s("A")), l("a"));
    QXmlStreamReader other(s("<Maschine/>"));
    QVERIFY(!counter->ReadMachine(other));
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());
    QXmlStreamReader bad(s("<Machine>"));
    QVERIFY(!counter->ReadMachine(bad));
    QCOMPARE(m_pTraces->Reports().size(), 1);
    QCOMPARE(counter->InstalledList(), l("A"));
}

void TestAppCounter::mappingsAreRead_data()
{
    QTest::addColumn<QString>("mappings");
    QTest::addColumn<QStringList>("programs"); // of the types 1, 2 and 9
    QTest::addColumn<bool>("parsed");
    const auto row = [](const char* name, const QString& mappings, const char* one, const char* two, const char* nine,
                        bool parsed) {
        QTest::newRow(name) << mappings << QStringList{s(one), s(two), s(nine)} << parsed;
    };
    const auto map = [](const char* deviceType, const char* application) {
        return DataDirectory::Mapping(s(deviceType), s(application));
    };
    // The machine has "Kite" (bin/kite), "Bare" without a start description and "Hollow" with an empty executable.
    row("none", QString(), "", "", "", false);
    row("application", map("1", "Kite"), "bin/kite", "", "", true);
    row("executable", map("1", "C:\\x\\tool.exe"), "C:\\x\\tool.exe", "", "", true);
    row("executable with arguments", map("1", "tool.ExE -x"), "tool.ExE -x", "", "", true);
    row("later replaces earlier", map("1", "one.exe") + map("1", "two.exe"), "two.exe", "", "", true);
    row("ignored mapping does not replace", map("1", "one.exe") + map("1", "Nobody"), "one.exe", "", "", false);
    row("last mapping ignored", map("1", "one.exe") + map("2", "Nobody"), "one.exe", "", "", false);
    row("first mapping ignored", map("1", "Nobody") + map("2", "two.exe"), "", "two.exe", "", true);
    row("application without start description", map("1", "Bare"), "", "", "", false);
    row("case of the application", map("1", "kite"), "", "", "", false);
    row("application with empty executable", map("1", "Hollow"), "", "", "", true);
    row("no device type", s("<Mapping><Application>a.exe</Application></Mapping>"), "", "", "", false);
    row("no application", s("<Mapping><DeviceType>1</DeviceType></Mapping>"), "", "", "", false);
    row("empty application", map("1", ""), "", "", "", false);
    row("negative device type", map("-1", "a.exe"), "", "", "", false);
    row("device type is no number", map("one", "a.exe"), "", "", "", false);
    row("device type that no number holds", map("99999999999", "a.exe"), "", "", "", false);
    row("blanks around the device type", map(" \n2 ", "a.exe"), "", "a.exe", "", true);
    row("the last child counts",
        s("<Mapping><DeviceType>1</DeviceType><Application>a.exe</Application><DeviceType>2</DeviceType>"
          "<Application>b.exe</Application></Mapping>"),
        "", "b.exe", "", true);
    row("order of the children", s("<Mapping><Application>a.exe</Application><DeviceType>1</DeviceType></Mapping>"),
        "a.exe", "", "", true);
    row("other elements",
        s("<x/><Other>") + map("1", "a.exe") + s("</Other>text<!-- c -->") +
            s("<Mapping><y><DeviceType>9</DeviceType></y><DeviceType>2</DeviceType>"
              "<Application>b.exe</Application></Mapping>"),
        "a.exe", "b.exe", "", true);
    row("case of the elements",
        s("<mapping><DeviceType>1</DeviceType><Application>a.exe</Application></mapping>"
          "<Mapping><devicetype>1</devicetype><Application>a.exe</Application></Mapping>"),
        "", "", "", false);
    row("blanks in the application are kept", map("1", " Kite"), "", "", "", false);
}

void TestAppCounter::mappingsAreRead()
{
    QFETCH(const QString, mappings);
    QFETCH(const QStringList, programs);
    QFETCH(const bool, parsed);
    const auto counter =
        Counter(DataDirectory::Machine(DataDirectory::Application(s("Kite"), s("bin/kite")) +
                                       s("<Bare/><Hollow><Startup/></Hollow>")),
                s("<x>") + DataDirectory::Mapping(1, s("outside.exe")) + DataDirectory::Mappings(mappings) +
                    DataDirectory::Mapping(2, s("outside.exe")) + s("</x>"));
    QCOMPARE((QStringList{counter->ProgramForType(1), counter->ProgramForType(2), counter->ProgramForType(9)}),
             programs);
    QCOMPARE(m_pTraces->Messages(), parsed ? QStringList() : QStringList(CouldNotParseMappings()));
}

void TestAppCounter::mappingsXmlErrorIsTraced()
{
    const QString document = s("<TypeApplicationMappings>\n") + DataDirectory::Mapping(1, s("a.exe")) +
                             s("\n<Mapping><DeviceType>2</DeviceType><Application>b.exe</Application>");
    QXmlStreamReader reader(document.toUtf8());
    while (!reader.atEnd())
        reader.readNext();
    const auto counter = Counter(DataDirectory::Machine(QString()), document);
    QCOMPARE(m_pTraces->Messages(), (QStringList{s("AppCounter::ReadTypeApplicationMappings(): "
                                                   "XML parsing error occurred in row 3 column %1. \"%2\"")
                                                     .arg(QString::number(reader.columnNumber()), reader.errorString()),
                                                 CouldNotParseMappings()}));
    QCOMPARE(counter->ProgramForType(1), s("a.exe"));
    QCOMPARE(counter->ProgramForType(2), QString());
}

void TestAppCounter::readMappingsReturnsSuccess()
{
    const auto counter = Counter();
    m_pTraces->Clear();
    QXmlStreamReader good(DataDirectory::Mappings(DataDirectory::Mapping(1, s("a.exe"))));
    QVERIFY(counter->ReadTypeApplicationMappings(good));
    QCOMPARE(counter->ProgramForType(1), s("a.exe"));
    QXmlStreamReader none(s("<TypeApplicationMappings/>"));
    QVERIFY(!counter->ReadTypeApplicationMappings(none));
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());
    // An error after a valid mapping is an error.
    QXmlStreamReader bad(s("<TypeApplicationMappings>") + DataDirectory::Mapping(2, s("b.exe")));
    QVERIFY(!counter->ReadTypeApplicationMappings(bad));
    QCOMPARE(m_pTraces->Reports().size(), 1);
    QCOMPARE(counter->ProgramForType(2), s("b.exe"));
}

void TestAppCounter::entitiesAreRefused()
{
    const QString type = s("<!DOCTYPE x [<!ENTITY a 'A'><!ENTITY b '&a;&a;'>]>");
    const auto counter = Counter(type + s("<Machine><A/>&b;</Machine>"),
                                 type + DataDirectory::Mappings(DataDirectory::Mapping(1, s("a.exe"))));
    QCOMPARE(m_pTraces->Reports().size(), 4);
    QVERIFY2(
        m_pTraces->Messages().at(0).startsWith(s("AppCounter::ReadMachine(): XML parsing error occurred in row 1 ")),
        m_pTraces->Text().constData());
    QCOMPARE(m_pTraces->Messages().at(1), CouldNotParseMachine());
    QVERIFY2(m_pTraces->Messages().at(2).startsWith(
                 s("AppCounter::ReadTypeApplicationMappings(): XML parsing error occurred in row 1 ")),
             m_pTraces->Text().constData());
    QCOMPARE(m_pTraces->Messages().at(3), CouldNotParseMappings());
    QVERIFY(counter->InstalledList().isEmpty());
    QCOMPARE(counter->ProgramForType(1), QString());
}

void TestAppCounter::installedApplicationsFollowMappings()
{
    const auto counter = Counter(
        DataDirectory::Machine(DataDirectory::Application(s("Zeta"), s("same.exe")) +
                               DataDirectory::Application(s("Alpha"), s("same.exe")) +
                               DataDirectory::Application(s("Other"), s("other.exe")) +
                               DataDirectory::Application(s("Case"), s("SAME.exe")) + s("<Bare/>") +
                               DataDirectory::Application(s("Unmapped"), s("unmapped.exe"))),
        DataDirectory::Mappings(DataDirectory::Mapping(14, s("Alpha")) + DataDirectory::Mapping(1, s("same.exe")) +
                                DataDirectory::Mapping(4, s("Other")) + DataDirectory::Mapping(9, s("missing.exe")) +
                                DataDirectory::Mapping(20, s("Other")) + DataDirectory::Mapping(6, s("Unmapped"))));
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());
    // All applications with the executable of the type, in the order of the machine file.
    QCOMPARE(counter->InstalledApplications(1), l("Zeta Alpha"));
    QCOMPARE(counter->InstalledApplications(14), l("Zeta Alpha"));
    QCOMPARE(counter->InstalledApplications(4), l("Other"));
    QCOMPARE(counter->InstalledApplications(20), l("Other"));
    QVERIFY(counter->InstalledApplications(9).isEmpty());
    QCOMPARE(counter->ProgramForType(9), s("missing.exe"));
    QCOMPARE(counter->FreeApplications(1), l("Zeta Alpha"));
    QVERIFY(counter->RunningApplications(1).isEmpty());
    // The Kite Echo family is served by the applications of type 4.
    QCOMPARE(counter->InstalledApplications(6), l("Other"));
    QCOMPARE(counter->FreeApplications(6), l("Other"));
    QCOMPARE(counter->ProgramForType(6), s("other.exe"));
}

void TestAppCounter::applicationIsInstalledOnce()
{
    const auto counter =
        Counter(DataDirectory::Machine(DataDirectory::Application(s("Kite"), s("a.exe")) +
                                       DataDirectory::Application(s("Kite"), s("b.exe"))),
                DataDirectory::Mappings(DataDirectory::Mapping(1, s("Kite")) + DataDirectory::Mapping(1, s("a.exe"))));
    QCOMPARE(counter->InstalledApplications(1), l("Kite"));
    counter->UpdateTypeDeviceMappings();
    QCOMPARE(counter->InstalledApplications(1), l("Kite"));
}

void TestAppCounter::updateReplacesOldContent()
{
    const auto counter =
        Counter(DataDirectory::Machine(DataDirectory::Application(s("Old"), s("old.exe"))),
                DataDirectory::Mappings(DataDirectory::Mapping(1, s("Old")) + DataDirectory::Mapping(2, s("Old"))));
    QCOMPARE(counter->InstalledApplications(2), l("Old"));
    QVERIFY(m_pData->WriteMachine(DataDirectory::Machine(DataDirectory::Application(s("New"), s("new.exe")))));
    QVERIFY(m_pData->WriteMappings(DataDirectory::Mappings(DataDirectory::Mapping(1, s("New")))));
    // The files are not read again automatically.
    QCOMPARE(counter->InstalledApplications(1), l("Old"));
    counter->UpdateInstalledApps();
    QCOMPARE(counter->InstalledList(), l("New"));
    QCOMPARE(counter->StartupTable(), (QMap<QString, QStringList>{{s("New"), l("new.exe")}}));
    QVERIFY(counter->InstalledApplications(1).isEmpty());
    counter->UpdateTypeDeviceMappings();
    QCOMPARE(counter->InstalledApplications(1), l("New"));
    QVERIFY(counter->InstalledApplications(2).isEmpty());
    QCOMPARE(counter->ProgramForType(2), QString());

    // Without a mapping file nothing is installed.
    QVERIFY(QFile::remove(m_pData->MappingFile()));
    counter->UpdateTypeDeviceMappings();
    QVERIFY(counter->InstalledApplications(1).isEmpty());
    QCOMPARE(counter->ProgramForType(1), QString());
    QCOMPARE(m_pTraces->Messages(), QStringList(CouldNotOpenMappings(m_pData->MappingFile())));
}

void TestAppCounter::tracesHaveSourceAndLine()
{
    const auto missing = Counter();
    const auto malformed = Counter(s("<Machine><A><Startup><NumParam>-1</NumParam></Startup></A>"), s("<x>"));
    const QList<TraceRecorder::Report> reports = m_pTraces->Reports();
    QSet<quint16> lines;
    for (const TraceRecorder::Report& report : reports) {
        QCOMPARE(report.kind, ErrorHandler::Trace);
        QCOMPARE(report.sourceFile, kSource);
        QVERIFY(report.line > 0);
        lines.insert(report.line);
    }
    // Two not opened, two not parsed, two XML errors, one parameter count.
    QCOMPARE(reports.size(), 7);
    QCOMPARE(lines.size(), 7);
}

void TestAppCounter::noTraceWhileTracesAreOff()
{
    m_pTraces.reset();
    m_pTraces = std::make_unique<TraceRecorder>(ErrorHandler::Assertion);
    const auto missing = Counter();
    const auto malformed = Counter(s("<Machine><A><Startup><NumParam>-1</NumParam></Startup></A>"), s("<x>"));
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());
    QCOMPARE(malformed->InstalledList(), l("A"));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestAppCounter)
#include "tst_appcounter.moc"
