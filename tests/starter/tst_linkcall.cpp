#include "starter/linkcall.h"
#include "tests/starter/peers.h"
#include "tests/support/linkport.h"
#include "tests/support/system.h"

using Kind = RecordingCallback::Kind;
using namespace std::chrono_literals;

namespace {

LinkAnswer Call(quint16 port, std::chrono::milliseconds bound = 30s, std::chrono::milliseconds hearing = 0s)
{
    return Beside([=] { return CallLink(port, QDeadlineTimer(bound), hearing); });
}

/// Whether the service has noticed that its callers are gone. Not every system tells it before it says something more.
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
    void linkTakesIt();
    void linkIsDoneWithItBeforeItAnswers();
    void everyCallIsTaken();
    void busyLinkIsWaitedFor();
    void fullLinkIsWaitedFor();
    void nobodyListens();
    void onlyTheOtherAddressListens();
    void foreignService_data();
    void foreignService();
    void silentUntilTheDeadline();
    void queueThatIsFull();
    void nothingIsLeftOpen();
};

void TestLinkCall::linkTakesIt()
{
    TestServer server(10'000);
    QCOMPARE(Call(server.port, 30s, kHearingTime), LinkAnswer::Taken);
    QTRY_COMPARE(server.callback.Kinds(), (QList<Kind>{Kind::Open, Kind::Read, Kind::Close}));
    QCOMPARE(server.callback.Count(Kind::Open), 1);
}

void TestLinkCall::linkIsDoneWithItBeforeItAnswers()
{
    // What the callback does when it is called, such as to raise a window, is done when the caller is told.
    TestServer server(10'000);
    std::atomic<bool> isDone = false;
    server.callback.onOpen = [&](IInterface*) {
        QThread::msleep(1);
        isDone = true;
    };
    for (int call = 0; call < 10; ++call) {
        isDone = false;
        const bool wasDone =
            Beside([&] { return CallLink(server.port, QDeadlineTimer(30s), 0s) == LinkAnswer::Taken && isDone; });
        QVERIFY(wasDone);
    }
}

void TestLinkCall::everyCallIsTaken()
{
    TestServer server(10'000);
    const int taken = Beside([&] {
        int count = 0;
        for (int call = 0; call < 50; ++call)
            count += CallLink(server.port, QDeadlineTimer(30s), 0s) == LinkAnswer::Taken ? 1 : 0;
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
    QCOMPARE(answer.wait_for(300ms), std::future_status::timeout);
    QVERIFY(QTest::qWaitFor([&] { return answer.wait_for(0s) == std::future_status::ready; }, 30'000));
    QCOMPARE(answer.get(), LinkAnswer::Taken);
}

void TestLinkCall::fullLinkIsWaitedFor()
{
    TestServer server; // no time-out that would help
    std::vector<std::unique_ptr<QTcpSocket>> silent;
    for (int call = 0; call < 2 * CInterfaceCreator::kMaximumPeers; ++call) {
        silent.push_back(std::make_unique<QTcpSocket>());
        silent.back()->connectToHost(QHostAddress::LocalHost, server.port);
    }
    QTRY_COMPARE(server.callback.now, CInterfaceCreator::kMaximumPeers);
    QCOMPARE(Call(server.port), LinkAnswer::Taken);
}

void TestLinkCall::nobodyListens()
{
    QCOMPARE(CallLink(FreePort(), QDeadlineTimer(30s)), LinkAnswer::Refused);
}

void TestLinkCall::onlyTheOtherAddressListens()
{
    if (!HasIPv6())
        QSKIP("This machine has no IPv6");
    const ForeignService service(ForeignService::ClosesLate, QHostAddress::LocalHostIPv6);
    QCOMPARE(Call(service.serverPort()), LinkAnswer::Taken);
    QCOMPARE(service.calls, 1);
}

void TestLinkCall::foreignService_data()
{
    QTest::addColumn<ForeignService::Manner>("manner");
    QTest::addColumn<LinkAnswer>("expected");
    QTest::newRow("greets") << ForeignService::Greets << LinkAnswer::Foreign;
    QTest::newRow("echoes") << ForeignService::Echoes << LinkAnswer::Foreign;
    QTest::newRow("answers") << ForeignService::Answers << LinkAnswer::Foreign;
    QTest::newRow("closes like a link") << ForeignService::ClosesLate << LinkAnswer::Taken;
    QTest::newRow("resets, like a host that ends") << ForeignService::CutsOff << LinkAnswer::CutOff;
}

void TestLinkCall::foreignService()
{
    QFETCH(const ForeignService::Manner, manner);
    QFETCH(const LinkAnswer, expected);
    const ForeignService service(manner);
    // These services drop their answer when the caller has ended first, so no answer may come too late.
    const auto hearing = expected == LinkAnswer::Foreign ? 30s : 0s;
    QCOMPARE(Call(service.serverPort(), 30s, hearing), expected);
    QCOMPARE(service.calls, 1);
}

void TestLinkCall::silentUntilTheDeadline()
{
    const ForeignService service(ForeignService::NeverCloses);
    QCOMPARE(Call(service.serverPort(), 100ms), LinkAnswer::Silent);
    QTRY_COMPARE(service.calls, 1);
}

void TestLinkCall::queueThatIsFull()
{
    QTcpServer service;
    service.setListenBacklogSize(1);
    QVERIFY(service.listen(QHostAddress(QHostAddress::LocalHost)));
    service.pauseAccepting();
    std::vector<std::unique_ptr<QTcpSocket>> waiting;
    for (int call = 0; call < 8; ++call) {
        waiting.push_back(std::make_unique<QTcpSocket>());
        waiting.back()->connectToHost(QHostAddress::LocalHost, service.serverPort());
    }
    QTRY_COMPARE(waiting.front()->state(), QAbstractSocket::ConnectedState);
    QCOMPARE(Call(service.serverPort(), 100ms), LinkAnswer::Silent);
}

void TestLinkCall::nothingIsLeftOpen()
{
    TestServer server(10'000);
    const ForeignService service(ForeignService::Greets);
    const auto callAll = [&] {
        QCOMPARE(Call(server.port), LinkAnswer::Taken);
        QCOMPARE(Call(service.serverPort()), LinkAnswer::Foreign);
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

QTEST_GUILESS_MAIN(TestLinkCall)
#include "tst_linkcall.moc"
