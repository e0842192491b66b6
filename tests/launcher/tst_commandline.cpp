#include "userinterface/vexelconnectdlg/commandline.h"

#include "tests/support/tracerecorder.h"

#include <QTest>

namespace {

const QString kNoPort = QStringLiteral("AppCounter::ConnectTo() no port number added to sDriver");

Connection Entry(int deviceType, int connectionType = 0)
{
    Connection entry;
    entry.ConnectionName = QStringLiteral("Mast 7");
    entry.DeviceType = deviceType;
    entry.ConnectionType = connectionType;
    entry.DeviceAddress = QStringLiteral("10.0.0.1");
    entry.DriverAddress = QStringLiteral("driver.example");
    return entry;
}

QStringList Arguments(const QString& application, const Connection& entry)
{
    return ApplicationArguments(application, entry, Connection::ApplicationDeviceType(entry.DeviceType));
}

} // namespace

class TestCommandLine : public QObject
{
    Q_OBJECT

private slots:
    void forEveryType_data();
    void forEveryType();
    void driverAddress_data();
    void driverAddress();
    void noPort_data();
    void noPort();
    void unsupportedType_data();
    void unsupportedType();
    void textsAreTakenAsTheyAre();
    void silentWithoutTraces();
};

void TestCommandLine::forEveryType_data()
{
    QTest::addColumn<int>("deviceType");
    QTest::addColumn<int>("connectionType");
    QTest::addColumn<QStringList>("further");

    const auto connection = [](const char* port) {
        return QString(QStringLiteral("Connection=driver.example") + QLatin1String(port));
    };
    const QString server = QStringLiteral("Server");
    const QString name = QStringLiteral("Mast 7");
    // Also a connection type that no editor offers: any number may come from a file.
    for (const int connectionType : {-1, 0, 1, 2, 3}) {
        const auto row = [connectionType](int deviceType, const QStringList& further) {
            QTest::addRow("type %d, connection %d", deviceType, connectionType)
                << deviceType << connectionType << further;
        };
        row(0, {server, name});
        row(1, {server, connection(":27061")});
        if (connectionType == 1)
            row(2, {server, connection(":27081")});
        else if (connectionType == 2)
            row(2, {server, QStringLiteral("MCS"), QStringLiteral("MCSMaster"), connection(":27081")});
        else
            row(2, {});
        for (int deviceType = 3; deviceType <= 8; ++deviceType)
            row(deviceType, {server, name});
        row(9, {});
        row(10, {server, connection(":9446")});
        row(11, {});
        row(12, {server, connection("")});
        row(13, {server, connection(":27091")});
        row(14, {server, connection(":27071")});
    }
}

void TestCommandLine::forEveryType()
{
    QFETCH(const int, deviceType);
    QFETCH(const int, connectionType);
    QFETCH(const QStringList, further);
    QCOMPARE(Arguments(QStringLiteral("KiteControl"), Entry(deviceType, connectionType)),
             QStringList(QStringLiteral("KiteControl:XMsgDlg.dll")) + further);
}

void TestCommandLine::driverAddress_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char* address, const char* expected) {
        QTest::newRow(*address ? address : "empty") << QString::fromUtf8(address) << QString::fromUtf8(expected);
    };
    row("10.1.2.3", "10.1.2.3:27061");
    row("", ":27061");
    row("10.1.2.3:4000", "10.1.2.3:4000");
    row("10.1.2.3:27061", "10.1.2.3:27061");
    row("host:0", "host:0");
    row("host:", "host::27061");
    row("host:port", "host:port:27061");
    row("host: 80", "host: 80:27061");
    row(":1", ":1");
    // A match anywhere counts, also one within an address of IPv6.
    row("a:1b", "a:1b");
    row("fe80::1", "fe80::1");
    row("fe80::a", "fe80::a:27061");
    row("27061", "27061:27061");
    // Digits are those of ASCII.
    row("host:\u0661", "host:\u0661:27061");
}

void TestCommandLine::driverAddress()
{
    QFETCH(const QString, address);
    QFETCH(const QString, expected);
    const TraceRecorder traces;
    Connection entry = Entry(Connection::KiteBravo);
    entry.DriverAddress = address;
    QCOMPARE(Arguments(QStringLiteral("App"), entry).constLast(), QString(QStringLiteral("Connection=") + expected));
    QVERIFY2(traces.Reports().isEmpty(), traces.Text().constData());
}

void TestCommandLine::noPort_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("traced");
    QTest::newRow("no port") << QStringLiteral("driver.example") << true;
    QTest::newRow("empty") << QString() << true;
    QTest::newRow("own port") << QStringLiteral("driver.example:1") << false;
}

void TestCommandLine::noPort()
{
    QFETCH(const QString, address);
    QFETCH(const bool, traced);
    const TraceRecorder traces;
    Connection entry = Entry(Connection::KiteAlphaFinch);
    entry.DriverAddress = address;
    QCOMPARE(Arguments(QStringLiteral("App"), entry),
             (QStringList{QStringLiteral("App:XMsgDlg.dll"), QStringLiteral("Server"),
                          QString(QStringLiteral("Connection=") + address)}));
    QCOMPARE(traces.Messages(), traced ? QStringList(kNoPort) : QStringList());
    if (traced) {
        QCOMPARE(traces.Reports().constFirst().sourceFile, QStringLiteral("userinterface/vexelconnectdlg/appcounter"));
        QCOMPARE(traces.Reports().constFirst().kind, ErrorHandler::Trace);
    }
}

void TestCommandLine::unsupportedType_data()
{
    QTest::addColumn<int>("deviceType");
    QTest::addColumn<QString>("text");
    QTest::newRow("Heron") << 9 << QStringLiteral("Heron");
    QTest::newRow("Pipit") << 11 << QStringLiteral("Pipit");
    QTest::newRow("above") << 15 << QStringLiteral("No string representation for ID 15");
    QTest::newRow("below") << -1 << QStringLiteral("No string representation for ID -1");
}

void TestCommandLine::unsupportedType()
{
    QFETCH(const int, deviceType);
    QFETCH(const QString, text);
    const TraceRecorder traces;
    QCOMPARE(Arguments(QStringLiteral("App"), Entry(deviceType, 1)), QStringList(QStringLiteral("App:XMsgDlg.dll")));
    QCOMPARE(traces.Messages(QStringLiteral("userinterface/vexelconnectdlg/appcounter")),
             QStringList(QStringLiteral("AppCounter::ConnectTo() DeviceType %1 is not yet supported").arg(text)));
}

void TestCommandLine::textsAreTakenAsTheyAre()
{
    Connection entry = Entry(Connection::KiteEcho);
    entry.ConnectionName = QStringLiteral("%1 <b>x</b> \"y\" %2\n");
    QCOMPARE(Arguments(QStringLiteral("A%1"), entry),
             (QStringList{QStringLiteral("A%1:XMsgDlg.dll"), QStringLiteral("Server"), entry.ConnectionName}));

    entry.DeviceType = Connection::WrenD;
    entry.DriverAddress = QStringLiteral("%1 a\\");
    QCOMPARE(Arguments(QStringLiteral("A"), entry).constLast(), QStringLiteral("Connection=%1 a\\:9446"));
}

void TestCommandLine::silentWithoutTraces()
{
    const TraceRecorder traces(ErrorHandler::Assertion);
    Arguments(QStringLiteral("App"), Entry(Connection::KiteAlphaFinch));
    Arguments(QStringLiteral("App"), Entry(Connection::Heron));
    QVERIFY2(traces.Reports().isEmpty(), traces.Text().constData());
}

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
