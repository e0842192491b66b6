#include "tests/host/hostsetup.h"
#include "tests/support/system.h"
#include "tests/support/testmain.h"

// The host's executable with the real plug-in: its command line, its lists, and what bad input gets.
class TestVexelHost : public QObject
{
    Q_OBJECT

private slots:
    void help();
    void version();
    void unusableStarts_data();
    void unusableStarts();
    void wrongCommandLine();
    void displayThatDoesNotAnswer();
    void unwritableConfiguration();
    void unwritableTraceFile();
    void failedStartsHarmNothing();
    void addAndListAsTable();
    void listAsJson();
    void addAppends();
    void addedEntriesAreFree();
    void addOfABadFileChangesNothing_data();
    void addOfABadFileChangesNothing();
    void namesCannotBreakTheTable();
    void dataDirectoryIsStoredOnlyWhenGiven();
    void tracesGoWhereAsked();
    void languageIsTaken();
    void interruptEndsAnInteractiveHost_data();
    void interruptEndsAnInteractiveHost();
};

void TestVexelHost::help()
{
    HostSetUp setUp;
    const auto result = setUp.Run({QStringLiteral("--help")});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.error, QString());
    QVERIFY(result.output.startsWith(QLatin1String("Usage: vexelhost")));
    QVERIFY(result.output.contains(QLatin1String("Exit codes:")));
    for (const QString& line : result.OutputLines())
        QVERIFY2(line.size() < 80, qPrintable(line));
    QVERIFY(!QFileInfo::exists(setUp.Config()));
}

void TestVexelHost::version()
{
    HostSetUp setUp;
    const auto result = setUp.Run({QStringLiteral("--version")});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.output, QStringLiteral("vexelhost " VEXEL_VERSION "\n"));
}

void TestVexelHost::unusableStarts_data()
{
    QTest::addColumn<QString>("plugin");
    QTest::addColumn<QString>("hint");

    QTest::newRow("missing") << QStringLiteral("/no/such/plugin.so") << QStringLiteral("/no/such/plugin.so");
    QTest::newRow("directory") << QStringLiteral(PROGRAM_DIRECTORY) << QStringLiteral("not a file");
    QTest::newRow("not a library") << QStringLiteral(PROGRAM_DIRECTORY "/../share/vexel/connections.xml")
                                   << QStringLiteral("cannot be loaded");
    QTest::newRow("without the functions") << QStringLiteral(LIBRARY_NOEXPORTS) << QStringLiteral("ARCreateEx");
    QTest::newRow("without an instance") << QStringLiteral(PLUGIN_REFUSING) << QStringLiteral("no instance");
    QTest::newRow("not available") << QStringLiteral(PLUGIN_UNAVAILABLE) << QStringLiteral("not available");
    QTest::newRow("without a dialog") << QStringLiteral(PLUGIN_PLAIN) << QStringLiteral("VexelConnectDlgGUI");
}

void TestVexelHost::unusableStarts()
{
    QFETCH(const QString, plugin);
    QFETCH(const QString, hint);
    HostSetUp setUp;
    const auto result = setUp.Run({QStringLiteral("--plugin"), plugin, QStringLiteral("--list")});
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.ErrorLines().size(), 1);
    QVERIFY2(result.error.startsWith(QLatin1String("vexelhost: ")) && result.error.contains(hint),
             qPrintable(result.error));
}

void TestVexelHost::wrongCommandLine()
{
    HostSetUp setUp;
    const auto result = setUp.Run({QStringLiteral("--frobnicate")});
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(result.ErrorLines().size(), 1);
    QVERIFY2(result.error.contains(QLatin1String("frobnicate")), qPrintable(result.error));
    QVERIFY(!QFileInfo::exists(setUp.Config()));
}

void TestVexelHost::displayThatDoesNotAnswer()
{
    HostSetUp setUp;
    setUp.Environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("no-such-platform"));
    const auto result = setUp.Run({});
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(result.ErrorLines().size(), 1);
    QVERIFY2(result.error.contains(QLatin1String("no-such-platform")), qPrintable(result.error));
}

void TestVexelHost::unwritableConfiguration()
{
    HostSetUp setUp;
    setUp.Write(setUp.Path("file"), "a regular file");
    // The last value counts.
    const auto result = setUp.Run({QStringLiteral("--config"), setUp.Path("file/config"), QStringLiteral("--list")});
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(result.ErrorLines().size(), 1);
    QVERIFY2(result.error.contains(setUp.Path("file/config")), qPrintable(result.error));
}

void TestVexelHost::unwritableTraceFile()
{
    HostSetUp setUp;
    const QString fileName = setUp.Path("no/such/folder/trace.log");
    const auto result = setUp.Run({QStringLiteral("--trace-file"), fileName, QStringLiteral("--list")});
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(result.ErrorLines().size(), 1);
    QVERIFY2(result.error.contains(fileName), qPrintable(result.error));
}

