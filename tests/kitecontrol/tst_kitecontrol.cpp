#include "userinterface/kitecontrol/connectdata.h"

#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "tests/kitecontrol/records.h"

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
        QFile file(walk.next());
        files[file.fileName()] = walk.fileInfo().isFile() && file.open(QIODevice::ReadOnly) ? file.readAll() : "";
    }
    return files;
}

} // namespace

/// The sample application as a process of its own, as the host starts it.
class TestKiteControl : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void printsItsRecordAndEnds();
    void relativeFindsItsRecordByAddress();
    void recordOfTheOldestFormIsReadAndLeft();
    void leavesADamagedConfigurationAlone();
    void readsAReadOnlyConfiguration();
    void worksWithoutConfiguration();
    void takesEveryNameAsItIs_data();
    void takesEveryNameAsItIs();
    void writesAReportFile();
    void reportFolderMissing();
    void runsUntilTerminated();
    void complainsAboutSeconds();

private:
    void WriteStore(const std::vector<ConnectData>& records);
    /// Starts `program` and waits for its end; what it printed is in `m_printed` and `m_sErrors` then.
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
    ICfg* const document = CfgCenter::CreateCfg(QStringLiteral("KiteResources/ConnectData"), View::Shared, QString());
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
    QVERIFY2(process.waitForFinished(60000), qPrintable(process.errorString()));
    m_sErrors = QString::fromUtf8(process.readAllStandardError());
    m_printed = QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0, qPrintable(m_sErrors));
}

QStringList TestKiteControl::ServerArguments(const QString& station)
{
    return {QStringLiteral("KiteControl:XMsgDlg.dll"), QStringLiteral("Server"), station};
}

void TestKiteControl::printsItsRecordAndEnds()
{
    WriteStore(Records().Add("Other", "Kite Echo").Add("Mast north", "Plover One", "192.0.2.4").List());
    Run(kProgram, ServerArguments(QStringLiteral("Mast north")));
    const QStringList expected{
        QStringLiteral("application: KiteControl"),
        QStringLiteral("command line: kitecontrol KiteControl:XMsgDlg.dll Server \"Mast north\""),
        QStringLiteral("configuration: ") + m_sStore,
        QStringLiteral("records: 2"),
        QStringLiteral("finding: ConnectData1 belongs to this command line"),
        QStringLiteral("record: ConnectData1"),
        QStringLiteral("station name: Mast north"),
        QStringLiteral("device type: Plover One"),
        QStringLiteral("connection type: 1 (remote)"),
        QStringLiteral("device address: "),
        QStringLiteral("remote address: 192.0.2.4"),
        QStringLiteral("connection speed: 0 (LAN)"),
        QStringLiteral("time-out: none"),
        QStringLiteral("type category: 4"),
    };
    QCOMPARE(m_printed, expected);
}

void TestKiteControl::relativeFindsItsRecordByAddress()
{
    WriteStore(Records().Add("Fjord", "Kite Fjord", "192.0.2.4").Add("Harbour", "Kite Bravo", "192.0.2.4").List());
    Run(kBravoProgram, {QStringLiteral("KiteBravoControl:XMsgDlg.dll"), QStringLiteral("Server"),
                        QStringLiteral("Connection=192.0.2.4:27061")});
    QVERIFY(m_printed.contains(QStringLiteral("command line: kitebravocontrol KiteBravoControl:XMsgDlg.dll Server "
                                              "Connection=192.0.2.4:27061")));
    QVERIFY2(m_printed.contains(QStringLiteral("station name: Harbour")), qPrintable(m_printed.join(u'|')));
}

