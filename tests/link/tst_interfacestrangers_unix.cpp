// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/link/strangerprocess.h"
#include "tests/support/linkfixture.h"
#include "tests/support/testmain.h"

#include <QRegularExpression>

#include <csignal>

using Kind = RecordingCallback::Kind;

namespace {

bool Tell(const Stranger& stranger, int signal)
{
    // 0 would be this process and all that belong to it.
    const auto number = static_cast<pid_t>(stranger.process.processId());
    return number > 0 && ::kill(number, signal) == 0;
}

} // namespace

/// Connections of another process that is stopped: they stay, and nothing comes from them.
class TestInterfaceStrangersUnix : public QObject
{
    Q_OBJECT

private slots:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral("."))); }

    void stoppedProcessIsClosed();
    void stoppedProcessDoesNotBlockCallers();
    void stoppedProcessThatDoesNotReadIsClosed();
};

void TestInterfaceStrangersUnix::stoppedProcessIsClosed()
{
    TestServer server(200);
    constexpr int calls = CInterfaceCreator::kMaximumPeers;
    Stranger stranger(server.port, calls);
    QVERIFY(Tell(stranger, SIGSTOP));
    QTRY_COMPARE(server.callback.Count(Kind::Close), calls);
    QCOMPARE(server.callback.received, Stranger::Said().repeated(calls));
    QCOMPARE(server.callback.Count(Kind::Error), 0);
    // It is told when it goes on.
    QVERIFY(Tell(stranger, SIGCONT));
    QVERIFY(stranger.process.state() == QProcess::NotRunning || stranger.process.waitForFinished());
    QCOMPARE(stranger.process.exitCode(), 0);
}

void TestInterfaceStrangersUnix::stoppedProcessDoesNotBlockCallers()
{
    TestServer server; // no time-out that would help
    constexpr int calls = CInterfaceCreator::kMaximumPeers;
    const Stranger stranger(server.port, calls);
    QTRY_COMPARE(server.callback.received, Stranger::Said().repeated(calls));
    QVERIFY(Tell(stranger, SIGSTOP));
    server.callback.received.clear();
    const auto caller = CallerOf(server.port);
    caller->write("honest");
    QTRY_COMPARE(server.callback.received, QByteArray("honest"));
    QCOMPARE(server.callback.Count(Kind::Close), 1);
    QCOMPARE(server.callback.most, calls);
}

void TestInterfaceStrangersUnix::stoppedProcessThatDoesNotReadIsClosed()
{
    TestServer server;
    const Stranger stranger(server.port, 1);
    QTRY_COMPARE(server.callback.received, Stranger::Said());
    QVERIFY(Tell(stranger, SIGSTOP));
    // Its system takes some of it, and then nothing more.
    const QByteArray much(CInterfaceCreator::kMaximumBytesUnsent, 'x');
    const auto isEnded = [&] {
        server.server->Write(much.constData(), static_cast<quint64>(much.size()));
        return server.callback.Count(Kind::Close) > 0;
    };
    QVERIFY(WaitUntil(isEnded));
    QCOMPARE(server.callback.Count(Kind::Error), 1);
    QCOMPARE(server.callback.now, 0);
    QVERIFY(server.server->IsOpen());
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestInterfaceStrangersUnix)
#include "tst_interfacestrangers_unix.moc"
