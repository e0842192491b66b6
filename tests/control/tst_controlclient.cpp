// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "control/controlclient.h"

#include "control/controlserver.h"
#include "platform/instancelock.h"
#include "tests/control/controlfixture.h"
#include "tests/support/testmain.h"

#include <QLocalServer>
#include <QSemaphore>
#include <QTest>
#include <QThread>

#include <atomic>
#include <memory>

using namespace std::chrono_literals;

namespace {

constexpr auto kShortPatience = 50ms;

/// A host in a thread of its own, because the client blocks. What it answers is given as text: it reads a line before
/// the part that follows "|", and ends after it has accepted a request and said nothing else.
class FakeHost
{
public:
    FakeHost(const QString& address, const QByteArray& answer)
        : m_pThread(QThread::create([this, address, answer] { Run(address, answer); }))
    {
        m_pThread->start();
        m_listening.acquire();
    }
    ~FakeHost()
    {
        m_isEnded = true;
        m_pThread->wait();
    }

    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;

private:
    void Run(const QString& address, const QByteArray& answer)
    {
        QLocalServer server;
        server.listen(address);
        m_listening.release();
        QLocalSocket* peer = nullptr;
        while (!m_isEnded && !peer)
            if (server.waitForNewConnection(10))
                peer = server.nextPendingConnection();
        if (!peer)
            return;
        const QList<QByteArray> parts = answer.split('|');
        for (const QByteArray& part : parts) {
            while (!m_isEnded && &part != &parts.front() && !peer->canReadLine())
                peer->waitForReadyRead(10);
            peer->write(part);
            peer->waitForBytesWritten(1000);
        }
        while (!m_isEnded && !parts.back().endsWith("accepted\"}\n"))
            peer->waitForReadyRead(10);
        peer->disconnectFromServer();
    }

    QSemaphore m_listening;
    std::atomic<bool> m_isEnded = false;
    const std::unique_ptr<QThread> m_pThread;
};

/// A directory whose lock names the address of a host.
struct UsedDirectory : ControlFixture
{
    UsedDirectory()
    {
        if (lock.TryLock(configuration.path()) == InstanceLock::Result::Locked)
            lock.SetAddress(address);
    }

    InstanceLock lock;
};

const QByteArray kGreeting = "{\"protocol\":1,\"program\":\"vexelhost\",\"version\":\"1\",\"process\":7}\n";

QJsonObject Request(const char* command)
{
    return {{QStringLiteral("command"), QLatin1String(command)}};
}

} // namespace

class TestControlClient : public QObject
{
    Q_OBJECT

private slots:
    void nobodyIsNoHost();
    void directoryThatIsMissingStaysMissing();
    void holderWithoutAnAddressIsWaitedFor();
    void requestIsAnswered();
    void documentIsSent();
    void hostThatHangsIsReported_data();
    void hostThatHangsIsReported();
    void hostThatEndsIsReported();
    void otherProtocolIsReported();
    void interruptEndsTheWait();
    void endOfTheHostIsWaitedFor();
};

void TestControlClient::nobodyIsNoHost()
{
    const ControlFixture fixture;
    ControlClient client;
    QCOMPARE(client.Connect(fixture.configuration.path()), ControlClient::State::NoHost);
}

void TestControlClient::directoryThatIsMissingStaysMissing()
{
    const ControlFixture fixture;
    const QString missing = fixture.configuration.filePath(QStringLiteral("typo"));
    ControlClient client;
    QCOMPARE(client.Connect(missing), ControlClient::State::NoHost);
    QVERIFY(!QFileInfo::exists(missing));
}

void TestControlClient::holderWithoutAnAddressIsWaitedFor()
{
    const ControlFixture fixture;
    InstanceLock lock;
    QCOMPARE(lock.TryLock(fixture.configuration.path()), InstanceLock::Result::Locked);
    ControlClient client(kShortPatience);
    QCOMPARE(client.Connect(fixture.configuration.path()), ControlClient::State::Failed);
    QVERIFY2(client.Error().contains(QString::number(QCoreApplication::applicationPid())), qPrintable(client.Error()));

    // One that is starting.
    const FakeHost host(fixture.address, kGreeting);
    lock.SetAddress(fixture.address);
    QCOMPARE(client.Connect(fixture.configuration.path()), ControlClient::State::Connected);
    QCOMPARE(client.Greeting().value(QLatin1String("process")).toInt(), 7);
}

