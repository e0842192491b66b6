// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/host/hostsetup.h"
#include "tests/support/testmain.h"
#include "tests/support/waitforend.h"

#include <QImage>
#include <QRegularExpression>

// vexelctl with a running host, which shows its dialog off screen.
class TestCtlHost : public QObject
{
    Q_OBJECT

private slots:
    void listShowsWhoServesAnEntry();
    void statusTellsOfTheHost();
    void statusWithoutAHost();
    void connectAndWait();
    void connectWithWait();
    void exitCodesCount();
    void waitWithoutUseEndsAtOnce();
    void watchPrintsChanges();
    void listsGoInAndOut();
    void changesAreRefusedWhileEntriesAreInUse();
    void screenshotOfTheHost();
    void showAndSave();
    void quitEndsTheHost();
    void quitIsRefusedWhileEntriesAreInUse();
    void commandsThatNeedAHostFailWithoutOne();
    void commandsThatNeedNoHostSucceedWithoutOne();
    void missingConfigurationIsAnError();
    void optionsOfASessionAreRefused();
    void vexelctlAtWorkAnswersOthers();
    void vexelctlAtWorkEndsWithTheLastApplication();
    void watchEndsWithItsReader();
    void watchEndsWithTheHost();
};

namespace {

/// A host with the list `names` and applications that run for `seconds`.
struct RunningHost : HostSetUp
{
    explicit RunningHost(const char* names, const char* seconds = "3600", int applications = 2)
    {
        Install(QDir().absoluteFilePath(QStringLiteral(PROGRAM_DIRECTORY "/kitecontrol")), applications);
        Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QString::fromLatin1(seconds));
        Fill(names);
        StartDialog(process);
    }
    ~RunningHost()
    {
        process.terminate();
        if (!WaitForEnd(process))
            qWarning("the host does not end");
    }
    Q_DISABLE_COPY_MOVE(RunningHost)

    QJsonObject Status() { return QJsonDocument::fromJson(Run("status --json").output.toUtf8()).object(); }

    QProcess process;
};

/// Without times and numbers of processes.
QStringList Changes(const QString& output)
{
    static const QRegularExpression time(QStringLiteral(R"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}[+-]\d\d:\d\d )"));
    static const QRegularExpression process(QStringLiteral("process \\d+"));
    QStringList changes;
    for (QString line : output.split(u'\n', Qt::SkipEmptyParts)) {
        if (!line.contains(time))
            changes.append(QStringLiteral("no time: "));
        changes.append(line.remove(time).replace(process, QStringLiteral("process")));
    }
    return changes;
}

const QString kStarted = QStringLiteral("mast: Free -> In Use (kitecontrol, process)");
const QString kEnded = QStringLiteral("mast: In Use -> Free (exit code 0)");

} // namespace

void TestCtlHost::listShowsWhoServesAnEntry()
{
    RunningHost host("mast pier");
    QVERIFY(!host.Run("list").OutputLines().constFirst().contains(QLatin1String("Process")));
    QCOMPARE(host.Run("connect mast").exitCode, 0);
    const QStringList lines = host.Run("list").OutputLines();
    QVERIFY2(lines.at(0).endsWith(QLatin1String("Program      Process")), qPrintable(lines.at(0)));
    QVERIFY2(lines.at(1).contains(QLatin1String("  kitecontrol  ")), qPrintable(lines.at(1)));
    const QJsonArray entries = host.Entries();
    QCOMPARE(entries.at(0)[QLatin1String("statusText")], QJsonValue(QStringLiteral("In Use")));
    QVERIFY(entries.at(0)[QLatin1String("process")].toInteger() > 0);
    QVERIFY(QDateTime::fromString(entries.at(0)[QLatin1String("since")].toString(), Qt::ISODateWithMs).isValid());
    QVERIFY(!entries.at(1).toObject().contains(QLatin1String("process")));
}

void TestCtlHost::statusTellsOfTheHost()
{
    RunningHost host("mast pier");
    QJsonObject status = host.Status();
    QCOMPARE(status[QLatin1String("running")], QJsonValue(true));
    QCOMPARE(status[QLatin1String("program")], QJsonValue(QStringLiteral("vexelhost")));
    QCOMPARE(status[QLatin1String("version")], QJsonValue(QStringLiteral(VEXEL_VERSION)));
    QCOMPARE(status[QLatin1String("process")], QJsonValue(host.process.processId()));
    QCOMPARE(status[QLatin1String("hidden")], QJsonValue(false));
    QCOMPARE(status[QLatin1String("entries")], QJsonValue(2));
    QCOMPARE(status[QLatin1String("inUse")].toArray().size(), 0);

    // "Connect" hides the dialog.
    QCOMPARE(host.Run("connect mast").exitCode, 0);
    status = host.Status();
    QCOMPARE(status[QLatin1String("hidden")], QJsonValue(true));
    QCOMPARE(status[QLatin1String("inUse")].toArray().size(), 1);
    const auto text = host.Run("status");
    QVERIFY2(text.output.contains(QStringLiteral("process %1, the dialog is hidden").arg(host.process.processId())),
             qPrintable(text.output));
    QVERIFY2(text.output.contains(QLatin1String("mast (kitecontrol, process ")), qPrintable(text.output));
}

