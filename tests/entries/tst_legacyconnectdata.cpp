#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "tests/entries/entrysamples.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/legacyconnectdata.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

const QString kNone = QStringLiteral("(none)");

ICfg* LegacyDocument()
{
    return CfgCenter::CreateCfg(QStringLiteral("KiteResources/ConnectData"), View::Shared, QStringLiteral(""));
}

std::unique_ptr<ICfg> Record(int number)
{
    return std::unique_ptr<ICfg>(LegacyDocument()->OpenChild(QStringLiteral("ConnectData%1").arg(number), 0));
}

QString ConnectionCount()
{
    return LegacyDocument()->GetString(QStringLiteral("ConnectionCount"), kNone, 0);
}

/// The eight stored values of a record as text, each with its key.
QStringList StoredValues(int number)
{
    const auto node = Record(number);
    QStringList values;
    for (const char* const key : {"StationName", "DeviceType", "DeviceAddress", "RemoteAddress"})
        values += QLatin1String(key) + u'=' + node->GetString(QString::fromLatin1(key), kNone, 0);
    for (const char* const key : {"ConnectionType", "ConnectionSpeed", "TimeoutSeconds"})
        values += QLatin1String(key) + u'=' + QString::number(node->GetInt(QString::fromLatin1(key), -4711, 0));
    const QString active = QStringLiteral("TimeoutActive");
    // Both defaults, so that a missing value is neither.
    values += node->GetBool(active, false, 0) == node->GetBool(active, true, 0)
                  ? active + (node->GetBool(active, false, 0) ? QStringLiteral("=true") : QStringLiteral("=false"))
                  : active + u'=' + kNone;
    return values;
}

QStringList StoredValuesOf(const Connection& entry)
{
    return {
        QStringLiteral("StationName=") + entry.ConnectionName,
        QStringLiteral("DeviceType=") + Connection::DeviceTypeName(entry.DeviceType),
        QStringLiteral("DeviceAddress=") + entry.DeviceAddress,
        QStringLiteral("RemoteAddress=") + entry.DriverAddress,
        QStringLiteral("ConnectionType=%1").arg(entry.ConnectionType),
        QStringLiteral("ConnectionSpeed=%1").arg(entry.LinkSpeed),
        QStringLiteral("TimeoutSeconds=%1").arg(entry.TimeoutSeconds),
        QStringLiteral("TimeoutActive=") +
            (entry.TimeoutSeconds > 0 ? QStringLiteral("true") : QStringLiteral("false")),
    };
}

void Export(std::initializer_list<Connection> entries)
{
    ConnectionsModel model(nullptr, QString());
    for (const Connection& entry : entries)
        model.AddConnection(entry);
    ExportLegacyConnectData(model);
}

} // namespace

/// The two conversions between an entry and a legacy record, and the export of all entries.
class TestLegacyConnectData : public QObject
{
    Q_OBJECT

private slots:
    void init() { CfgCenter::Close(); }
    void cleanup() { CfgCenter::Close(); }

    void recordOfAnEntry();
    void deviceTypeOfARecordIsTheDisplayText_data();
    void deviceTypeOfARecordIsTheDisplayText();
    void timeoutOfARecord_data();
    void timeoutOfARecord();

    void entryOfARecord();
    void deviceTypeOfAnEntryIsTheFirstContained_data();
    void deviceTypeOfAnEntryIsTheFirstContained();
    void timeoutOfAnEntry_data();
    void timeoutOfAnEntry();
    void thereAndBack_data();
    void thereAndBack();

    void exportWritesEveryEntryInRowOrder();
    void exportOfThreeThenOneLeavesTheOtherRecords();
    void exportOfAnEmptyTableWritesTheCountOnly();
    void exportWritesWhetherATimeoutApplies();
    void exportWritesTheCurrentKeysOnly();
    void exportGoesToTheSharedDocument();
    void exportSavesTheDocument();
    void exportDoesNotTouchTheModel();
    void exportedRecordsReadAsTheyWere();
    void exportKeepsHostileTexts();
};

