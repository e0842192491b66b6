// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"
#include "userinterface/kitecontrol/connectdata.h"

#include "tests/kitecontrol/records.h"
#include "tests/support/confignodes.h"
#include "tests/support/files.h"
#include "tests/support/system/system.h"
#include "tests/support/waitforend.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

const QString kProgram = QStringLiteral(KITECONTROL_PROGRAM);
const QString kBravoProgram = QStringLiteral(KITEBRAVOCONTROL_PROGRAM);

QMap<QString, QByteArray> FilesBelow(const QString& directory)
{
    QMap<QString, QByteArray> files;
    QDirIterator walk(directory, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden,
                      QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QString path = walk.next();
        files[path] = Files::Read(path);
    }
    return files;
}

} // namespace

/// The sample application, started as the host starts it.
class TestKiteControl : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void printsReportAndExits();
    void otherApplicationFindsRecordByAddress();
    void oldRecordIsReadButNotChanged();
    void damagedConfigurationIsNotChanged();
    void readOnlyConfigurationIsRead();
    void missingConfigurationIsReported();
    void anyStationNameIsFound_data();
    void anyStationNameIsFound();
    void reportFileIsWritten();
    void missingReportFolderIsReported();
    void runsUntilTerminated();
    void invalidSecondsAreReported();
    void helpAndVersionNeedNoDisplay_data();
    void helpAndVersionNeedNoDisplay();
    void entryMayBeCalledAsAnOption();

private:
    void WriteStore(const std::vector<ConnectData>& records);
    /// Starts `program`, waits for its end and stores its output in `m_printed` and `m_sErrors`.
    void Run(const QString& program, const QStringList& arguments);
    static QStringList ServerArguments(const QString& station);

    std::unique_ptr<QTemporaryDir> m_pDirectory;
    QString m_sStore;
    QProcessEnvironment m_environment;
    QStringList m_printed;
    QString m_sErrors;
};

void TestKiteControl::init()
{
    m_pDirectory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_pDirectory->isValid());
    m_sStore = m_pDirectory->filePath(QStringLiteral("store"));
    m_environment = QProcessEnvironment::systemEnvironment();
    m_environment.insert(QStringLiteral("VEXEL_CONFIG_DIR"), m_sStore);
    m_environment.insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("0.05"));
    m_environment.remove(QStringLiteral("KITECONTROL_REPORT_DIR"));
}

void TestKiteControl::cleanup()
{
    CfgCenter::Close();
    m_pDirectory.reset();
}

void TestKiteControl::WriteStore(const std::vector<ConnectData>& records)
{
    QVERIFY(CfgCenter::Open(m_sStore));
    ICfg* const document = ConfigNodes::LegacyDocument();
    for (const ConnectData& record : records)
        record.Write(document);
    document->SetString(QStringLiteral("ConnectionCount"), QString::number(records.size()), 0);
    QVERIFY(CfgCenter::SaveDocument());
}

void TestKiteControl::Run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(program, arguments);
    QVERIFY2(WaitForEnd(process), qPrintable(process.errorString()));
    m_sErrors = QString::fromUtf8(process.readAllStandardError());
    m_printed = QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0, qPrintable(m_sErrors));
}

QStringList TestKiteControl::ServerArguments(const QString& station)
{
    return {QStringLiteral("KiteControl:XMsgDlg.dll"), QStringLiteral("Server"), station};
}

void TestKiteControl::printsReportAndExits()
{
    WriteStore(Records().Add("Other", "Kite Echo").Add("Mast north", "Plover One", "192.0.2.4").List());
    Run(kProgram, ServerArguments(QStringLiteral("Mast north")));
    // tst_launchreport tests all lines.
    QCOMPARE(m_printed.value(0), QStringLiteral("application: KiteControl"));
    QCOMPARE(m_printed.value(1),
             QStringLiteral("command line: kitecontrol KiteControl:XMsgDlg.dll Server \"Mast north\""));
    QCOMPARE(m_printed.value(2), QStringLiteral("configuration: ") + m_sStore);
    QCOMPARE(m_printed.value(4), QStringLiteral("finding: ConnectData1 matches this command line"));
    QCOMPARE(m_printed.constLast(), QStringLiteral("type category: 4"));
}

void TestKiteControl::otherApplicationFindsRecordByAddress()
{
    WriteStore(Records().Add("Fjord", "Kite Fjord", "192.0.2.4").Add("Harbour", "Kite Bravo", "192.0.2.4").List());
    Run(kBravoProgram, {QStringLiteral("KiteBravoControl:XMsgDlg.dll"), QStringLiteral("Server"),
                        QStringLiteral("Connection=192.0.2.4:27061")});
    QVERIFY(m_printed.contains(QStringLiteral("command line: kitebravocontrol KiteBravoControl:XMsgDlg.dll Server "
                                              "Connection=192.0.2.4:27061")));
    QVERIFY2(m_printed.contains(QStringLiteral("station name: Harbour")), qPrintable(m_printed.join(u'|')));
}

