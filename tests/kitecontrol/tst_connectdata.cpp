// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"
#include "userinterface/kitecontrol/connectdata.h"

#include "platform/errorhandler.h"
#include "tests/kitecontrol/recordingcfg.h"
#include "tests/support/confignodes.h"
#include "tests/support/tracerecorder.h"

#include <QTest>

#include <type_traits>

namespace {

const QStringList kOldOnlyKeys{
    QStringLiteral("Type"),
    QStringLiteral("Access"),
    QStringLiteral("StationAddress"),
    QStringLiteral("TimeoutFlag"),
    QStringLiteral("Timeout"),
    QStringLiteral("Virtual"),
    QStringLiteral("MultiChannelServer"),
};

QString Key(int index, const QString& key)
{
    return QStringLiteral("ConnectData%1/%2").arg(index).arg(key);
}

/// Puts a value into record 0 of `cfg` without recording a call.
void Put(RecordingCfg& cfg, const char* key, const QString& value)
{
    cfg.Contents().values[Key(0, QLatin1String(key))] = value;
}

ConnectData FullRecord(int index)
{
    ConnectData record;
    record.m_nIndex = index;
    record.m_sStationName = QStringLiteral("Station %1 <&>").arg(index);
    record.m_sDeviceType = QStringLiteral("Kite Bravo");
    record.m_nConnectionType = 1;
    record.m_sDeviceAddress = QStringLiteral("10.0.0.%1").arg(index);
    record.m_sRemoteAddress = QStringLiteral("10.0.1.%1").arg(index);
    record.m_nConnectionSpeed = 5;
    record.m_bTimeoutActive = true;
    record.m_nTimeoutSeconds = 30;
    record.m_nStatus = 1;
    record.m_bSelected = true;
    record.m_sSubsystem = QStringLiteral("Corvus");
    record.m_nReserved = 7;
    return record;
}

} // namespace

class TestConnectData : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { CfgCenter::Close(); }

    void defaultRecordIsEmpty();

    void readsKeysInOrder();
    void emptyRecordReadsAsSimulation();
    void oldMultiChannelServerRecord();
    void oldRemoteAddressZeroIsNoAddress();
    void oldRemoteRecordKeepsBothAddresses();
    void oldNumbersAndFlagsAreConverted_data();
    void oldNumbersAndFlagsAreConverted();
    void onlyOldKeysAreRemoved();
    void currentKeysOverrideOldKeys();
    void currentRemoteAddressZeroIsNoAddress();
    void unusedAddressIsCleared_data();
    void unusedAddressIsCleared();

    void writesKeysInOrder();
    void writtenRecordReadsBack();

    void missingNodeIsAsserted_data();
    void missingNodeIsAsserted();

    void typeCategory_data();
    void typeCategory();

    void readsOldRecordFromConfiguration();
};

void TestConnectData::defaultRecordIsEmpty()
{
    static_assert(!std::is_polymorphic_v<ConnectData>);
    const ConnectData record;
    QCOMPARE(record.m_nIndex, 0);
    QVERIFY(record.m_sStationName.isEmpty());
    QVERIFY(record.m_sDeviceType.isEmpty());
    QVERIFY(record.m_sDeviceAddress.isEmpty());
    QVERIFY(record.m_sRemoteAddress.isEmpty());
    QCOMPARE(record.m_nStatus, 0);
    QCOMPARE(record.m_bSelected, false);
    QVERIFY(record.m_sSubsystem.isEmpty());
    QVERIFY(!record.m_sSubsystem.isNull());
    QCOMPARE(record.m_nReserved, 0);
}

