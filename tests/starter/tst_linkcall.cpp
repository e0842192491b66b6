// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "starter/linkcall.h"
#include "tests/starter/peers.h"
#include "tests/support/linkport.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"

using Kind = RecordingCallback::Kind;
using namespace std::chrono_literals;

namespace {

LinkAnswer Call(quint16 port, std::chrono::milliseconds bound = 30s, std::chrono::milliseconds hearing = 0s)
{
    return Beside([=] { return CallLink(port, QDeadlineTimer(bound), hearing); });
}

/// Whether the service knows that its callers are gone. Some systems report it only at the next write.
bool HaveAllGone(const ForeignService& service)
{
    const auto callers = service.findChildren<QTcpSocket*>();
    for (QTcpSocket* caller : callers)
        (void)LinkPort::HasEnded(*caller);
    return callers.isEmpty();
}

} // namespace

class TestLinkCall : public QObject
{
    Q_OBJECT

private slots:
    void linkTakesTheCall();
    void everyCallIsTaken();
    void busyLinkIsWaitedFor();
    void fullLinkIsWaitedFor();
    void floodedLinkTakesTheCall();
    void closedPortRefuses();
    void ipv6IsTriedNext();
    void answersOfOtherServicesAreRecognised_data();
    void answersOfOtherServicesAreRecognised();
    void silentServiceTimesOut();
    void fullQueueTimesOut();
    void nothingIsLeftOpen();
};

