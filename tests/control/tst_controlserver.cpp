// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "control/controlserver.h"

#include "tests/control/controlfixture.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>
#include <vector>

namespace {

constexpr qint64 kMaximumDocument = 3'000'000;

/// A server that keeps what it was asked.
class Server
{
public:
    Server()
        : server(kMaximumDocument, QStringLiteral("vexelhost"))
    {
        QObject::connect(&server, &ControlServer::Requested, &server,
                         [this](const ControlRequest& request, ControlReply* reply) {
                             requests.push_back(request);
                             replies.push_back(reply);
                         });
        error = server.Listen(fixture.address);
    }

    ControlFixture fixture;
    ControlServer server;
    QString error;
    std::vector<ControlRequest> requests;
    std::vector<ControlReply*> replies;

    /// Ends the patience with all peers.
    void RunOutOfPatience()
    {
        const QList<QTimer*> timers = server.findChildren<QTimer*>(QStringLiteral("m_patience"));
        for (QTimer* const timer : timers)
            if (timer->isActive())
                timer->start(0);
    }
};

QJsonObject Request(const char* command)
{
    return {{QStringLiteral("protocol"), 1}, {QStringLiteral("command"), QLatin1String(command)}};
}

} // namespace

class TestControlServer : public QObject
{
    Q_OBJECT

private slots:
    void firstLineNamesProtocolProgramAndProcess();
    void requestIsAcceptedAndAnswered();
    void namesMayHaveAnyCharacters();
    void documentFollowsInParts();
    void longAnswerReachesAPeerThatReads();
    void otherProtocolIsRefused();
    void badInputClosesTheConnection_data();
    void badInputClosesTheConnection();
    void gigabyteIsNotTaken();
    void silentPeerIsClosed_data();
    void silentPeerIsClosed();
    void peerThatDoesNotReadIsClosed();
    void peerThatWatchesWithoutReadingIsClosed();
    void seventeenthPeerIsClosed();
    void seventeenthPeerTakesThePlaceOfASilentOne();
    void peerMayGoWhileItsRequestIsCarriedOut();
    void endOfTheServerEndsTheAnswers();
    void requestAtTheEndIsNotCarriedOut();
    void replyIsDeletedWhenThePeerGoes();
    void socketIsTheUsersAlone();
    void socketOfAKilledHostIsReplaced();
    void addressWithoutAFolderIsAnError();
};

void TestControlServer::firstLineNamesProtocolProgramAndProcess()
{
    const Server server;
    QCOMPARE(server.error, QString());
    RawPeer peer(server.fixture.address);
    const QJsonObject greeting = peer.Next();
    QCOMPARE(greeting.value(QLatin1String("protocol")).toInt(), 1);
    QCOMPARE(greeting.value(QLatin1String("program")).toString(), QStringLiteral("vexelhost"));
    QCOMPARE(greeting.value(QLatin1String("process")).toInteger(), QCoreApplication::applicationPid());
}

void TestControlServer::requestIsAcceptedAndAnswered()
{
    Server server;
    RawPeer peer(server.fixture.address);
    peer.Next();
    peer.Send(Request("list"));
    QCOMPARE(peer.NextType(), QStringLiteral("accepted"));
    QTRY_COMPARE(server.requests.size(), 1U);
    QCOMPARE(server.requests.front().content, Request("list"));

    server.replies.front()->Send({{QStringLiteral("type"), QStringLiteral("entry")}});
    server.replies.front()->End(3, QStringLiteral("why"));
    QCOMPARE(peer.NextType(), QStringLiteral("entry"));
    const QJsonObject end = peer.Next();
    QCOMPARE(end.value(QLatin1String("type")).toString(), QStringLiteral("end"));
    QCOMPARE(end.value(QLatin1String("code")).toInt(), 3);
    QCOMPARE(end.value(QLatin1String("error")).toString(), QStringLiteral("why"));
    server.RunOutOfPatience();
    QTRY_COMPARE(peer.Socket().state(), QLocalSocket::UnconnectedState);
}

