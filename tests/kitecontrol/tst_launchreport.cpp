// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"
#include "userinterface/kitecontrol/launchreport.h"
#include "userinterface/kitecontrol/legacyrecords.h"

#include "tests/kitecontrol/recordingcfg.h"
#include "tests/kitecontrol/records.h"
#include "tests/support/confignodes.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QStringList kMastArguments{QStringLiteral("KiteControl:XMsgDlg.dll"), QStringLiteral("Server"),
                                 QStringLiteral("Mast")};

LegacyRecords Known(const std::vector<ConnectData>& records)
{
    LegacyRecords result;
    result.configuration = QStringLiteral("/store");
    result.records = records;
    return result;
}

LaunchReport MastReport(const LegacyRecords& records)
{
    return LaunchReport::Make(QStringLiteral("kitecontrol"), kMastArguments, records);
}

} // namespace

class TestLaunchReport : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { CfgCenter::Close(); }

    void oneMatchingRecord();
    void severalMatchingRecords();
    void noMatchingRecord();
    void missingCommandLine();
    void missingConfiguration();
    void addressIsNoStation();
    void manyCandidatesAreCounted();
    void unknownNumbersHaveNoText();
    void lineBreaksInValuesAreEscaped();
    void commandLineIsQuoted_data();
    void commandLineIsQuoted();

    void countLimitsRecords_data();
    void countLimitsRecords();
    void recordsKeepTheirNumbers();
    void missingDirectoryIsReported();
    void emptyDirectoryIsReported();
    void recordsAreReadFromDirectory();
    void largeDocumentIsNotRead();
};

void TestLaunchReport::oneMatchingRecord()
{
    Records records;
    records.Add("Other", "Kite Echo").Add("Mast", "Plover One", "192.0.2.7");
    ConnectData& mast = records.Last();
    mast.m_sDeviceAddress = QStringLiteral("192.0.2.8");
    mast.m_nConnectionType = 1;
    mast.m_nConnectionSpeed = 6;
    mast.m_bTimeoutActive = true;
    mast.m_nTimeoutSeconds = 600;

    const LaunchReport report = MastReport(Known(records.List()));
    QCOMPARE(report.application, QStringLiteral("KiteControl"));
    QCOMPARE(report.station, QStringLiteral("Mast"));
    QVERIFY(report.record.has_value());
    QCOMPARE(report.record->m_nIndex, 1);
    QVERIFY(report.candidates.empty());
    const QStringList expected{
        QStringLiteral("application: KiteControl"),
        QStringLiteral("command line: kitecontrol KiteControl:XMsgDlg.dll Server Mast"),
        QStringLiteral("configuration: /store"),
        QStringLiteral("records: 2"),
        QStringLiteral("finding: ConnectData1 matches this command line"),
        QStringLiteral("record: ConnectData1"),
        QStringLiteral("station name: Mast"),
        QStringLiteral("device type: Plover One"),
        QStringLiteral("connection type: 1 (remote)"),
        QStringLiteral("device address: 192.0.2.8"),
        QStringLiteral("remote address: 192.0.2.7"),
        QStringLiteral("connection speed: 6 (radio link)"),
        QStringLiteral("time-out: 600 s"),
        QStringLiteral("type category: 4"),
    };
    QCOMPARE(report.Lines(), expected);
}

void TestLaunchReport::severalMatchingRecords()
{
    const LaunchReport report =
        MastReport(Known(Records().Add("Mast", "Kite Echo").Add("x", "Kite Echo").Add("Mast", "Kite Ember").List()));
    QVERIFY(!report.record.has_value());
    QCOMPARE(report.station, QStringLiteral("Mast"));
    QCOMPARE(report.Lines().mid(4),
             (QStringList{
                 QStringLiteral("finding: 2 records match this command line"),
                 QStringLiteral("candidate: ConnectData0 \"Mast\" (Kite Echo, 0 (direct); device \"\", remote \"\")"),
                 QStringLiteral("candidate: ConnectData2 \"Mast\" (Kite Ember, 0 (direct); device \"\", remote \"\")"),
             }));
}

void TestLaunchReport::noMatchingRecord()
{
    const LaunchReport report =
        MastReport(Known(Records().Add("Other", "Kite Echo").Add("Bravo", "Kite Bravo").List()));
    QVERIFY(!report.record.has_value());
    QCOMPARE(report.station, QStringLiteral("Mast"));
    QCOMPARE(report.Lines().mid(3),
             (QStringList{
                 QStringLiteral("records: 2"),
                 QStringLiteral("finding: no record matches this command line"),
                 QStringLiteral("candidate: ConnectData0 \"Other\" (Kite Echo, 0 (direct); device \"\", remote \"\")"),
             }));
}

