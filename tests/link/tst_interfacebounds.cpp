// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/link/readbudget.h"
#include "tests/link/flood.h"
#include "tests/support/linkfixture.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"

#include <QDir>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QTest>

#include <vector>

using Kind = RecordingCallback::Kind;

namespace {

constexpr qint64 kMebibyte = 1024LL * 1024;

/// Says one line and hangs up, as the starter does.
std::unique_ptr<QTcpSocket> CallBriefly(quint16 port,
                                        const QHostAddress& address = QHostAddress(QHostAddress::LocalHost))
{
    auto caller = CallerOf(port, address);
    caller->write("line\n");
    caller->disconnectFromHost();
    return caller;
}

} // namespace

class TestInterfaceBounds : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void thousandCallersInARowAreServed();
    void twoHundredCallersAtOnceAreServed_data();
    void twoHundredCallersAtOnceAreServed();
    void silentPeersDoNotBlockCallers_data();
    void silentPeersDoNotBlockCallers();
    void floodOnOneAddressDoesNotBlockTheOther();
    void peerIsClosedAtTheByteLimit();
    void peerMaySendUpToTheLimit();
    void clientClosesAtTheByteLimit();
    void peersShareABudget();
    void vanishedPeerIsDroppedOnce();
    void randomBytesArriveUnchanged();
    void silentPeerIsClosed();
    void talkingPeerStays();
    void hugeTimeOutNeverExpires();
    void clientClosesASilentHost();
    void unansweredConnectFails();
    void unansweredClientCanBeOpenedAgain();
    void slowCallbackDoesNotTimeOutThePeer();
    void peerThatDoesNotReadIsClosed();
    void nothingIsLeftOpen();
};

void TestInterfaceBounds::init()
{
    // Qt warns where a socket is used in a state in which it must not be.
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
}