void TestLegacyConnectData::recordOfAnEntry()
{
    Connection entry;
    entry.ConnectionName = QStringLiteral("Mast 1");
    entry.DeviceType = 12;
    entry.ConnectionType = 1;
    entry.DeviceAddress = QStringLiteral("10.0.0.5");
    entry.DriverAddress = QStringLiteral("pc7");
    entry.LinkSpeed = 6;
    entry.TimeoutSeconds = 30;
    entry.ConnectionStatus = 1;
    entry.Selected = true;
    entry.Subsystem = QStringLiteral("Corvus 2");
    const ConnectData record = ConnectionToConnectData(entry);
    QCOMPARE(record.m_nIndex, -1);
    QCOMPARE(record.m_sStationName, QStringLiteral("Mast 1"));
    QCOMPARE(record.m_sDeviceType, QStringLiteral("Kite Alpha + Finch"));
    QCOMPARE(record.m_nConnectionType, 1);
    QCOMPARE(record.m_sDeviceAddress, QStringLiteral("10.0.0.5"));
    QCOMPARE(record.m_sRemoteAddress, QStringLiteral("pc7"));
    QCOMPARE(record.m_nConnectionSpeed, 6);
    QCOMPARE(record.m_bTimeoutActive, true);
    QCOMPARE(record.m_nTimeoutSeconds, 30);
    QCOMPARE(record.m_nStatus, 1);
    QCOMPARE(record.m_bSelected, true);
    QCOMPARE(record.m_sSubsystem, QStringLiteral("Corvus 2"));
    QCOMPARE(record.m_nReserved, 0);
}

void TestLegacyConnectData::deviceTypeOfARecordIsTheDisplayText_data()
{
    QTest::addColumn<int>("deviceType");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << 0 << QStringLiteral("Kite Alpha + Wren C");
    QTest::newRow("4") << 4 << QStringLiteral("Kite Echo");
    QTest::newRow("9") << 9 << QStringLiteral("Heron");
    QTest::newRow("14") << 14 << QStringLiteral("Linnet + DF");
    QTest::newRow("15") << 15 << QStringLiteral("No string representation for ID 15");
    QTest::newRow("-1") << -1 << QStringLiteral("No string representation for ID -1");
}

void TestLegacyConnectData::deviceTypeOfARecordIsTheDisplayText()
{
    QFETCH(int, deviceType);
    QFETCH(QString, text);
    Connection entry;
    entry.DeviceType = deviceType;
    QCOMPARE(ConnectionToConnectData(entry).m_sDeviceType, text);
}

void TestLegacyConnectData::timeoutOfARecord_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<bool>("active");
    QTest::newRow("0") << 0 << false;
    QTest::newRow("-5") << -5 << false;
    QTest::newRow("1") << 1 << true;
    QTest::newRow("30") << 30 << true;
}

void TestLegacyConnectData::timeoutOfARecord()
{
    QFETCH(int, seconds);
    QFETCH(bool, active);
    Connection entry;
    entry.TimeoutSeconds = seconds;
    QCOMPARE(ConnectionToConnectData(entry).m_bTimeoutActive, active);
    QCOMPARE(ConnectionToConnectData(entry).m_nTimeoutSeconds, seconds);
}

void TestLegacyConnectData::entryOfARecord()
{
    ConnectData record;
    record.m_nIndex = 5;
    record.m_sStationName = QStringLiteral("Mast 1");
    record.m_sDeviceType = QStringLiteral("Kite Cobra");
    record.m_nConnectionType = 2;
    record.m_sDeviceAddress = QStringLiteral("10.0.0.5");
    record.m_sRemoteAddress = QStringLiteral("pc7");
    record.m_nConnectionSpeed = 3;
    record.m_bTimeoutActive = true;
    record.m_nTimeoutSeconds = 30;
    record.m_nStatus = 1;
    record.m_bSelected = true;
    record.m_sSubsystem = QStringLiteral("Corvus 2");
    const Connection entry = ConnectDataToConnection(record);
    QCOMPARE(entry.ConnectionName, QStringLiteral("Mast 1"));
    QCOMPARE(entry.DeviceType, 2);
    QCOMPARE(entry.ConnectionType, 2);
    QCOMPARE(entry.DeviceAddress, QStringLiteral("10.0.0.5"));
    QCOMPARE(entry.DriverAddress, QStringLiteral("pc7"));
    QCOMPARE(entry.LinkSpeed, 3);
    QCOMPARE(entry.TimeoutSeconds, 30);
    QCOMPARE(entry.ConnectionStatus, 1);
    QCOMPARE(entry.Selected, true);
    QCOMPARE(entry.Subsystem, QStringLiteral("Corvus 2"));
}

