// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/linkfixture.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"

#include <QNetworkInterface>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QTcpSocket>
#include <QTest>
#include <QThread>

#include <stdexcept>

using Kind = RecordingCallback::Kind;

class TestInterfaces : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void malformedAddressIsRefused_data();
    void malformedAddressIsRefused();
    void missingCallbackIsRefused();
    void validAddressIsAccepted_data();
    void validAddressIsAccepted();
    void serverAndClient_data();
    void serverAndClient();
    void listensOnLoopbackOnly();
    void usedPortIsRefused_data();
    void usedPortIsRefused();
    void serversCanBeForbidden();
    void serverCanBeCreatedClosed();
    void closedServerClosesItsPeers();
    void failedConnectIsAnError();
    void tracesNameTheOtherEnd();
    void closedConnectionDoesNotTimeOut();
    void peerTimesOutAfterASlowCallback();
    void clientCanBeOpenedAgain();
    void clientThatIsOpenedAgainReadsAsMuchAgain();
    void clientCanBeClosedWhileConnecting();
    void readReturnsWaitingBytes();
    void peekKeepsTheBytes();
    void unreadBytesAreDropped();
    void invalidReadThrows();
    void writeReachesEveryPeer();
    void closedCallerIsClosed();
    void resetCallerIsClosed();
    void callbacksComeOnTheCreatingThread();
};

void TestInterfaces::init()
{
    // Qt warns where a socket is used in a state in which it must not be.
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
}

void TestInterfaces::malformedAddressIsRefused_data()
{
    QTest::addColumn<QString>("address");
    // 4294975747 is 8451 in the lower 32 bits; U+0968 is a digit, but not one of ASCII.
    QStringList addresses =
        QStringLiteral("|TCP|TCP:|TCP::|TCP:8451|:8451|::8451|tcp::8451|UDP::8451| TCP::8451|TCP::8451 |"
                       "TCP:: 8451|TCP::0|TCP::00000|TCP::-1|TCP::+8451|TCP::65536|TCP::99999|"
                       "TCP::4294975747|TCP::18446744073709560067|TCP::84x1|TCP::0x2103|TCP::8451:|"
                       "TCP:::8451|TCP::\u0968\u0968\u0968\u0968|TCP:localhost|TCP:localhost:|"
                       "TCP:localhost:0|TCP:local host:8451|TCP:local/host:8451|TCP:user@localhost:8451|"
                       "TCP:::1:8451|TCP:[::1:8451|TCP:::1]:8451|TCP:[]:8451|TCP:[:8451|"
                       "TCP:[127.0.0.1]:8451|TCP:[localhost]:8451")
            .split(u'|');
    addresses +=
        {QStringLiteral("TCP:%1:8451").arg(QString(254, u'a')), QStringLiteral("TCP:%1").arg(QString(1'000'000, u':')),
         QStringLiteral("TCP::%1").arg(QString(1'000'000, u'1')), QStringLiteral("TCP:local%1host:8451").arg(QChar(0))};
    for (qsizetype row = 0; row < addresses.size(); ++row)
        QTest::addRow("%d: %s", int(row), qPrintable(addresses[row].left(30))) << addresses[row];
}

void TestInterfaces::malformedAddressIsRefused()
{
    QFETCH(const QString, address);
    RecordingCallback callback;
    const TraceRecorder traces;
    QVERIFY(!Create(address, callback));
    QVERIFY(!Create(address, callback, 10000, true));
    QCOMPARE(traces.Reports().size(), 2);
    QCOMPARE(traces.Messages().constFirst(),
             QStringLiteral("CInterfaceCreator::CreateInterface(): \"%1\" is not a valid address").arg(address));
    QVERIFY(callback.events.isEmpty());
}

void TestInterfaces::missingCallbackIsRefused()
{
    const TraceRecorder traces;
    QVERIFY(!CInterfaceCreator().CreateInterface(QStringLiteral("TCP::%1").arg(FreePort()), nullptr, 0, false));
    QCOMPARE(traces.Reports().size(), 1);
}