void TestLinkCall::linkTakesTheCall()
{
    TestServer server(10'000);
    QCOMPARE(Call(server.port, 30s, kHalfCloseDelay), LinkAnswer::Accepted);
    QTRY_COMPARE(server.callback.Kinds(), (QList<Kind>{Kind::Open, Kind::Read, Kind::Close}));
    QCOMPARE(server.callback.Count(Kind::Open), 1);
}

void TestLinkCall::everyCallIsTaken()
{
    TestServer server(10'000);
    const int taken = Beside([&] {
        int count = 0;
        for (int call = 0; call < 50; ++call)
            count += CallLink(server.port, QDeadlineTimer(30s), 0s) == LinkAnswer::Accepted ? 1 : 0;
        return count;
    });
    QCOMPARE(taken, 50);
    QTRY_COMPARE(server.callback.Count(Kind::Close), 50);
    QCOMPARE(server.callback.Count(Kind::Open), 50);
    QCOMPARE(server.callback.Count(Kind::Error), 0);
}

void TestLinkCall::busyLinkIsWaitedFor()
{
    TestServer server(10'000);
    auto answer = std::async(std::launch::async, [&] { return CallLink(server.port, QDeadlineTimer(30s)); });
    // No event loop runs here meanwhile, as while an application is being started.
    QCOMPARE(answer.wait_for(100ms), std::future_status::timeout);
    QVERIFY(QTest::qWaitFor([&] { return answer.wait_for(0s) == std::future_status::ready; }, 30'000));
    QCOMPARE(answer.get(), LinkAnswer::Accepted);
}

void TestLinkCall::fullLinkIsWaitedFor()
{
    TestServer server; // no time-out that would help
    std::vector<std::unique_ptr<QTcpSocket>> silent;
    for (int call = 0; call < 2 * CInterfaceCreator::kMaximumPeers; ++call)
        silent.push_back(CallerOf(server.port));
    QTRY_COMPARE(server.callback.now, CInterfaceCreator::kMaximumPeers);
    QCOMPARE(Call(server.port), LinkAnswer::Accepted);
}

void TestLinkCall::floodedLinkTakesTheCall()
{
    TestServer server(10'000);
    server.callback.onRead = [](IInterface*, quint64) {
    };
    // Others have sent more than the link hands over.
    const auto isExhausted = [&] {
        const quint64 before = server.callback.Length(Kind::Read);
        const auto stranger = CallerOf(server.port);
        stranger->write(QByteArray(CInterfaceCreator::kMaximumBytesPerCall + 1, 'x'));
        const qsizetype closed = server.callback.Count(Kind::Close);
        return WaitUntil([&] { return server.callback.Count(Kind::Close) > closed; }) &&
               server.callback.Length(Kind::Read) == before;
    };
    QTRY_VERIFY(isExhausted());
    for (int call = 0; call < 200; ++call) {
        server.callback.events.clear();
        QCOMPARE(Call(server.port), LinkAnswer::Accepted);
        QCOMPARE(server.callback.Count(Kind::Open), 1);
        QCOMPARE(server.callback.Count(Kind::Error), 0);
    }
}

void TestLinkCall::closedPortRefuses()
{
    QCOMPARE(CallLink(FreePort(), QDeadlineTimer(30s)), LinkAnswer::Refused);
}

void TestLinkCall::ipv6IsTriedNext()
{
    if (!HasIPv6())
        QSKIP("This machine has no IPv6");
    const ForeignService service(ForeignService::ClosesLate, QHostAddress::LocalHostIPv6);
    QCOMPARE(Call(service.serverPort()), LinkAnswer::Accepted);
    QCOMPARE(service.calls, 1);
}

void TestLinkCall::answersOfOtherServicesAreRecognised_data()
{
    QTest::addColumn<ForeignService::Manner>("manner");
    QTest::addColumn<LinkAnswer>("expected");
    QTest::newRow("greets") << ForeignService::Greets << LinkAnswer::OtherService;
    QTest::newRow("echoes") << ForeignService::Echoes << LinkAnswer::OtherService;
    QTest::newRow("answers") << ForeignService::Answers << LinkAnswer::OtherService;
    QTest::newRow("closes like a link") << ForeignService::ClosesLate << LinkAnswer::Accepted;
    QTest::newRow("resets, like a host that ends") << ForeignService::CutsOff << LinkAnswer::Reset;
}

void TestLinkCall::answersOfOtherServicesAreRecognised()
{
    QFETCH(const ForeignService::Manner, manner);
    QFETCH(const LinkAnswer, expected);
    if (expected == LinkAnswer::Reset && QSysInfo::kernelType() == QLatin1String("winnt"))
        QSKIP("Wine sometimes reports a reset as a close");
    const ForeignService service(manner);
    // Services drop their answer when they see the end of the call first, so the call ends only for the one that waits
    // for its end.
    const auto halfCloseDelay = manner == ForeignService::ClosesLate ? 0s : 30s;
    // By chance an answer comes through to a caller that ends at once, but not every time.
    constexpr int calls = 10;
    for (int call = 0; call < calls; ++call)
        QCOMPARE(Call(service.serverPort(), 30s, halfCloseDelay), expected);
    QCOMPARE(service.calls, calls);
}

void TestLinkCall::silentServiceTimesOut()
{
    const ForeignService service(ForeignService::NeverCloses);
    QCOMPARE(Call(service.serverPort(), 100ms), LinkAnswer::TimedOut);
    QTRY_COMPARE(service.calls, 1);
}

void TestLinkCall::fullQueueTimesOut()
{
    QTcpServer service;
    service.setListenBacklogSize(1);
    QVERIFY(service.listen(QHostAddress(QHostAddress::LocalHost)));
    service.pauseAccepting();
    std::vector<std::unique_ptr<QTcpSocket>> waiting;
    for (int call = 0; call < 8; ++call)
        waiting.push_back(CallerOf(service.serverPort()));
    QTRY_COMPARE(waiting.front()->state(), QAbstractSocket::ConnectedState);
    QCOMPARE(Call(service.serverPort(), 100ms), LinkAnswer::TimedOut);
}

void TestLinkCall::nothingIsLeftOpen()
{
    TestServer server(10'000);
    const ForeignService service(ForeignService::Greets);
    const auto callAll = [&] {
        QCOMPARE(Call(server.port), LinkAnswer::Accepted);
        QCOMPARE(Call(service.serverPort()), LinkAnswer::OtherService);
        QCOMPARE(CallLink(FreePort(), QDeadlineTimer(30s)), LinkAnswer::Refused);
    };
    callAll();
    QTRY_COMPARE(server.callback.now, 0);
    QTRY_VERIFY(HaveAllGone(service));
    const auto before = System::OpenHandles();
    for (int round = 0; round < 5; ++round)
        callAll();
    QTRY_COMPARE(server.callback.now, 0);
    QTRY_VERIFY(HaveAllGone(service));
    QTRY_VERIFY(System::OpenHandles() <= before);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestLinkCall)
#include "tst_linkcall.moc"