void TestCtlHost::statusWithoutAHost()
{
    HostSetUp setUp;
    setUp.Fill("mast pier");
    const QJsonObject status = QJsonDocument::fromJson(setUp.Run("status --json").output.toUtf8()).object();
    QCOMPARE(status[QLatin1String("running")], QJsonValue(false));
    QCOMPARE(status[QLatin1String("entries")], QJsonValue(2));
    QVERIFY(!status.contains(QLatin1String("process")));
    QVERIFY(setUp.Run("status").output.contains(QLatin1String("not running")));
}

void TestCtlHost::connectAndWait()
{
    RunningHost host("mast", "1");
    const auto connected = host.Run("connect mast --screenshot connected.png");
    QCOMPARE(connected.error, QString());
    QCOMPARE(connected.output, QString());
    QCOMPARE(connected.exitCode, 0);
    QVERIFY(!QImage(host.Path("connected.png")).isNull());
    const auto waited = host.Run("wait --screenshot end.png");
    QCOMPARE(waited.error, QString());
    QCOMPARE(waited.exitCode, 0);
    QCOMPARE(Changes(waited.output), QStringList(kEnded));
    QVERIFY(!QImage(host.Path("end.png")).isNull());
}

void TestCtlHost::connectWithWait()
{
    RunningHost host("mast", "0.2");
    const auto result = host.Run("connect mast --wait --screenshot-during during.png --screenshot end.png");
    QCOMPARE(result.error, QString());
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(Changes(result.output), QStringList({kStarted, kEnded}));
    QVERIFY(!QImage(host.Path("during.png")).isNull());
    QVERIFY(!QImage(host.Path("end.png")).isNull());
    QTRY_COMPARE(host.Status()[QLatin1String("hidden")], QJsonValue(false));
    COMPARE_FAILURE(host.Run("connect nobody"), 3, QLatin1String("there is no entry called \"nobody\""));
}

void TestCtlHost::exitCodesCount()
{
    HostSetUp setUp;
    // It takes the application's arguments for a wrong command line, and ends at once.
    setUp.Install(QDir().absoluteFilePath(QStringLiteral(VEXELHOST)), 1);
    setUp.Fill("mast");
    QProcess host;
    setUp.StartDialog(host);
    const auto result = setUp.Run("connect mast --wait");
    QCOMPARE(result.exitCode, 3);
    QCOMPARE(Changes(result.output).constLast(), QStringLiteral("mast: In Use -> Free (exit code 1)"));
    QCOMPARE(setUp.Run("connect mast --wait --ignore-exit-codes").exitCode, 0);
    QCOMPARE(setUp.Run("quit").exitCode, 0);
    QVERIFY(WaitForEnd(host));
}

void TestCtlHost::waitWithoutUseEndsAtOnce()
{
    RunningHost host("mast");
    const auto result = host.Run("wait");
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.output, QString());
    COMPARE_FAILURE(host.Run("wait --screenshot no/such/a.png"), 2, QLatin1String("no/such/a.png"));
}

void TestCtlHost::watchPrintsChanges()
{
    RunningHost host("mast", "0.2");
    host.WriteList("more.xml", "pier");
    QProcess watch;
    host.Start(watch, "watch");
    QString output;
    const auto hasPrinted = [&](const QString& text) {
        output += QString::fromUtf8(watch.readAllStandardOutput());
        return output.contains(text);
    };
    // Changes before it is connected are not printed.
    QTRY_VERIFY(host.Run("add more.xml").exitCode == 0 && hasPrinted(QStringLiteral(" entries\n")));
    QCOMPARE(host.Run("connect mast").exitCode, 0);
    QTRY_VERIFY(hasPrinted(QStringLiteral("(exit code 0)\n")));
    QCOMPARE(Changes(output).mid(Changes(output).size() - 2), QStringList({kStarted, kEnded}));
    QVERIFY(System::AskToEnd(watch.processId()));
    const auto result = HostSetUp::End(watch);
    QCOMPARE(result.exitCode, 128 + 15);
    QCOMPARE(result.error, QString());
}

