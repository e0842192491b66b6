// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/linkfixture.h"
#include "tests/support/linkport.h"
#include "tests/support/testmain.h"
#include "tests/support/waitforend.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QTest>

using Kind = RecordingCallback::Kind;

namespace {

constexpr auto kHoldArgument = "--wait-for-end-of-input";

void SetHook(RecordingCallback& callback, Kind kind, const std::function<void()>& hook)
{
    const auto withInterface = [hook](IInterface*) {
        hook();
    };
    switch (kind) {
    case Kind::Open:
        callback.onOpen = withInterface;
        break;
    case Kind::Close:
        callback.onClose = withInterface;
        break;
    case Kind::Read:
        callback.onRead = [hook](IInterface*, quint64) {
            hook();
        };
        break;
    case Kind::Error:
        callback.onError = withInterface;
        break;
    case Kind::Written:
        callback.onWritten = withInterface;
        break;
    }
}

/// Answers every line with one, so that each kind of callback comes.
class Echo : public QTcpServer
{
public:
    explicit Echo(bool hangsUp)
    {
        connect(this, &QTcpServer::newConnection, this, [this, hangsUp] {
            auto* const socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, socket, [socket, hangsUp] {
                socket->write(socket->readAll());
                if (hangsUp)
                    socket->disconnectFromHost();
            });
        });
        listen(QHostAddress(QHostAddress::LocalHost));
    }
};

} // namespace

class TestInterfaceLifetime : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void serverDeletedInCallback_data();
    void serverDeletedInCallback();
    void clientDeletedInCallback_data();
    void clientDeletedInCallback();
    void clientDeletedInOnError();
    void serverDeletedInNestedLoop();
    void noCallbackAfterDelete();
    void deletedWithCallersWaiting();
    void closedInCallback_data();
    void closedInCallback();
    void serverClosedInCallback();
    void callbacksOfOnePeerDoNotNest();
    void childrenDoNotInheritTheSockets();
};

void TestInterfaceLifetime::init()
{
    // Qt warns where a socket is used in a state in which it must not be.
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
}

void TestInterfaceLifetime::serverDeletedInCallback_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::newRow("OnOpen") << Kind::Open;
    QTest::newRow("OnRead") << Kind::Read;
    QTest::newRow("OnWritten") << Kind::Written;
    QTest::newRow("OnClose") << Kind::Close;
    QTest::newRow("OnError") << Kind::Error;
}

void TestInterfaceLifetime::serverDeletedInCallback()
{
    QFETCH(const Kind, kind);
    TestServer server;
    // Each peer is answered; with more than it takes where an error is wanted.
    server.callback.onOpen = [&](IInterface* peer) {
        peer->Write("x", kind == Kind::Error ? CInterfaceCreator::kMaximumBytesUnsent + 1 : 1);
    };
    bool deleted = false;
    SetHook(server.callback, kind, [&] {
        server.server.reset();
        deleted = true;
    });

    QTcpSocket bystander;
    Caller caller(server.port);
    caller.write("hello");
    if (kind == Kind::Close)
        caller.disconnectFromHost();
    bystander.connectToHost(QHostAddress::LocalHost, server.port);
    QTRY_VERIFY(deleted);
    const qsizetype count = server.callback.events.size();
    QTRY_COMPARE(caller.state(), QAbstractSocket::UnconnectedState);
    QTRY_COMPARE(bystander.state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(server.callback.events.size(), count);
    QCOMPARE(server.callback.events.constLast().kind, kind);
}

void TestInterfaceLifetime::clientDeletedInCallback_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::newRow("OnOpen") << Kind::Open;
    QTest::newRow("OnRead") << Kind::Read;
    QTest::newRow("OnWritten") << Kind::Written;
    QTest::newRow("OnClose") << Kind::Close;
}

