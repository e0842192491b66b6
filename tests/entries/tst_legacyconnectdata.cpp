// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/entries/entrysamples.h"
#include "tests/support/confignodes.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/legacyconnectdata.h"

#include <QTemporaryDir>
#include <QTest>

namespace {

const QString kNone = QStringLiteral("(none)");

/// The eight stored values of a record as text, each with its key.
QStringList StoredValues(int number)
{
    const auto node = ConfigNodes::LegacyRecord(number);
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
    ExportLegacyConnectData(model, nullptr, [] { return true; });
}

} // namespace

/// The two conversions between an entry and a legacy record, and the export of all entries.
class TestLegacyConnectData : public QObject
{
    Q_OBJECT

private slots:
    void init() { CfgCenter::Close(); }
    void cleanup() { CfgCenter::Close(); }

    void entryBecomesRecord();
    void recordBecomesEntryAgain();
    void timeoutOfRecordIsActiveAboveZero_data();
    void timeoutOfRecordIsActiveAboveZero();

    void deviceTypeIsFirstNameContainedInText_data();
    void deviceTypeIsFirstNameContainedInText();
    void timeoutOfEntryNeedsActiveFlag_data();
    void timeoutOfEntryNeedsActiveFlag();

    void exportWritesAllEntriesInRowOrder();
    void shorterExportLeavesOldRecords();
    void exportOfEmptyTableWritesCountOnly();
    void exportUsesSharedView();
    void exportSavesDocument();
};

void TestLegacyConnectData::entryBecomesRecord()
{
    const ConnectData record = ConnectionToConnectData(MastEntry());
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

void TestLegacyConnectData::recordBecomesEntryAgain()
{
    for (int number = 0; number < 10; ++number) {
        const Connection entry = SampleEntry(number);
        QCOMPARE(Fields(ConnectDataToConnection(ConnectionToConnectData(entry))), Fields(entry));
    }
}

void TestLegacyConnectData::timeoutOfRecordIsActiveAboveZero_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<bool>("active");
    QTest::newRow("0") << 0 << false;
    QTest::newRow("-5") << -5 << false;
    QTest::newRow("30") << 30 << true;
}

void TestLegacyConnectData::timeoutOfRecordIsActiveAboveZero()
{
    QFETCH(int, seconds);
    QFETCH(bool, active);
    Connection entry;
    entry.TimeoutSeconds = seconds;
    QCOMPARE(ConnectionToConnectData(entry).m_bTimeoutActive, active);
    QCOMPARE(ConnectionToConnectData(entry).m_nTimeoutSeconds, seconds);
}

void TestLegacyConnectData::deviceTypeIsFirstNameContainedInText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("deviceType");
    for (int type = 0; type < 15; ++type) {
        QTest::addRow("name %d", type) << Connection::DeviceTypeName(type) << type;
        QTest::addRow("name %d, upper case in a longer text", type)
            << u'<' + Connection::DeviceTypeName(type).toUpper() + u'>' << type;
    }
    QTest::newRow("Kite Echo/Ember") << QStringLiteral("Kite Echo/Ember") << 4;
    QTest::newRow("several names, the lowest number counts") << QStringLiteral("Heron, Pipit and Kite Bravo") << 1;
    QTest::newRow("first component only") << QStringLiteral("Kite Alpha") << 4;
    QTest::newRow("unknown") << QStringLiteral("Albatross") << 4;
    QTest::newRow("empty") << QStringLiteral("") << 4;
}

void TestLegacyConnectData::deviceTypeIsFirstNameContainedInText()
{
    QFETCH(QString, text);
    QFETCH(int, deviceType);
    ConnectData record;
    record.m_sDeviceType = text;
    QCOMPARE(ConnectDataToConnection(record).DeviceType, deviceType);
}

void TestLegacyConnectData::timeoutOfEntryNeedsActiveFlag_data()
{
    QTest::addColumn<bool>("active");
    QTest::addColumn<int>("seconds");
    QTest::addColumn<int>("expected");
    QTest::newRow("active") << true << 30 << 30;
    QTest::newRow("active, 0") << true << 0 << 0;
    QTest::newRow("active, negative") << true << -5 << -5;
    QTest::newRow("not active") << false << 30 << 0;
}

