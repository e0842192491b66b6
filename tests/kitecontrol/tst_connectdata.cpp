#include "tests/support/testmain.h"
#include "userinterface/kitecontrol/connectdata.h"

#include "platform/cfgcenter.h"
#include "platform/errorhandler.h"
#include "tests/kitecontrol/recordingcfg.h"
#include "tests/support/tracerecorder.h"

#include <QTest>

#include <memory>
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

/// Puts a value into record 0 of `cfg` without leaving a note of it.
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

    void isAPlainValue();
    void defaultRecordIsEmpty();

    void readsInTheStatedOrder();
    void emptyRecordReadsAsSimulation();
    void emptyStringsAreNotNull();
    void oldMultiChannelRecord();
    void oldRemoteAddressZeroMeansNone();
    void oldRemoteRecordKeepsBothAddresses();
    void oldNumbersAndFlags_data();
    void oldNumbersAndFlags();
    void removesTheOldKeysAndNoOther();
    void currentKeysWin();
    void currentRemoteAddressZeroMeansNone();
    void clearsTheAddressTheTypeDoesNotUse_data();
    void clearsTheAddressTheTypeDoesNotUse();

    void writesInTheStatedOrder();
    void writesNoMemoryOnlyFieldAndRemovesNothing();
    void timeoutIsWrittenAsItStands();
    void writtenRecordReadsBack();
    void laterShorterListLeavesTheRest();

    void missingNodeIsAsserted_data();
    void missingNodeIsAsserted();

    void typeCategory_data();
    void typeCategory();

    void worksOnTheProductsConfiguration();
};

void TestConnectData::isAPlainValue()
{
    static_assert(!std::is_polymorphic_v<ConnectData>);
    static_assert(std::is_copy_constructible_v<ConnectData> && std::is_copy_assignable_v<ConnectData>);

    const ConnectData original = FullRecord(4);
    ConnectData copy;
    copy = original;
    QCOMPARE(copy.m_nIndex, 4);
    QCOMPARE(copy.m_sStationName, original.m_sStationName);
    QCOMPARE(copy.m_sDeviceType, original.m_sDeviceType);
    QCOMPARE(copy.m_nConnectionType, 1);
    QCOMPARE(copy.m_sDeviceAddress, original.m_sDeviceAddress);
    QCOMPARE(copy.m_sRemoteAddress, original.m_sRemoteAddress);
    QCOMPARE(copy.m_nConnectionSpeed, 5);
    QCOMPARE(copy.m_bTimeoutActive, true);
    QCOMPARE(copy.m_nTimeoutSeconds, 30);
    QCOMPARE(copy.m_nStatus, 1);
    QCOMPARE(copy.m_bSelected, true);
    QCOMPARE(copy.m_sSubsystem, QStringLiteral("Corvus"));
    QCOMPARE(copy.m_nReserved, 7);
}

void TestConnectData::defaultRecordIsEmpty()
{
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

void TestConnectData::readsInTheStatedOrder()
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
    QVERIFY(cfg.Contents().values.isEmpty());
}

void TestConnectData::emptyStringsAreNotNull()
{
    RecordingCfg cfg;
    const ConnectData record(0, &cfg);
    QVERIFY(!record.m_sRemoteAddress.isNull());
    QVERIFY(!record.m_sSubsystem.isNull());
    QCOMPARE(record.m_nStatus, 0);
    QCOMPARE(record.m_bSelected, false);
    QCOMPARE(record.m_nReserved, 0);
}