void TestInterfaces::validAddressIsAccepted_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("lowest port") << QStringLiteral("TCP::1");
    QTest::newRow("highest port") << QStringLiteral("TCP::65535");
    QTest::newRow("name") << QStringLiteral("TCP:localhost:8451");
    QTest::newRow("full name") << QStringLiteral("TCP:a-host_1.example.org:8451");
    QTest::newRow("longest name") << QStringLiteral("TCP:%1:8451").arg(QString(253, u'a'));
    QTest::newRow("IPv4") << QStringLiteral("TCP:127.0.0.1:8451");
    QTest::newRow("IPv6") << QStringLiteral("TCP:[::1]:8451");
    QTest::newRow("IPv6, long") << QStringLiteral("TCP:[2001:db8::8:800:200c:417a]:8451");
}

void TestInterfaces::validAddressIsAccepted()
{
    QFETCH(const QString, address);
    RecordingCallback callback;
    // Created closed, so nothing is called.
    const auto created = Create(address, callback, 0, true);
    QVERIFY(created);
    QVERIFY(!created->IsOpen());
}

void TestInterfaces::serverAndClient_data()
{
    QTest::addColumn<QString>("host");
    QTest::newRow("IPv4") << QStringLiteral("127.0.0.1");
    QTest::newRow("IPv6") << QStringLiteral("[::1]");
    QTest::newRow("name") << QStringLiteral("localhost");
}

void TestInterfaces::serverAndClient()
{
    QFETCH(const QString, host);
    if (host == u"[::1]" && !HasIPv6())
        QSKIP("This machine has no IPv6");

    TestServer server(10'000);
    QVERIFY(server.server->IsOpen());
    IInterface* peer = nullptr;
    server.callback.onOpen = [&](IInterface* opened) {
        QVERIFY(opened->IsOpen());
        QVERIFY(opened != server.server.get());
        peer = opened;
    };
    server.callback.onClose = [](IInterface* closed) {
        QVERIFY(!closed->IsOpen());
    };

    RecordingCallback callback;
    const auto client = Create(server.ClientAddress(host), callback, 10'000);
    QVERIFY(client);
    QVERIFY(!client->IsOpen());
    QVERIFY(callback.events.isEmpty());
    QTRY_VERIFY(peer && client->IsOpen());

    client->Write("call", 4);
    QTRY_COMPARE(server.callback.received, QByteArray("call"));
    peer->Write("answer", 6);
    QTRY_COMPARE(callback.received, QByteArray("answer"));

    client->Close();
    QVERIFY(!client->IsOpen());
    QTRY_COMPARE(server.callback.Count(Kind::Close), 1);
    QTRY_COMPARE(callback.Count(Kind::Close), 1);

    QCOMPARE(server.callback.Kinds(), (QList<Kind>{Kind::Open, Kind::Read, Kind::Written, Kind::Close}));
    QCOMPARE(callback.Kinds(), (QList<Kind>{Kind::Open, Kind::Written, Kind::Read, Kind::Close}));
    QCOMPARE(server.callback.Length(Kind::Written), 6);
    QCOMPARE(callback.Length(Kind::Written), 4);
    for (const auto& event : server.callback.events)
        QCOMPARE(event.source, peer);
    for (const auto& event : callback.events)
        QCOMPARE(event.source, client.get());
    QVERIFY(server.server->IsOpen());
}

void TestInterfaces::listensOnLoopbackOnly()
{
    const TestServer server;
    int tried = 0;
    const QList<QHostAddress> addresses = QNetworkInterface::allAddresses();
    for (const QHostAddress& address : addresses) {
        if (address.isLoopback())
            continue;
        ++tried;
        QTcpSocket caller;
        caller.connectToHost(address, server.port);
        QTRY_COMPARE(caller.state(), QAbstractSocket::UnconnectedState);
        QCOMPARE(caller.error(), QAbstractSocket::ConnectionRefusedError);
    }
    QVERIFY(server.callback.events.isEmpty());
    if (tried == 0)
        QSKIP("This machine has no other address");
}

void TestInterfaces::usedPortIsRefused_data()
{
    QTest::addColumn<QHostAddress>("holder");
    QTest::newRow("IPv4") << QHostAddress(QHostAddress::LocalHost);
    QTest::newRow("IPv6") << QHostAddress(QHostAddress::LocalHostIPv6);
    QTest::newRow("all of IPv4") << QHostAddress(QHostAddress::AnyIPv4);
    QTest::newRow("all") << QHostAddress(QHostAddress::Any);
}

void TestInterfaces::usedPortIsRefused()
{
    QFETCH(const QHostAddress, holder);
    QTcpServer taken;
    if (!taken.listen(holder))
        QSKIP("This machine has no such address");
    const QString address = QStringLiteral("TCP::%1").arg(taken.serverPort());

    RecordingCallback callback;
    const TraceRecorder traces;
    QVERIFY(!Create(address, callback));
    QCOMPARE(traces.Reports().size(), 1);
    QVERIFY2(traces.Messages().constFirst().contains(QString::number(taken.serverPort())), traces.Text().constData());

    const auto closed = Create(address, callback, 0, true);
    QVERIFY(closed);
    QVERIFY(!closed->Open());
    QVERIFY(!closed->IsOpen());
    taken.close();
    QVERIFY(closed->Open());
    QVERIFY(closed->IsOpen());
    QVERIFY2(!Create(address, callback), "Two servers of the library on one port");
}

void TestInterfaces::serversCanBeForbidden()
{
    const auto allowAgain = qScopeGuard([] { CInterfaceCreator::SetServersAllowed(true); });
    QVERIFY(CInterfaceCreator::AreServersAllowed());
    RecordingCallback callback;
    const quint16 port = FreePort();
    const QString address = QStringLiteral("TCP::%1").arg(port);
    const auto earlier = Create(QStringLiteral("TCP::%1").arg(FreePort()), callback);
    QVERIFY(earlier);

    CInterfaceCreator::SetServersAllowed(false);
    QVERIFY(!CInterfaceCreator::AreServersAllowed());
    const TraceRecorder traces;
    QVERIFY(!Create(address, callback));
    QCOMPARE(traces.Reports().size(), 1);
    const auto closed = Create(address, callback, 0, true);
    QVERIFY(closed);
    QVERIFY(!closed->Open());
    QVERIFY(!closed->IsOpen());
    // The port stays free, earlier servers go on, clients are still allowed.
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress(QHostAddress::LocalHost), port));
    QVERIFY(earlier->IsOpen());
    QVERIFY(Create(QStringLiteral("TCP:127.0.0.1:%1").arg(port), callback));
    other.close();

    CInterfaceCreator::SetServersAllowed(true);
    QVERIFY(closed->Open());
}