void TestLaunchReport::missingCommandLine()
{
    const LaunchReport report =
        LaunchReport::Make(QStringLiteral("kitecontrol"), {}, Known(Records().Add("Mast", "Kite Echo").List()));
    QCOMPARE(report.Lines(), (QStringList{
                                 QStringLiteral("application: (none)"),
                                 QStringLiteral("command line: kitecontrol"),
                                 QStringLiteral("configuration: /store"),
                                 QStringLiteral("records: 1"),
                                 QStringLiteral("finding: started without arguments, so no record matches"),
                             }));
}

void TestLaunchReport::missingConfiguration()
{
    const LaunchReport report = MastReport(LegacyRecords::FromDirectory(QString()));
    QVERIFY(!report.record.has_value());
    QCOMPARE(report.station, QStringLiteral("Mast"));
    QCOMPARE(report.Lines().mid(2),
             (QStringList{
                 QStringLiteral("configuration: (none)"),
                 QStringLiteral("records: 0"),
                 QStringLiteral("finding: no configuration is known (VEXEL_CONFIG_DIR is not set)"),
             }));
}

void TestLaunchReport::addressIsNoStation()
{
    const QStringList arguments{QStringLiteral("WrenDControl:XMsgDlg.dll"), QStringLiteral("Server"),
                                QStringLiteral("Connection=192.0.2.9:9446")};
    const LaunchReport unknown = LaunchReport::Make(QStringLiteral("wrendcontrol"), arguments, Known({}));
    QCOMPARE(unknown.station, QString());

    const LaunchReport known = LaunchReport::Make(QStringLiteral("wrendcontrol"), arguments,
                                                  Known(Records().Add("Airfield", "Wren D", "192.0.2.9").List()));
    QCOMPARE(known.station, QStringLiteral("Airfield"));
}

void TestLaunchReport::manyCandidatesAreCounted()
{
    Records records;
    for (int i = 0; i < LaunchReport::kMaximumCandidates + 3; ++i)
        records.Add("Mast", "Kite Echo");
    const QStringList lines = MastReport(Known(records.List())).Lines();
    QCOMPARE(lines.filter(QStringLiteral("candidate: ")).size(), LaunchReport::kMaximumCandidates);
    QCOMPARE(lines.constLast(), QStringLiteral("further candidates: 3"));
}

void TestLaunchReport::unknownNumbersHaveNoText()
{
    Records records;
    records.Add("Mast", "Kite Echo");
    records.Last().m_nConnectionType = -1;
    records.Last().m_nConnectionSpeed = 7;
    const QStringList lines = MastReport(Known(records.List())).Lines();
    QVERIFY(lines.contains(QStringLiteral("connection type: -1")));
    QVERIFY(lines.contains(QStringLiteral("connection speed: 7")));
    QVERIFY(lines.contains(QStringLiteral("time-out: none")));
}

void TestLaunchReport::lineBreaksInValuesAreEscaped()
{
    const QString name = QStringLiteral("a\\b\nfinding: c\r\t\u2028d");
    Records records;
    records.Add(qUtf8Printable(name), "Kite Echo");
    const QStringList arguments{QStringLiteral("KiteControl:XMsgDlg.dll"), QStringLiteral("Server"), name};
    const LaunchReport report = LaunchReport::Make(QStringLiteral("kitecontrol"), arguments, Known(records.List()));
    QVERIFY(report.record.has_value());
    const QString escaped = QStringLiteral("a\\\\b\\nfinding: c\\r\\t\\u{2028}d");
    const QStringList lines = report.Lines();
    QVERIFY2(lines.contains(QStringLiteral("station name: ") + escaped), qPrintable(lines.join(QLatin1Char('|'))));
    QCOMPARE(lines.filter(QStringLiteral("\n")).size(), 0);
    QCOMPARE(lines.at(1), QStringLiteral("command line: kitecontrol KiteControl:XMsgDlg.dll Server \"") + escaped +
                              QLatin1Char('"'));
}

void TestLaunchReport::commandLineIsQuoted_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("shown");
    QTest::newRow("plain") << QStringLiteral("Mast") << QStringLiteral("Mast");
    QTest::newRow("blank") << QStringLiteral("Mast 1") << QStringLiteral("\"Mast 1\"");
    QTest::newRow("empty") << QString() << QStringLiteral("\"\"");
    QTest::newRow("quote") << QStringLiteral("a\"b") << QStringLiteral("\"a\\\"b\"");
}

void TestLaunchReport::commandLineIsQuoted()
{
    QFETCH(QString, argument);
    QFETCH(QString, shown);
    const LaunchReport report = LaunchReport::Make(QStringLiteral("kitecontrol"), {argument}, Known({}));
    QCOMPARE(report.CommandLine(), QStringLiteral("kitecontrol ") + shown);
}