void TestControlServer::namesMayHaveAnyCharacters()
{
    Server server;
    RawPeer peer(server.fixture.address);
    const QString name = QStringLiteral("--\"quoted\"\n\\u0000\t\u6f22") + QChar(0);
    QJsonObject request = Request("connect");
    request.insert(QStringLiteral("names"), QJsonArray{name});
    peer.Send(request);
    QTRY_COMPARE(server.requests.size(), 1U);
    QCOMPARE(server.requests.front().content.value(QLatin1String("names")).toArray().at(0).toString(), name);
}

void TestControlServer::documentFollowsInParts()
{
    Server server;
    RawPeer peer(server.fixture.address);
    QJsonObject request = Request("import");
    request.insert(QStringLiteral("hasDocument"), true);
    const QString document = QStringLiteral("<\u00e4>").repeated(400'000);
    peer.Send(request);
    peer.Send(ControlLine::WriteParts(document, {}));
    peer.Send(QJsonObject{{QStringLiteral("end"), true}});
    QTRY_COMPARE(server.requests.size(), 1U);
    QVERIFY(server.requests.front().document == document.toUtf8());
}

void TestControlServer::longAnswerReachesAPeerThatReads()
{
    Server server;
    RawPeer peer(server.fixture.address);
    peer.Next();
    peer.Send(Request("export"));
    QCOMPARE(peer.NextType(), QStringLiteral("accepted"));
    QTRY_COMPARE(server.replies.size(), 1U);
    const QString document = QString(5'000'000, u'x');
    server.replies.front()->SendLines(
        ControlLine::WriteParts(document, {{QStringLiteral("type"), QStringLiteral("data")}}));
    server.replies.front()->End(0);
    QString received;
    for (QJsonObject line = peer.Next(); line.value(QLatin1String("type")).toString() == QLatin1String("data");
         line = peer.Next())
        received += line.value(QLatin1String("text")).toString();
    QVERIFY(received == document);
}

void TestControlServer::otherProtocolIsRefused()
{
    const Server server;
    RawPeer peer(server.fixture.address);
    peer.Next();
    peer.Send(QJsonObject{{QStringLiteral("protocol"), 2}, {QStringLiteral("command"), QStringLiteral("list")}});
    const QJsonObject end = peer.Next();
    QCOMPARE(end.value(QLatin1String("code")).toInt(), 4);
    QVERIFY(end.value(QLatin1String("error")).toString().contains(QStringLiteral("version 1")));
    QVERIFY(server.requests.empty());
}

void TestControlServer::badInputClosesTheConnection_data()
{
    QTest::addColumn<QByteArray>("input");
    const QByteArray request = ControlLine::Write(Request("watch"));
    QTest::newRow("no JSON") << QByteArray("GET / HTTP/1.1\r\n\r\n");
    QTest::newRow("zero bytes") << QByteArray(100, '\0') + '\n';
    QTest::newRow("many values") << "{\"a\":[" + QByteArray("1,").repeated(40'000) + "1]}\n";
    QTest::newRow("line too long") << QByteArray(ControlLine::kMaximumSize + 1, ' ');
    QTest::newRow("second request") << request + request;
    QTest::newRow("document too long") << "{\"protocol\":1,\"hasDocument\":true}\n" +
                                              ControlLine::WriteParts(QString(kMaximumDocument + 1, u'x'), {});
}

void TestControlServer::badInputClosesTheConnection()
{
    QFETCH(const QByteArray, input);
    const TraceRecorder traces;
    Server server;
    RawPeer peer(server.fixture.address);
    peer.Next();
    peer.Send(input);
    QTRY_COMPARE(peer.Socket().state(), QLocalSocket::UnconnectedState);
    QVERIFY2(traces.Text().contains("A peer of the control channel is closed"), traces.Text().constData());
    // Others are not affected.
    RawPeer next(server.fixture.address);
    next.Next();
    next.Send(Request("list"));
    QCOMPARE(next.NextType(), QStringLiteral("accepted"));
}

void TestControlServer::gigabyteIsNotTaken()
{
    const Server server;
    RawPeer peer(server.fixture.address);
    peer.Next();
    const QByteArray part(1024 * 1024, ' ');
    int parts = 0;
    while (peer.Socket().state() == QLocalSocket::ConnectedState && parts < 1024) {
        peer.Send(part);
        ++parts;
        QCoreApplication::processEvents();
    }
    QVERIFY2(parts < 100, qPrintable(QString::number(parts)));
}

void TestControlServer::silentPeerIsClosed_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("half a line") << QByteArray("{\"protocol\":1");
    QTest::newRow("half a document") << QByteArray("{\"protocol\":1,\"hasDocument\":true}\n{\"text\":\"<a\"}\n");
}

void TestControlServer::silentPeerIsClosed()
{
    QFETCH(const QByteArray, input);
    Server server;
    RawPeer peer(server.fixture.address);
    peer.Next();
    peer.Send(input);
    QTRY_COMPARE(peer.Socket().bytesToWrite(), 0);
    server.RunOutOfPatience();
    QTRY_COMPARE(peer.Socket().state(), QLocalSocket::UnconnectedState);
    QVERIFY(server.requests.empty());
}

void TestControlServer::peerThatDoesNotReadIsClosed()
{
    Server server;
    RawPeer peer(server.fixture.address);
    peer.Next();
    peer.Socket().setReadBufferSize(1);
    peer.Send(Request("export"));
    QTRY_COMPARE(server.replies.size(), 1U);
    const QSignalSpy gone(server.replies.front(), &QObject::destroyed);
    server.replies.front()->SendLines(
        ControlLine::WriteParts(QString(20'000'000, u'x'), {{QStringLiteral("type"), QStringLiteral("data")}}));
    server.RunOutOfPatience();
    QTRY_COMPARE(gone.count(), 1);
}

void TestControlServer::peerThatWatchesWithoutReadingIsClosed()
{
    Server server;
    RawPeer peer(server.fixture.address);
    peer.Next();
    peer.Socket().setReadBufferSize(1);
    peer.Send(Request("watch"));
    QTRY_COMPARE(server.replies.size(), 1U);
    const QPointer<ControlReply> reply(server.replies.front());
    int events = 0;
    while (reply && events < 1'000'000) {
        reply->Send(
            {{QStringLiteral("type"), QStringLiteral("status")}, {QStringLiteral("name"), QString(1000, u'n')}});
        if (++events % 100 == 0) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
    QVERIFY2(events < 20'000, qPrintable(QString::number(events)));
}

void TestControlServer::seventeenthPeerIsClosed()
{
    const Server server;
    std::vector<std::unique_ptr<RawPeer>> peers;
    for (int i = 0; i < ControlServer::kMaximumPeers; ++i) {
        peers.push_back(std::make_unique<RawPeer>(server.fixture.address));
        peers.back()->Next();
        peers.back()->Send(Request("watch"));
        QCOMPARE(peers.back()->NextType(), QStringLiteral("accepted"));
    }
    RawPeer refused(server.fixture.address);
    QTRY_COMPARE(refused.Socket().state(), QLocalSocket::UnconnectedState);

    peers.pop_back();
    auto next = std::make_unique<RawPeer>(server.fixture.address);
    const auto isGreeted = [&] {
        if (next->Socket().state() == QLocalSocket::UnconnectedState)
            next = std::make_unique<RawPeer>(server.fixture.address);
        return next->Socket().canReadLine();
    };
    QTRY_VERIFY(isGreeted());
}

void TestControlServer::seventeenthPeerTakesThePlaceOfASilentOne()
{
    const Server server;
    std::vector<std::unique_ptr<RawPeer>> peers;
    for (int i = 0; i < ControlServer::kMaximumPeers + 1; ++i) {
        peers.push_back(std::make_unique<RawPeer>(server.fixture.address));
        peers.back()->Next();
    }
    QTRY_COMPARE(peers.front()->Socket().state(), QLocalSocket::UnconnectedState);
    peers.back()->Send(Request("list"));
    QCOMPARE(peers.back()->NextType(), QStringLiteral("accepted"));
}

// Connecting opens message boxes.
void TestControlServer::peerMayGoWhileItsRequestIsCarriedOut()
{
    Server server;
    auto peer = std::make_unique<RawPeer>(server.fixture.address);
    peer->Next();
    bool hasGone = false;
    connect(&server.server, &ControlServer::Requested, this, [&](const ControlRequest&, ControlReply* reply) {
        const QSignalSpy gone(reply, &QObject::destroyed);
        peer.reset();
        QTRY_COMPARE(gone.count(), 1);
        hasGone = true;
    });
    peer->Send(Request("connect"));
    QTRY_VERIFY(hasGone);
    // And others are served.
    RawPeer next(server.fixture.address);
    QCOMPARE(next.Next().value(QLatin1String("protocol")).toInt(), 1);
}

void TestControlServer::endOfTheServerEndsTheAnswers()
{
    Server server;
    RawPeer peer(server.fixture.address);
    peer.Next();
    peer.Send(Request("watch"));
    QCOMPARE(peer.NextType(), QStringLiteral("accepted"));
    server.server.Close();
    const QJsonObject end = peer.Next();
    QCOMPARE(end.value(QLatin1String("code")).toInt(), 4);
    QCOMPARE(end.value(QLatin1String("error")).toString(), QStringLiteral("the running host has ended"));
    QLocalSocket late;
    late.connectToServer(server.fixture.address);
    QVERIFY(!late.waitForConnected(1000));
}

void TestControlServer::requestAtTheEndIsNotCarriedOut()
{
    Server server;
    RawPeer peer(server.fixture.address);
    peer.Next();
    peer.Send(Request("connect"));
    peer.Socket().waitForBytesWritten();
    // It has arrived and has not been read yet.
    server.server.Close();
    QCOMPARE(peer.NextType(), QStringLiteral("end"));
    QVERIFY(server.requests.empty());
}

void TestControlServer::replyIsDeletedWhenThePeerGoes()
{
    Server server;
    auto peer = std::make_unique<RawPeer>(server.fixture.address);
    peer->Next();
    peer->Send(Request("watch"));
    QTRY_COMPARE(server.replies.size(), 1U);
    const QSignalSpy gone(server.replies.front(), &QObject::destroyed);
    peer.reset();
    QTRY_COMPARE(gone.count(), 1);
}

void TestControlServer::socketIsTheUsersAlone()
{
    const Server server;
#ifdef Q_OS_UNIX
    QCOMPARE(QFile::permissions(server.fixture.address) &
                 (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther),
             QFile::Permissions());
#else
    QSKIP("Windows keeps it in the pipe's security descriptor, which Qt sets");
#endif
}

void TestControlServer::socketOfAKilledHostIsReplaced()
{
    const ControlFixture fixture;
    ControlServer killed(kMaximumDocument, QStringLiteral("vexelhost"));
    QCOMPARE(killed.Listen(fixture.address), QString());
    ControlServer next(kMaximumDocument, QStringLiteral("vexelhost"));
    QCOMPARE(next.Listen(NewControlAddress(fixture.configuration.path())), QString());
}

void TestControlServer::addressWithoutAFolderIsAnError()
{
    ControlServer server(kMaximumDocument, QStringLiteral("vexelhost"));
    QVERIFY(!server.Listen(QString()).isEmpty());
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestControlServer)
#include "tst_controlserver.moc"