void TestInterfaces::serverCanBeCreatedClosed()
{
    const quint16 port = FreePort();
    RecordingCallback callback;
    const auto server = Create(QStringLiteral("TCP::%1").arg(port), callback, 0, true);
    QVERIFY(server);
    QVERIFY(!server->IsOpen());
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress(QHostAddress::LocalHost), port));
    other.close();

    QVERIFY(server->Open());
    QVERIFY(server->Open());
    QVERIFY(server->IsOpen());
    QVERIFY(!other.listen(QHostAddress(QHostAddress::LocalHost), port));

    server->Close();
    QVERIFY(!server->IsOpen());
    QVERIFY(other.listen(QHostAddress(QHostAddress::LocalHost), port));
}

void TestInterfaces::closedServerClosesItsPeers()
{
    TestServer server;
    Caller first(server.port);
    Caller second(server.port);
    QTRY_COMPARE(server.callback.Count(Kind::Open), 2);

    server.server->Close();
    QCOMPARE(server.callback.Count(Kind::Close), 0); // not from within the call
    QTRY_COMPARE(server.callback.Count(Kind::Close), 2);
    QTRY_COMPARE(first.state(), QAbstractSocket::UnconnectedState);
    QTRY_COMPARE(second.state(), QAbstractSocket::UnconnectedState);

    QVERIFY(server.server->Open());
    Caller third(server.port);
    QTRY_COMPARE(server.callback.Count(Kind::Open), 3);
    QCOMPARE(server.callback.Count(Kind::Error), 0);
}