void TestKiteControl::recordOfTheOldestFormIsReadAndLeft()
{
    WriteStore(Records().Add("replaced", "x").List());
    {
        ICfg* const document =
            CfgCenter::CreateCfg(QStringLiteral("KiteResources/ConnectData"), View::Shared, QString());
        document->Remove(QStringLiteral("ConnectData0"), 0);
        const std::unique_ptr<ICfg> node(document->OpenChild(QStringLiteral("ConnectData0"), 0));
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
    // The migration stays in the reader's memory.
    QCOMPARE(FilesBelow(m_sStore), before);
}

void TestKiteControl::leavesADamagedConfigurationAlone()
{
    WriteStore(Records().Add("Mast", "Kite Echo").List());
    CfgCenter::Close();
    const QStringList paths = FilesBelow(m_sStore).keys();
    int damaged = 0;
    for (const QString& path : paths) {
        QFile file(path);
        if (QFileInfo(path).isFile() && file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            file.write("[ConnectData0\nthis is no configuration\n\x01\xff");
            ++damaged;
        }
    }
    QVERIFY(damaged > 0);
    const QMap<QString, QByteArray> before = FilesBelow(m_sStore);
    Run(kProgram, ServerArguments(QStringLiteral("Mast")));
    QVERIFY(m_printed.contains(QStringLiteral("finding: the configuration directory cannot be read")));
    QVERIFY(!m_printed.contains(QStringLiteral("record: ConnectData0")));
    QCOMPARE(FilesBelow(m_sStore), before);
}

void TestKiteControl::readsAReadOnlyConfiguration()
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

void TestKiteControl::worksWithoutConfiguration()
{
    m_environment.remove(QStringLiteral("VEXEL_CONFIG_DIR"));
    Run(kProgram, ServerArguments(QStringLiteral("Mast")));
    QVERIFY(m_printed.contains(QStringLiteral("finding: no configuration is known (VEXEL_CONFIG_DIR is not set)")));

    m_environment.insert(QStringLiteral("VEXEL_CONFIG_DIR"), m_sStore);
    Run(kProgram, ServerArguments(QStringLiteral("Mast")));
    QVERIFY(m_printed.contains(QStringLiteral("finding: the configuration directory does not exist")));
    QVERIFY(!QDir(m_sStore).exists());
}

void TestKiteControl::takesEveryNameAsItIs_data()
{
    QTest::addColumn<QString>("station");
    QTest::newRow("an option of the toolkit") << QStringLiteral("-style");
    QTest::newRow("an option with a value") << QStringLiteral("-platform=none");
    QTest::newRow("markup and quotes") << QStringLiteral("<b>\"Mast\"</b> & 'co' %1");
    QTest::newRow("beyond ASCII") << QStringLiteral("H\u00fcgel \u03a9 \U0001F4E1");
    QTest::newRow("line break") << QStringLiteral("two\nlines");
    QTest::newRow("empty") << QStringLiteral("");
}

void TestKiteControl::takesEveryNameAsItIs()
{
    QFETCH(QString, station);
    Records records;
    records.Add("Other", "Kite Echo").Add(qUtf8Printable(station), "Kite Echo");
    WriteStore(records.List());
    Run(kProgram, ServerArguments(station));
    QVERIFY2(m_printed.contains(QStringLiteral("record: ConnectData1")), qPrintable(m_printed.join(u'|')));
}

void TestKiteControl::writesAReportFile()
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
    QVERIFY(process.waitForFinished(60000));

    const QString name = QStringLiteral("kitecontrol-%1.txt").arg(id);
    QCOMPARE(reports.entryList(QDir::Files | QDir::Hidden), QStringList{name});
    QFile file(reports.filePath(name));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), process.readAllStandardOutput());
    QVERIFY(file.size() > 0);
}

void TestKiteControl::reportFolderMissing()
{
    m_environment.insert(QStringLiteral("KITECONTROL_REPORT_DIR"), m_pDirectory->filePath(QStringLiteral("missing")));
    Run(kProgram, ServerArguments(QStringLiteral("Mast")));
    QVERIFY2(m_sErrors.contains(QLatin1String("no report could be written")), qPrintable(m_sErrors));
    QVERIFY(!m_printed.isEmpty());
}

void TestKiteControl::runsUntilTerminated()
{
#ifdef Q_OS_WIN
    if (m_environment.value(QStringLiteral("QT_QPA_PLATFORM")) == QLatin1String("offscreen"))
        QSKIP("Programs are asked to end by a message to their windows, and off screen there are none.");
#endif
    m_environment.remove(QStringLiteral("KITECONTROL_SECONDS"));
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(kProgram, ServerArguments(QStringLiteral("Mast")));
    // What it prints is there at once, not only at its end.
    QByteArray printed;
    QTRY_VERIFY_WITH_TIMEOUT((printed += process.readAllStandardOutput()).contains("finding: "), 60000);
    QCOMPARE(process.state(), QProcess::Running);
    // Where windows are what is asked, it may have none yet.
    QTRY_COMPARE_WITH_TIMEOUT((process.terminate(), process.state()), QProcess::NotRunning, 60000);
}

void TestKiteControl::complainsAboutSeconds()
{
    m_environment.insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("soon"));
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(kProgram, ServerArguments(QStringLiteral("Mast")));
    QByteArray errors;
    QTRY_VERIFY_WITH_TIMEOUT((errors += process.readAllStandardError()).contains("KITECONTROL_SECONDS"), 60000);
    process.kill();
    QVERIFY(process.waitForFinished(60000));
}

QTEST_GUILESS_MAIN(TestKiteControl)
#include "tst_kitecontrol.moc"