void TestKiteControl::oldRecordIsReadButNotChanged()
{
    WriteStore(Records().Add("replaced", "x").List());
    {
        ConfigNodes::LegacyDocument()->Remove(QStringLiteral("ConnectData0"), 0);
        const auto node = ConfigNodes::LegacyRecord(0);
        node->SetString(QStringLiteral("StationName"), QStringLiteral("Old mast"), 0);
        node->SetString(QStringLiteral("Type"), QStringLiteral("Kite Echo/Ember"), 0);
        node->SetString(QStringLiteral("StationAddress"), QStringLiteral("10.0.0.5"), 0);
        node->SetString(QStringLiteral("MultiChannelServer"), QStringLiteral("0"), 0);
        QVERIFY(CfgCenter::SaveDocument());
    }
    const QMap<QString, QByteArray> before = FilesBelow(m_sStore);
    Run(kProgram, ServerArguments(QStringLiteral("Old mast")));
    QVERIFY(m_printed.contains(QStringLiteral("device type: Kite Echo/Ember")));
    QVERIFY(m_printed.contains(QStringLiteral("device address: 10.0.0.5")));
    // The old keys are removed in memory only.
    QCOMPARE(FilesBelow(m_sStore), before);
}

void TestKiteControl::damagedConfigurationIsNotChanged()
{
    WriteStore(Records().Add("Mast", "Kite Echo").List());
    CfgCenter::Close();
    const QStringList paths = FilesBelow(m_sStore).keys();
    int damaged = 0;
    for (const QString& path : paths)
        if (Files::Write(path, "[ConnectData0\nthis is no configuration\n\x01\xff"))
            ++damaged;
    QVERIFY(damaged > 0);
    const QMap<QString, QByteArray> before = FilesBelow(m_sStore);
    Run(kProgram, ServerArguments(QStringLiteral("Mast")));
    QVERIFY(m_printed.contains(QStringLiteral("finding: the records cannot be read")));
    QVERIFY(!m_printed.contains(QStringLiteral("record: ConnectData0")));
    QCOMPARE(FilesBelow(m_sStore), before);
}

void TestKiteControl::readOnlyConfigurationIsRead()
{
    WriteStore(Records().Add("Mast", "Kite Echo").List());
    CfgCenter::Close();
    const QMap<QString, QByteArray> before = FilesBelow(m_sStore);
    const QFile::Permissions former = QFile::permissions(m_sStore);
    QVERIFY(QFile::setPermissions(m_sStore, QFile::ReadOwner | QFile::ExeOwner));
    Run(kProgram, ServerArguments(QStringLiteral("Mast")));
    QVERIFY(QFile::setPermissions(m_sStore, former));
    QVERIFY2(m_printed.contains(QStringLiteral("record: ConnectData0")), qPrintable(m_printed.join(u'|')));
    QCOMPARE(FilesBelow(m_sStore), before);
}

void TestKiteControl::missingConfigurationIsReported()
{
    m_environment.remove(QStringLiteral("VEXEL_CONFIG_DIR"));
    Run(kProgram, ServerArguments(QStringLiteral("Mast")));
    QVERIFY(m_printed.contains(QStringLiteral("finding: no configuration is known (VEXEL_CONFIG_DIR is not set)")));

    m_environment.insert(QStringLiteral("VEXEL_CONFIG_DIR"), m_sStore);
    Run(kProgram, ServerArguments(QStringLiteral("Mast")));
    QVERIFY(m_printed.contains(QStringLiteral("finding: the configuration directory does not exist")));
    QVERIFY(!QDir(m_sStore).exists());
}

void TestKiteControl::anyStationNameIsFound_data()
{
    QTest::addColumn<QString>("station");
    QTest::newRow("an option of Qt") << QStringLiteral("-style");
    QTest::newRow("an option with a value") << QStringLiteral("-platform=none");
    QTest::newRow("markup and quotes") << QStringLiteral("<b>\"Mast\"</b> & 'co' %1");
    QTest::newRow("non-ASCII") << QStringLiteral("H\u00fcgel \u03a9 \U0001F4E1");
    QTest::newRow("line break") << QStringLiteral("two\nlines");
    QTest::newRow("empty") << QStringLiteral("");
}

void TestKiteControl::anyStationNameIsFound()
{
    QFETCH(QString, station);
    Records records;
    records.Add("Other", "Kite Echo").Add(qUtf8Printable(station), "Kite Echo");
    WriteStore(records.List());
    Run(kProgram, ServerArguments(station));
    QVERIFY2(m_printed.contains(QStringLiteral("record: ConnectData1")), qPrintable(m_printed.join(u'|')));
}

