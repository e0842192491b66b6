#include "tests/host/hostsetup.h"
#include "tests/support/system.h"
#include "tests/support/testmain.h"

// The executable of the host with the real plug-in: command line, lists, bad input.
class TestVexelHost : public QObject
{
    Q_OBJECT

private slots:
    void help();
    void unusablePluginIsRefused_data();
    void unusablePluginIsRefused();
    void wrongCommandLine();
    void unusableDisplayIsReported();
    void unwritableConfiguration();
    void unwritableTraceFile();
    void addAndListAsTable();
    void listAsJson();
    void dataDirectoryIsStoredWhenGiven();
    void tracesGoToStandardErrorAndFile();
    void languageIsApplied();
    void requestToEndSavesAndEnds_data();
    void requestToEndSavesAndEnds();
};

void TestVexelHost::help()
{
    HostSetUp setUp;
    const auto result = setUp.Run("--help");
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.error, QString());
    QVERIFY(result.output.startsWith(QLatin1String("Usage: vexelhost")));
    QVERIFY(result.output.contains(QLatin1String("Exit codes:")));
    for (const QString& line : result.OutputLines())
        QVERIFY2(line.size() < 80, qPrintable(line));
    QVERIFY(!QFileInfo::exists(setUp.Config()));
}

void TestVexelHost::unusablePluginIsRefused_data()
{
    QTest::addColumn<QString>("plugin");
    QTest::addColumn<QString>("hint");

    QTest::newRow("missing") << QStringLiteral("/no/such/plugin.so") << QStringLiteral("/no/such/plugin.so");
    QTest::newRow("without an instance") << QStringLiteral(PLUGIN_REFUSING) << QStringLiteral("no instance");
    QTest::newRow("not available") << QStringLiteral(PLUGIN_UNAVAILABLE) << QStringLiteral("not available");
    QTest::newRow("without a dialog") << QStringLiteral(PLUGIN_PLAIN) << QStringLiteral("VexelConnectDlgGUI");
}

void TestVexelHost::unusablePluginIsRefused()
{
    QFETCH(const QString, plugin);
    QFETCH(const QString, hint);
    HostSetUp setUp;
    setUp.Fill("one");
    const QByteArray stored = setUp.StoredText();
    COMPARE_FAILURE(setUp.Run({QStringLiteral("--plugin"), plugin, QStringLiteral("--list")}), 2, hint);
    QCOMPARE(setUp.StoredText(), stored);
}

void TestVexelHost::wrongCommandLine()
{
    HostSetUp setUp;
    COMPARE_FAILURE(setUp.Run("--frobnicate"), 1, QLatin1String("frobnicate"));
    QVERIFY(!QFileInfo::exists(setUp.Config()));
}

void TestVexelHost::unusableDisplayIsReported()
{
    HostSetUp setUp;
    setUp.Environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("no-such-platform"));
    COMPARE_FAILURE(setUp.Run({}), 2, QLatin1String("no-such-platform"));
}

void TestVexelHost::unwritableConfiguration()
{
    HostSetUp setUp;
    setUp.Write(setUp.Path("file"), "a regular file");
    // The last value counts.
    COMPARE_FAILURE(setUp.Run("--config file/config --list"), 2, setUp.Path("file/config"));
}

void TestVexelHost::unwritableTraceFile()
{
    HostSetUp setUp;
    const QString fileName = setUp.Path("no/such/folder/trace.log");
    COMPARE_FAILURE(setUp.Run({QStringLiteral("--trace-file"), fileName, QStringLiteral("--list")}), 1, fileName);
}

void TestVexelHost::addAndListAsTable()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("North mast"), QStringLiteral("Pier")}, {QStringLiteral("Pier")});
    const auto result = setUp.Run("--list");
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

void TestVexelHost::dataDirectoryIsStoredWhenGiven()
{
    HostSetUp setUp;
    QCOMPARE(setUp.Run("--list").exitCode, 0);
    QVERIFY(!setUp.StoredText().contains("VexelDataDir"));
    QCOMPARE(setUp.Run("--list --data data").exitCode, 0);
    QVERIFY(setUp.StoredText().contains("VexelDataDir\": \"" + setUp.Data().toUtf8()));
    // And it stays.
    QCOMPARE(setUp.Run("--list").exitCode, 0);
    QVERIFY(setUp.StoredText().contains("VexelDataDir\": \"" + setUp.Data().toUtf8()));
}

void TestVexelHost::tracesGoToStandardErrorAndFile()
{
    HostSetUp setUp;
    // The data directory is empty, which the plug-in has to say.
    const QString said = QStringLiteral(" trace userinterface/vexelconnectdlg/appcounter:");
    const auto quiet = setUp.Run("--data data --list");
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

void TestVexelHost::languageIsApplied()
{
    HostSetUp setUp;
    const auto german = setUp.Run("--list --language de_AT");
    QCOMPARE(german.exitCode, 0);
    QVERIFY2(german.output.contains(QStringLiteral("Ger\u00e4tetyp")), qPrintable(german.output));
    // Without a translation the source texts are shown.
    const auto icelandic = setUp.Run("--list --language is_IS");
    QCOMPARE(icelandic.exitCode, 0);
    QVERIFY2(icelandic.output.contains(QLatin1String("Device Type")), qPrintable(icelandic.output));
}

void TestVexelHost::requestToEndSavesAndEnds_data()
{
    QTest::addColumn<QString>("signal");
    for (const QString& name : System::RequestsToEnd())
        QTest::newRow(qPrintable(name)) << name;
}

void TestVexelHost::requestToEndSavesAndEnds()
{
    QFETCH(const QString, signal);
    HostSetUp setUp;
    QProcess process;
    setUp.StartDialog(process);
    QVERIFY(System::AskToEnd(process.processId(), signal));
    QCOMPARE(HostSetUp::End(process).exitCode, 0);
    // Saved: the filter's settings, the list, and the directory that was given.
    for (const char* part : {"FilterPattern", "ModelMimeData", "VexelDataDir"})
        QVERIFY2(setUp.StoredText().contains(part), part);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelHost)
#include "tst_vexelhost.moc"
