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

    void malformedAddress_data();
    void malformedAddress();
    void withoutCallback();
    void goodAddress_data();
    void goodAddress();
    void serverAndClient_data();
    void serverAndClient();
    void listensOnLoopbackOnly();
    void portTaken_data();
    void portTaken();
    void serversNotAllowed();
    void createdClosed();
    void closedServerClosesItsPeers();
    void clientCannotConnect();
    void clientConnectsAgain();
    void closeBeforeConnected();
    void readBringsWhatWaits();
    void readLooksWithoutTaking();
    void unreadBytesAreDropped();
    void readThrows();
    void writeReachesEveryPeer();
    void callerThatHasGone();
    void callerThatResets();
    void callbacksComeOnTheCreatingThread();
};

void TestInterfaces::init()
{
    // Qt warns where a socket is used in a state in which it must not be.
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
}

void TestInterfaces::malformedAddress_data()
{
    QTest::addColumn<QString>("address");
    const QStringList addresses{
        QString(),
        QStringLiteral("TCP"),
        QStringLiteral("TCP:"),
        QStringLiteral("TCP::"),
        QStringLiteral("TCP:8451"),
        QStringLiteral(":8451"),
        QStringLiteral("::8451"),
        QStringLiteral("tcp::8451"),
        QStringLiteral("UDP::8451"),
        QStringLiteral(" TCP::8451"),
        QStringLiteral("TCP::8451 "),
        QStringLiteral("TCP:: 8451"),
        QStringLiteral("TCP::0"),
        QStringLiteral("TCP::00000"),
        QStringLiteral("TCP::-1"),
        QStringLiteral("TCP::+8451"),
        QStringLiteral("TCP::65536"),
        QStringLiteral("TCP::99999"),
        QStringLiteral("TCP::4294975747"), // 8451 in the lower 32 bits
        QStringLiteral("TCP::18446744073709560067"),
        QStringLiteral("TCP::84x1"),
        QStringLiteral("TCP::0x2103"),
        QStringLiteral("TCP::8451:"),
        QStringLiteral("TCP:::8451"),
        QString::fromUtf8("TCP::\u0968\u0968\u0968\u0968"), // digits, but not ours
        QStringLiteral("TCP:localhost"),
        QStringLiteral("TCP:localhost:"),
        QStringLiteral("TCP:localhost:0"),
        QStringLiteral("TCP:local host:8451"),
        QStringLiteral("TCP:local/host:8451"),
        QStringLiteral("TCP:user@localhost:8451"),
        QStringLiteral("TCP:::1:8451"),
        QStringLiteral("TCP:[::1:8451"),
        QStringLiteral("TCP:::1]:8451"),
        QStringLiteral("TCP:[]:8451"),
        QStringLiteral("TCP:[:8451"),
        QStringLiteral("TCP:[127.0.0.1]:8451"),
        QStringLiteral("TCP:[localhost]:8451"),
        QStringLiteral("TCP:%1:8451").arg(QString(254, u'a')),
        QStringLiteral("TCP:%1").arg(QString(1'000'000, u':')),
        QStringLiteral("TCP::%1").arg(QString(1'000'000, u'1')),
        QStringLiteral("TCP:local%1host:8451").arg(QChar(0)),
    };
    for (qsizetype row = 0; row < addresses.size(); ++row)
        QTest::addRow("%d: %s", int(row), qPrintable(addresses[row].left(30))) << addresses[row];
}

void TestInterfaces::malformedAddress()
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

void TestInterfaces::withoutCallback()
{
    const TraceRecorder traces;
    QVERIFY(!CInterfaceCreator().CreateInterface(QStringLiteral("TCP::%1").arg(FreePort()), nullptr, 0, false));
    QCOMPARE(traces.Reports().size(), 1);
}

void TestInterfaces::goodAddress_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("lowest port") << QStringLiteral("TCP::1");
    QTest::newRow("highest port") << QStringLiteral("TCP::65535");
    QTest::newRow("name") << QStringLiteral("TCP:localhost:8451");
    QTest::newRow("full name") << QStringLiteral("TCP:a-host_1.example.org:8451");
    QTest::newRow("IPv4") << QStringLiteral("TCP:127.0.0.1:8451");
    QTest::newRow("IPv6") << QStringLiteral("TCP:[::1]:8451");
    QTest::newRow("IPv6, long") << QStringLiteral("TCP:[2001:db8::8:800:200c:417a]:8451");
}