void TestKiteControl::reportFileIsWritten()
{
    WriteStore(Records().Add("Mast", "Kite Echo").List());
    const QDir reports(m_pDirectory->filePath(QStringLiteral("reports")));
    QVERIFY(reports.mkpath(QStringLiteral(".")));
    m_environment.insert(QStringLiteral("KITECONTROL_REPORT_DIR"), reports.path());

    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(kProgram, ServerArguments(QStringLiteral("Mast")));
    QVERIFY(process.waitForStarted());
    const qint64 id = process.processId();
    QVERIFY(WaitForEnd(process));

    const QString name = QStringLiteral("kitecontrol-%1.txt").arg(id);
    QCOMPARE(reports.entryList(QDir::Files | QDir::Hidden), QStringList{name});
    const QByteArray report = Files::Read(reports.filePath(name));
    QVERIFY(!report.isEmpty());
    QCOMPARE(report, process.readAllStandardOutput());
}

void TestKiteControl::missingReportFolderIsReported()
{
    m_environment.insert(QStringLiteral("KITECONTROL_REPORT_DIR"), m_pDirectory->filePath(QStringLiteral("missing")));
    Run(kProgram, ServerArguments(QStringLiteral("Mast")));
    QVERIFY2(m_sErrors.contains(QLatin1String("could not write a report")), qPrintable(m_sErrors));
    QVERIFY(!m_printed.isEmpty());
}

void TestKiteControl::runsUntilTerminated()
{
#ifdef Q_OS_WIN
    if (m_environment.value(QStringLiteral("QT_QPA_PLATFORM")) == QLatin1String("offscreen"))
        QSKIP("A program is asked to end by a message to its windows, and there are none on the offscreen platform.");
#endif
    m_environment.remove(QStringLiteral("KITECONTROL_SECONDS"));
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(kProgram, ServerArguments(QStringLiteral("Mast")));
    // The output is available while it runs.
    QByteArray printed;
    QTRY_VERIFY_WITH_TIMEOUT((printed += process.readAllStandardOutput()).contains("finding: "), 60000);
    QCOMPARE(process.state(), QProcess::Running);
    // Repeated, because on Windows the request is lost while the program has no window yet.
    QTRY_COMPARE_WITH_TIMEOUT((process.terminate(), process.state()), QProcess::NotRunning, 60000);
}

void TestKiteControl::invalidSecondsAreReported()
{
    m_environment.insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("soon"));
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(kProgram, ServerArguments(QStringLiteral("Mast")));
    QByteArray errors;
    QTRY_VERIFY_WITH_TIMEOUT((errors += process.readAllStandardError()).contains("KITECONTROL_SECONDS"), 60000);
    process.kill();
    QVERIFY(WaitForEnd(process));
}

void TestKiteControl::helpAndVersionNeedNoDisplay_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("start");
    const QString version = QStringLiteral(" " VEXEL_VERSION "\n");
    QTest::newRow("help") << kProgram << QStringLiteral("--help") << QStringLiteral("Usage: kitecontrol ");
    QTest::newRow("version") << kProgram << QStringLiteral("--version") << QStringLiteral("kitecontrol") + version;
    QTest::newRow("help of another application")
        << kBravoProgram << QStringLiteral("--help") << QStringLiteral("Usage: kitebravocontrol ");
    QTest::newRow("version of another application")
        << kBravoProgram << QStringLiteral("--version") << QStringLiteral("kitebravocontrol") + version;
}

void TestKiteControl::helpAndVersionNeedNoDisplay()
{
    QFETCH(const QString, program);
    QFETCH(const QString, option);
    QFETCH(const QString, start);
    System::TakeDisplay(m_environment);
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(program, {option});
    QVERIFY2(WaitForEnd(process), qPrintable(process.errorString()));
    const QString printed = QString::fromUtf8(process.readAllStandardOutput());
    QVERIFY2(printed.startsWith(start), qPrintable(printed));
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
}

void TestKiteControl::entryMayBeCalledAsAnOption()
{
    for (const QString& station : {QStringLiteral("--help"), QStringLiteral("--version")}) {
        WriteStore(Records().Add(qUtf8Printable(station), "Kite Echo").List());
        Run(kProgram, {station, QStringLiteral("Server"), station});
        QVERIFY2(m_printed.contains(QStringLiteral("command line: kitecontrol %1 Server %1").arg(station)),
                 qPrintable(m_printed.join(u'|')));
        QVERIFY(m_printed.contains(QStringLiteral("record: ConnectData0")));
    }
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestKiteControl)
#include "tst_kitecontrol.moc"