void TestLegacyConnectData::deviceTypeOfAnEntryIsTheFirstContained_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("deviceType");
    for (int type = 0; type < 15; ++type) {
        QTest::addRow("text of %d", type) << Connection::DeviceTypeName(type) << type;
        QTest::addRow("text of %d in capitals", type) << Connection::DeviceTypeName(type).toUpper() << type;
        QTest::addRow("text of %d within a text", type) << u'<' + Connection::DeviceTypeName(type) + u'>' << type;
    }
    QTest::newRow("Kite Echo/Ember") << QStringLiteral("Kite Echo/Ember") << 4;
    QTest::newRow("Kite Moss E") << QStringLiteral("Kite Moss E") << 6;
    QTest::newRow("two names, the lower number counts") << QStringLiteral("Heron, Pipit and Kite Bravo") << 1;
    QTest::newRow("first component only") << QStringLiteral("Kite Alpha") << 4;
    QTest::newRow("unknown") << QStringLiteral("Albatross") << 4;
    QTest::newRow("fallback text") << QStringLiteral("No string representation for ID 1") << 4;
    QTest::newRow("empty") << QStringLiteral("") << 4;
}

void TestLegacyConnectData::deviceTypeOfAnEntryIsTheFirstContained()
{
    QFETCH(QString, text);
    QFETCH(int, deviceType);
    ConnectData record;
    record.m_sDeviceType = text;
    QCOMPARE(ConnectDataToConnection(record).DeviceType, deviceType);
}

void TestLegacyConnectData::timeoutOfAnEntry_data()
{
    QTest::addColumn<bool>("active");
    QTest::addColumn<int>("seconds");
    QTest::addColumn<int>("expected");
    QTest::newRow("active") << true << 30 << 30;
    QTest::newRow("active, 0") << true << 0 << 0;
    QTest::newRow("active, negative") << true << -5 << -5;
    QTest::newRow("not active") << false << 30 << 0;
}

void TestLegacyConnectData::timeoutOfAnEntry()
{
    QFETCH(bool, active);
    QFETCH(int, seconds);
    QFETCH(int, expected);
    ConnectData record;
    record.m_bTimeoutActive = active;
    record.m_nTimeoutSeconds = seconds;
    QCOMPARE(ConnectDataToConnection(record).TimeoutSeconds, expected);
}

void TestLegacyConnectData::thereAndBack_data()
{
    QTest::addColumn<int>("deviceType");
    for (int type = 0; type < 15; ++type)
        QTest::addRow("device type %d", type) << type;
}

void TestLegacyConnectData::thereAndBack()
{
    QFETCH(int, deviceType);
    Connection entry = SampleEntry(deviceType);
    entry.DeviceType = deviceType;
    QCOMPARE(Fields(ConnectDataToConnection(ConnectionToConnectData(entry))), Fields(entry));
}

void TestLegacyConnectData::exportWritesEveryEntryInRowOrder()
{
    Connection unselected = SampleEntry(3);
    unselected.Selected = false;
    unselected.ConnectionStatus = 0;
    Export({SampleEntry(2), unselected, SampleEntry(1), SampleEntry(1)});
    QCOMPARE(ConnectionCount(), QStringLiteral("4"));
    QCOMPARE(StoredValues(0), StoredValuesOf(SampleEntry(2)));
    QCOMPARE(StoredValues(1), StoredValuesOf(unselected));
    QCOMPARE(StoredValues(2), StoredValuesOf(SampleEntry(1)));
    QCOMPARE(StoredValues(3), StoredValuesOf(SampleEntry(1)));
    QVERIFY(StoredValues(4).contains(QStringLiteral("StationName=") + kNone));
}

void TestLegacyConnectData::exportOfThreeThenOneLeavesTheOtherRecords()
{
    Export({SampleEntry(1), SampleEntry(2), SampleEntry(3)});
    QCOMPARE(ConnectionCount(), QStringLiteral("3"));
    Export({SampleEntry(9)});
    QCOMPARE(ConnectionCount(), QStringLiteral("1"));
    QCOMPARE(StoredValues(0), StoredValuesOf(SampleEntry(9)));
    QCOMPARE(StoredValues(1), StoredValuesOf(SampleEntry(2)));
    QCOMPARE(StoredValues(2), StoredValuesOf(SampleEntry(3)));
}

