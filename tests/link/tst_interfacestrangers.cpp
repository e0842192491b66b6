// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "starter/linksocket.h"
#include "tests/link/strangerprocess.h"
#include "tests/support/linkfixture.h"
#include "tests/support/testmain.h"
#include "tests/support/waitforend.h"

#include <QRegularExpression>
#include <QTest>

using Kind = RecordingCallback::Kind;

/// Connections whose other process is silent, killed or half closed.
class TestInterfaceStrangers : public QObject
{
    Q_OBJECT

private slots:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral("."))); }

    void silentProcessIsClosed();
    void halfClosedConnectionIsClosed_data();
    void halfClosedConnectionIsClosed();
    void connectionsOfAKilledProcessAreClosed_data();
    void connectionsOfAKilledProcessAreClosed();
};

void TestInterfaceStrangers::silentProcessIsClosed()
{
    TestServer server(200);
    Stranger stranger(server.port, 1);
    QTRY_COMPARE(server.callback.Kinds(), (QList<Kind>{Kind::Open, Kind::Read, Kind::Close}));
    QCOMPARE(server.callback.received, Stranger::Said());
    // It was told.
    QVERIFY(WaitForEnd(stranger.process));
    QCOMPARE(stranger.process.exitCode(), 0);
}

void TestInterfaceStrangers::halfClosedConnectionIsClosed_data()
{
    QTest::addColumn<bool>("isSent");
    QTest::newRow("at once") << false;
    QTest::newRow("after half a call") << true;
}

void TestInterfaceStrangers::halfClosedConnectionIsClosed()
{
    QFETCH(const bool, isSent);
    TestServer server; // no time-out that would help
    const auto caller = CallerOf(server.port);
    QTRY_COMPARE(caller->state(), QAbstractSocket::ConnectedState);
    if (isSent) {
        caller->write(Stranger::Said());
        QTRY_COMPARE(server.callback.received, Stranger::Said());
    }
    ShutdownSending(caller->socketDescriptor());
    // A caller that sends no more does not keep a place.
    QTRY_COMPARE(server.callback.Count(Kind::Close), 1);
    QCOMPARE(server.callback.Count(Kind::Open), 1);
    QCOMPARE(server.callback.Count(Kind::Error), 0);
    QTRY_COMPARE(caller->state(), QAbstractSocket::UnconnectedState);
}

void TestInterfaceStrangers::connectionsOfAKilledProcessAreClosed_data()
{
    QTest::addColumn<bool>("isAnswered");
    QTest::newRow("nothing unread") << false;
    // Its system then resets the connection.
    QTest::newRow("unread answer") << true;
}

void TestInterfaceStrangers::connectionsOfAKilledProcessAreClosed()
{
    QFETCH(const bool, isAnswered);
    TestServer server; // no time-out that would help
    constexpr int calls = CInterfaceCreator::kMaximumPeers;
    Stranger stranger(server.port, calls);
    QTRY_COMPARE(server.callback.received, Stranger::Said().repeated(calls));
    QCOMPARE(server.callback.now, calls);
    if (isAnswered) {
        server.server->Write("answer", 6);
        QTRY_COMPARE(server.callback.Length(Kind::Written), quint64{6 * calls});
    }
    stranger.process.kill();
    QTRY_COMPARE(server.callback.Count(Kind::Close), calls);
    QCOMPARE(server.callback.Count(Kind::Error), 0);

    // Every place is free again.
    Stranger next(server.port, calls);
    QTRY_COMPARE(server.callback.now, calls);
    QCOMPARE(server.callback.most, calls);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestInterfaceStrangers)
#include "tst_interfacestrangers.moc"