void TestInterfaces::failedConnectIsAnError()
{
    RecordingCallback callback;
    const TraceRecorder traces;
    const auto client = Create(QStringLiteral("TCP:127.0.0.1:%1").arg(FreePort()), callback, 10'000);
    QVERIFY(client);
    QTRY_COMPARE(callback.Kinds(), QList<Kind>{Kind::Error});
    QCOMPARE(callback.events.constFirst().source, client.get());
    QCOMPARE(traces.Reports().size(), 1);
    QVERIFY(!client->IsOpen());
}

void TestInterfaces::tracesNameTheOtherEnd()
{
    const TraceRecorder traces;
    const quint16 port = FreePort();
    RecordingCallback callback;
    const auto client = Create(QStringLiteral("TCP:127.0.0.1:%1").arg(port), callback, 10'000);
    QTRY_COMPARE(callback.Kinds(), QList<Kind>{Kind::Error});
    const QString ofClient = QStringLiteral("Connection to 127.0.0.1, port %1 failed").arg(port);
    QVERIFY2(traces.Messages().constLast().contains(ofClient), traces.Text().constData());

    TestServer server(50);
    Caller silent(server.port);
    QVERIFY(silent.waitForConnected());
    const QString ofPeer = QStringLiteral("127.0.0.1, port %1 sent nothing").arg(silent.localPort());
    QTRY_COMPARE(server.callback.Count(Kind::Close), 1);
    QVERIFY2(traces.Messages().constLast().contains(ofPeer), traces.Text().constData());
}

void TestInterfaces::closedConnectionDoesNotTimeOut()
{
    TestServer server;
    RecordingCallback callback;
    callback.onOpen = [](IInterface* opened) {
        opened->Close();
    };
    const auto client = Create(server.ClientAddress(), callback, 1000);
    QTRY_COMPARE(callback.Count(Kind::Close), 1);
    callback.onOpen = nullptr;
    const TraceRecorder traces;
    // Times out later than the first would.
    const auto other = Create(server.ClientAddress(), callback, 1000);
    QTRY_COMPARE(callback.Count(Kind::Close), 2);
    QVERIFY2(traces.Reports().size() == 1, traces.Text().constData());
}

void TestInterfaces::peerTimesOutAfterASlowCallback()
{
    TestServer server(500);
    // The callback is slower than the time-out, which does not end the peer meanwhile.
    server.callback.onRead = [&server](IInterface*, quint64) {
        TestServer other(1000);
        const Caller silent(other.port);
        QTRY_COMPARE(other.callback.Count(Kind::Close), 1);
        QCOMPARE(server.callback.Count(Kind::Close), 0);
    };
    Caller caller(server.port);
    QVERIFY(caller.waitForConnected());
    QCOMPARE(caller.write("x"), 1);
    QVERIFY(caller.flush()); // before the server accepts the call
    QTRY_COMPARE(server.callback.Count(Kind::Read), 1);
    QTRY_COMPARE(server.callback.Count(Kind::Close), 1);
}

void TestInterfaces::clientCanBeOpenedAgain()
{
    TestServer server;
    RecordingCallback callback;
    callback.onClose = [](IInterface* closed) {
        closed->Open();
    };
    const auto client = Create(server.ClientAddress(), callback);
    QTRY_VERIFY(client->IsOpen());
    QVERIFY(client->Open()); // is open
    client->Close();
    QVERIFY(!client->Open()); // its OnClose is still to come
    QTRY_COMPARE(callback.Count(Kind::Open), 2);
    callback.onClose = nullptr;

    // Nor can a peer be opened again.
    IInterface* const peer = server.callback.events.constLast().source;
    server.callback.onClose = [&](IInterface* closed) {
        QCOMPARE(closed, peer);
        QVERIFY(!closed->Open());
    };
    client->Close();
    QTRY_COMPARE(server.callback.Count(Kind::Close), 2);
    QCOMPARE(server.callback.Count(Kind::Open), 2);
}

void TestInterfaces::clientThatIsOpenedAgainReadsAsMuchAgain()
{
    TestServer server;
    RecordingCallback callback;
    const auto client = Create(server.ClientAddress(), callback);
    const QByteArray bytes(CInterfaceCreator::kMaximumBytesPerCall, 'x');
    for (int call = 1; call <= 2; ++call) {
        QTRY_COMPARE(server.callback.Count(Kind::Open), call);
        server.server->Write(bytes.constData(), static_cast<quint64>(bytes.size()));
        QTRY_COMPARE(callback.received.size(), call * bytes.size());
        client->Close();
        QTRY_COMPARE(callback.Count(Kind::Close), call);
        QTRY_COMPARE(server.callback.Count(Kind::Close), call);
        QVERIFY(client->Open());
    }
}

void TestInterfaces::clientCanBeClosedWhileConnecting()
{
    TestServer server;
    RecordingCallback callback;
    const auto client = Create(server.ClientAddress(), callback);
    client->Close();
    QVERIFY(client->Open());
    QTRY_VERIFY(client->IsOpen());
    QCOMPARE(callback.Kinds(), QList<Kind>{Kind::Open});
}

void TestInterfaces::readReturnsWaitingBytes()
{
    TestServer server;
    quint64 inOpen = 99;
    server.callback.onOpen = [&](IInterface* peer) {
        char byte = 0;
        inOpen = 1;
        peer->Read(&byte, &inOpen, false);
    };
    QByteArrayList taken;
    server.callback.onRead = [&](IInterface* peer, quint64 length) {
        QCOMPARE(length, 6);
        taken.append(RecordingCallback::Take(peer, 4));
        taken.append(RecordingCallback::Take(peer, 1000));
        taken.append(RecordingCallback::Take(peer, 1000));
    };
    Caller caller(server.port);
    caller.write("sixlet");
    QTRY_COMPARE(taken, (QByteArrayList{"sixl", "et", ""}));
    QCOMPARE(inOpen, 0);

    // Nothing waits outside of OnRead.
    IInterface* const peer = server.callback.events.constLast().source;
    QCOMPARE(RecordingCallback::Take(peer, 10), QByteArray());
}

void TestInterfaces::peekKeepsTheBytes()
{
    TestServer server;
    QByteArrayList taken;
    server.callback.onRead = [&](IInterface* peer, quint64 length) {
        taken.append(RecordingCallback::Take(peer, length, true));
        taken.append(RecordingCallback::Take(peer, length, false));
        taken.append(RecordingCallback::Take(peer, length, true));
    };
    Caller caller(server.port);
    caller.write("look");
    QTRY_COMPARE(taken, (QByteArrayList{"look", "look", ""}));
}

void TestInterfaces::unreadBytesAreDropped()
{
    TestServer server;
    int reads = 0;
    server.callback.onRead = [&](IInterface* peer, quint64 length) {
        // The first is left, of the second a part is taken.
        if (++reads == 2)
            server.callback.received += RecordingCallback::Take(peer, length - 1);
        else if (reads == 3)
            server.callback.received += RecordingCallback::Take(peer, length);
    };
    Caller caller(server.port);
    const QByteArrayList lines{"left", "part", "whole"};
    for (int line = 0; line < lines.size(); ++line) {
        caller.write(lines[line]);
        QTRY_COMPARE(reads, line + 1);
    }
    QCOMPARE(server.callback.received, QByteArray("parwhole"));
}

void TestInterfaces::invalidReadThrows()
{
    TestServer server;
    char byte = 0;
    quint64 length = 1;
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, server.server->Read(&byte, &length, false));

    int thrown = 0;
    server.callback.onRead = [&](IInterface* peer, quint64) {
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, peer->Read(nullptr, &length, false));
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, peer->Read(&byte, nullptr, false));
        ++thrown;
        peer->Close();
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, peer->Read(&byte, &length, false));
        ++thrown;
    };
    server.callback.onClose = [&](IInterface* peer) {
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, peer->Read(&byte, &length, false));
        ++thrown;
    };
    RecordingCallback callback;
    const auto client = Create(server.ClientAddress(), callback);
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, client->Read(&byte, &length, false));
    QTRY_VERIFY(client->IsOpen());
    client->Write("x", 1);
    QTRY_COMPARE(thrown, 3);
}