void TestInterfaces::goodAddress()
{
    QFETCH(const QString, address);
    RecordingCallback callback;
    // Closed, so that nobody is called.
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

void TestInterfaces::portTaken_data()
{
    QTest::addColumn<QHostAddress>("holder");
    QTest::newRow("IPv4") << QHostAddress(QHostAddress::LocalHost);
    QTest::newRow("IPv6") << QHostAddress(QHostAddress::LocalHostIPv6);
    QTest::newRow("all of IPv4") << QHostAddress(QHostAddress::AnyIPv4);
    QTest::newRow("all") << QHostAddress(QHostAddress::Any);
}

void TestInterfaces::portTaken()
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

void TestInterfaces::serversNotAllowed()
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
    // The port stays free, what listens goes on, and clients are none of this.
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress(QHostAddress::LocalHost), port));
    QVERIFY(earlier->IsOpen());
    QVERIFY(Create(QStringLiteral("TCP:127.0.0.1:%1").arg(port), callback));
    other.close();

    CInterfaceCreator::SetServersAllowed(true);
    QVERIFY(closed->Open());
}

void TestInterfaces::createdClosed()
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
    QTcpSocket first;
    QTcpSocket second;
    first.connectToHost(QHostAddress::LocalHost, server.port);
    second.connectToHost(QHostAddress::LocalHost, server.port);
    QTRY_COMPARE(server.callback.Count(Kind::Open), 2);

    server.server->Close();
    QCOMPARE(server.callback.Count(Kind::Close), 0); // not from within the call
    QTRY_COMPARE(server.callback.Count(Kind::Close), 2);
    QTRY_COMPARE(first.state(), QAbstractSocket::UnconnectedState);
    QTRY_COMPARE(second.state(), QAbstractSocket::UnconnectedState);

    QVERIFY(server.server->Open());
    QTcpSocket third;
    third.connectToHost(QHostAddress::LocalHost, server.port);
    QTRY_COMPARE(server.callback.Count(Kind::Open), 3);
    QCOMPARE(server.callback.Count(Kind::Error), 0);
}

void TestInterfaces::clientCannotConnect()
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

void TestInterfaces::clientConnectsAgain()
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

void TestInterfaces::closeBeforeConnected()
{
    TestServer server;
    RecordingCallback callback;
    const auto client = Create(server.ClientAddress(), callback);
    client->Close();
    QVERIFY(client->Open());
    QTRY_VERIFY(client->IsOpen());
    QCOMPARE(callback.Kinds(), QList<Kind>{Kind::Open});
}

void TestInterfaces::readBringsWhatWaits()
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
    QTcpSocket caller;
    caller.connectToHost(QHostAddress::LocalHost, server.port);
    caller.write("sixlet");
    QTRY_COMPARE(taken, (QByteArrayList{"sixl", "et", ""}));
    QCOMPARE(inOpen, 0);

    // Nothing waits outside of OnRead.
    IInterface* const peer = server.callback.events.constLast().source;
    QCOMPARE(RecordingCallback::Take(peer, 10), QByteArray());
}

void TestInterfaces::readLooksWithoutTaking()
{
    TestServer server;
    QByteArrayList taken;
    server.callback.onRead = [&](IInterface* peer, quint64 length) {
        taken.append(RecordingCallback::Take(peer, length, true));
        taken.append(RecordingCallback::Take(peer, length, false));
        taken.append(RecordingCallback::Take(peer, length, true));
    };
    QTcpSocket caller;
    caller.connectToHost(QHostAddress::LocalHost, server.port);
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
    QTcpSocket caller;
    caller.connectToHost(QHostAddress::LocalHost, server.port);
    const QByteArrayList lines{"left", "part", "whole"};
    for (int line = 0; line < lines.size(); ++line) {
        caller.write(lines[line]);
        QTRY_COMPARE(reads, line + 1);
    }
    QCOMPARE(server.callback.received, QByteArray("parwhole"));
}

void TestInterfaces::readThrows()
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
    QTcpSocket first;
    QTcpSocket second;
    first.connectToHost(QHostAddress::LocalHost, server.port);
    second.connectToHost(QHostAddress::LocalHost, server.port);
    QTRY_COMPARE(server.callback.Count(Kind::Open), 2);
    server.server->Write("to all", 6);
    server.server->Write("", 0);
    QTRY_COMPARE(first.bytesAvailable(), 6);
    QTRY_COMPARE(second.bytesAvailable(), 6);
    QCOMPARE(first.readAll(), QByteArray("to all"));

    // What is unsent goes out before a connection is closed.
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

void TestInterfaces::callerThatHasGone()
{
    TestServer server;
    {
        QTcpSocket caller;
        caller.connectToHost(QHostAddress::LocalHost, server.port);
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

void TestInterfaces::callerThatResets()
{
    TestServer server;
    server.callback.onOpen = [](IInterface* peer) {
        peer->Write("unread", 6);
    };
    QTcpSocket caller;
    caller.setReadBufferSize(1);
    caller.connectToHost(QHostAddress::LocalHost, server.port);
    QTRY_COMPARE(caller.bytesAvailable(), 1);
    // Bytes that nobody has read turn the end into a reset.
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
    QTcpSocket caller;
    caller.connectToHost(QHostAddress::LocalHost, port);
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
