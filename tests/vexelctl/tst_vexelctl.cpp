// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/host/hostsetup.h"
#include "tests/support/testmain.h"

// The executable of vexelctl: what it prints, and its options of every command.
class TestVexelCtl : public QObject
{
    Q_OBJECT

private slots:
    void help();
    void unusablePluginIsRefused();
    void wrongCommandLine();
    void unwritableConfiguration();
    void unwritableTraceFile();
    void listAsTable();
    void listAsJson();
    void dataDirectoryIsStoredWhenGiven();
    void tracesGoToStandardErrorAndFile();
    void languageIsApplied();
    void failedTraceFileRenameIsReportedOnce();
};

namespace {

/// Runs vexelctl without the option --config.
HostSetUp::Result Plain(HostSetUp& setUp, const char* arguments)
{
    QProcess process;
    process.setProcessEnvironment(setUp.Environment());
    process.start(QStringLiteral(VEXELCTL), Words(arguments));
    return HostSetUp::End(process);
}

} // namespace

void TestVexelCtl::help()
{
    HostSetUp setUp;
    const auto result = Plain(setUp, "--help");
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.error, QString());
    QVERIFY(result.output.startsWith(QLatin1String("Usage: vexelctl")));
    QVERIFY(result.output.contains(QLatin1String("Exit codes:")));
    for (const QString& line : result.OutputLines())
        QVERIFY2(line.size() < 80, qPrintable(line));
    QVERIFY(!QFileInfo::exists(setUp.Config()));
}

void TestVexelCtl::unusablePluginIsRefused()
{
    HostSetUp setUp;
    setUp.Fill("one");
    const QByteArray stored = setUp.StoredText();
    COMPARE_FAILURE(setUp.Run("screenshot a.png --plugin no-such-plugin.so"), 2, QLatin1String("no-such-plugin.so"));
    QCOMPARE(setUp.StoredText(), stored);
}

void TestVexelCtl::wrongCommandLine()
{
    HostSetUp setUp;
    COMPARE_FAILURE(setUp.Run("list --frobnicate"), 1, QLatin1String("frobnicate"));
    COMPARE_FAILURE(Plain(setUp, "lst"), 1, QLatin1String("did you mean \"list\"?"));
    QVERIFY(!QFileInfo::exists(setUp.Config()));
}

void TestVexelCtl::unwritableConfiguration()
{
    HostSetUp setUp;
    setUp.Write(setUp.Path("file"), "a regular file");
    setUp.WriteList("list.xml", "mast");
    // The last value counts.
    COMPARE_FAILURE(setUp.Run("add --config file/config list.xml"), 2, setUp.Path("file/config"));
}

void TestVexelCtl::unwritableTraceFile()
{
    HostSetUp setUp;
    const QString fileName = setUp.Path("no/such/folder/trace.log");
    COMPARE_FAILURE(setUp.Run({QStringLiteral("list"), QStringLiteral("--trace-file"), fileName}), 2, fileName);
}

void TestVexelCtl::listAsTable()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("North mast"), QStringLiteral("Pier")}, {QStringLiteral("Pier")});
    const auto result = setUp.Run("list");
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

void TestVexelCtl::listAsJson()
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

void TestVexelCtl::dataDirectoryIsStoredWhenGiven()
{
    HostSetUp setUp;
    setUp.WriteList("list.xml", "mast");
    QCOMPARE(setUp.Run("add list.xml").exitCode, 0);
    QVERIFY(!setUp.StoredText().contains("VexelDataDir"));
    QCOMPARE(setUp.Run("add --data data list.xml").exitCode, 0);
    QVERIFY(setUp.StoredText().contains("VexelDataDir\": \"" + setUp.Data().toUtf8()));
    // And it stays.
    QCOMPARE(setUp.Run("import list.xml").exitCode, 0);
    QVERIFY(setUp.StoredText().contains("VexelDataDir\": \"" + setUp.Data().toUtf8()));
    // One without the machine's file needs more.
    QVERIFY(QDir().mkdir(setUp.Path("empty")));
    COMPARE_FAILURE(setUp.Run("add --data empty list.xml"), 1, QLatin1String("CfgVEXEL.xml"));
    QCOMPARE(setUp.Run("add --data empty --force list.xml").exitCode, 0);
    QVERIFY(setUp.StoredText().contains("VexelDataDir\": \"" + setUp.Path("empty").toUtf8()));
}

void TestVexelCtl::tracesGoToStandardErrorAndFile()
{
    HostSetUp setUp;
    // The machine file lists nothing, which the plug-in has to say.
    const QString said = QStringLiteral(" trace userinterface/vexelconnectdlg/appcounter:");
    setUp.Fill("mast");
    QCOMPARE(setUp.Run("screenshot a.png").error, QString());

    const auto traced = setUp.Run("screenshot a.png --trace --trace-file trace.log");
    QVERIFY2(traced.error.contains(said), qPrintable(traced.error));
    QVERIFY(!traced.output.contains(said));
    QFile file(setUp.Path("trace.log"));
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
    QCOMPARE(QString::fromUtf8(file.readAll()), traced.error);

    const auto intoFile = setUp.Run("screenshot a.png --trace-file trace.log");
    QCOMPARE(intoFile.error, QString());
    QVERIFY(file.readAll().contains(said.toUtf8()));
}

void TestVexelCtl::languageIsApplied()
{
    HostSetUp setUp;
    setUp.Fill("mast");
    const auto german = setUp.Run("list --language de_AT");
    QCOMPARE(german.exitCode, 0);
    QVERIFY2(german.output.contains(QStringLiteral("Ger\u00e4tetyp")), qPrintable(german.output));
    for (const QString& text : {QStringLiteral("Frei"), QStringLiteral("Ausgew\u00e4hlt"), QStringLiteral("nein")})
        QVERIFY2(german.output.contains(text), qPrintable(german.output));
    // Without a translation the source texts are shown.
    const auto icelandic = setUp.Run("list --language is_IS");
    QCOMPARE(icelandic.exitCode, 0);
    QVERIFY2(icelandic.output.contains(QLatin1String("Device Type")), qPrintable(icelandic.output));
    // What programs read does not change.
    QCOMPARE(setUp.Run("list --json --language de_AT").output, setUp.Run("list --json --language en").output);
}

void TestVexelCtl::failedTraceFileRenameIsReportedOnce()
{
    HostSetUp setUp;
    setUp.Fill("mast");
    constexpr qint64 full = 10LL * 1024 * 1024;
    setUp.Write(setUp.Path("trace.log"), QByteArray(full, '\n'));
    QVERIFY(QDir().mkdir(setUp.Path("trace.log.1")));
    const auto result = setUp.Run("screenshot a.png --trace-file trace.log");
    COMPARE_NOTICE(result, QDir::toNativeSeparators(setUp.Path("trace.log.1")));
    QVERIFY(QFileInfo(setUp.Path("trace.log")).size() > full);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelCtl)
#include "tst_vexelctl.moc"