void TestControlClient::requestIsAnswered()
{
    const UsedDirectory fixture;
    const FakeHost host(fixture.address, kGreeting + "|{\"type\":\"accepted\"}\n{\"type\":\"entry\",\"name\":\"a\"}\n"
                                                     "{\"type\":\"end\",\"code\":3,\"error\":\"why\"}\n");
    ControlClient client;
    QCOMPARE(client.Connect(fixture.configuration.path()), ControlClient::State::Connected);
    QStringList names;
    const int code = client.Run(Request("list"), [&names](const QJsonObject& line) {
        names.append(line.value(QLatin1String("name")).toString());
    });
    QCOMPARE(code, 3);
    QCOMPARE(client.Error(), QStringLiteral("why"));
    QCOMPARE(names, QStringList{QStringLiteral("a")});
}

void TestControlClient::documentIsSent()
{
    const UsedDirectory fixture;
    ControlServer server(10'000'000, QStringLiteral("vexelhost"));
    QCOMPARE(server.Listen(fixture.address), QString());
    QByteArray received;
    connect(&server, &ControlServer::Requested, this, [&](const ControlRequest& request, ControlReply* reply) {
        received = request.document;
        reply->End(0);
    });
    const QByteArray document = QByteArray("<\xc3\xa4>").repeated(1'000'000);
    int code = -1;
    // The greeting is awaited without an event loop.
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        ControlClient client;
        if (client.Connect(fixture.configuration.path()) == ControlClient::State::Connected)
            code = client.Run(
                Request("import"), [](const QJsonObject&) {}, document);
    }));
    thread->start();
    QTRY_VERIFY(thread->isFinished());
    QCOMPARE(code, 0);
    QVERIFY(received == document);
}

void TestControlClient::hostThatHangsIsReported_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("before it greets") << QByteArray();
    QTest::newRow("half a greeting") << QByteArray("{\"protocol\":1");
    QTest::newRow("before it accepts") << kGreeting;
}

void TestControlClient::hostThatHangsIsReported()
{
    QFETCH(const QByteArray, answer);
    const UsedDirectory fixture;
    const FakeHost host(fixture.address, answer);
    ControlClient client(kShortPatience);
    if (client.Connect(fixture.configuration.path()) == ControlClient::State::Connected)
        QCOMPARE(client.Run(Request("list"), [](const QJsonObject&) {}), 4);
    QCOMPARE(client.Error(), QStringLiteral("the running host does not answer"));
}

void TestControlClient::hostThatEndsIsReported()
{
    const UsedDirectory fixture;
    const FakeHost host(fixture.address, kGreeting + "|{\"type\":\"accepted\"}\n");
    ControlClient client;
    QCOMPARE(client.Connect(fixture.configuration.path()), ControlClient::State::Connected);
    QCOMPARE(client.Run(Request("wait"), [](const QJsonObject&) {}, {}), 4);
    QVERIFY2(client.Error().contains(QStringLiteral("ended")), qPrintable(client.Error()));
}

void TestControlClient::otherProtocolIsReported()
{
    const UsedDirectory fixture;
    const FakeHost host(fixture.address, "{\"protocol\":2,\"version\":\"9.8\"}\n");
    ControlClient client;
    QCOMPARE(client.Connect(fixture.configuration.path()), ControlClient::State::Failed);
    QVERIFY2(client.Error().contains(QStringLiteral("9.8")), qPrintable(client.Error()));
}

void TestControlClient::interruptEndsTheWait()
{
    const UsedDirectory fixture;
    const FakeHost host(fixture.address, kGreeting + "|{\"type\":\"accepted\"}\n{\"type\":\"entries\"}\n");
    ControlClient client;
    QCOMPARE(client.Connect(fixture.configuration.path()), ControlClient::State::Connected);
    const int code = client.Run(Request("watch"), [&client](const QJsonObject&) { client.Interrupt(2); });
    QCOMPARE(code, 130);
}

void TestControlClient::endOfTheHostIsWaitedFor()
{
    const ControlFixture fixture;
    auto lock = std::make_unique<InstanceLock>();
    QCOMPARE(lock->TryLock(fixture.configuration.path()), InstanceLock::Result::Locked);
    lock->SetAddress(fixture.address);
    const QByteArray process = QByteArray::number(QCoreApplication::applicationPid());
    const FakeHost host(fixture.address, "{\"protocol\":1,\"process\":" + process + "}\n");
    ControlClient client(kShortPatience);
    QCOMPARE(client.Connect(fixture.configuration.path()), ControlClient::State::Connected);
    QVERIFY(!client.WaitForEnd(fixture.configuration.path()));
    lock.reset();
    QVERIFY(client.WaitForEnd(fixture.configuration.path()));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestControlClient)
#include "tst_controlclient.moc"
