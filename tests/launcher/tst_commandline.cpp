// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/commandline.h"

#include <QTest>

namespace {

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

CommandLine MakeCommandLine(const QString& application, const Connection& entry)
{
    return ApplicationCommandLine(application, entry, Connection::ApplicationDeviceType(entry.DeviceType));
}

QStringList Arguments(const QString& application, const Connection& entry)
{
    return MakeCommandLine(application, entry).arguments;
}

} // namespace

class TestCommandLine : public QObject
{
    Q_OBJECT

private slots:
    void argumentsOfEveryType_data();
    void argumentsOfEveryType();
    void portIsAddedUnlessPresent_data();
    void portIsAddedUnlessPresent();
    void kiteAlphaFinchHasNoDefaultPort_data();
    void kiteAlphaFinchHasNoDefaultPort();
    void unsupportedTypeIsMarked_data();
    void unsupportedTypeIsMarked();
    void textsAreTakenUnchanged();
};

void TestCommandLine::argumentsOfEveryType_data()
{
    QTest::addColumn<int>("deviceType");
    QTest::addColumn<int>("connectionType");
    QTest::addColumn<QStringList>("further");

    const auto connection = [](const char* port) {
        return QString(QStringLiteral("Connection=driver.example") + QLatin1String(port));
    };
    const QString server = QStringLiteral("Server");
    const QString name = QStringLiteral("Mast 7");
    // A file can contain any connection type, also invalid ones.
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

void TestCommandLine::argumentsOfEveryType()
{
    QFETCH(const int, deviceType);
    QFETCH(const int, connectionType);
    QFETCH(const QStringList, further);
    QCOMPARE(Arguments(QStringLiteral("KiteControl"), Entry(deviceType, connectionType)),
             QStringList(QStringLiteral("KiteControl:XMsgDlg.dll")) + further);
}

void TestCommandLine::portIsAddedUnlessPresent_data()
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
    // A colon and a digit anywhere count as a port, also in an IPv6 address.
    row("a:1b", "a:1b");
    row("fe80::1", "fe80::1");
    row("fe80::a", "fe80::a:27061");
    row("27061", "27061:27061");
    // Only ASCII digits count.
    row("host:\u0661", "host:\u0661:27061");
}

void TestCommandLine::portIsAddedUnlessPresent()
{
    QFETCH(const QString, address);
    QFETCH(const QString, expected);
    Connection entry = Entry(Connection::KiteBravo);
    entry.DriverAddress = address;
    const CommandLine line = MakeCommandLine(QStringLiteral("App"), entry);
    QCOMPARE(line.arguments.constLast(), QString(QStringLiteral("Connection=") + expected));
    QVERIFY(!line.lacksPort);
    QVERIFY(line.isSupported);
}

void TestCommandLine::kiteAlphaFinchHasNoDefaultPort_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("lacksPort");
    QTest::newRow("no port") << QStringLiteral("driver.example") << true;
    QTest::newRow("empty") << QString() << true;
    QTest::newRow("own port") << QStringLiteral("driver.example:1") << false;
}

void TestCommandLine::kiteAlphaFinchHasNoDefaultPort()
{
    QFETCH(const QString, address);
    QFETCH(const bool, lacksPort);
    Connection entry = Entry(Connection::KiteAlphaFinch);
    entry.DriverAddress = address;
    const CommandLine line = MakeCommandLine(QStringLiteral("App"), entry);
    QCOMPARE(line.arguments, (QStringList{QStringLiteral("App:XMsgDlg.dll"), QStringLiteral("Server"),
                                          QString(QStringLiteral("Connection=") + address)}));
    QCOMPARE(line.lacksPort, lacksPort);
    QVERIFY(line.isSupported);
}

void TestCommandLine::unsupportedTypeIsMarked_data()
{
    QTest::addColumn<int>("deviceType");
    QTest::newRow("Heron") << 9;
    QTest::newRow("Pipit") << 11;
    QTest::newRow("type above the range") << 15;
    QTest::newRow("type below the range") << -1;
}

void TestCommandLine::unsupportedTypeIsMarked()
{
    QFETCH(const int, deviceType);
    const CommandLine line = MakeCommandLine(QStringLiteral("App"), Entry(deviceType, 1));
    QCOMPARE(line.arguments, QStringList(QStringLiteral("App:XMsgDlg.dll")));
    QVERIFY(!line.isSupported);
    QVERIFY(!line.lacksPort);
}

void TestCommandLine::textsAreTakenUnchanged()
{
    const QString text = QStringLiteral(u" %1 <b>x</b> \"y\" %2\n\\ \u041F\U0001F4E1");
    Connection entry = Entry(Connection::KiteEcho);
    entry.ConnectionName = text;
    QCOMPARE(Arguments(QStringLiteral("A%1"), entry),
             (QStringList{QStringLiteral("A%1:XMsgDlg.dll"), QStringLiteral("Server"), text}));

    entry.DriverAddress = text;
    for (const int deviceType : {Connection::KiteBravo, Connection::KiteCobra, Connection::KiteAlphaFinch}) {
        entry.DeviceType = deviceType;
        entry.ConnectionType = Connection::MultiChannelServer;
        QVERIFY(Arguments(QStringLiteral("A"), entry)
                    .constLast()
                    .startsWith(QString(QStringLiteral("Connection=") + text)));
    }
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCommandLine)
#include "tst_commandline.moc"