void TestLegacyConnectData::exportOfAnEmptyTableWritesTheCountOnly()
{
    Export({});
    QCOMPARE(ConnectionCount(), QStringLiteral("0"));
    QVERIFY(StoredValues(0).contains(QStringLiteral("StationName=") + kNone));
}

void TestLegacyConnectData::exportWritesWhetherATimeoutApplies()
{
    Connection without;
    Connection with;
    with.TimeoutSeconds = 30;
    Export({without, with});
    QVERIFY(StoredValues(0).contains(QStringLiteral("TimeoutActive=false")));
    QVERIFY(StoredValues(0).contains(QStringLiteral("TimeoutSeconds=0")));
    QVERIFY(StoredValues(1).contains(QStringLiteral("TimeoutActive=true")));
    QVERIFY(StoredValues(1).contains(QStringLiteral("TimeoutSeconds=30")));
}

void TestLegacyConnectData::exportWritesTheCurrentKeysOnly()
{
    Record(0)->SetString(QStringLiteral("Virtual"), QStringLiteral("kept"), 0);
    Export({SampleEntry(1)});
    for (const char* const key : {"Type", "Access", "StationAddress", "TimeoutFlag", "Timeout", "MultiChannelServer",
                                  "Status", "Selected", "Subsystem", "Reserved", "Index"})
        QCOMPARE(Record(0)->GetString(QString::fromLatin1(key), kNone, 0), kNone);
    QCOMPARE(Record(0)->GetString(QStringLiteral("Virtual"), kNone, 0), QStringLiteral("kept"));
}

void TestLegacyConnectData::exportGoesToTheSharedDocument()
{
    Export({SampleEntry(1)});
    const QString name = QStringLiteral("KiteResources/ConnectData");
    const QString key = QStringLiteral("ConnectionCount");
    QCOMPARE(CfgCenter::CreateCfg(name, View::User, {})->GetString(key, kNone, 0), kNone);
    QCOMPARE(CfgCenter::CreateCfg(name, View::Application, {})->GetString(key, kNone, 0), kNone);
    QCOMPARE(CfgCenter::CreateCfg(name, View::Shared, {})->GetString(key, kNone, 0), QStringLiteral("1"));
}

void TestLegacyConnectData::exportSavesTheDocument()
{
    const QTemporaryDir store;
    QVERIFY(CfgCenter::Open(store.path()));
    Export({SampleEntry(1), SampleEntry(2)});
    QVERIFY(CfgCenter::Open(store.path()));
    QCOMPARE(ConnectionCount(), QStringLiteral("2"));
    QCOMPARE(StoredValues(0), StoredValuesOf(SampleEntry(1)));
    QCOMPARE(StoredValues(1), StoredValuesOf(SampleEntry(2)));
}

void TestLegacyConnectData::exportDoesNotTouchTheModel()
{
    ConnectionsModel model(nullptr, QString());
    model.AddConnection(SampleEntry(1));
    const QByteArray before = model.ToByteArray();
    ExportLegacyConnectData(model);
    QCOMPARE(model.ToByteArray(), before);
}

void TestLegacyConnectData::exportedRecordsReadAsTheyWere()
{
    Connection remote = SampleEntry(2);
    remote.ConnectionType = 1;
    Export({SampleEntry(4), remote});
    const ConnectData record(1, LegacyDocument());
    QCOMPARE(record.m_nIndex, 1);
    // Not stored, so not read.
    remote.ConnectionStatus = 0;
    remote.Selected = false;
    remote.Subsystem.clear();
    QCOMPARE(Fields(ConnectDataToConnection(record)), Fields(remote));
}

void TestLegacyConnectData::exportKeepsHostileTexts()
{
    const QTemporaryDir store;
    QVERIFY(CfgCenter::Open(store.path()));
    Connection entry = SampleEntry(1);
    entry.ConnectionName = QStringLiteral(u" \"a\"; b=c, [d] %e \\n \r\n\t\U0001F4E1 ") + QChar(1) + QChar(0xD83D);
    entry.DeviceAddress = QStringLiteral("@Invalid()");
    entry.DriverAddress = QStringLiteral("a, b, c");
    Export({entry});
    QVERIFY(CfgCenter::Open(store.path()));
    QCOMPARE(StoredValues(0), StoredValuesOf(entry));
}

VEXEL_TEST(QTEST_MAIN, TestLegacyConnectData)

#include "tst_legacyconnectdata.moc"