void TestInterfaces::writeReachesEveryPeer()
{
    TestServer server;
    server.server->Write("nobody", 6);
    Caller first(server.port);
    Caller second(server.port);
    QTRY_COMPARE(server.callback.Count(Kind::Open), 2);
    server.server->Write("to all", 6);
    server.server->Write("", 0);
    QTRY_COMPARE(first.bytesAvailable(), 6);
    QTRY_COMPARE(second.bytesAvailable(), 6);
    QCOMPARE(first.readAll(), QByteArray("to all"));

    // Unsent bytes are sent before a connection is closed.
    IInterface* const peer = server.callback.events.constFirst().source;
    peer->Write("last", 4);
    peer->Close();
    peer->Write("dropped", 7);
    QTRY_COMPARE(server.callback.Count(Kind::Close), 1);
    QTRY_VERIFY(first.state() == QAbstractSocket::UnconnectedState ||
                second.state() == QAbstractSocket::UnconnectedState);
    QTcpSocket& closed = first.state() == QAbstractSocket::UnconnectedState ? first : second;
    QVERIFY(closed.readAll().endsWith("last"));
}

void TestInterfaces::closedCallerIsClosed()
{
    TestServer server;
    {
        Caller caller(server.port);
        QVERIFY(caller.waitForConnected());
        caller.write("gone");
        QVERIFY(caller.waitForBytesWritten());
        caller.disconnectFromHost();
        QCOMPARE(caller.state(), QAbstractSocket::UnconnectedState);
    }
    QVERIFY(server.callback.events.isEmpty());
    QTRY_COMPARE(server.callback.Kinds(), (QList<Kind>{Kind::Open, Kind::Read, Kind::Close}));
    QCOMPARE(server.callback.received, QByteArray("gone"));
}