void TestConnectData::readsKeysInOrder()
{
    RecordingCfg cfg;
    const ConnectData record(12, &cfg);
    QCOMPARE(record.m_nIndex, 12);
    const QStringList expected{
        QStringLiteral("open ConnectData12 flag 0"),
        QStringLiteral("string StationName default <Kite Echo-Simulation> mode 2"),
        QStringLiteral("string Type default <Kite Echo/Ember> mode 2"),
        QStringLiteral("string StationAddress default <localhost> mode 2"),
        QStringLiteral("string ConnectionSpeed default <> mode 2"),
        QStringLiteral("string TimeoutFlag default <0> mode 2"),
        QStringLiteral("string Timeout default <0> mode 2"),
        QStringLiteral("string RemoteAddress default <> mode 2"),
        QStringLiteral("int MultiChannelServer default <0> mode 2"),
        QStringLiteral("remove Type flag 0"),
        QStringLiteral("remove Access flag 0"),
        QStringLiteral("remove StationAddress flag 0"),
        QStringLiteral("remove TimeoutFlag flag 0"),
        QStringLiteral("remove Timeout flag 0"),
        QStringLiteral("remove MultiChannelServer flag 0"),
        QStringLiteral("remove Virtual flag 0"),
        QStringLiteral("string StationName default <Kite Echo-Simulation> mode 0"),
        QStringLiteral("string DeviceType default <Kite Echo/Ember> mode 0"),
        QStringLiteral("int ConnectionType default <0> mode 0"),
        QStringLiteral("string DeviceAddress default <localhost> mode 0"),
        QStringLiteral("string RemoteAddress default <> mode 0"),
        QStringLiteral("int ConnectionSpeed default <0> mode 0"),
        QStringLiteral("bool TimeoutActive default <0> mode 0"),
        QStringLiteral("int TimeoutSeconds default <0> mode 0"),
        QStringLiteral("release"),
    };
    QCOMPARE(cfg.Contents().calls, expected);
    QCOMPARE(cfg.Contents().openHandles, 0);
}

void TestConnectData::emptyRecordReadsAsSimulation()
{
    RecordingCfg cfg;
    const ConnectData record(0, &cfg);
    QCOMPARE(record.m_sStationName, QStringLiteral("Kite Echo-Simulation"));
    QCOMPARE(record.m_sDeviceType, QStringLiteral("Kite Echo/Ember"));
    QCOMPARE(record.m_sDeviceAddress, QStringLiteral("localhost"));
    QCOMPARE(record.m_nConnectionSpeed, 0);
    QCOMPARE(record.m_bTimeoutActive, false);
    QCOMPARE(record.m_nTimeoutSeconds, 0);
    QCOMPARE(record.m_nConnectionType, 0);
    QCOMPARE(record.m_sRemoteAddress, QString());
    QVERIFY(!record.m_sRemoteAddress.isNull());
    QVERIFY(!record.m_sSubsystem.isNull());
    QCOMPARE(record.m_nStatus, 0);
    QCOMPARE(record.m_bSelected, false);
    QCOMPARE(record.m_nReserved, 0);
    QVERIFY(cfg.Contents().values.isEmpty());
}

void TestConnectData::oldMultiChannelServerRecord()
{
    RecordingCfg cfg;
    Put(cfg, "StationName", QStringLiteral("Old server"));
    Put(cfg, "Type", QStringLiteral("Kite Cobra"));
    Put(cfg, "StationAddress", QStringLiteral("10.0.0.5"));
    Put(cfg, "RemoteAddress", QStringLiteral("10.0.0.6"));
    Put(cfg, "MultiChannelServer", QStringLiteral("1"));

    const ConnectData record(0, &cfg);
    QCOMPARE(record.m_nConnectionType, 2);
    QVERIFY(record.m_sDeviceAddress.isEmpty());
    QCOMPARE(record.m_sStationName, QStringLiteral("Old server"));
    QCOMPARE(record.m_sDeviceType, QStringLiteral("Kite Cobra"));
    QCOMPARE(record.m_sRemoteAddress, QStringLiteral("10.0.0.6"));
}

void TestConnectData::oldRemoteAddressZeroIsNoAddress()
{
    RecordingCfg cfg;
    Put(cfg, "StationAddress", QStringLiteral("10.0.0.5"));
    Put(cfg, "RemoteAddress", QStringLiteral("0"));

    const ConnectData record(0, &cfg);
    QCOMPARE(record.m_nConnectionType, 0);
    QVERIFY(record.m_sRemoteAddress.isEmpty());
    QCOMPARE(record.m_sDeviceAddress, QStringLiteral("10.0.0.5"));
}

void TestConnectData::oldRemoteRecordKeepsBothAddresses()
{
    RecordingCfg cfg;
    Put(cfg, "StationAddress", QStringLiteral("10.0.0.5"));
    Put(cfg, "RemoteAddress", QStringLiteral("pc7"));

    const ConnectData record(0, &cfg);
    QCOMPARE(record.m_nConnectionType, 1);
    QCOMPARE(record.m_sRemoteAddress, QStringLiteral("pc7"));
    QCOMPARE(record.m_sDeviceAddress, QStringLiteral("10.0.0.5"));
}

