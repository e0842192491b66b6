// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/host/hostsetup.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"

// The executable of the host with the real plug-in: command line, bad input, its end.
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
    void dataDirectoryIsStoredWhenGiven();
    void tracesGoToStandardErrorAndFile();
    void startWithoutATrayShowsTheDialog();
    void requestToEndSavesAndEnds_data();
    void requestToEndSavesAndEnds();

private:
    /// A host that has to refuse its start.
    static HostSetUp::Result RunOffscreen(HostSetUp& setUp, const QStringList& arguments)
    {
        setUp.Environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        return setUp.RunHost(arguments);
    }
};

void TestVexelHost::help()
{
    HostSetUp setUp;
    const auto result = setUp.RunHost("--help");
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
    COMPARE_FAILURE(RunOffscreen(setUp, {QStringLiteral("--plugin"), plugin}), 2, hint);
    QCOMPARE(setUp.StoredText(), stored);
}

void TestVexelHost::wrongCommandLine()
{
    HostSetUp setUp;
    COMPARE_FAILURE(setUp.RunHost("--frobnicate"), 1, QLatin1String("frobnicate"));
    QVERIFY(!QFileInfo::exists(setUp.Config()));
}

void TestVexelHost::unusableDisplayIsReported()
{
    HostSetUp setUp;
    setUp.Environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("no-such-platform"));
    COMPARE_FAILURE(setUp.RunHost({}), 2, QLatin1String("no-such-platform"));
}

void TestVexelHost::unwritableConfiguration()
{
    HostSetUp setUp;
    setUp.Write(setUp.Path("file"), "a regular file");
    // The last value counts.
    COMPARE_FAILURE(RunOffscreen(setUp, Words("--config file/config")), 2, setUp.Path("file/config"));
}

void TestVexelHost::unwritableTraceFile()
{
    HostSetUp setUp;
    const QString fileName = setUp.Path("no/such/folder/trace.log");
    COMPARE_FAILURE(RunOffscreen(setUp, {QStringLiteral("--trace-file"), fileName}), 2, fileName);
}

void TestVexelHost::dataDirectoryIsStoredWhenGiven()
{
    HostSetUp setUp;
    QProcess process;
    setUp.StartDialog(process); // with the option --data
    QVERIFY(System::AskToEnd(process.processId()));
    HostSetUp::End(process);
    QVERIFY(setUp.StoredText().contains("VexelDataDir\": \"" + setUp.Data().toUtf8()));

    // A typo is not stored.
    QVERIFY(QDir().mkdir(setUp.Path("typo")));
    COMPARE_FAILURE(RunOffscreen(setUp, Words("--data typo")), 1, QLatin1String("CfgVEXEL.xml"));
    QVERIFY(setUp.StoredText().contains("VexelDataDir\": \"" + setUp.Data().toUtf8()));
}

void TestVexelHost::tracesGoToStandardErrorAndFile()
{
    HostSetUp setUp;
    // The machine file lists nothing, which the plug-in has to say.
    const QByteArray said = " trace userinterface/vexelconnectdlg/appcounter:";
    setUp.Environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    QProcess process;
    setUp.StartHost(process, "--data data --trace --trace-file trace.log");
    QByteArray errors;
    QTRY_VERIFY((errors += process.readAllStandardError()).contains("TCPServer()"));
    QVERIFY(System::AskToEnd(process.processId()));
    errors += HostSetUp::End(process).error.toUtf8();
    QVERIFY2(errors.contains(said), errors.constData());
    QFile file(setUp.Path("trace.log"));
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
    QVERIFY(file.readAll().contains(said));
}

void TestVexelHost::startWithoutATrayShowsTheDialog()
{
    HostSetUp setUp;
    if (setUp.HasDisplay())
        QSKIP("There may be a tray here.");
    setUp.Environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    QProcess process;
    setUp.StartHost(process, "--data data --hidden");
    const auto isHidden = [&setUp]() -> QJsonValue {
        const QByteArray status = setUp.Run("status --json").output.toUtf8();
        return QJsonDocument::fromJson(status).object().value(QLatin1String("hidden"));
    };
    // After some seconds in which a tray may come.
    QTRY_COMPARE_WITH_TIMEOUT(isHidden(), QJsonValue(true), 60'000);
    QTRY_COMPARE_WITH_TIMEOUT(isHidden(), QJsonValue(false), 60'000);
    QVERIFY(System::AskToEnd(process.processId()));
    QCOMPARE(HostSetUp::End(process).exitCode, 0);
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
