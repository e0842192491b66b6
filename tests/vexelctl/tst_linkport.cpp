// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"
#include "vexelctl/support/linkport.h"

#include <QTcpServer>
#include <QTest>

class TestLinkPort : public QObject
{
    Q_OBJECT

private slots:
    void freePort();
    void takenPort_data();
    void takenPort();
    void probeDoesNotConnect();
    void probeDoesNotBlockTheServer();
};

namespace {

/// A port that was free a moment ago.
quint16 SomePort()
{
    QTcpServer server;
    return server.listen(QHostAddress::LocalHost) ? server.serverPort() : quint16{0};
}

} // namespace

void TestLinkPort::freePort()
{
    const quint16 number = SomePort();
    QVERIFY(number != 0);
    const LinkPort port = ProbePort(number);
    QVERIFY(port.isFree);
    QCOMPARE(port.error, QString());
}

void TestLinkPort::takenPort_data()
{
    QTest::addColumn<QHostAddress>("address");
    QTest::newRow("IPv4") << QHostAddress(QHostAddress::LocalHost);
    QTest::newRow("IPv6") << QHostAddress(QHostAddress::LocalHostIPv6);
    QTest::newRow("every address") << QHostAddress(QHostAddress::Any);
}

void TestLinkPort::takenPort()
{
    QFETCH(const QHostAddress, address);
    QTcpServer server;
    if (!server.listen(address))
        QSKIP("This machine does not have this kind of address.");
    const LinkPort port = ProbePort(server.serverPort());
    QVERIFY(!port.isFree);
    QCOMPARE(port.error, QString());
}

void TestLinkPort::probeDoesNotConnect()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    QVERIFY(!ProbePort(server.serverPort()).isFree);
    // A real call, so that it would have been heard of by now.
    QTcpSocket caller;
    caller.connectToHost(QHostAddress::LocalHost, server.serverPort());
    QTRY_VERIFY(server.hasPendingConnections());
    QCOMPARE(server.nextPendingConnection()->peerPort(), caller.localPort());
    QVERIFY(!server.hasPendingConnections());
}

void TestLinkPort::probeDoesNotBlockTheServer()
{
    const quint16 number = SomePort();
    QTcpSocket probe;
    QVERIFY(probe.bind(QHostAddress::LocalHost, number, ProbeMode()));
#ifdef Q_OS_UNIX
    // A host that starts in the middle of the look.
    QTcpServer server;
    QVERIFY2(server.listen(QHostAddress::LocalHost, number), qPrintable(server.errorString()));
#else
    QSKIP("On this system a port is had by one alone, for as long as the look takes.");
#endif
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestLinkPort)
#include "tst_linkport.moc"