void TestInterfaces::resetCallerIsClosed()
{
    TestServer server;
    server.callback.onOpen = [](IInterface* peer) {
        peer->Write("unread", 6);
    };
    QTcpSocket caller;
    caller.setReadBufferSize(1);
    caller.connectToHost(QHostAddress::LocalHost, server.port);
    QTRY_COMPARE(caller.bytesAvailable(), 1);
    // Unread bytes make the system reset the connection.
    caller.abort();
    QTRY_COMPARE(server.callback.Kinds(), (QList<Kind>{Kind::Open, Kind::Written, Kind::Close}));
    QCOMPARE(server.callback.Count(Kind::Close), 1);
}

void TestInterfaces::callbacksComeOnTheCreatingThread()
{
    const quint16 port = FreePort();
    RecordingCallback callback;
    QList<QThread*> threads;
    const auto note = [&](IInterface*) {
        threads.append(QThread::currentThread());
    };
    std::atomic<bool> done = false;
    callback.onOpen = note;
    callback.onRead = [&](IInterface* peer, quint64) {
        note(peer);
    };
    callback.onClose = [&](IInterface* peer) {
        note(peer);
        done = true;
    };

    QThread thread;
    thread.start();
    QObject there;
    there.moveToThread(&thread);
    std::unique_ptr<IInterface> server;
    QMetaObject::invokeMethod(
        &there, [&] { server = Create(QStringLiteral("TCP::%1").arg(port), callback); }, Qt::BlockingQueuedConnection);
    QVERIFY(server);
    Caller caller(port);
    caller.write("x");
    caller.disconnectFromHost();
    QTRY_VERIFY(done);
    QMetaObject::invokeMethod(
        &there,
        [&] {
            server.reset();
            there.moveToThread(QCoreApplication::instance()->thread());
        },
        Qt::BlockingQueuedConnection);
    thread.quit();
    QVERIFY(thread.wait());
    QCOMPARE(threads, (QList<QThread*>{&thread, &thread, &thread}));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestInterfaces)
#include "tst_interfaces.moc"
