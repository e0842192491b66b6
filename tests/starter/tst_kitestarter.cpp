// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/starter/fakehostrun.h"
#include "tests/support/linkport.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"
#include "tests/support/waitforend.h"

#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QProcess>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <memory>
#include <vector>

// The executable itself, with the real host and dialog, at the real port.
class TestKiteStarter : public QObject
{
    Q_OBJECT

private slots:
    void help();
    void wrongCommandLine();
    void runningDialogIsRaised();
    void secondStarterCallsTheFirstDialog();
    void tenStartersAtOnceStartOneHost();
    void dialogOfAnotherConfigurationIsCalled();
    void commandLineIsNotTakenForADialog();
    void exitCodeOfTheHostIsReported();
    void reasonOfTheHostIsPrintedOrLeftToIt_data();
    void reasonOfTheHostIsPrintedOrLeftToIt();
    void missingHostIsReported();
    void foreignServiceIsReported();
    void callOnlyStartsNothing();
};

namespace {

const QString kCalled = QStringLiteral("TCPServer::OnOpen(): Received call from KiteStarter.");
const QString kCreated = QStringLiteral("TCPServer(): Server TCP interface created.");
const QString kFailed = QStringLiteral("TCPServer(): Creation of Server TCP interface failed.");

/// A temporary configuration for the host. Starts starters on it; ends their host at last.
class SetUp
{
public:
    SetUp()
        : environment(QProcessEnvironment::systemEnvironment())
    {
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        environment.insert(QStringLiteral("XDG_CACHE_HOME"), m_directory.path());
    }
    ~SetUp() { End(); }

    QString Path(const QString& name) const { return m_directory.filePath(name); }
    QString Config() const { return Path(QStringLiteral("a 'b'  \u00fc \u5317\u6597 \u0441\u0432\u044f\u0437\u044c")); }
    QStringList HostArguments() const
    {
        return {QStringLiteral("--config"), Config(), QStringLiteral("--trace-file"), Path(QStringLiteral("trace"))};
    }

    std::unique_ptr<QProcess> Start(const QStringList& arguments) const
    {
        auto process = std::make_unique<QProcess>();
        process->setProcessEnvironment(environment);
        process->setWorkingDirectory(m_directory.path());
        process->start(QStringLiteral(VEXEL_KITESTARTER), arguments);
        return process;
    }
    struct Result
    {
        int exitCode;
        QString output;
        QString error;
    };
    static Result End(QProcess& process)
    {
        // Its output ends with it: the host, which lives on, does not hold it open.
        const bool hasEnded = WaitForEnd(process) && process.exitStatus() == QProcess::NormalExit;
        return {hasEnded ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }
    Result Run(const QStringList& arguments) const { return End(*Start(arguments)); }
    /// Runs the starter for a host on this configuration.
    Result RunForHost() const { return Run(QStringList(QStringLiteral("--")) + HostArguments()); }

    /// How often a host has traced `line`. It may trace a call just after it has answered.
    qsizetype Traced(const QString& line) const
    {
        QFile file(Path(QStringLiteral("trace")));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).count(line) : 0;
    }

    /// The host that works on the configuration; 0 where there is none.
    qint64 Host() const
    {
        const QLockFile lock(Config() + QStringLiteral("/vexelhost.lock"));
        qint64 process = 0;
        QString machine;
        QString program;
        return lock.getLockInfo(&process, &machine, &program) ? process : 0;
    }

