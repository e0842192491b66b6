// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/filelock.h"
#include "starter/starter.h"
#include "tests/starter/fakehostrun.h"
#include "tests/starter/peers.h"
#include "tests/support/linkport.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"

#include <QDir>

#include <vector>

using namespace std::chrono_literals;

// The starter with hosts and services made for the purpose, at ports that are free.
class TestStarter : public QObject
{
    Q_OBJECT

private slots:
    void runningHostIsCalled();
    void missingHostIsStarted_data();
    void missingHostIsStarted();
    void busyHostIsWaitedFor();
    void tenStartersAtOnceStartOneHost();
    void tenStartersWithoutALockReachAHost();
    void hostOfAnotherStarterIsWaitedFor();
    void heldLockTimesOut();
    void staleLockIsIgnored_data();
    void staleLockIsIgnored();
    void pipeInPlaceOfTheLockDoesNotBlock();
    void crashOfTheHostIsReported();
    void exitCodeOfTheHostIsReported_data();
    void exitCodeOfTheHostIsReported();
    void reasonOfTheHostIsReported_data();
    void reasonOfTheHostIsReported();
    void unusableReasonIsLeftOut_data();
    void unusableReasonIsLeftOut();
    void hostIsAskedForItsReasonOnly();
    void hangingHostIsReported_data();
    void hangingHostIsReported();
    void otherHostOfTheConfigurationIsCalled();
    void hostIsStartedAgainAfterAnotherHost();
    void hostThatCalledTheDialogIsEnough();
    void otherHostWithoutALinkIsReported();
    void hostThatToldTheUserIsStartedOnce();
    void serviceThatHangsUpIsTakenForADialog();
    void foreignServiceIsReported_data();
    void foreignServiceIsReported();
    void endingHostIsReplaced();
    void defaults();
};

namespace {

Starter::Settings SettingsFor(const FakeHostRun& run, const QString& mode, quint16 port)
{
    Starter::Settings settings;
    settings.port = port;
    settings.lockFile = run.Path("lock");
    settings.errorFile = run.Path("error");
    settings.host = FakeHostRun::Program();
    settings.hostArguments = run.Arguments(mode, port);
    settings.timeOut = 30s;
    return settings;
}

Starter::Outcome RunWith(const Starter::Settings& settings)
{
    return Beside([settings] { return Starter(settings).Run(); });
}

/// The outcomes of `count` starters that run at once.
std::vector<Starter::Outcome> RunAtOnce(const Starter::Settings& settings, int count)
{
    return Beside([&] {
        std::vector<std::future<Starter::Outcome>> starters;
        starters.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i)
            starters.push_back(std::async(
                std::launch::async, [settings] { return Starter(settings).Run(); }));
        std::vector<Starter::Outcome> outcomes;
        outcomes.reserve(starters.size());
        for (auto& starter : starters)
            outcomes.push_back(starter.get());
        return outcomes;
    });
}

} // namespace

#define COMPARE_OUTCOME(outcome, expectedCode, hint)                                                                   \
    do {                                                                                                               \
        const Starter::Outcome compared = (outcome);                                                                   \
        QVERIFY2(compared.code == StarterExit::expectedCode, qPrintable(compared.message));                            \
        QVERIFY2(compared.message.contains(QLatin1String(hint)), qPrintable(compared.message));                        \
        QCOMPARE(compared.message.isEmpty(), compared.code == StarterExit::Called);                                    \
        QVERIFY(!compared.message.contains(u'\n'));                                                                    \
    } while (false)