void TestCtlHost::listsGoInAndOut()
{
    RunningHost host("old");
    host.WriteList("new.xml", "b a", "a");
    QCOMPARE(host.Run("import new.xml").exitCode, 0);
    QCOMPARE(host.Names(), Words("b a"));
    QCOMPARE(host.Run("add new.xml new.xml").exitCode, 0);
    QCOMPARE(host.Names(), Words("b a b a b a"));
    QCOMPARE(host.Run("export out.xml").exitCode, 0);
    // The same errors as without a host.
    host.Write(host.Path("bad.xml"), "hello");
    COMPARE_FAILURE(host.Run("add new.xml bad.xml"), 2, host.Path("bad.xml"));
    QCOMPARE(host.Names().size(), 6);
    QCOMPARE(host.Run("quit").exitCode, 0);
    // It has been saved, and the file holds the same.
    const QJsonArray stored = host.Entries();
    QCOMPARE(stored.size(), 6);
    QCOMPARE(host.Run("import out.xml").exitCode, 0);
    QCOMPARE(host.Entries(), stored);
}

void TestCtlHost::changesAreRefusedWhileEntriesAreInUse()
{
    RunningHost host("mast");
    host.WriteList("new.xml", "new");
    QCOMPARE(host.Run("import new.xml").exitCode, 0);
    QCOMPARE(host.Run("connect new").exitCode, 0);
    for (const char* arguments : {"import new.xml", "add new.xml", "restore 1"})
        COMPARE_FAILURE(host.Run(arguments), 4, QLatin1String("1 entry is in use"));
    QCOMPARE(host.Names(), Words("new"));
    QCOMPARE(host.Run("export -").exitCode, 0);
}

void TestCtlHost::screenshotOfTheHost()
{
    RunningHost host("mast");
    QCOMPARE(host.Run("screenshot a.png").error, QString());
    QVERIFY(!QImage(host.Path("a.png")).isNull());
    COMPARE_FAILURE(host.Run("screenshot no/such/folder/a.png"), 2, QLatin1String("no/such/folder/a.png"));
}

void TestCtlHost::showAndSave()
{
    RunningHost host("mast", "3600");
    QCOMPARE(host.Run("connect mast").exitCode, 0);
    QCOMPARE(host.Status()[QLatin1String("hidden")], QJsonValue(true));
    QCOMPARE(host.Run("show").exitCode, 0);
    QCOMPARE(host.Status()[QLatin1String("hidden")], QJsonValue(false));
    QCOMPARE(host.Run("save").exitCode, 0);
}

void TestCtlHost::quitEndsTheHost()
{
    RunningHost host("mast");
    const auto result = host.Run("quit");
    QCOMPARE(result.error, QString());
    QCOMPARE(result.exitCode, 0);
    // The configuration is free as soon as the command has returned.
    QCOMPARE(host.Run("save").exitCode, 0);
    QVERIFY(!QFileInfo::exists(host.Config() + QStringLiteral("/vexelhost.lock")));
    QVERIFY(WaitForEnd(host.process));
    QCOMPARE(host.process.exitCode(), 0);
}

void TestCtlHost::quitIsRefusedWhileEntriesAreInUse()
{
    RunningHost host("mast pier");
    QCOMPARE(host.Run("connect mast pier").exitCode, 0);
    COMPARE_FAILURE(host.Run("quit"), 4, QLatin1String("2 entries are in use"));
    QCOMPARE(host.process.state(), QProcess::Running);
    QCOMPARE(host.Run("quit --force").exitCode, 0);
    QVERIFY(WaitForEnd(host.process));
}

void TestCtlHost::commandsThatNeedAHostFailWithoutOne()
{
    HostSetUp setUp;
    setUp.Fill("mast");
    for (const char* command : {"show", "watch"})
        COMPARE_FAILURE(setUp.Run(command), 4, QLatin1String("no host runs"));
}

void TestCtlHost::commandsThatNeedNoHostSucceedWithoutOne()
{
    HostSetUp setUp;
    setUp.Fill("mast");
    for (const char* command : {"wait", "save", "quit"}) {
        const auto result = setUp.Run(command);
        QCOMPARE(result.error, QString());
        QCOMPARE(result.exitCode, 0);
    }
}

void TestCtlHost::missingConfigurationIsAnError()
{
    HostSetUp setUp;
    for (const char* command : {"show", "watch", "wait", "save", "quit", "connect mast"})
        COMPARE_FAILURE(setUp.Run(command), 2, QLatin1String("no configuration directory"));
    QVERIFY(!QFileInfo::exists(setUp.Config()));
}