void TestConnectData::oldNumbersAndFlagsAreConverted_data()
{
    QTest::addColumn<QString>("speed");
    QTest::addColumn<QString>("flag");
    QTest::addColumn<QString>("timeout");
    QTest::addColumn<int>("expectedSpeed");
    QTest::addColumn<bool>("expectedActive");
    QTest::addColumn<int>("expectedSeconds");
    QTest::newRow("usual") << QStringLiteral("4") << QStringLiteral("1") << QStringLiteral("90") << 4 << true << 90;
    QTest::newRow("flag off") << QStringLiteral("1") << QStringLiteral("0") << QStringLiteral("90") << 1 << false << 90;
    QTest::newRow("any flag but 0") << QStringLiteral("0") << QStringLiteral("-1") << QStringLiteral("5") << 0 << true
                                    << 5;
    QTest::newRow("no numbers") << QStringLiteral("fast") << QStringLiteral("true") << QString() << 0 << false << 0;
    QTest::newRow("base 10 only") << QStringLiteral("0x3") << QStringLiteral("010") << QStringLiteral("010") << 0
                                  << true << 10;
}

void TestConnectData::oldNumbersAndFlagsAreConverted()
{
    QFETCH(QString, speed);
    QFETCH(QString, flag);
    QFETCH(QString, timeout);
    RecordingCfg cfg;
    Put(cfg, "ConnectionSpeed", speed);
    Put(cfg, "TimeoutFlag", flag);
    Put(cfg, "Timeout", timeout);

    const ConnectData record(0, &cfg);
    QTEST(record.m_nConnectionSpeed, "expectedSpeed");
    QTEST(record.m_bTimeoutActive, "expectedActive");
    QTEST(record.m_nTimeoutSeconds, "expectedSeconds");
}

void TestConnectData::onlyOldKeysAreRemoved()
{
    RecordingCfg cfg;
    for (const QString& key : kOldOnlyKeys)
        Put(cfg, qPrintable(key), QStringLiteral("1"));
    Put(cfg, "StationName", QStringLiteral("Name"));
    Put(cfg, "ConnectionSpeed", QStringLiteral("3"));
    Put(cfg, "RemoteAddress", QStringLiteral("pc7"));
    Put(cfg, "Remark", QStringLiteral("other"));
    cfg.Contents().values[Key(1, QStringLiteral("Type"))] = QStringLiteral("of another record");

    const ConnectData record(0, &cfg);
    const QStringList left{Key(0, QStringLiteral("ConnectionSpeed")), Key(0, QStringLiteral("Remark")),
                           Key(0, QStringLiteral("RemoteAddress")), Key(0, QStringLiteral("StationName")),
                           Key(1, QStringLiteral("Type"))};
    QCOMPARE(QStringList(cfg.Contents().values.keys()), left);
    QCOMPARE(record.m_sStationName, QStringLiteral("Name"));
}

void TestConnectData::currentKeysOverrideOldKeys()
{
    RecordingCfg cfg;
    Put(cfg, "Type", QStringLiteral("Kite Cobra"));
    Put(cfg, "StationAddress", QStringLiteral("10.0.0.5"));
    Put(cfg, "RemoteAddress", QStringLiteral("pc7"));
    Put(cfg, "TimeoutFlag", QStringLiteral("1"));
    Put(cfg, "Timeout", QStringLiteral("60"));
    Put(cfg, "MultiChannelServer", QStringLiteral("1"));
    Put(cfg, "DeviceType", QStringLiteral("Kite Bravo"));
    Put(cfg, "ConnectionType", QStringLiteral("1"));
    Put(cfg, "DeviceAddress", QStringLiteral("10.0.0.9"));
    Put(cfg, "TimeoutActive", QStringLiteral("false"));
    Put(cfg, "TimeoutSeconds", QStringLiteral("0"));

    const ConnectData record(0, &cfg);
    QCOMPARE(record.m_sDeviceType, QStringLiteral("Kite Bravo"));
    QCOMPARE(record.m_nConnectionType, 1);
    QCOMPARE(record.m_sDeviceAddress, QStringLiteral("10.0.0.9"));
    QCOMPARE(record.m_sRemoteAddress, QStringLiteral("pc7"));
    QCOMPARE(record.m_bTimeoutActive, false);
    QCOMPARE(record.m_nTimeoutSeconds, 0);
}

