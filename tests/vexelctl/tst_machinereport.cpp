// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "vexelctl/support/machinereport.h"
#include "vexelctl/support/supportreport.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

class TestMachineReport : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void reportMatchesWhatThePluginReads_data();
    void reportMatchesWhatThePluginReads();
    void reasonForAnUnreadFileIsReported();
    void placeOfAnXmlErrorIsReported();
    void executablesAreFound();
    void configuredMappingIsPreferred();
    void droppedElementsAreReported_data();
    void droppedElementsAreReported();

private:
    void Write(const char* name, const QByteArray& content) const
    {
        QFile file(m_pData->filePath(QLatin1String(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    void WriteMachine(const QByteArray& applications) const
    {
        Write("CfgVEXEL.xml", "<CfgVEXEL><Machine>" + applications + "</Machine></CfgVEXEL>");
    }
    void WriteMapping(const QByteArray& mappings) const
    {
        Write("TypeApplicationMappings.xml", "<TypeApplicationMappings>" + mappings + "</TypeApplicationMappings>");
    }
    static QByteArray Application(const QByteArray& name, const QByteArray& executable)
    {
        return "<" + name + "><Startup><exe>" + executable + "</exe></Startup></" + name + ">";
    }
    static QByteArray Mapping(const QByteArray& type, const QByteArray& application)
    {
        return "<Mapping><DeviceType>" + type + "</DeviceType><Application>" + application + "</Application></Mapping>";
    }
    QJsonObject Report(const QString& mapping = QString(), const QStringList& folders = {}) const
    {
        SupportReport report;
        ReportMachine(report, {m_pData->path(), mapping, folders});
        return QJsonDocument::fromJson(report.Json()).object().value(QLatin1String("applications")).toObject();
    }
    QStringList Dropped() const { return Report().value(QLatin1String("dropped")).toVariant().toStringList(); }

    std::unique_ptr<QTemporaryDir> m_pData;
};

void TestMachineReport::init()
{
    m_pData = std::make_unique<QTemporaryDir>();
    CfgCenter::Close();
}

void TestMachineReport::reportMatchesWhatThePluginReads_data()
{
    QTest::addColumn<QByteArray>("machine");
    QTest::addColumn<QByteArray>("mapping");

    QTest::newRow("nothing") << QByteArray() << QByteArray();
    QTest::newRow("one") << Application("A", "a") << Mapping("4", "A");
    QTest::newRow("by executable") << Application("A", "a.EXE") + Application("B", "a.EXE") << Mapping("9", "a.EXE");
    QTest::newRow("listed twice") << Application("A", "a") + Application("A", "b") << Mapping("4", "A");
    QTest::newRow("mapped twice") << Application("A", "a") + Application("B", "b")
                                  << Mapping("4", "A") + Mapping("4", "B");
    QTest::newRow("last one dropped") << Application("A", "a") << Mapping("4", "A") + Mapping("1", "Nobody");
    QTest::newRow("family") << Application("A", "a") << Mapping("5", "A") + Mapping("77", "A");
    QTest::newRow("count out of range") << QByteArray(
                                               "<A><Startup><exe>a</exe><NumParam>2000000000</NumParam></Startup></A>")
                                        << Mapping("4", "A");
    QTest::newRow("without executable") << QByteArray("<A><Startup><param>x</param></Startup></A>")
                                        << Mapping("4", "A");
    QTest::newRow("machine breaks off") << Application("A", "a") + "<B><C></B>" + Application("D", "d")
                                        << Mapping("4", "A") + Mapping("9", "D");
    QTest::newRow("mapping breaks off") << Application("A", "a") << Mapping("4", "A") + "</x>" + Mapping("9", "A");
    QTest::newRow("too many elements") << QByteArray(Application("A", "a") + QByteArray("<A/>").repeated(100'000))
                                       << Mapping("4", "A");
    QTest::newRow("entities") << QByteArray("&x;") + Application("A", "a") << Mapping("4", "A");
}

void TestMachineReport::reportMatchesWhatThePluginReads()
{
    QFETCH(const QByteArray, machine);
    QFETCH(const QByteArray, mapping);
    WriteMachine(machine);
    WriteMapping(mapping);
    CfgCenter::CreateCfg(QStringLiteral("Administration"), View::Application, QString())
        ->SetString(QStringLiteral("VexelDataDir"), m_pData->path(), 0);
    const AppCounter counter(nullptr, QStringLiteral("VexelConnectDlg"));

    const QJsonObject report = Report();
    QCOMPARE(report.value(QLatin1String("mappingFile")).toString(), counter.MappingFilePath());
    const QJsonArray types = report.value(QLatin1String("deviceTypes")).toArray();
    QCOMPARE(types.size(), Connection::kDeviceTypeCount);
    for (int type = 0; type < Connection::kDeviceTypeCount; ++type) {
        const QJsonObject row = types.at(type).toObject();
        QCOMPARE(row.value(QLatin1String("type")), QJsonValue(type));
        QCOMPARE(row.value(QLatin1String("executable")).toString(), counter.ProgramForType(type));
        QCOMPARE(row.value(QLatin1String("applications")).toInteger(), counter.InstalledApplications(type).size());
    }

    QStringList expected = counter.InstalledList();
    expected.removeDuplicates();
    QStringList names;
    const QJsonArray applications = report.value(QLatin1String("applications")).toArray();
    for (const QJsonValue& application : applications) {
        const QString name = application[QLatin1String("name")].toString();
        names.append(name);
        QStringList startList = application[QLatin1String("parameters")].toVariant().toStringList();
        if (application[QLatin1String("executable")].isString())
            startList.prepend(application[QLatin1String("executable")].toString());
        QCOMPARE(startList, counter.StartupTable().value(name));
    }
    QCOMPARE(names, expected);
}

void TestMachineReport::reasonForAnUnreadFileIsReported()
{
    // Without a machine file the mapping is not looked for.
    QCOMPARE(Report().value(QLatin1String("machineFileState")), QJsonValue(QStringLiteral("not read: no such file")));
    QCOMPARE(Report().value(QLatin1String("mappingFile")), QJsonValue(QString()));
    QCOMPARE(Report().value(QLatin1String("mappingFileState")),
             QJsonValue(QStringLiteral("not read: its path is unknown")));

    WriteMachine({});
    QVERIFY(QDir(m_pData->path()).mkdir(QStringLiteral("TypeApplicationMappings.xml")));
    QCOMPARE(Report().value(QLatin1String("machineFileState")), QJsonValue(QStringLiteral("read")));
    QCOMPARE(Report().value(QLatin1String("mappingFileState")),
             QJsonValue(QStringLiteral("not read: not a regular file")));

    QFile large(m_pData->filePath(QStringLiteral("CfgVEXEL.xml")));
    QVERIFY(large.resize(64LL * 1024 * 1024 + 1));
    QCOMPARE(Report().value(QLatin1String("machineFileState")),
             QJsonValue(QStringLiteral("not read: larger than 64 MiB")));

    Write("CfgVEXEL.xml", "<Other/>");
    QCOMPARE(Report().value(QLatin1String("machineFileState")),
             QJsonValue(QStringLiteral("read; it has no element \"Machine\"")));
}

void TestMachineReport::placeOfAnXmlErrorIsReported()
{
    WriteMachine("<A>\n  <Startup></A>");
    WriteMapping(Mapping("4", "A") + "\n<x></y>");
    for (const auto& [key, place] :
         {std::pair{"machineFileState", "in row 2 column"}, std::pair{"mappingFileState", "in row 2 column"}}) {
        const QString state = Report().value(QLatin1String(key)).toString();
        QVERIFY2(state.contains(QLatin1String(place)), qPrintable(state));
    }
}

void TestMachineReport::executablesAreFound()
{
    const QString here = QCoreApplication::applicationDirPath();
    const QString program = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    WriteMachine(Application("ByName", program.toUtf8()) + Application("ByPath", (here + u'/' + program).toUtf8()) +
                 Application("Missing", "no-such-program") + Application("Folder", here.toUtf8()) + "<None/>");
    WriteMapping({});
    const QJsonArray rows = Report(QString(), {here}).value(QLatin1String("applications")).toArray();
    QCOMPARE(rows.at(0)[QLatin1String("foundAs")], QJsonValue(here + u'/' + program));
    QCOMPARE(rows.at(1)[QLatin1String("foundAs")], QJsonValue(here + u'/' + program));
    QCOMPARE(rows.at(2)[QLatin1String("foundAs")], QJsonValue(QStringLiteral("NOT FOUND")));
    QCOMPARE(rows.at(3)[QLatin1String("foundAs")], QJsonValue(QStringLiteral("NOT FOUND")));
    QVERIFY(rows.at(4)[QLatin1String("foundAs")].isNull());
    // Searched for in the folders that were named, and nowhere else.
    const QJsonArray elsewhere = Report(QString(), {m_pData->path()}).value(QLatin1String("applications")).toArray();
    QCOMPARE(elsewhere.at(0)[QLatin1String("foundAs")], QJsonValue(QStringLiteral("NOT FOUND")));
}

void TestMachineReport::configuredMappingIsPreferred()
{
    WriteMachine(Application("A", "a"));
    WriteMapping(Mapping("4", "A"));
    Write("other.xml", "<TypeApplicationMappings>" + Mapping("9", "A") + "</TypeApplicationMappings>");
    const QString other = m_pData->filePath(QStringLiteral("other.xml"));
    const QJsonObject report = Report(other);
    QCOMPARE(report.value(QLatin1String("mappingFile")), QJsonValue(other));
    const QJsonArray types = report.value(QLatin1String("deviceTypes")).toArray();
    QVERIFY(types.at(4)[QLatin1String("executable")].isNull());
    QCOMPARE(types.at(9)[QLatin1String("executable")], QJsonValue(QStringLiteral("a")));
}

void TestMachineReport::droppedElementsAreReported_data()
{
    QTest::addColumn<QByteArray>("machine");
    QTest::addColumn<QByteArray>("mapping");
    QTest::addColumn<QStringList>("dropped");

    const auto row = [](const char* name, const QByteArray& machine, const QByteArray& mapping,
                        const QStringList& dropped) {
        QTest::newRow(name) << machine << mapping << dropped;
    };
    const QByteArray good = Application("A", "a");
    const QByteArray mapped = Mapping("4", "A");
    row("nothing", good, mapped, {});
    row("without Startup", good + "<B/>", mapped, {QStringLiteral("application \"B\": it has no \"Startup\"")});
    row("without executable", good + "<B><Startup/></B>", mapped,
        {QStringLiteral("application \"B\": its \"Startup\" names no executable")});
    row("count out of range", good + "<B><Startup><exe>b</exe><NumParam>-1</NumParam></Startup></B>", mapped,
        {QStringLiteral("application \"B\": its parameter count is out of range")});
    row("not mapped", good + Application("B", "b"), mapped,
        {QStringLiteral("application \"B\": no device type is mapped to its executable")});
    row("listed again", good + good, mapped,
        {QStringLiteral("application \"A\": listed more than once; its start descriptions are joined")});
    row("no device type", good, mapped + Mapping("four", "A"),
        {QStringLiteral("mapping to \"A\": it has no valid device type")});
    row("no application", good, mapped + Mapping("9", ""),
        {QStringLiteral("mapping of device type 9 (Heron): it names no application")});
    row("no such application", good, mapped + Mapping("9", "B"),
        {QStringLiteral("mapping of device type 9 (Heron) to \"B\": there is no such application")});
    row("application without Startup", good + "<B/>", mapped + Mapping("9", "B"),
        {QStringLiteral("mapping of device type 9 (Heron) to \"B\": the application has no usable \"Startup\""),
         QStringLiteral("application \"B\": it has no \"Startup\"")});
    row("replaced", good + Application("B", "b"), Mapping("4", "B") + mapped,
        {QStringLiteral(
             "mapping of device type 4 (Kite Echo) to \"B\": a later mapping of this device type replaces it"),
         QStringLiteral("application \"B\": no device type is mapped to its executable")});
    row("served by another type", good, mapped + Mapping("5", "A"),
        {QStringLiteral("mapping of device type 5 (Kite Ember) to \"A\": device type 4 (Kite Echo) is used instead")});
    row("unknown type", good, mapped + Mapping("99", "A"),
        {QStringLiteral("mapping of device type 99 to \"A\": no entry has this device type")});
    row("executable of nobody", good, mapped + Mapping("9", "other.exe"),
        {QStringLiteral("mapping of device type 9 (Heron) to \"other.exe\": no application has this executable")});
    row("serves only what is not used", Application("B", "b") + good, mapped + Mapping("5", "B"),
        {QStringLiteral("mapping of device type 5 (Kite Ember) to \"B\": device type 4 (Kite Echo) is used instead"),
         QStringLiteral("application \"B\": no device type is mapped to its executable")});
}

void TestMachineReport::droppedElementsAreReported()
{
    QFETCH(const QByteArray, machine);
    QFETCH(const QByteArray, mapping);
    WriteMachine(machine);
    WriteMapping(mapping);
    QTEST(Dropped(), "dropped");
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestMachineReport)
#include "tst_machinereport.moc"
