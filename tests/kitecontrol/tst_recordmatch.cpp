// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"
#include "userinterface/kitecontrol/recordmatch.h"

#include "tests/kitecontrol/records.h"

#include <QTest>

#include <algorithm>
#include <iterator>

namespace {

QList<int> Numbers(const std::vector<ConnectData>& records)
{
    QList<int> numbers;
    std::transform(records.begin(), records.end(), std::back_inserter(numbers),
                   [](const ConnectData& record) { return record.m_nIndex; });
    return numbers;
}

} // namespace

class TestRecordMatch : public QObject
{
    Q_OBJECT

private slots:
    void commandLineIsParsed_data();
    void commandLineIsParsed();
    void matchingRecordsAreFound_data();
    void matchingRecordsAreFound();
    void recordsOfSameDeviceAreOffered_data();
    void recordsOfSameDeviceAreOffered();
};

void TestRecordMatch::commandLineIsParsed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("application");
    QTest::addColumn<bool>("onlyApplication");
    QTest::addColumn<QString>("station"); // null: none
    QTest::addColumn<QString>("address"); // null: none
    const QString dialog = QStringLiteral("KiteControl:XMsgDlg.dll");
    const QString application = QStringLiteral("KiteControl");
    const QString server = QStringLiteral("Server");
    const QString empty = QStringLiteral("");

    QTest::newRow("no arguments") << QStringList{} << QString() << false << QString() << QString();
    QTest::newRow("name only") << QStringList{dialog} << application << true << QString() << QString();
    QTest::newRow("name without a colon") << QStringList{application} << application << true << QString() << QString();
    QTest::newRow("station") << QStringList{dialog, server, QStringLiteral("Mast 1: north")} << application << false
                             << QStringLiteral("Mast 1: north") << QString();
    QTest::newRow("empty station") << QStringList{dialog, server, empty} << application << false << empty << QString();
    QTest::newRow("server without a station")
        << QStringList{dialog, server} << application << false << QString() << QString();
    QTest::newRow("address") << QStringList{dialog, server, QStringLiteral("Connection=10.0.0.1:27061")} << application
                             << false << QStringLiteral("Connection=10.0.0.1:27061")
                             << QStringLiteral("10.0.0.1:27061");
    QTest::newRow("empty address") << QStringList{dialog, server, QStringLiteral("Connection=")} << application << false
                                   << QStringLiteral("Connection=") << empty;
    QTest::newRow("multichannel") << QStringList{dialog, server, QStringLiteral("MCS"), QStringLiteral("MCSMaster"),
                                                 QStringLiteral("Connection=10.0.0.1:27081")}
                                  << application << false << QString() << QStringLiteral("10.0.0.1:27081");
    QTest::newRow("case matters") << QStringList{dialog, server, QStringLiteral("connection=10.0.0.1")} << application
                                  << false << QStringLiteral("connection=10.0.0.1") << QString();
    QTest::newRow("name that looks like an address")
        << QStringList{QStringLiteral("Connection=1")} << QStringLiteral("Connection=1") << true << QString()
        << QString();
}

void TestRecordMatch::commandLineIsParsed()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, station);
    QFETCH(QString, address);
    const LaunchArguments parsed = LaunchArguments::Parse(arguments);
    QTEST(parsed.application, "application");
    QTEST(parsed.onlyApplication, "onlyApplication");
    QCOMPARE(parsed.hasStation, !station.isNull());
    QCOMPARE(parsed.station, station);
    QCOMPARE(parsed.hasAddress, !address.isNull());
    QCOMPARE(parsed.address, address);
}