void TestInterfaceBounds::thousandCallersInARowAreServed()
{
    TestServer server(10'000);
    for (int call = 1; call <= 1000; ++call) {
        const auto caller = CallBriefly(server.port);
        QVERIFY2(WaitUntil([&] { return server.callback.Count(Kind::Close) == call; }),
                 QByteArray::number(call).constData());
        server.callback.events.removeIf([](const auto& event) { return event.kind == Kind::Read; });
    }
    QCOMPARE(server.callback.Count(Kind::Open), 1000);
    QCOMPARE(server.callback.received, QByteArray("line\n").repeated(1000));
    QCOMPARE(server.callback.Count(Kind::Error), 0);
}

void TestInterfaceBounds::twoHundredCallersAtOnceAreServed_data()
{
    QTest::addColumn<bool>("onBoth");
    QTest::newRow("IPv4") << false;
    QTest::newRow("IPv4 and IPv6") << true;
}

void TestInterfaceBounds::twoHundredCallersAtOnceAreServed()
{
    QFETCH(const bool, onBoth);
    if (onBoth && !HasIPv6())
        QSKIP("This machine has no IPv6");
    TestServer server(10'000);
    std::vector<std::unique_ptr<QTcpSocket>> callers;
    for (int call = 0; call < 200; ++call) {
        const bool six = onBoth && call % 2 == 1;
        callers.push_back(CallBriefly(server.port, six ? QHostAddress::LocalHostIPv6 : QHostAddress::LocalHost));
    }
    QTRY_COMPARE_WITH_TIMEOUT(server.callback.Count(Kind::Close), 200, 30'000);
    QCOMPARE(server.callback.Count(Kind::Open), 200);
    QCOMPARE(server.callback.received, QByteArray("line\n").repeated(200));
    QVERIFY(server.callback.most <= CInterfaceCreator::kMaximumPeers);
    for (const auto& caller : callers)
        QTRY_COMPARE(caller->state(), QAbstractSocket::UnconnectedState);
}

void TestInterfaceBounds::silentPeersDoNotBlockCallers_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("as many as there are places") << CInterfaceCreator::kMaximumPeers;
    QTest::newRow("more of them") << 3 * CInterfaceCreator::kMaximumPeers;
}

void TestInterfaceBounds::silentPeersDoNotBlockCallers()
{
    QFETCH(const int, count);
    TestServer server; // no time-out that would help
    std::vector<std::unique_ptr<QTcpSocket>> silent;
    silent.reserve(100);
    for (int call = 0; call < count; ++call)
        silent.push_back(CallerOf(server.port));
    QTRY_COMPARE_WITH_TIMEOUT(server.callback.Count(Kind::Open), count, 20'000);
    QCOMPARE(server.callback.Count(Kind::Close), count - CInterfaceCreator::kMaximumPeers);

    const TraceRecorder traces;
    const auto caller = CallerOf(server.port);
    caller->write("honest");
    QTRY_COMPARE(server.callback.received, QByteArray("honest"));
    // One had to go for it: the one that was there first.
    QCOMPARE(server.callback.Count(Kind::Close), count - CInterfaceCreator::kMaximumPeers + 1);
    QCOMPARE(traces.Reports().size(), 1);
    QCOMPARE(server.callback.most, CInterfaceCreator::kMaximumPeers);
    QList<IInterface*> opened;
    QList<IInterface*> closed;
    for (const auto& event : std::as_const(server.callback.events))
        if (event.kind == Kind::Open)
            opened.append(event.source);
        else if (event.kind == Kind::Close)
            closed.append(event.source);
    QCOMPARE(closed, opened.mid(0, closed.size()));
    QVERIFY(server.server->IsOpen());
}

void TestInterfaceBounds::floodOnOneAddressDoesNotBlockTheOther()
{
    if (!HasIPv6())
        QSKIP("This machine has no IPv6");
    TestServer server;
    std::vector<std::unique_ptr<QTcpSocket>> silent;
    silent.reserve(100);
    for (int call = 0; call < 100; ++call)
        silent.push_back(CallerOf(server.port));
    QTRY_COMPARE(server.callback.Count(Kind::Open), CInterfaceCreator::kMaximumPeers);
    const auto caller = CallerOf(server.port, QHostAddress(QHostAddress::LocalHostIPv6));
    caller->write("honest");
    QTRY_COMPARE_WITH_TIMEOUT(server.callback.received, QByteArray("honest"), 20'000);
    QVERIFY2(server.callback.Count(Kind::Open) < 100, "It had to wait until the flood was over");
}

void TestInterfaceBounds::peerIsClosedAtTheByteLimit()
{
    TestServer server;
    const TraceRecorder traces;
    const auto caller = CallerOf(server.port);
    caller->write(QByteArray(CInterfaceCreator::kMaximumBytesPerCall + 1, 'x'));
    QTRY_COMPARE(server.callback.Count(Kind::Close), 1);
    QCOMPARE(server.callback.received.size(), CInterfaceCreator::kMaximumBytesPerCall);
    QTRY_COMPARE(caller->state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(traces.Reports().size(), 1);
    QCOMPARE(server.callback.Count(Kind::Error), 0);
}

void TestInterfaceBounds::peerMaySendUpToTheLimit()
{
    TestServer server;
    // Left unread, which must not keep the later ones from coming.
    server.callback.onRead = [](IInterface*, quint64) {
    };
    const auto caller = CallerOf(server.port);
    caller->write(QByteArray(CInterfaceCreator::kMaximumBytesPerCall, 'x'));
    QTRY_COMPARE(server.callback.Length(Kind::Read), CInterfaceCreator::kMaximumBytesPerCall);
    for (const auto& event : std::as_const(server.callback.events))
        QVERIFY(event.length <= CInterfaceCreator::kMaximumBytesPerRead);
    // It is heard to the end and gets an answer.
    server.server->Write("still here", 10);
    QTRY_COMPARE(caller->bytesAvailable(), 10);
    QCOMPARE(server.callback.Count(Kind::Close), 0);

    // The limit is per call.
    caller->disconnectFromHost();
    QTRY_COMPARE(server.callback.Count(Kind::Close), 1);
    const auto again = CallerOf(server.port);
    again->write("x");
    QTRY_COMPARE(server.callback.Length(Kind::Read), CInterfaceCreator::kMaximumBytesPerCall + 1);
}

void TestInterfaceBounds::clientClosesAtTheByteLimit()
{
    QTcpServer stranger;
    QVERIFY(stranger.listen(QHostAddress(QHostAddress::LocalHost)));
    connect(&stranger, &QTcpServer::newConnection, &stranger,
            [&] { stranger.nextPendingConnection()->write(QByteArray(8 * kMebibyte, 'x')); });
    RecordingCallback callback;
    const auto client = Create(QStringLiteral("TCP:127.0.0.1:%1").arg(stranger.serverPort()), callback);
    QTRY_COMPARE(callback.Count(Kind::Close), 1);
    QCOMPARE(callback.received.size(), CInterfaceCreator::kMaximumBytesPerCall);
    QVERIFY(client->Open());
    QTRY_COMPARE(callback.Count(Kind::Close), 2);
    QCOMPARE(callback.received.size(), 2 * CInterfaceCreator::kMaximumBytesPerCall);
}

void TestInterfaceBounds::peersShareABudget()
{
    const auto start = ReadBudget::Clock::now();
    TestServer server(10'000);
    const TraceRecorder traces;
    constexpr int calls = 3 * CInterfaceCreator::kReadBurst / CInterfaceCreator::kMaximumBytesPerCall;
    for (int call = 1; call <= calls; ++call) {
        const auto caller = CallerOf(server.port);
        caller->write(QByteArray(CInterfaceCreator::kMaximumBytesPerCall, 'x'));
        caller->disconnectFromHost();
        // Every call is one, whether or not it is heard.
        QVERIFY(WaitUntil([&] { return server.callback.Count(Kind::Close) == call; }));
        QCOMPARE(server.callback.Count(Kind::Open), call);
    }
    const auto time = std::chrono::ceil<std::chrono::seconds>(ReadBudget::Clock::now() - start);
    QVERIFY(server.callback.received.size() <=
            CInterfaceCreator::kReadBurst + time.count() * CInterfaceCreator::kReadBytesPerSecond);
    QVERIFY(server.callback.received.size() > CInterfaceCreator::kReadBurst * 9 / 10);
    QCOMPARE(server.callback.Count(Kind::Error), 0);
    QVERIFY2(traces.Text().contains("send more than"), traces.Text().constData());
    QVERIFY(traces.Reports().size() <= calls);
    QVERIFY(server.server->IsOpen());

    // Another server is not affected.
    TestServer other(10'000);
    const auto caller = CallerOf(other.port);
    caller->write(QByteArray(CInterfaceCreator::kMaximumBytesPerCall, 'x'));
    QTRY_COMPARE(other.callback.received.size(), CInterfaceCreator::kMaximumBytesPerCall);
}

void TestInterfaceBounds::vanishedPeerIsDroppedOnce()
{
    TestServer server; // no time-out that would help
    server.callback.onRead = [](IInterface*, quint64) {
    };
    // Floods, and smaller ones for what they leave.
    qsizetype calls = 0;
    const auto flood = [&](qint64 bytes) {
        Flood caller(server.port, bytes);
        ++calls;
        QTRY_COMPARE(caller.Unsent(), 0);
        caller.socket.disconnectFromHost();
        QTRY_COMPARE(server.callback.Count(Kind::Close), calls);
    };
    for (int call = 0; call < CInterfaceCreator::kReadBurst / CInterfaceCreator::kMaximumBytesPerCall; ++call)
        flood(CInterfaceCreator::kMaximumBytesPerCall);
    for (qint64 bytes = CInterfaceCreator::kMaximumBytesPerRead / 2; bytes > 8; bytes /= 2)
        flood(bytes);
    // One that has left before there is a place for it, and whose bytes were read.
    std::vector<std::unique_ptr<QTcpSocket>> silent;
    for (int call = 0; call < CInterfaceCreator::kMaximumPeers; ++call)
        silent.push_back(CallerOf(server.port));
    QTRY_COMPARE(server.callback.now, CInterfaceCreator::kMaximumPeers);
    const TraceRecorder traces;
    const auto caller = CallerOf(server.port);
    caller->write(QByteArray(CInterfaceCreator::kMaximumBytesPerRead - 1, 'x'));
    caller->disconnectFromHost();
    QTRY_COMPARE(server.callback.Count(Kind::Open), calls + CInterfaceCreator::kMaximumPeers + 1);
    QTRY_COMPARE(server.callback.Count(Kind::Close), calls + 2);
    // Of the evicted peer and of this one.
    QVERIFY2(traces.Reports().size() <= 2, traces.Text().left(1000).constData());
    QCOMPARE(server.callback.Count(Kind::Error), 0);
}

void TestInterfaceBounds::randomBytesArriveUnchanged()
{
    TestServer server(10'000);
    QHash<IInterface*, QByteArray> received;
    server.callback.onRead = [&](IInterface* peer, quint64 length) {
        received[peer] += RecordingCallback::Take(peer, length);
    };
    QByteArrayList ended;
    server.callback.onClose = [&](IInterface* peer) {
        ended.append(received.take(peer));
    };
    QRandomGenerator random(8451);
    // As much as the server's peers may send at once.
    constexpr int calls = CInterfaceCreator::kReadBurst / CInterfaceCreator::kMaximumBytesPerCall - 1;
    for (int call = 0; call < calls; ++call) {
        QByteArray bytes(random.bounded(1, 200'000), '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(random.bounded(256));
        const auto caller = CallerOf(server.port);
        caller->write(bytes);
        caller->disconnectFromHost();
        QTRY_COMPARE(ended.size(), call + 1);
        QCOMPARE(ended.constLast(), bytes.left(CInterfaceCreator::kMaximumBytesPerCall));
    }
    QVERIFY(server.server->IsOpen());
}

void TestInterfaceBounds::silentPeerIsClosed()
{
    TestServer endless(0);
    TestServer server(50);
    const TraceRecorder traces;
    const auto patient = CallerOf(endless.port);
    QTRY_COMPARE(endless.callback.Count(Kind::Open), 1);
    const auto caller = CallerOf(server.port);
    QTRY_COMPARE(server.callback.Kinds(), (QList<Kind>{Kind::Open, Kind::Close}));
    QTRY_COMPARE(caller->state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(traces.Reports().size(), 1);
    QCOMPARE(endless.callback.Count(Kind::Close), 0);

    // One that falls silent after a word.
    const auto second = CallerOf(server.port);
    second->write("word");
    QTRY_COMPARE(server.callback.Count(Kind::Close), 2);
    QCOMPARE(server.callback.received, QByteArray("word"));
}

void TestInterfaceBounds::talkingPeerStays()
{
    TestServer server(1000);
    const auto talking = CallerOf(server.port);
    QTRY_COMPARE(server.callback.Count(Kind::Open), 1);
    QTimer talk;
    connect(&talk, &QTimer::timeout, talking.get(), [&] { talking->write("x"); });
    talk.start(10);
    const auto silent = CallerOf(server.port);
    QTRY_COMPARE(server.callback.Count(Kind::Close), 1);
    QTRY_COMPARE(silent->state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(talking->state(), QAbstractSocket::ConnectedState);
    // Both had the same time, so the one is still there because it talked.
    QVERIFY(!server.callback.received.isEmpty());
}

void TestInterfaceBounds::hugeTimeOutNeverExpires()
{
    TestServer server((quint64{1} << 32U) + 50); // 50 in the lower 32 bits
    TestServer greatest(std::numeric_limits<quint64>::max());
    TestServer clock(500);
    const auto caller = CallerOf(server.port);
    const auto second = CallerOf(greatest.port);
    QTRY_VERIFY(server.callback.Count(Kind::Open) == 1 && greatest.callback.Count(Kind::Open) == 1);
    const auto silent = CallerOf(clock.port);
    QTRY_COMPARE(clock.callback.Count(Kind::Close), 1);
    QCOMPARE(server.callback.Count(Kind::Close), 0);
    QCOMPARE(greatest.callback.Count(Kind::Close), 0);
}

void TestInterfaceBounds::clientClosesASilentHost()
{
    const TestServer host;
    RecordingCallback callback;
    const auto client = Create(host.ClientAddress(), callback, 50);
    QTRY_COMPARE(callback.Kinds(), (QList<Kind>{Kind::Open, Kind::Close}));
    QVERIFY(!client->IsOpen());
}

void TestInterfaceBounds::unansweredConnectFails()
{
    // A host that takes no calls: the first ones wait in its system's queue, the others are not answered at all (or, on
    // some systems, refused).
    QTcpServer host;
    host.setListenBacklogSize(1);
    QVERIFY(host.listen(QHostAddress(QHostAddress::LocalHost)));
    host.pauseAccepting();
    std::vector<std::unique_ptr<RecordingCallback>> callbacks;
    std::vector<std::unique_ptr<IInterface>> clients;
    for (int client = 0; client < 8; ++client) {
        callbacks.push_back(std::make_unique<RecordingCallback>());
        clients.push_back(Create(QStringLiteral("TCP:127.0.0.1:%1").arg(host.serverPort()), *callbacks.back(), 200));
    }
    int failed = 0;
    for (const auto& callback : callbacks) {
        QTRY_VERIFY(callback->Kinds() == QList<Kind>{Kind::Error} ||
                    callback->Kinds() == (QList<Kind>{Kind::Open, Kind::Close}));
        failed += callback->Count(Kind::Error) > 0 ? 1 : 0;
    }
    QVERIFY(failed > 0);
}

void TestInterfaceBounds::unansweredClientCanBeOpenedAgain()
{
    QTcpServer host;
    host.setListenBacklogSize(1);
    QVERIFY(host.listen(QHostAddress(QHostAddress::LocalHost)));
    host.pauseAccepting();
    std::vector<std::unique_ptr<QTcpSocket>> callers;
    for (int call = 0; call < 8; ++call)
        callers.push_back(CallerOf(host.serverPort()));
    RecordingCallback callback;
    const auto client = Create(QStringLiteral("TCP:127.0.0.1:%1").arg(host.serverPort()), callback, 200);
    QTRY_COMPARE(callback.Kinds(), QList<Kind>{Kind::Error});
    host.resumeAccepting();
    callback.onError = [](IInterface* failed) {
        failed->Open();
    };
    QVERIFY(client->Open());
    QTRY_VERIFY(callback.Count(Kind::Open) == 1);
}

void TestInterfaceBounds::slowCallbackDoesNotTimeOutThePeer()
{
    TestServer server(50);
    TestServer other(50);
    server.callback.onOpen = [&](IInterface*) {
        // A box on the screen, say, for longer than the time-out.
        const auto silent = CallerOf(other.port);
        QTRY_COMPARE(other.callback.Count(Kind::Close), 1);
        const auto second = CallerOf(other.port);
        QTRY_COMPARE(other.callback.Count(Kind::Close), 2);
    };
    const auto caller = CallBriefly(server.port);
    QTRY_COMPARE(server.callback.Kinds(), (QList<Kind>{Kind::Open, Kind::Read, Kind::Close}));
    QCOMPARE(server.callback.received, QByteArray("line\n"));
}

void TestInterfaceBounds::peerThatDoesNotReadIsClosed()
{
    TestServer server;
    const QByteArray much(CInterfaceCreator::kMaximumBytesUnsent, 'x');
    server.callback.onOpen = [&](IInterface* peer) {
        peer->Write(much.constData(), static_cast<quint64>(much.size()));
        if (server.callback.Count(Kind::Open) > 1)
            peer->Write("x", 1);
    };
    const auto first = CallerOf(server.port);
    QTRY_COMPARE(first->bytesAvailable(), much.size());
    QCOMPARE(server.callback.Count(Kind::Error), 0);
    QTRY_COMPARE(server.callback.Length(Kind::Written), quint64(much.size()));

    const auto second = CallerOf(server.port);
    QTRY_COMPARE(server.callback.Count(Kind::Close), 1);
    QCOMPARE(server.callback.Count(Kind::Error), 1);
    QTRY_COMPARE(second->state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(first->state(), QAbstractSocket::ConnectedState);

    // A number that would wrap around is too much, too; nothing of the data is touched then.
    IInterface* const peer = server.callback.events.constFirst().source;
    peer->Write("x", 1);
    peer->Write("x", std::numeric_limits<quint64>::max());
    QTRY_COMPARE(server.callback.Count(Kind::Error), 2);
    QTRY_COMPARE(first->state(), QAbstractSocket::UnconnectedState);
}

void TestInterfaceBounds::nothingIsLeftOpen()
{
    TestServer server(100);
    const auto callOnce = [&] {
        CallBriefly(server.port);
        return WaitUntil([&] { return server.callback.now == 0 && server.callback.Count(Kind::Open) > 0; });
    };
    QVERIFY(callOnce());
    const auto before = System::OpenHandles();
    {
        // Callers that hang up, are silent, reset the connection, or send too much.
        std::vector<std::unique_ptr<QTcpSocket>> callers;
        std::vector<std::unique_ptr<Flood>> floods;
        for (int call = 0; call < 50; ++call) {
            callers.push_back(CallBriefly(server.port));
            callers.push_back(CallerOf(server.port));
            callers.push_back(CallerOf(server.port));
            callers.back()->abort();
            if (call % 10 == 0)
                floods.push_back(std::make_unique<Flood>(server.port, kMebibyte));
        }
        QTRY_VERIFY_WITH_TIMEOUT(server.callback.Count(Kind::Close) >= 100 && server.callback.now == 0, 30'000);
    }
    QTRY_COMPARE(System::OpenHandles(), before);
    QVERIFY(server.server->IsOpen());
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestInterfaceBounds)
#include "tst_interfacebounds.moc"