void TestConnectData::oldMultiChannelRecord()
{
    RecordingCfg cfg;
    Put(cfg, "StationName", QStringLiteral("Old server"));
    Put(cfg, "Type", QStringLiteral("Kite Cobra"));
    Put(cfg, "StationAddress", QStringLiteral("10.0.0.5"));
    Put(cfg, "RemoteAddress", QStringLiteral("10.0.0.6"));
    Put(cfg, "MultiChannelServer", QStringLiteral("1"));
    Put(cfg, "Access", QStringLiteral("1"));
    Put(cfg, "Virtual", QStringLiteral("0"));
    Put(cfg, "TimeoutFlag", QStringLiteral("1"));
    Put(cfg, "Timeout", QStringLiteral("60"));

    const ConnectData record(0, &cfg);
    QCOMPARE(record.m_nConnectionType, 2);
    QVERIFY(record.m_sDeviceAddress.isEmpty());
    QCOMPARE(record.m_sStationName, QStringLiteral("Old server"));
    QCOMPARE(record.m_sDeviceType, QStringLiteral("Kite Cobra"));
    QCOMPARE(record.m_sRemoteAddress, QStringLiteral("10.0.0.6"));
    for (const QString& key : kOldOnlyKeys)
        QVERIFY2(!cfg.Has(Key(0, key)), qPrintable(key));
}

void TestConnectData::oldRemoteAddressZeroMeansNone()
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

void TestConnectData::oldNumbersAndFlags_data()
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

void TestConnectData::oldNumbersAndFlags()
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

void TestConnectData::removesTheOldKeysAndNoOther()
{
    RecordingCfg cfg;
    for (const QString& key : kOldOnlyKeys)
        Put(cfg, qPrintable(key), QStringLiteral("1"));
    Put(cfg, "StationName", QStringLiteral("Name"));
    Put(cfg, "ConnectionSpeed", QStringLiteral("3"));
    Put(cfg, "RemoteAddress", QStringLiteral("pc7"));
    Put(cfg, "Remark", QStringLiteral("someone else's"));
    cfg.Contents().values[Key(1, QStringLiteral("Type"))] = QStringLiteral("of another record");

    const ConnectData record(0, &cfg);
    const QStringList left{Key(0, QStringLiteral("ConnectionSpeed")), Key(0, QStringLiteral("Remark")),
                           Key(0, QStringLiteral("RemoteAddress")), Key(0, QStringLiteral("StationName")),
                           Key(1, QStringLiteral("Type"))};
    QCOMPARE(QStringList(cfg.Contents().values.keys()), left);
    QCOMPARE(record.m_sStationName, QStringLiteral("Name"));
}

void TestConnectData::currentKeysWin()
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

void TestConnectData::currentRemoteAddressZeroMeansNone()
{
    RecordingCfg cfg;
    Put(cfg, "ConnectionType", QStringLiteral("1"));
    Put(cfg, "RemoteAddress", QStringLiteral("0"));
    const ConnectData record(0, &cfg);
    QCOMPARE(record.m_nConnectionType, 1);
    QVERIFY(record.m_sRemoteAddress.isEmpty());
}

void TestConnectData::clearsTheAddressTheTypeDoesNotUse_data()
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

void TestConnectData::clearsTheAddressTheTypeDoesNotUse()
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

void TestConnectData::writesInTheStatedOrder()
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

void TestConnectData::writesNoMemoryOnlyFieldAndRemovesNothing()
{
    RecordingCfg cfg;
    Put(cfg, "Type", QStringLiteral("old"));
    FullRecord(0).Write(&cfg);
    QCOMPARE(cfg.Contents().values.size(), 9);
    QCOMPARE(cfg.Value(Key(0, QStringLiteral("Type"))), QStringLiteral("old"));
}

void TestConnectData::timeoutIsWrittenAsItStands()
{
    RecordingCfg cfg;
    ConnectData record = FullRecord(0);
    record.m_bTimeoutActive = false;
    record.m_nTimeoutSeconds = 0;
    record.Write(&cfg);
    QCOMPARE(cfg.Value(Key(0, QStringLiteral("TimeoutActive"))), QStringLiteral("false"));
    QCOMPARE(cfg.Value(Key(0, QStringLiteral("TimeoutSeconds"))), QStringLiteral("0"));

    record.m_bTimeoutActive = true;
    record.m_nTimeoutSeconds = 30;
    record.Write(&cfg);
    QCOMPARE(cfg.Value(Key(0, QStringLiteral("TimeoutActive"))), QStringLiteral("true"));
    QCOMPARE(cfg.Value(Key(0, QStringLiteral("TimeoutSeconds"))), QStringLiteral("30"));
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
    // Nothing stands for these in the configuration.
    QCOMPARE(read.m_nStatus, 0);
    QCOMPARE(read.m_bSelected, false);
    QVERIFY(read.m_sSubsystem.isEmpty());
    QCOMPARE(read.m_nReserved, 0);
}