void TestInterfaceLifetime::clientDeletedInCallback()
{
    QFETCH(const Kind, kind);
    const Echo host(kind == Kind::Close);
    RecordingCallback callback;
    std::unique_ptr<IInterface> client;
    callback.onOpen = [](IInterface* opened) {
        opened->Write("hello", 5);
    };
    SetHook(callback, kind, [&] { client.reset(); });
    client = Create(QStringLiteral("TCP:127.0.0.1:%1").arg(host.serverPort()), callback, 10'000);
    QVERIFY(client);
    QTRY_VERIFY(!client);
    QCOMPARE(callback.Count(kind), 1);
    QCOMPARE(callback.events.constLast().kind, kind);
}

void TestInterfaceLifetime::clientDeletedInOnError()
{
    RecordingCallback callback;
    std::unique_ptr<IInterface> client;
    callback.onError = [&](IInterface*) {
        client.reset();
    };
    client = Create(QStringLiteral("TCP:127.0.0.1:%1").arg(FreePort()), callback);
    QVERIFY(client);
    QTRY_VERIFY(!client);
    QCOMPARE(callback.Kinds(), QList<Kind>{Kind::Error});
}

void TestInterfaceLifetime::serverDeletedInNestedLoop()
{
    TestServer server;
    QTcpSocket second;
    bool returned = false;
    server.callback.onRead = [&](IInterface* peer, quint64 length) {
        if (RecordingCallback::Take(peer, length) == "second") {
            server.server.reset();
            return;
        }
        // The first caller's callback runs a loop, in which the second's deletes the server with both.
        second.connectToHost(QHostAddress::LocalHost, server.port);
        second.write("second");
        QTRY_VERIFY(!server.server);
        returned = true;
    };
    Caller first(server.port);
    first.write("first");
    QTRY_VERIFY(returned);
    QTRY_COMPARE(first.state(), QAbstractSocket::UnconnectedState);
    QTRY_COMPARE(second.state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(server.callback.Count(Kind::Close), 0);
}

void TestInterfaceLifetime::noCallbackAfterDelete()
{
    TestServer server;
    Caller caller(server.port);
    QTRY_COMPARE(server.callback.Count(Kind::Open), 1);
    caller.write("too late");
    QVERIFY(caller.waitForBytesWritten());
    server.server.reset();
    QTRY_VERIFY(LinkPort::HasEnded(caller));
    QCOMPARE(server.callback.events.size(), 1);

    // The port is free at once.
    QTcpServer next;
    QVERIFY(next.listen(QHostAddress(QHostAddress::LocalHost), server.port));
}

void TestInterfaceLifetime::deletedWithCallersWaiting()
{
    TestServer server;
    std::vector<std::unique_ptr<QTcpSocket>> callers;
    for (int call = 0; call < 3 * CInterfaceCreator::kMaximumPeers; ++call) {
        callers.push_back(CallerOf(server.port));
        callers.back()->write("x");
    }
    QTRY_COMPARE(server.callback.Count(Kind::Open), CInterfaceCreator::kMaximumPeers);
    server.server.reset();
    for (const auto& caller : callers)
        QTRY_COMPARE(caller->state(), QAbstractSocket::UnconnectedState);
}

void TestInterfaceLifetime::closedInCallback_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::newRow("OnOpen") << Kind::Open;
    QTest::newRow("OnRead") << Kind::Read;
    QTest::newRow("OnClose") << Kind::Close;
}

void TestInterfaceLifetime::closedInCallback()
{
    QFETCH(const Kind, kind);
    TestServer server;
    const auto close = [](IInterface* peer) {
        peer->Close();
        peer->Close();
    };
    if (kind == Kind::Open)
        server.callback.onOpen = close;
    else if (kind == Kind::Close)
        server.callback.onClose = close;
    else
        server.callback.onRead = [close](IInterface* peer, quint64) {
            close(peer);
        };
    Caller caller(server.port);
    caller.write(QByteArray(20'000, 'x'));
    if (kind == Kind::Close)
        caller.disconnectFromHost();
    QTRY_COMPARE(server.callback.Count(Kind::Close), 1);
    QTRY_COMPARE(caller.state(), QAbstractSocket::UnconnectedState);

    // The server goes on, with its peer forgotten.
    Caller next(server.port);
    next.write("x");
    next.disconnectFromHost();
    QTRY_COMPARE(server.callback.Count(Kind::Close), 2);
    QCOMPARE(server.callback.Count(Kind::Open), 2);
    if (kind == Kind::Read)
        QCOMPARE(server.callback.Count(Kind::Read), 2);
    else
        QCOMPARE(server.callback.Length(Kind::Read), kind == Kind::Open ? 0 : 20'001);
}

void TestInterfaceLifetime::serverClosedInCallback()
{
    TestServer server;
    server.callback.onOpen = [&](IInterface*) {
        server.server->Close();
    };
    Caller caller(server.port);
    QTRY_COMPARE(server.callback.Kinds(), (QList<Kind>{Kind::Open, Kind::Close}));
    QVERIFY(!server.server->IsOpen());
    QTRY_COMPARE(caller.state(), QAbstractSocket::UnconnectedState);
}

void TestInterfaceLifetime::callbacksOfOnePeerDoNotNest()
{
    TestServer server;
    QTcpSocket first;
    QTcpSocket second;
    int depth = 0;
    int deepest = 0;
    server.callback.onRead = [&](IInterface* peer, quint64 length) {
        deepest = std::max(deepest, ++depth);
        if (server.callback.Count(Kind::Read) == 1) {
            // Meanwhile the caller says more and leaves, and another one comes and leaves.
            first.write("more");
            first.disconnectFromHost();
            second.connectToHost(QHostAddress::LocalHost, server.port);
            second.disconnectFromHost();
            QTRY_COMPARE(server.callback.Count(Kind::Close), 1);
            QTRY_COMPARE(first.state(), QAbstractSocket::UnconnectedState);
            QVERIFY(server.callback.events.constLast().source != peer);
        }
        // The peer still exists, and returns only the bytes announced.
        server.callback.received += RecordingCallback::Take(peer, length + 100);
        --depth;
    };
    first.connectToHost(QHostAddress::LocalHost, server.port);
    first.write("word");
    QTRY_COMPARE(server.callback.Count(Kind::Close), 2);
    QCOMPARE(deepest, 1);
    QCOMPARE(server.callback.received, QByteArray("wordmore"));
    QCOMPARE(server.callback.events.constLast().source, server.callback.events.constFirst().source);
}

void TestInterfaceLifetime::childrenDoNotInheritTheSockets()
{
    TestServer server;
    Caller caller(server.port);
    QTRY_COMPARE(server.callback.Count(Kind::Open), 1);

    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {QLatin1String(kHoldArgument)});
    QVERIFY(child.waitForStarted());
    // Else the child would keep the port and the call open.
    server.server.reset();
    QTRY_VERIFY(LinkPort::HasEnded(caller));
    RecordingCallback callback;
    QVERIFY(Create(QStringLiteral("TCP::%1").arg(server.port), callback));
    QCOMPARE(child.state(), QProcess::Running);
    child.closeWriteChannel();
    QVERIFY(WaitForEnd(child));
}

namespace {

int HoldMain(int /*argc*/, char** /*argv*/)
{
    QFile input;
    return input.open(stdin, QIODevice::ReadOnly) && input.readAll().isEmpty() ? 0 : 1;
}

const TestMain::Program kHoldProgram(kHoldArgument, HoldMain);

} // namespace

VEXEL_TEST(QTEST_GUILESS_MAIN, TestInterfaceLifetime)
#include "tst_interfacelifetime.moc"