    /// Ends the host as the end of the session does, and waits until it is gone.
    void End() const
    {
        const qint64 process = Host();
        if (process == 0)
            return;
        System::AskToEnd(process);
        if (!QTest::qWaitFor([this] { return Host() == 0 && LinkPort::IsFree(); }, 30'000))
            qWarning("The host %lld does not end", static_cast<long long>(process));
    }

    QProcessEnvironment environment;

private:
    QTemporaryDir m_directory;
};

} // namespace

#define COMPARE_CALLED(result)                                                                                         \
    do {                                                                                                               \
        const SetUp::Result compared = (result);                                                                       \
        QVERIFY2(compared.exitCode == 0, qPrintable(compared.error));                                                  \
        QCOMPARE(compared.error, QString());                                                                           \
        QCOMPARE(compared.output, QString());                                                                          \
    } while (false)

// One line, from the program.
#define COMPARE_COMPLAINT(result, code, hint)                                                                          \
    do {                                                                                                               \
        const SetUp::Result compared = (result);                                                                       \
        QVERIFY2(compared.error.startsWith(QLatin1String("kitestarter: ")) && compared.error.contains(hint),           \
                 qPrintable(compared.error));                                                                          \
        QCOMPARE(compared.error.count(u'\n'), 1);                                                                      \
        QCOMPARE(compared.output, QString());                                                                          \
        QCOMPARE(compared.exitCode, code);                                                                             \
    } while (false)

void TestKiteStarter::help()
{
    const auto result = SetUp().Run({QStringLiteral("--help")});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.error, QString());
    QVERIFY(result.output.startsWith(QLatin1String("Usage: kitestarter")));
}

void TestKiteStarter::wrongCommandLine()
{
    COMPARE_COMPLAINT(SetUp().Run({QStringLiteral("--frobnicate")}), 1, QLatin1String("frobnicate"));
}

void TestKiteStarter::runningDialogIsRaised()
{
    NEED_PORT();
    const SetUp setUp;
    // Not started by a starter.
    QProcess host;
    host.setProcessEnvironment(setUp.environment);
    host.start(QStringLiteral(VEXELHOST), setUp.HostArguments());
    QTRY_COMPARE_WITH_TIMEOUT(setUp.Traced(kCreated), 1, 30'000);
    for (int call = 1; call <= 3; ++call) {
        COMPARE_CALLED(setUp.RunForHost());
        QTRY_COMPARE(setUp.Traced(kCalled), call);
    }
    QCOMPARE(setUp.Host(), host.processId());
    setUp.End();
    QVERIFY(WaitForEnd(host));
    QCOMPARE(host.exitCode(), 0);
}

void TestKiteStarter::secondStarterCallsTheFirstDialog()
{
    NEED_PORT();
    const SetUp setUp;
    COMPARE_CALLED(setUp.RunForHost());
    const qint64 host = setUp.Host();
    QVERIFY(host > 0);
    QTRY_COMPARE(setUp.Traced(kCalled), 1);
    COMPARE_CALLED(setUp.RunForHost());
    QCOMPARE(setUp.Host(), host);
    QTRY_COMPARE(setUp.Traced(kCalled), 2);
    QCOMPARE(setUp.Traced(kCreated), 1);
    QCOMPARE(setUp.Traced(kFailed), 0);
    QVERIFY(!QFile::exists(setUp.Path(QStringLiteral("kitestarter/%1.lock").arg(LinkPort::kNumber))));
}

void TestKiteStarter::tenStartersAtOnceStartOneHost()
{
    NEED_PORT();
    const SetUp setUp;
    std::vector<std::unique_ptr<QProcess>> starters;
    for (int i = 0; i < 10; ++i)
        starters.push_back(setUp.Start(QStringList(QStringLiteral("--")) + setUp.HostArguments()));
    for (const auto& starter : starters)
        COMPARE_CALLED(SetUp::End(*starter));
    // Each of them was answered.
    QTRY_VERIFY(setUp.Traced(kCalled) >= 10);
    // Every host creates a link, or fails to.
    QCOMPARE(setUp.Traced(kCreated), 1);
    QCOMPARE(setUp.Traced(kFailed), 0);
}

void TestKiteStarter::dialogOfAnotherConfigurationIsCalled()
{
    NEED_PORT();
    const SetUp setUp;
    COMPARE_CALLED(setUp.RunForHost());
    COMPARE_CALLED(setUp.Run({QStringLiteral("--"), QStringLiteral("--config"), setUp.Path(QStringLiteral("other"))}));
    QTRY_COMPARE(setUp.Traced(kCalled), 2);
    QVERIFY(!QFile::exists(setUp.Path(QStringLiteral("other"))));
}

void TestKiteStarter::commandLineIsNotTakenForADialog()
{
    NEED_PORT();
    SetUp setUp;
    const QString list = setUp.Path(QStringLiteral("list.xml"));
    QFile file(list);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<ConnectionEntries><Connection><ConnectionName>mast</ConnectionName><DeviceType>4</DeviceType>"
               "</Connection></ConnectionEntries>");
    file.close();
    // It shows nothing, and would be at it for an hour.
    setUp.environment.insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("3600"));
    const QString config = setUp.Path(QStringLiteral("command line"));
    QProcess add;
    add.start(QStringLiteral(VEXELCTL), {QStringLiteral("add"), QStringLiteral("--config"), config, list});
    QVERIFY(WaitForEnd(add));
    QVERIFY2(add.exitCode() == 0, add.readAllStandardError().constData());
    QProcess vexelctl;
    vexelctl.setProcessEnvironment(setUp.environment);
    vexelctl.start(QStringLiteral(VEXELCTL),
                   {QStringLiteral("connect"), QStringLiteral("--config"), config, QStringLiteral("mast")});
    QByteArray said;
    QTRY_VERIFY2_WITH_TIMEOUT((said += vexelctl.readAllStandardOutput()).contains("Free -> In Use"),
                              vexelctl.readAllStandardError().constData(), 60'000);

    COMPARE_COMPLAINT(setUp.Run({QStringLiteral("--call-only")}), 6, QLatin1String("no connect dialog is running"));
    COMPARE_CALLED(setUp.RunForHost());
    QTRY_COMPARE(setUp.Traced(kCalled), 1);
    QCOMPARE(setUp.Traced(kCreated), 1);
    QCOMPARE(vexelctl.state(), QProcess::Running);
    QVERIFY(System::AskToEnd(vexelctl.processId()));
    QVERIFY(WaitForEnd(vexelctl));
}

void TestKiteStarter::exitCodeOfTheHostIsReported()
{
    NEED_PORT();
    COMPARE_COMPLAINT(SetUp().Run({QStringLiteral("--"), QStringLiteral("--frobnicate")}), 3,
                      QLatin1String("exit code 1"));
}

void TestKiteStarter::reasonOfTheHostIsPrintedOrLeftToIt_data()
{
    QTest::addColumn<bool>("hasReader");
    QTest::newRow("printed") << true;
    QTest::newRow("left to the host where standard error has no reader") << false;
}

void TestKiteStarter::reasonOfTheHostIsPrintedOrLeftToIt()
{
    QFETCH(const bool, hasReader);
    NEED_PORT();
    const SetUp setUp;
    const FakeHostRun run;
    QProcess starter;
    starter.setProcessEnvironment(setUp.environment);
    if (!hasReader)
        starter.setStandardErrorFile(QProcess::nullDevice());
    starter.start(
        QStringLiteral(VEXEL_KITESTARTER),
        QStringList{QStringLiteral("--host"), FakeHostRun::Program(), QStringLiteral("--")} +
            run.Arguments(QStringLiteral("explain"), LinkPort::kNumber, {QStringLiteral("2"), QStringLiteral("why")}));
    const SetUp::Result result = SetUp::End(starter);
    QCOMPARE(result.exitCode, 3);
    QCOMPARE(run.Starts().size(), 1);
    const QString errorFile = run.Starts().constFirst().value(QLatin1String("errorFile")).toString();
    QCOMPARE(!errorFile.isEmpty(), hasReader);
    QVERIFY(!QFile::exists(errorFile));
    if (hasReader)
        QCOMPARE(result.error, QStringLiteral("kitestarter: %1 ended with exit code 2: why\n").arg(run.Program()));
}

void TestKiteStarter::missingHostIsReported()
{
    NEED_PORT();
    const SetUp setUp;
    COMPARE_COMPLAINT(setUp.Run({QStringLiteral("--host"), QStringLiteral("no such host")}), 2,
                      setUp.Path(QStringLiteral("no such host")));
}

void TestKiteStarter::foreignServiceIsReported()
{
    NEED_PORT();
    QTcpServer service;
    QVERIFY(service.listen(QHostAddress(QHostAddress::LocalHost), LinkPort::kNumber));
    connect(&service, &QTcpServer::newConnection, &service,
            [&] { service.nextPendingConnection()->write("220 hello\r\n"); });
    const SetUp setUp;
    const auto starter = setUp.Start(QStringList(QStringLiteral("--")) + setUp.HostArguments());
    QTRY_COMPARE_WITH_TIMEOUT(starter->state(), QProcess::NotRunning, 30'000);
    COMPARE_COMPLAINT(SetUp::End(*starter), 5, QStringLiteral("another program uses port %1").arg(LinkPort::kNumber));
    QVERIFY(!QFile::exists(setUp.Config()));
}

void TestKiteStarter::callOnlyStartsNothing()
{
    NEED_PORT();
    const SetUp setUp;
    const QStringList arguments =
        QStringList{QStringLiteral("--call-only"), QStringLiteral("--")} + setUp.HostArguments();
    COMPARE_COMPLAINT(setUp.Run(arguments), 6, QLatin1String("no connect dialog is running"));
    QVERIFY(!QFile::exists(setUp.Config()));
    COMPARE_CALLED(setUp.RunForHost());
    COMPARE_CALLED(setUp.Run(arguments));
    QTRY_COMPARE(setUp.Traced(kCalled), 2);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestKiteStarter)
#include "tst_kitestarter.moc"