void TestConnectData::currentRemoteAddressZeroIsNoAddress()
{
    RecordingCfg cfg;
    Put(cfg, "ConnectionType", QStringLiteral("1"));
    Put(cfg, "RemoteAddress", QStringLiteral("0"));
    const ConnectData record(0, &cfg);
    QCOMPARE(record.m_nConnectionType, 1);
    QVERIFY(record.m_sRemoteAddress.isEmpty());
}

void TestConnectData::unusedAddressIsCleared_data()
{
    QTest::addColumn<int>("connectionType");
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("remote");
    const QString device = QStringLiteral("10.0.0.9");
    const QString remote = QStringLiteral("pc7");
    QTest::newRow("direct") << 0 << device << QString();
    QTest::newRow("remote") << 1 << device << remote;
    QTest::newRow("multichannel server") << 2 << QString() << remote;
    QTest::newRow("above") << 3 << device << remote;
    QTest::newRow("below") << -1 << device << remote;
}

void TestConnectData::unusedAddressIsCleared()
{
    QFETCH(int, connectionType);
    QFETCH(QString, device);
    QFETCH(QString, remote);
    RecordingCfg cfg;
    Put(cfg, "ConnectionType", QString::number(connectionType));
    Put(cfg, "DeviceAddress", QStringLiteral("10.0.0.9"));
    Put(cfg, "RemoteAddress", QStringLiteral("pc7"));
    const ConnectData record(0, &cfg);
    QCOMPARE(record.m_nConnectionType, connectionType);
    QCOMPARE(record.m_sDeviceAddress, device);
    QCOMPARE(record.m_sRemoteAddress, remote);
}

void TestConnectData::writesKeysInOrder()
{
    RecordingCfg cfg;
    FullRecord(3).Write(&cfg);
    const QStringList expected{
        QStringLiteral("open ConnectData3 flag 0"),
        QStringLiteral("set string StationName <Station 3 <&>> flag 0"),
        QStringLiteral("set string DeviceType <Kite Bravo> flag 0"),
        QStringLiteral("set int ConnectionType <1> flag 0"),
        QStringLiteral("set string DeviceAddress <10.0.0.3> flag 0"),
        QStringLiteral("set string RemoteAddress <10.0.1.3> flag 0"),
        QStringLiteral("set int ConnectionSpeed <5> flag 0"),
        QStringLiteral("set bool TimeoutActive <1> flag 0"),
        QStringLiteral("set int TimeoutSeconds <30> flag 0"),
        QStringLiteral("release"),
    };
    QCOMPARE(cfg.Contents().calls, expected);
    QCOMPARE(cfg.Contents().openHandles, 0);
}

void TestConnectData::writtenRecordReadsBack()
{
    RecordingCfg cfg;
    const ConnectData written = FullRecord(2);
    written.Write(&cfg);
    const ConnectData read(2, &cfg);
    QCOMPARE(read.m_nIndex, 2);
    QCOMPARE(read.m_sStationName, written.m_sStationName);
    QCOMPARE(read.m_sDeviceType, written.m_sDeviceType);
    QCOMPARE(read.m_nConnectionType, written.m_nConnectionType);
    QCOMPARE(read.m_sDeviceAddress, written.m_sDeviceAddress);
    QCOMPARE(read.m_sRemoteAddress, written.m_sRemoteAddress);
    QCOMPARE(read.m_nConnectionSpeed, written.m_nConnectionSpeed);
    QCOMPARE(read.m_bTimeoutActive, written.m_bTimeoutActive);
    QCOMPARE(read.m_nTimeoutSeconds, written.m_nTimeoutSeconds);
    // These fields are not stored.
    QCOMPARE(read.m_nStatus, 0);
    QCOMPARE(read.m_bSelected, false);
    QVERIFY(read.m_sSubsystem.isEmpty());
    QCOMPARE(read.m_nReserved, 0);
}

void TestConnectData::missingNodeIsAsserted_data()
{
    QTest::addColumn<unsigned>("kinds");
    QTest::addColumn<int>("reports");
    QTest::newRow("assertions on") << unsigned(ErrorHandler::Assertion) << 1;
    QTest::newRow("assertions off") << unsigned(ErrorHandler::Trace) << 0;
}

