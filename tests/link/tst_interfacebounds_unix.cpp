// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/link/handlelimit.h"
#include "tests/link/vanishing.h"
#include "tests/support/linkfixture.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"

#include <QRegularExpression>
#include <QTest>

#include <vector>

using Kind = RecordingCallback::Kind;

/// Connections at the bounds that a system sets, or where it lets them end in silence.
class TestInterfaceBoundsUnix : public QObject
{
    Q_OBJECT

private slots:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral("."))); }

    void serverSurvivesALackOfHandles();
    void vanishedPeersAreClosed();
    void waitingCallersTakeNoHandles();
};

void TestInterfaceBoundsUnix::serverSurvivesALackOfHandles()
{
    {
        // The sanitizers' check of types takes a handle itself for what they have not met before.
        TestServer other;
        const auto caller = CallerOf(other.port);
        QTRY_COMPARE(other.callback.Count(Kind::Open), 1);
    }
    TestServer server;
    std::vector<std::unique_ptr<QTcpSocket>> callers;
    for (int call = 0; call < 3; ++call) {
        callers.push_back(CallerOf(server.port));
        QVERIFY(callers.back()->waitForConnected()); // in the system's queue
    }
    {
        const NoMoreHandles none;
        QTRY_VERIFY(server.callback.Count(Kind::Error) > 0);
        QCOMPARE(server.callback.Kinds(), QList<Kind>{Kind::Error});
        QCOMPARE(server.callback.events.constFirst().source, server.server.get());
        QVERIFY(server.server->IsOpen());
    }
    // No caller was lost.
    QTRY_COMPARE(server.callback.Count(Kind::Open), 3);
}

void TestInterfaceBoundsUnix::vanishedPeersAreClosed()
{
    TestServer server(200);
    std::vector<std::unique_ptr<QTcpSocket>> callers;
    for (int call = 0; call < CInterfaceCreator::kMaximumPeers; ++call)
        callers.push_back(CallerOf(server.port));
    QTRY_COMPARE(server.callback.now, CInterfaceCreator::kMaximumPeers);
    for (const auto& caller : callers)
        if (!Vanish(*caller))
            QSKIP("This needs the right to administer the network, on Linux");
    // Nothing says that they are gone, but that they are silent.
    QCOMPARE(server.callback.now, CInterfaceCreator::kMaximumPeers);
    QTRY_COMPARE(server.callback.Count(Kind::Close), CInterfaceCreator::kMaximumPeers);
    QCOMPARE(server.callback.Count(Kind::Error), 0);
}

void TestInterfaceBoundsUnix::waitingCallersTakeNoHandles()
{
    TestServer server;
    std::vector<std::unique_ptr<QTcpSocket>> callers;
    for (int call = 0; call < CInterfaceCreator::kMaximumPeers; ++call)
        callers.push_back(CallerOf(server.port));
    QTRY_COMPARE(server.callback.now, CInterfaceCreator::kMaximumPeers);
    const qsizetype before = System::OpenHandles();
    constexpr int waiting = 20;
    for (int call = 0; call < waiting; ++call) {
        callers.push_back(CallerOf(server.port));
        QVERIFY(callers.back()->waitForConnected());
        QCoreApplication::processEvents();
    }
    // Their own ones, and one for each of the server's addresses.
    QVERIFY2(System::OpenHandles() <= before + waiting + 2,
             qPrintable(QString::number(System::OpenHandles() - before)));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestInterfaceBoundsUnix)
#include "tst_interfacebounds_unix.moc"