void TestLaunchReport::countLimitsRecords_data()
{
    QTest::addColumn<QString>("count");
    QTest::addColumn<int>("read");
    QTest::newRow("missing") << QString() << 0;
    QTest::newRow("zero") << QStringLiteral("0") << 0;
    QTest::newRow("fewer than stored") << QStringLiteral("2") << 2;
    QTest::newRow("all") << QStringLiteral("3") << 3;
    QTest::newRow("negative") << QStringLiteral("-1") << 0;
    QTest::newRow("no number") << QStringLiteral("many") << 0;
    QTest::newRow("too many") << QStringLiteral("2000000000") << LegacyRecords::kMaximumCount;
}

void TestLaunchReport::countLimitsRecords()
{
    QFETCH(QString, count);
    QFETCH(int, read);
    ICfg* const document = CfgCenter::CreateCfg(QStringLiteral("Bounds"), View::Shared, QString());
    if (!count.isNull())
        document->SetString(QStringLiteral("ConnectionCount"), count, 0);
    for (const ConnectData& record : Records().Add("A", "x").Add("B", "x").Add("C", "x").List())
        record.Write(document);
    QCOMPARE(int(LegacyRecords::FromDocument(document).size()), read);
}

void TestLaunchReport::recordsKeepTheirNumbers()
{
    RecordingCfg document;
    document.SetString(QStringLiteral("ConnectionCount"), QStringLiteral("2"), 0);
    for (const ConnectData& record : Records().Add("A", "x").Add("B", "y").List())
        record.Write(&document);
    const std::vector<ConnectData> records = LegacyRecords::FromDocument(&document);
    QCOMPARE(records.size(), std::size_t(2));
    QCOMPARE(document.Contents().openHandles, 0);
    QCOMPARE(records[1].m_nIndex, 1);
    QCOMPARE(records[1].m_sStationName, QStringLiteral("B"));
}

void TestLaunchReport::missingDirectoryIsReported()
{
    const QTemporaryDir parent;
    const QString missing = parent.filePath(QStringLiteral("store"));
    const LegacyRecords records = LegacyRecords::FromDirectory(missing);
    QCOMPARE(records.configuration, missing);
    QVERIFY(records.records.empty());
    QCOMPARE(records.problem, QStringLiteral("the configuration directory does not exist"));
    QVERIFY(!QDir(missing).exists());
}

void TestLaunchReport::emptyDirectoryIsReported()
{
    const QTemporaryDir store;
    const LegacyRecords records = LegacyRecords::FromDirectory(store.path());
    QVERIFY(records.records.empty());
    QCOMPARE(records.problem, QStringLiteral("the configuration holds no records"));
}

void TestLaunchReport::recordsAreReadFromDirectory()
{
    const QTemporaryDir store;
    QVERIFY(CfgCenter::Open(store.path()));
    ICfg* const document = ConfigNodes::LegacyDocument();
    for (const ConnectData& record : Records().Add("A", "Kite Echo").Add("B", "Heron").List())
        record.Write(document);
    document->SetString(QStringLiteral("ConnectionCount"), QStringLiteral("2"), 0);
    QVERIFY(CfgCenter::SaveDocument());
    CfgCenter::Close();

    const LegacyRecords records = LegacyRecords::FromDirectory(store.path());
    QCOMPARE(records.problem, QString());
    QCOMPARE(records.records.size(), std::size_t(2));
    QCOMPARE(records.records[0].m_sStationName, QStringLiteral("A"));
    QCOMPARE(records.records[1].m_sDeviceType, QStringLiteral("Heron"));
    QCOMPARE(CfgCenter::Directory(), QString()); // closed again
}

void TestLaunchReport::largeDocumentIsNotRead()
{
    const QTemporaryDir store;
    QVERIFY(CfgCenter::Open(store.path()));
    ICfg* document = ConfigNodes::LegacyDocument();
    document->SetString(QStringLiteral("ConnectionCount"), QStringLiteral("1"), 0);
    const auto fill = [&](qsizetype size) {
        document->SetString(QStringLiteral("Padding"), QString(size, u'a'), 0);
        return CfgCenter::SaveDocument();
    };
    QVERIFY(fill(LegacyRecords::kMaximumSize - 1000));
    CfgCenter::Close();
    QCOMPARE(LegacyRecords::FromDirectory(store.path()).records.size(), std::size_t(1));

    QVERIFY(CfgCenter::Open(store.path()));
    document = ConfigNodes::LegacyDocument();
    QVERIFY(fill(LegacyRecords::kMaximumSize));
    CfgCenter::Close();
    const LegacyRecords records = LegacyRecords::FromDirectory(store.path());
    QVERIFY(records.records.empty());
    QCOMPARE(records.problem, QStringLiteral("the records are too large to be read"));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestLaunchReport)
#include "tst_launchreport.moc"