void TestConnectData::missingNodeIsAsserted()
{
    QFETCH(unsigned, kinds);
    QFETCH(int, reports);
    RecordingCfg cfg;
    cfg.Contents().opensChildren = false;
    const TraceRecorder recorder(kinds);

    const ConnectData record(5, &cfg);
    QCOMPARE(record.m_nIndex, 5);
    QVERIFY(record.m_sStationName.isEmpty());
    QCOMPARE(recorder.Reports().size(), reports);

    FullRecord(5).Write(&cfg);
    QCOMPARE(recorder.Reports().size(), 2 * reports);
    QVERIFY(cfg.Contents().values.isEmpty());

    if (reports > 0) {
        const QList<TraceRecorder::Report> all = recorder.Reports();
        for (const TraceRecorder::Report& report : all) {
            QCOMPARE(report.kind, ErrorHandler::Assertion);
            QVERIFY2(report.message.contains(QLatin1String("pSubCfg")), qPrintable(report.message));
            QCOMPARE(report.sourceFile, QStringLiteral("userinterface/kitecontrol/connectdata"));
        }
        QCOMPARE(all.at(0).line, quint16(103));
        QCOMPARE(all.at(1).line, quint16(181));
    }
}

void TestConnectData::typeCategory_data()
{
    QTest::addColumn<QString>("deviceType");
    QTest::addColumn<int>("category");
    const auto row = [](const char* deviceType, int category) {
        QTest::newRow(deviceType) << QString::fromLatin1(deviceType) << category;
    };
    row("Kite Moss E", 0);
    row("Kite Moss", 4);
    row("Heron", 0);
    row("Kite Echo", 0);
    row("Kite Echo/Ember", 0);
    row("Kite Ember", 0);
    row("Kite Alpha + Wren C", 4);
    row("Kite Alpha + Finch", 4);
    row("Plover One", 4);
    row("Plover Five", 4);
    row("Plover", 0);
    row("Kite Bravo", 0);
    row("kite moss", 0);              // case-sensitive
    row("An old Kite Moss II", 4);    // contained anywhere
    row("Kite Moss + Kite Ember", 0); // the first group is tested first
    row("Plover One + Kite Moss E", 0);
    row("", 0);
}

void TestConnectData::typeCategory()
{
    QFETCH(QString, deviceType);
    ConnectData record;
    record.m_sDeviceType = deviceType;
    QTEST(record.GetTypeCategory(), "category");
}

void TestConnectData::readsOldRecordFromConfiguration()
{
    ICfg* const document = ConfigNodes::LegacyDocument();
    {
        const auto old = ConfigNodes::LegacyRecord(0);
        old->SetString(QStringLiteral("StationName"), QStringLiteral("Old & <grey>"), 0);
        old->SetString(QStringLiteral("Type"), QStringLiteral("Kite Cobra"), 0);
        old->SetString(QStringLiteral("StationAddress"), QStringLiteral("10.0.0.5"), 0);
        old->SetString(QStringLiteral("TimeoutFlag"), QStringLiteral("1"), 0);
        old->SetString(QStringLiteral("Timeout"), QStringLiteral("60"), 0);
        old->SetString(QStringLiteral("ConnectionSpeed"), QStringLiteral("2"), 0);
        old->SetInt(QStringLiteral("MultiChannelServer"), 1, 0);
    }

    const ConnectData old(0, document);
    QCOMPARE(old.m_sStationName, QStringLiteral("Old & <grey>"));
    QCOMPARE(old.m_sDeviceType, QStringLiteral("Kite Cobra"));
    QCOMPARE(old.m_nConnectionType, 2);
    QVERIFY(old.m_sDeviceAddress.isEmpty());
    QCOMPARE(old.m_nConnectionSpeed, 2);
    QCOMPARE(old.m_bTimeoutActive, true);
    QCOMPARE(old.m_nTimeoutSeconds, 60);
    const auto node = ConfigNodes::LegacyRecord(0);
    const QString none = QStringLiteral("(none)");
    for (const QString& key : kOldOnlyKeys)
        QCOMPARE(node->GetString(key, none, 0), none);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestConnectData)
#include "tst_connectdata.moc"