void TestVexelHost::failedStartsHarmNothing()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("one"), QStringLiteral("two")}, {QStringLiteral("two")});
    const QJsonArray before = setUp.Entries();
    QCOMPARE(before.size(), 2);
    for (const char* plugin :
         {"/no/such/plugin.so", LIBRARY_NOEXPORTS, PLUGIN_REFUSING, PLUGIN_UNAVAILABLE, PLUGIN_PLAIN})
        QCOMPARE(
            setUp.Run({QStringLiteral("--plugin"), QString::fromLatin1(plugin), QStringLiteral("--list")}).exitCode, 2);
    QCOMPARE(setUp.Run({QStringLiteral("--frobnicate")}).exitCode, 1);
    QCOMPARE(setUp.Run({QStringLiteral("--connect"), QStringLiteral("unknown")}).exitCode, 3);
    QCOMPARE(setUp.Entries(), before);
}

void TestVexelHost::addAndListAsTable()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("North mast"), QStringLiteral("Pier")}, {QStringLiteral("Pier")});
    const auto result = setUp.Run({QStringLiteral("--list")});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.error, QString());
    const QStringList lines = result.OutputLines();
    QCOMPARE(lines.size(), 3);
    for (const char* heading : {"Name", "Status", "Device Type", "Connection Type", "Device Address", "Driver Address",
                                "Link Speed", "Timeout Time", "Subsystem", "Selected"})
        QVERIFY2(lines.at(0).contains(QLatin1String(heading)), heading);
    QVERIFY2(lines.at(1).startsWith(QLatin1String("North mast  Free    Kite Echo")), qPrintable(lines.at(1)));
    QVERIFY(lines.at(1).endsWith(QLatin1String("  no")));
    QVERIFY2(lines.at(2).startsWith(QLatin1String("Pier        Free    Kite Echo")), qPrintable(lines.at(2)));
    QVERIFY(lines.at(2).endsWith(QLatin1String("  yes")));
}

void TestVexelHost::listAsJson()
{
    HostSetUp setUp;
    const QString name = QStringLiteral("\"Mast\"\n<&> \U0001F4E1");
    setUp.Fill({name}, {name});
    const QJsonArray entries = setUp.Entries();
    QCOMPARE(entries.size(), 1);
    const QJsonObject entry = entries.at(0).toObject();
    QCOMPARE(entry.value(QLatin1String("name")), QJsonValue(name));
    QCOMPARE(entry.value(QLatin1String("selected")), QJsonValue(true));
    QCOMPARE(entry.value(QLatin1String("status")), QJsonValue(0));
    QCOMPARE(entry.value(QLatin1String("statusText")), QJsonValue(QStringLiteral("Free")));
    QCOMPARE(entry.value(QLatin1String("deviceType")), QJsonValue(4));
    QCOMPARE(entry.value(QLatin1String("deviceTypeText")), QJsonValue(QStringLiteral("Kite Echo")));
    QCOMPARE(entry.value(QLatin1String("timeoutSeconds")), QJsonValue(0));
    QCOMPARE(entry.value(QLatin1String("timeoutText")), QJsonValue(QStringLiteral("No Timeout")));
}

void TestVexelHost::addAppends()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("one")});
    setUp.Write(setUp.Path("a.xml"), HostSetUp::ListDocument({QStringLiteral("two"), QStringLiteral("three")}));
    setUp.Write(setUp.Path("b.xml"), HostSetUp::ListDocument({QStringLiteral("one")}));
    // Relative to the current directory, as a person types it.
    const auto result = setUp.Run({QStringLiteral("--add"), QStringLiteral("a.xml"), QStringLiteral("--add"),
                                   QStringLiteral("b.xml"), QStringLiteral("--list")});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.OutputLines().size(), 5);
    QCOMPARE(setUp.Names(), QStringList({QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three"),
                                         QStringLiteral("one")}));
}

void TestVexelHost::addedEntriesAreFree()
{
    HostSetUp setUp;
    setUp.Write(setUp.Path("a.xml"), HostSetUp::ListDocument({QStringLiteral("one")}, {}, 1));
    const auto result = setUp.Run({QStringLiteral("--add"), setUp.Path("a.xml"), QStringLiteral("--list")});
    QVERIFY2(result.OutputLines().constLast().startsWith(QLatin1String("one   Free ")), qPrintable(result.output));
}

void TestVexelHost::addOfABadFileChangesNothing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("not XML") << QByteArray("hello");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no entry") << QByteArray("<ConnectionEntries/>");
    QTest::newRow("breaks off") << HostSetUp::ListDocument({QStringLiteral("half")}).chopped(25);
    QTest::newRow("declares entities") << QByteArray("<!DOCTYPE x [<!ENTITY a \"b\">]>") +
                                              HostSetUp::ListDocument({QStringLiteral("half")});
}