void TestRecordMatch::matchingRecordsAreFound_data()
{
    QTest::addColumn<QString>("application");
    QTest::addColumn<QStringList>("furtherArguments");
    QTest::addColumn<QList<int>>("fitting");
    const auto row = [](const char* name, const char* application, const QStringList& further,
                        const QList<int>& fitting) {
        QTest::newRow(name) << QString::fromLatin1(application) << further << fitting;
    };
    const auto station = [](const char* name) {
        return QStringList{QStringLiteral("Server"), QString::fromUtf8(name)};
    };
    const auto address = [](const char* text) {
        return QStringList{QStringLiteral("Server"), QStringLiteral("Connection=") + QString::fromLatin1(text)};
    };

    row("station name", "KiteControl", station("Mast"), {0});
    row("part of a station name", "KiteControl", station("Mas"), {});
    row("case of the station name", "KiteControl", station("mast"), {});
    row("non-ASCII station name", "KiteControl", station("H\u00fcgel \U0001F4E1"), {3});
    row("same name, other family", "KiteControl", station("Twin"), {4});
    row("same name and family", "KiteControl", station("Double"), {6, 7});
    row("same name, other devices only", "KiteControl", station("Foreign"), {8, 9});
    row("station name like an address", "KiteControl", station("Connection=odd"), {10});

    row("address with port", "KiteBravoControl", address("10.0.0.1:4000"), {1});
    row("port with one digit", "KiteBravoControl", address("10.0.0.2:7"), {2});
    row("default port", "KiteBravoControl", address("10.0.0.2:27061"), {2});
    row("address without port", "KiteAlphaFinchControl", address("10.0.0.2"), {2});
    row("longer address", "KiteBravoControl", address("10.0.0.22:27061"), {});
    row("second port", "KiteBravoControl", address("10.0.0.1:4000:27061"), {});
    row("port that is no number", "KiteBravoControl", address("10.0.0.2:port"), {});
    row("port that begins with a letter", "KiteBravoControl", address("10.0.0.2:p1"), {});
    row("empty port", "KiteBravoControl", address("10.0.0.2:"), {});
    row("same address, other application", "KiteFjordControl", address("10.0.0.7:27091"), {12});
    row("same address, plus sign in the device type", "LinnetDFControl", address("10.0.0.7:27071"), {13});
    row("same address, numbered application", "WrenDControl2", address("10.0.0.7:9446"), {11});
    row("same address, unknown application", "Viewer", address("10.0.0.7:9446"), {11, 12, 13});
    row("multichannel server", "KiteCobraControl",
        {QStringLiteral("Server"), QStringLiteral("MCS"), QStringLiteral("MCSMaster"),
         QStringLiteral("Connection=10.0.0.9:27081")},
        {14});
    row("empty address", "KiteBravoControl", address(":27061"), {5});

    row("application's name only", "HeronControl", {}, {15});
    row("application's name only, no record", "PipitControl", {}, {});
    row("application's name only, several", "KiteFjordControl", {}, {12, 16});
    row("application's name only, connected directly", "KiteCobraControl2", {}, {17});
    row("unknown arguments", "KiteControl", {QStringLiteral("Mast")}, {});
}

void TestRecordMatch::matchingRecordsAreFound()
{
    QFETCH(QString, application);
    QFETCH(QStringList, furtherArguments);
    QFETCH(QList<int>, fitting);
    Records records;
    records
        .Add("Mast", "Kite Echo")                        // 0
        .Add("Bravo A", "Kite Bravo", "10.0.0.1:4000")   // 1
        .Add("Bravo B", "Kite Bravo", "10.0.0.2")        // 2
        .Add("H\u00fcgel \U0001F4E1", "Plover Five")     // 3
        .Add("Twin", "Kite Moss")                        // 4
        .Add("Twin", "Kite Bravo")                       // 5
        .Add("Double", "Kite Echo")                      // 6
        .Add("Double", "Kite Ember")                     // 7
        .Add("Foreign", "Sigma")                         // 8
        .Add("Foreign", "Rho")                           // 9
        .Add("Connection=odd", "Kite Delta")             // 10
        .Add("Shared D", "Wren D", "10.0.0.7")           // 11
        .Add("Shared Fjord", "Kite Fjord", "10.0.0.7")   // 12
        .Add("Shared Linnet", "Linnet + DF", "10.0.0.7") // 13
        .Add("Server", "Kite Cobra", "10.0.0.9")         // 14
        .Add("Receiver", "Heron", "10.0.0.15")           // 15
        .Add("Another fjord", "Kite Fjord", "10.0.0.16") // 16
        .Add("Antenna", "Kite Cobra");                   // 17

    const QStringList arguments = QStringList{application + QStringLiteral(":XMsgDlg.dll")} + furtherArguments;
    const RecordMatch match = RecordMatch::Find(LaunchArguments::Parse(arguments), records.List());
    QCOMPARE(Numbers(match.fitting), fitting);
    if (!fitting.isEmpty())
        QCOMPARE(Numbers(match.sameDevice), QList<int>{});
}

void TestRecordMatch::recordsOfSameDeviceAreOffered_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QList<int>>("sameDevice");
    QTest::newRow("by the application's name")
        << QStringList{QStringLiteral("KiteBravoControl:XMsgDlg.dll"), QStringLiteral("Server"),
                       QStringLiteral("Connection=192.0.2.1:27061")}
        << QList<int>{1, 3};
    QTest::newRow("by the arguments") << QStringList{QStringLiteral("KiteControl:XMsgDlg.dll"),
                                                     QStringLiteral("Server"), QStringLiteral("Gone")}
                                      << QList<int>{0, 2};
    QTest::newRow("unknown application") << QStringList{QStringLiteral("Viewer:XMsgDlg.dll")} << QList<int>{};
    QTest::newRow("no command line") << QStringList{} << QList<int>{};
}

void TestRecordMatch::recordsOfSameDeviceAreOffered()
{
    QFETCH(QStringList, arguments);
    Records records;
    records.Add("A", "Kite Echo").Add("B", "Kite Bravo").Add("C", "Plover One").Add("D", "Kite Bravo").Add("E", "");
    const RecordMatch match = RecordMatch::Find(LaunchArguments::Parse(arguments), records.List());
    QCOMPARE(Numbers(match.fitting), QList<int>{});
    QTEST(Numbers(match.sameDevice), "sameDevice");
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestRecordMatch)
#include "tst_recordmatch.moc"