void TestConnectData::laterShorterListLeavesTheRest()
{
    RecordingCfg cfg;
    for (int i = 0; i < 3; ++i)
        FullRecord(i).Write(&cfg);
    ConnectData other = FullRecord(0);
    other.m_sStationName = QStringLiteral("Other");
    other.Write(&cfg);
    QCOMPARE(ConnectData(0, &cfg).m_sStationName, QStringLiteral("Other"));
    QCOMPARE(ConnectData(1, &cfg).m_sStationName, FullRecord(1).m_sStationName);
    QCOMPARE(ConnectData(2, &cfg).m_sStationName, FullRecord(2).m_sStationName);
}

void TestConnectData::missingNodeIsAsserted_data()
{
    QTest::addColumn<unsigned>("kinds");
    QTest::addColumn<int>("reports");
    QTest::newRow("assertions on") << unsigned(ErrorHandler::Assertion) << 1;
    QTest::newRow("all on") << unsigned(ErrorHandler::Assertion | ErrorHandler::Trace) << 1;
    QTest::newRow("assertions off") << unsigned(ErrorHandler::Trace) << 0;
    QTest::newRow("all off") << 0U << 0;
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
    row("Kite Moss + Kite Ember", 0); // the first group goes first
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

void TestConnectData::worksOnTheProductsConfiguration()
{
    ICfg* const document = CfgCenter::CreateCfg(QStringLiteral("KiteResources/ConnectData"), View::Shared, QString());
    QVERIFY(document);
    {
        const std::unique_ptr<ICfg> old(document->OpenChild(QStringLiteral("ConnectData0"), 0));
        old->SetString(QStringLiteral("StationName"), QStringLiteral("Old & <grey>"), 0);
        old->SetString(QStringLiteral("Type"), QStringLiteral("Kite Cobra"), 0);
        old->SetString(QStringLiteral("StationAddress"), QStringLiteral("10.0.0.5"), 0);
        old->SetString(QStringLiteral("TimeoutFlag"), QStringLiteral("1"), 0);
        old->SetString(QStringLiteral("Timeout"), QStringLiteral("60"), 0);
        old->SetString(QStringLiteral("ConnectionSpeed"), QStringLiteral("2"), 0);
        old->SetInt(QStringLiteral("MultiChannelServer"), 1, 0);
    }
    FullRecord(1).Write(document);

    const ConnectData old(0, document);
    QCOMPARE(old.m_sStationName, QStringLiteral("Old & <grey>"));
    QCOMPARE(old.m_sDeviceType, QStringLiteral("Kite Cobra"));
    QCOMPARE(old.m_nConnectionType, 2);
    QVERIFY(old.m_sDeviceAddress.isEmpty());
    QCOMPARE(old.m_nConnectionSpeed, 2);
    QCOMPARE(old.m_bTimeoutActive, true);
    QCOMPARE(old.m_nTimeoutSeconds, 60);
    const std::unique_ptr<ICfg> node(document->OpenChild(QStringLiteral("ConnectData0"), 0));
    const QString none = QStringLiteral("(none)");
    for (const QString& key : kOldOnlyKeys)
        QCOMPARE(node->GetString(key, none, 0), none);

    const ConnectData current(1, document);
    QCOMPARE(current.m_sStationName, FullRecord(1).m_sStationName);
    QCOMPARE(current.m_nConnectionType, 1);
    QCOMPARE(current.m_sRemoteAddress, QStringLiteral("10.0.1.1"));
    QCOMPARE(current.m_bTimeoutActive, true);
    QCOMPARE(current.m_nTimeoutSeconds, 30);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestConnectData)
#include "tst_connectdata.moc"