void TestCtlHost::optionsOfASessionAreRefused()
{
    RunningHost host("mast");
    host.WriteList("new.xml", "new");
    const QString number = QStringLiteral("process %1").arg(host.process.processId());
    for (const char* arguments :
         {"add new.xml --data data", "import new.xml --data data", "connect mast --data data",
          "connect mast --name Second", "connect mast --plugin p.so", "screenshot a.png --data data"})
        COMPARE_FAILURE(host.Run(arguments), 4, number);
    QCOMPARE(host.Names(), Words("mast"));
}

void TestCtlHost::vexelctlAtWorkAnswersOthers()
{
    HostSetUp setUp;
    setUp.Install(QDir().absoluteFilePath(QStringLiteral(PROGRAM_DIRECTORY "/kitecontrol")), 1);
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("3600"));
    setUp.Fill("mast");
    QProcess connecting;
    setUp.Start(connecting, "connect mast");
    QTRY_VERIFY(connecting.peek(1000).contains("mast: Free -> In Use "));
    const QJsonObject status = QJsonDocument::fromJson(setUp.Run("status --json").output.toUtf8()).object();
    QCOMPARE(status[QLatin1String("program")], QJsonValue(QStringLiteral("vexelctl")));
    QCOMPARE(status[QLatin1String("inUse")].toArray().size(), 1);
    QCOMPARE(setUp.Run("show").exitCode, 4);
    COMPARE_FAILURE(setUp.Run("quit"), 4, QLatin1String("1 entry is in use"));
    QCOMPARE(setUp.Run("quit --force").exitCode, 0);
    QCOMPARE(HostSetUp::End(connecting).exitCode, 4);
}

// Of its own or of others.
void TestCtlHost::vexelctlAtWorkEndsWithTheLastApplication()
{
    HostSetUp setUp;
    setUp.Install(QDir().absoluteFilePath(QStringLiteral(PROGRAM_DIRECTORY "/kitecontrol")), 2);
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("3600"));
    setUp.Fill("mast pier");
    QProcess first;
    setUp.Start(first, "connect mast");
    QTRY_VERIFY(first.peek(1000).contains("mast: Free -> In Use "));
    QProcess second;
    setUp.Start(second, "connect pier");
    QTRY_VERIFY(second.peek(1000).contains("pier: Free -> In Use "));
    QVERIFY(second.readAllStandardError().contains("no host runs but another vexelctl"));
    QList<qint64> processes;
    for (const QJsonValue& entry : setUp.Entries())
        processes.append(entry[QLatin1String("process")].toInteger());
    QVERIFY(System::Crash(processes.at(0)));
    QTRY_VERIFY(first.peek(1000).contains("mast: In Use -> Free "));
    QCOMPARE(setUp.Run("status").exitCode, 0);
    QCOMPARE(first.state(), QProcess::Running);
    QVERIFY(System::Crash(processes.at(1)));
    const auto connected = HostSetUp::End(second);
    QVERIFY2(connected.output.contains(QStringLiteral("pier: In Use -> Free ")), qPrintable(connected.error));
    QCOMPARE(connected.exitCode, 3);
    QCOMPARE(HostSetUp::End(first).exitCode, 3);
}

void TestCtlHost::watchEndsWithItsReader()
{
#ifdef Q_OS_UNIX
    RunningHost host("mast");
    QProcess shell;
    shell.setProcessEnvironment(host.Environment());
    shell.start(QStringLiteral("/bin/bash"),
                {QStringLiteral("-c"), QStringLiteral("\"$0\" watch --config \"$1\" | true; echo ${PIPESTATUS[0]}"),
                 QStringLiteral(VEXELCTL), host.Config()});
    QVERIFY(WaitForEnd(shell));
    QCOMPARE(shell.readAllStandardOutput(), QByteArray("2\n"));
#else
    QSKIP("Windows does not tell whether a pipe has a reader");
#endif
}

void TestCtlHost::watchEndsWithTheHost()
{
    RunningHost host("mast");
    host.WriteList("new.xml", "new");
    QProcess watching;
    host.Start(watching, "watch");
    // Changes before it is connected are not told.
    QTRY_VERIFY((host.Run("import new.xml"), watching.peek(1000).contains("1 entry")));
    QCOMPARE(host.Run("quit").exitCode, 0);
    const auto result = HostSetUp::End(watching);
    QCOMPARE(result.exitCode, 4);
    QCOMPARE(result.error, QStringLiteral("vexelctl: the running host has ended\n"));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCtlHost)
#include "tst_ctlhost.moc"