void TestLegacyConnectData::timeoutOfEntryNeedsActiveFlag()
{
    QFETCH(bool, active);
    QFETCH(int, seconds);
    QFETCH(int, expected);
    ConnectData record;
    record.m_bTimeoutActive = active;
    record.m_nTimeoutSeconds = seconds;
    QCOMPARE(ConnectDataToConnection(record).TimeoutSeconds, expected);
}

void TestLegacyConnectData::exportWritesAllEntriesInRowOrder()
{
    Connection unselected = SampleEntry(3);
    unselected.Selected = false;
    unselected.ConnectionStatus = 0;
    Export({SampleEntry(2), unselected, SampleEntry(1), SampleEntry(1)});
    QCOMPARE(ConfigNodes::LegacyCount(kNone), QStringLiteral("4"));
    QCOMPARE(StoredValues(0), StoredValuesOf(SampleEntry(2)));
    QCOMPARE(StoredValues(1), StoredValuesOf(unselected));
    QCOMPARE(StoredValues(2), StoredValuesOf(SampleEntry(1)));
    QCOMPARE(StoredValues(3), StoredValuesOf(SampleEntry(1)));
    QVERIFY(StoredValues(4).contains(QStringLiteral("StationName=") + kNone));
}

void TestLegacyConnectData::shorterExportLeavesOldRecords()
{
    Export({SampleEntry(1), SampleEntry(2), SampleEntry(3)});
    QCOMPARE(ConfigNodes::LegacyCount(kNone), QStringLiteral("3"));
    Export({SampleEntry(9)});
    QCOMPARE(ConfigNodes::LegacyCount(kNone), QStringLiteral("1"));
    QCOMPARE(StoredValues(0), StoredValuesOf(SampleEntry(9)));
    QCOMPARE(StoredValues(1), StoredValuesOf(SampleEntry(2)));
    QCOMPARE(StoredValues(2), StoredValuesOf(SampleEntry(3)));
}

void TestLegacyConnectData::exportOfEmptyTableWritesCountOnly()
{
    Export({});
    QCOMPARE(ConfigNodes::LegacyCount(kNone), QStringLiteral("0"));
    QVERIFY(StoredValues(0).contains(QStringLiteral("StationName=") + kNone));
}

void TestLegacyConnectData::exportUsesSharedView()
{
    Export({SampleEntry(1)});
    const QString name = QStringLiteral("KiteResources/ConnectData");
    const QString key = QStringLiteral("ConnectionCount");
    QCOMPARE(CfgCenter::CreateCfg(name, View::User, {})->GetString(key, kNone, 0), kNone);
    QCOMPARE(CfgCenter::CreateCfg(name, View::Application, {})->GetString(key, kNone, 0), kNone);
    QCOMPARE(CfgCenter::CreateCfg(name, View::Shared, {})->GetString(key, kNone, 0), QStringLiteral("1"));
}

void TestLegacyConnectData::exportSavesDocument()
{
    const QTemporaryDir store;
    QVERIFY(CfgCenter::Open(store.path()));
    Connection entry = SampleEntry(1);
    entry.ConnectionName = QStringLiteral(u" \"a\"; b=c, [d] %e \\n \r\n\t\U0001F4E1 ") + QChar(1) + QChar(0xD83D);
    entry.DeviceAddress = QStringLiteral("@Invalid()");
    entry.DriverAddress = QStringLiteral("a, b, c");
    Export({entry, SampleEntry(2)});
    QVERIFY(CfgCenter::Open(store.path()));
    QCOMPARE(ConfigNodes::LegacyCount(kNone), QStringLiteral("2"));
    QCOMPARE(StoredValues(0), StoredValuesOf(entry));
    QCOMPARE(StoredValues(1), StoredValuesOf(SampleEntry(2)));
}

VEXEL_TEST(QTEST_MAIN, TestLegacyConnectData)

#include "tst_legacyconnectdata.moc"