void TestVexelHost::addOfABadFileChangesNothing()
{
    QFETCH(const QByteArray, content);
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("one")}, {QStringLiteral("one")});
    const QJsonArray before = setUp.Entries();
    setUp.Write(setUp.Path("good.xml"), HostSetUp::ListDocument({QStringLiteral("two")}));
    setUp.Write(setUp.Path("bad.xml"), content);
    const auto result = setUp.Run({QStringLiteral("--add"), setUp.Path("good.xml"), QStringLiteral("--add"),
                                   setUp.Path("bad.xml"), QStringLiteral("--list")});
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.ErrorLines().size(), 1);
    QVERIFY2(result.error.contains(setUp.Path("bad.xml")), qPrintable(result.error));
    QCOMPARE(setUp.Entries(), before);

    const auto missing = setUp.Run({QStringLiteral("--add"), setUp.Path("missing.xml")});
    QCOMPARE(missing.exitCode, 2);
    QCOMPARE(missing.ErrorLines().size(), 1);
    QCOMPARE(setUp.Entries(), before);
}

void TestVexelHost::namesCannotBreakTheTable()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("two\nlines"), QString(1'000'000, QLatin1Char('x'))});
    const auto result = setUp.Run({QStringLiteral("--list")});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.OutputLines().size(), 3);
    QVERIFY(result.output.size() < 1000);
    // Only what is shown is cut.
    QCOMPARE(setUp.Names().at(1).size(), 1'000'000);
}

void TestVexelHost::dataDirectoryIsStoredOnlyWhenGiven()
{
    HostSetUp setUp;
    QCOMPARE(setUp.Run({QStringLiteral("--list")}).exitCode, 0);
    QVERIFY(!setUp.StoredText().contains("VexelDataDir"));
    QCOMPARE(setUp.Run({QStringLiteral("--list"), QStringLiteral("--data"), setUp.Data()}).exitCode, 0);
    QVERIFY(setUp.StoredText().contains("VexelDataDir\": \"" + setUp.Data().toUtf8()));
    // And it stays.
    QCOMPARE(setUp.Run({QStringLiteral("--list")}).exitCode, 0);
    QVERIFY(setUp.StoredText().contains("VexelDataDir\": \"" + setUp.Data().toUtf8()));
}

void TestVexelHost::tracesGoWhereAsked()
{
    HostSetUp setUp;
    // The data directory is empty, which the plug-in has to say.
    const QString said = QStringLiteral(" trace userinterface/vexelconnectdlg/appcounter:");
    const auto quiet = setUp.Run({QStringLiteral("--data"), setUp.Data(), QStringLiteral("--list")});
    QCOMPARE(quiet.error, QString());

    const QString fileName = setUp.Path("trace.log");
    const auto traced =
        setUp.Run({QStringLiteral("--list"), QStringLiteral("--trace"), QStringLiteral("--trace-file"), fileName});
    QVERIFY2(traced.error.contains(said), qPrintable(traced.error));
    QVERIFY(!traced.output.contains(said));
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
    QCOMPARE(QString::fromUtf8(file.readAll()), traced.error);

    const auto intoFile = setUp.Run({QStringLiteral("--list"), QStringLiteral("--trace-file"), fileName});
    QCOMPARE(intoFile.error, QString());
    QVERIFY(file.readAll().contains(said.toUtf8()));
}

void TestVexelHost::languageIsTaken()
{
    HostSetUp setUp;
    const auto german = setUp.Run({QStringLiteral("--list"), QStringLiteral("--language"), QStringLiteral("de_AT")});
    QCOMPARE(german.exitCode, 0);
    QVERIFY2(german.output.contains(QStringLiteral("Ger\u00e4tetyp")), qPrintable(german.output));
    // Without a translation the source texts are shown.
    const auto icelandic = setUp.Run({QStringLiteral("--list"), QStringLiteral("--language"), QStringLiteral("is_IS")});
    QCOMPARE(icelandic.exitCode, 0);
    QVERIFY2(icelandic.output.contains(QLatin1String("Device Type")), qPrintable(icelandic.output));
}

void TestVexelHost::interruptEndsAnInteractiveHost_data()
{
    QTest::addColumn<QString>("signal");
    for (const QString& name : System::RequestsToEnd())
        QTest::newRow(qPrintable(name)) << name;
}

void TestVexelHost::interruptEndsAnInteractiveHost()
{
    QFETCH(const QString, signal);
    HostSetUp setUp;
    setUp.Environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    QProcess process;
    setUp.Start(process, {QStringLiteral("--data"), setUp.Data(), QStringLiteral("--trace")});
    // The plug-in is there: it has said that the data directory is empty.
    QByteArray said;
    QTRY_VERIFY((said += process.readAllStandardError()).contains("UpdateTypeDeviceMappings"));
    QVERIFY(System::AskToEnd(process.processId(), signal));
    QCOMPARE(HostSetUp::End(process).exitCode, 0);
    // Saved: the filter's settings, the list, and the directory that was given.
    for (const char* part : {"FilterPattern", "ModelMimeData", "VexelDataDir"})
        QVERIFY2(setUp.StoredText().contains(part), part);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelHost)
#include "tst_vexelhost.moc"