void TestStarter::runningHostIsCalled()
{
    const FakeHostRun run;
    TestServer server(10'000);
    COMPARE_OUTCOME(RunWith(SettingsFor(run, QStringLiteral("answer"), server.port)), Called, "");
    QCOMPARE(server.callback.Count(RecordingCallback::Open), 1);
    QCOMPARE(run.Starts().size(), 0);
}

void TestStarter::missingHostIsStarted_data()
{
    QTest::addColumn<QString>("mode");
    QTest::newRow("at once") << QStringLiteral("answer");
    QTest::newRow("after a while") << QStringLiteral("late");
}

void TestStarter::missingHostIsStarted()
{
    QFETCH(const QString, mode);
    const FakeHostRun run;
    auto settings = SettingsFor(run, mode, FreePort());
    settings.hostArguments.append(QStringLiteral("an argument"));
    COMPARE_OUTCOME(RunWith(settings), Called, "");
    QCOMPARE(run.Starts().size(), 1);
    QCOMPARE(run.Starts().constFirst().value(QLatin1String("arguments")).toArray(),
             QJsonArray{QStringLiteral("an argument")});
    // Now there is one.
    COMPARE_OUTCOME(RunWith(settings), Called, "");
    QCOMPARE(run.Starts().size(), 1);
}

void TestStarter::busyHostIsWaitedFor()
{
    // It listens, and takes calls only later.
    const FakeHostRun run;
    TestServer server(10'000);
    auto answer = std::async(std::launch::async, [settings = SettingsFor(run, QStringLiteral("answer"), server.port)] {
        return Starter(settings).Run();
    });
    QCOMPARE(answer.wait_for(100ms), std::future_status::timeout);
    QVERIFY(QTest::qWaitFor([&] { return answer.wait_for(0s) == std::future_status::ready; }, 30'000));
    COMPARE_OUTCOME(answer.get(), Called, "");
    QCOMPARE(run.Starts().size(), 0);
}

void TestStarter::tenStartersAtOnceStartOneHost()
{
    const FakeHostRun run;
    for (const auto& outcome : RunAtOnce(SettingsFor(run, QStringLiteral("late"), FreePort()), 10))
        COMPARE_OUTCOME(outcome, Called, "");
    QCOMPARE(run.Starts().size(), 1);
}

void TestStarter::tenStartersWithoutALockReachAHost()
{
    // Hosts that find another one at work end with exit code 4.
    const FakeHostRun run;
    auto settings = SettingsFor(run, QStringLiteral("late"), FreePort());
    QFile noFolder(run.Path("file"));
    QVERIFY(noFolder.open(QIODevice::WriteOnly));
    settings.lockFile = noFolder.fileName() + QStringLiteral("/lock");
    for (const auto& outcome : RunAtOnce(settings, 10))
        COMPARE_OUTCOME(outcome, Called, "");
    QVERIFY(!run.Starts().isEmpty());
}

void TestStarter::hostOfAnotherStarterIsWaitedFor()
{
    const FakeHostRun run;
    auto settings = SettingsFor(run, QStringLiteral("answer"), FreePort());
    FileLock other;
    QString error;
    QCOMPARE(other.TryLock(settings.lockFile, &error), FileLock::Result::Locked);
    auto answer = std::async(std::launch::async, [settings] { return Starter(settings).Run(); });
    QCOMPARE(answer.wait_for(100ms), std::future_status::timeout);
    QCOMPARE(run.Starts().size(), 0);
    RecordingCallback callback;
    const auto server = Create(QStringLiteral("TCP::%1").arg(settings.port), callback, 10'000);
    QVERIFY(server);
    QVERIFY(QTest::qWaitFor([&] { return answer.wait_for(0s) == std::future_status::ready; }, 30'000));
    COMPARE_OUTCOME(answer.get(), Called, "");
    QCOMPARE(run.Starts().size(), 0);
}

void TestStarter::heldLockTimesOut()
{
    const FakeHostRun run;
    auto settings = SettingsFor(run, QStringLiteral("answer"), FreePort());
    {
        FileLock other;
        QString error;
        QCOMPARE(other.TryLock(settings.lockFile, &error), FileLock::Result::Locked);
        settings.timeOut = 300ms;
        COMPARE_OUTCOME(RunWith(settings), NoAnswer, "another kitestarter");
        QCOMPARE(run.Starts().size(), 0);
    }
    settings.timeOut = 30s;
    COMPARE_OUTCOME(RunWith(settings), Called, "");
    QCOMPARE(run.Starts().size(), 1);
}

void TestStarter::staleLockIsIgnored_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("age"); // s
    const QByteArray machine = QSysInfo::machineHostName().toUtf8();
    // No process has the greatest number that there could be.
    QTest::newRow("of a process that is gone") << QByteArray("2147483646\nkitestarter\n" + machine + "\n\n\n") << 0;
    QTest::newRow("empty") << QByteArray() << 60;
    QTest::newRow("garbage") << QByteArray("\xff\x01garbage") << 60;
}

void TestStarter::staleLockIsIgnored()
{
    QFETCH(const QByteArray, content);
    QFETCH(const int, age);
    const FakeHostRun run;
    const auto settings = SettingsFor(run, QStringLiteral("answer"), FreePort());
    QFile lock(settings.lockFile);
    QVERIFY(lock.open(QIODevice::WriteOnly));
    lock.write(content);
    lock.flush();
    QVERIFY(lock.setFileTime(QDateTime::currentDateTime().addSecs(-age), QFile::FileModificationTime));
    lock.close();
    COMPARE_OUTCOME(RunWith(settings), Called, "");
    QCOMPARE(run.Starts().size(), 1);
    QVERIFY(!QFile::exists(settings.lockFile));
}

void TestStarter::pipeInPlaceOfTheLockDoesNotBlock()
{
    // It is not opened, which would take for ever, and does not keep a host from being started.
    const FakeHostRun run;
    const auto settings = SettingsFor(run, QStringLiteral("answer"), FreePort());
    if (System::MakePipe(settings.lockFile) != settings.lockFile)
        QSKIP("No pipes among files here");
    COMPARE_OUTCOME(RunWith(settings), Called, "");
    QCOMPARE(run.Starts().size(), 1);
}

void TestStarter::crashOfTheHostIsReported()
{
    const FakeHostRun run;
#ifdef Q_OS_WIN
    COMPARE_OUTCOME(RunWith(SettingsFor(run, QStringLiteral("crash"), FreePort())), HostEnded, "before");
#else
    COMPARE_OUTCOME(RunWith(SettingsFor(run, QStringLiteral("crash"), FreePort())), HostEnded, "crashed (signal 6)");
#endif
    QCOMPARE(run.Starts().size(), 1);
    QVERIFY(!QFile::exists(run.Path("lock")));
}

void TestStarter::exitCodeOfTheHostIsReported_data()
{
    QTest::addColumn<QString>("code");
    for (const char* code : {"3", "5"})
        QTest::newRow(code) << QString::fromLatin1(code);
}

void TestStarter::exitCodeOfTheHostIsReported()
{
    QFETCH(const QString, code);
    const FakeHostRun run;
    const auto outcome = RunWith(SettingsFor(run, code, FreePort()));
    COMPARE_OUTCOME(outcome, HostEnded, "exit code");
    QVERIFY2(outcome.message.contains(QStringLiteral("exit code ") + code), qPrintable(outcome.message));
    QCOMPARE(run.Starts().size(), 1);
}

void TestStarter::reasonOfTheHostIsReported_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("shown");
    const QString plain = QStringLiteral("the configuration directory /\u5317 cannot be used: it is full");
    QTest::newRow("plain") << plain << 1 << plain;
    QTest::newRow("several lines") << QStringLiteral("one\ntwo\x1b[2J") << 1 << QStringLiteral("one\\ntwo\\u{1b}[2J");
    QTest::newRow("long") << QStringLiteral("x") << 60'000 << QString(60'000, u'x');
}

void TestStarter::reasonOfTheHostIsReported()
{
    QFETCH(const QString, text);
    QFETCH(const int, count);
    QFETCH(const QString, shown);
    const FakeHostRun run;
    auto settings = SettingsFor(run, QStringLiteral("explain"), FreePort());
    settings.hostArguments += {QStringLiteral("2"), text, QString::number(count)};
    const auto outcome = RunWith(settings);
    COMPARE_OUTCOME(outcome, HostEnded, "");
    QCOMPARE(outcome.message, QStringLiteral("%1 ended with exit code 2: %2").arg(FakeHostRun::Program(), shown));
    QVERIFY(!QFile::exists(settings.errorFile));
}

void TestStarter::unusableReasonIsLeftOut_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("count");
    QTest::newRow("none") << QString() << 1;
    QTest::newRow("blanks") << QStringLiteral(" \n") << 1;
    QTest::newRow("too long") << QStringLiteral("x") << 70'000;
}

void TestStarter::unusableReasonIsLeftOut()
{
    QFETCH(const QString, text);
    QFETCH(const int, count);
    const FakeHostRun run;
    auto settings = SettingsFor(run, QStringLiteral("explain"), FreePort());
    settings.hostArguments += {QStringLiteral("2"), text, QString::number(count)};
    // Of a run that was killed.
    QFile former(settings.errorFile);
    QVERIFY(former.open(QIODevice::WriteOnly));
    former.write("long ago");
    former.close();
    const auto outcome = RunWith(settings);
    COMPARE_OUTCOME(outcome, HostEnded, "exit code 2 before its dialog answered");
    QVERIFY2(!outcome.message.contains(QLatin1String("long ago")), qPrintable(outcome.message));
    QVERIFY(!QFile::exists(settings.errorFile));
}

void TestStarter::hostIsAskedForItsReasonOnly()
{
    const FakeHostRun asked;
    const auto settings = SettingsFor(asked, QStringLiteral("answer"), FreePort());
    COMPARE_OUTCOME(RunWith(settings), Called, "");
    QCOMPARE(asked.Starts().constFirst().value(QLatin1String("errorFile")).toString(), settings.errorFile);
    QVERIFY(!QFile::exists(settings.errorFile));
    // Another starter's file, which starts no host, is left alone.
    QFile other(settings.errorFile);
    QVERIFY(other.open(QIODevice::WriteOnly));
    COMPARE_OUTCOME(RunWith(settings), Called, "");
    QVERIFY(other.exists());

    const FakeHostRun unasked;
    auto without = SettingsFor(unasked, QStringLiteral("answer"), FreePort());
    without.errorFile.clear();
    COMPARE_OUTCOME(RunWith(without), Called, "");
    QCOMPARE(unasked.Starts().constFirst().value(QLatin1String("errorFile")).toString(), QString());
}

void TestStarter::hangingHostIsReported_data()
{
    QTest::addColumn<QString>("mode");
    QTest::newRow("before it listens") << QStringLiteral("hang");
    QTest::newRow("before it takes a call") << QStringLiteral("deaf");
}

void TestStarter::hangingHostIsReported()
{
    QFETCH(const QString, mode);
    const FakeHostRun run;
    auto settings = SettingsFor(run, mode, FreePort());
    settings.timeOut = 500ms;
    const auto outcome = RunWith(settings);
    COMPARE_OUTCOME(outcome, NoAnswer, "did not answer within 0.5 s");
    // It may have its reasons, and lives.
    QTRY_COMPARE(run.Starts().size(), 1);
    const QString process = QString::number(run.Starts().constFirst().value(QLatin1String("process")).toInt());
    QVERIFY2(outcome.message.contains(QStringLiteral("process ") + process), qPrintable(outcome.message));
    QCOMPARE(System::ProgramOf(process.toLongLong()), FakeHostRun::Program());
    QVERIFY(!QFile::exists(settings.errorFile));
}

void TestStarter::otherHostOfTheConfigurationIsCalled()
{
    // Another host runs on the configuration, and opens its link after the host started here has ended.
    const FakeHostRun run;
    auto settings = SettingsFor(run, QStringLiteral("4"), FreePort());
    auto answer = std::async(std::launch::async, [settings] { return Starter(settings).Run(); });
    QTRY_COMPARE(run.Starts().size(), 1);
    const auto process = run.Starts().constFirst().value(QLatin1String("process")).toInteger();
    QTRY_VERIFY(System::ProgramOf(process) != FakeHostRun::Program());
    RecordingCallback callback;
    const auto server = Create(QStringLiteral("TCP::%1").arg(settings.port), callback, 10'000);
    QVERIFY(server);
    QVERIFY(QTest::qWaitFor([&] { return answer.wait_for(0s) == std::future_status::ready; }, 30'000));
    COMPARE_OUTCOME(answer.get(), Called, "");
    QCOMPARE(callback.Count(RecordingCallback::Open), 1);
}

void TestStarter::hostIsStartedAgainAfterAnotherHost()
{
    const FakeHostRun run;
    COMPARE_OUTCOME(RunWith(SettingsFor(run, QStringLiteral("secondtry"), FreePort())), Called, "");
    QCOMPARE(run.Starts().size(), 2);
}

void TestStarter::hostThatCalledTheDialogIsEnough()
{
    // The dialog of the same configuration, which has no link.
    const FakeHostRun run;
    COMPARE_OUTCOME(RunWith(SettingsFor(run, QStringLiteral("0"), FreePort())), Called, "");
    QCOMPARE(run.Starts().size(), 1);
}

void TestStarter::otherHostWithoutALinkIsReported()
{
    const FakeHostRun run;
    auto settings = SettingsFor(run, QStringLiteral("explain"), FreePort());
    settings.hostArguments += {QStringLiteral("4"), QStringLiteral("vexelctl is at work")};
    settings.timeOut = 5s;
    const auto outcome = RunWith(settings);
    COMPARE_OUTCOME(outcome, HostEnded, "same configuration directory");
    QVERIFY2(outcome.message.endsWith(QLatin1String(": vexelctl is at work")), qPrintable(outcome.message));
    // Tried again, but no storm of processes.
    QVERIFY(run.Starts().size() <= 10);
    QVERIFY(!QFile::exists(settings.errorFile));
}

void TestStarter::hostThatToldTheUserIsStartedOnce()
{
    // It showed a box, which must not come back when the user closes it.
    const FakeHostRun run;
    auto settings = SettingsFor(run, QStringLiteral("4"), FreePort());
    settings.errorFile.clear();
    settings.timeOut = 5s;
    COMPARE_OUTCOME(RunWith(settings), HostEnded, "same configuration directory");
    QCOMPARE(run.Starts().size(), 1);
}

void TestStarter::serviceThatHangsUpIsTakenForADialog()
{
    // A dialog does not do more, either.
    const ForeignService service(ForeignService::ClosesLate);
    const FakeHostRun run;
    COMPARE_OUTCOME(RunWith(SettingsFor(run, QStringLiteral("answer"), service.serverPort())), Called, "");
    QCOMPARE(run.Starts().size(), 0);
}

void TestStarter::foreignServiceIsReported_data()
{
    QTest::addColumn<ForeignService::Manner>("manner");
    QTest::addColumn<QString>("hint");
    QTest::newRow("greets") << ForeignService::Greets << QStringLiteral("another program uses port");
    QTest::newRow("never closes") << ForeignService::NeverCloses << QStringLiteral("no dialog answered within 0.3 s");
    QTest::newRow("resets") << ForeignService::CutsOff << QStringLiteral("resets every connection");
}

void TestStarter::foreignServiceIsReported()
{
    QFETCH(const ForeignService::Manner, manner);
    QFETCH(const QString, hint);
    const ForeignService service(manner);
    const FakeHostRun run;
    auto settings = SettingsFor(run, QStringLiteral("answer"), service.serverPort());
    if (manner == ForeignService::NeverCloses)
        settings.timeOut = 300ms;
    const auto outcome = RunWith(settings);
    COMPARE_OUTCOME(outcome, PortTaken, "");
    QVERIFY2(outcome.message.contains(hint), qPrintable(outcome.message));
    QVERIFY(outcome.message.contains(QString::number(settings.port)));
    QCOMPARE(run.Starts().size(), 0);
    // One that cuts off might be a host that is ending, so it is called again, but not for as long as there is time.
    if (manner == ForeignService::CutsOff)
        QVERIFY2(service.calls > 1 && service.calls <= 10, qPrintable(QString::number(service.calls)));
    else
        QTRY_COMPARE(service.calls, 1);
}

void TestStarter::endingHostIsReplaced()
{
    ForeignService ending(ForeignService::CutsOff);
    connect(&ending, &QTcpServer::newConnection, &ending, [&] {
        if (ending.calls == 3)
            ending.close();
    });
    const FakeHostRun run;
    COMPARE_OUTCOME(RunWith(SettingsFor(run, QStringLiteral("answer"), ending.serverPort())), Called, "");
    QCOMPARE(ending.calls, 3);
    QCOMPARE(run.Starts().size(), 1);
}

void TestStarter::defaults()
{
    QCOMPARE(Starter::Settings().port, LinkPort::kNumber);
    QVERIFY(Starter::DefaultHost(QStringLiteral("/folder")).startsWith(QLatin1String("/folder/vexelhost")));
    QVERIFY(QDir::isAbsolutePath(Starter::DefaultLockFile(LinkPort::kNumber)));
    QVERIFY(Starter::DefaultLockFile(1).startsWith(QDir::homePath() + u'/') ||
            qEnvironmentVariableIsSet("XDG_CACHE_HOME"));
    QVERIFY(Starter::DefaultLockFile(1) != Starter::DefaultLockFile(2));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestStarter)
#include "tst_starter.moc"
