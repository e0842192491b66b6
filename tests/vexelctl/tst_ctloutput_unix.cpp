// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/host/hostsetup.h"
#include "tests/support/system/brokenoutput_unix.h"
#include "tests/support/testmain.h"

#include <QFileInfo>

/// vexelctl with outputs that cannot be written.
class TestCtlOutputUnix : public QObject
{
    Q_OBJECT

private slots:
    void unwritableOutputFails_data();
    void unwritableOutputFails();
    void restoreIsDoneWithoutAReader_data();
    void restoreIsDoneWithoutAReader();
    void unwritableOutputDoesNotStopTheWork_data();
    void unwritableOutputDoesNotStopTheWork();
    void watchEndsWithItsReader_data();
    void watchEndsWithItsReader();
    void unwritableErrorOutputKeepsTheExitCode_data();
    void unwritableErrorOutputKeepsTheExitCode();
    void closedStreamsBecomeNoFiles_data();
    void closedStreamsBecomeNoFiles();
};

void TestCtlOutputUnix::unwritableOutputFails_data()
{
    AddBrokenOutputs({Words("export -"), Words("list"), Words("list --json"), Words("status"), Words("status --json"),
                      Words("backups"), Words("backups --json"), Words("restore 1 --dry-run"), Words("diagnose"),
                      Words("diagnose --json"), Words("screenshot -"), Words("--help"), Words("list --help"),
                      Words("--version")});
}

void TestCtlOutputUnix::unwritableOutputFails()
{
    QFETCH(const BrokenOutput::Kind, kind);
    QFETCH(const QStringList, arguments);
    const BrokenOutput output(kind);
    HostSetUp setUp;
    setUp.Fill("one");
    setUp.Fill("two");
    const QByteArray stored = setUp.StoredText();
    QProcess process;
    output.Give(process, STDOUT_FILENO);
    setUp.Start(process, arguments);
    const auto result = HostSetUp::End(process);
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(result.error, QStringLiteral("vexelctl: cannot write everything to standard output\n"));
    QCOMPARE(setUp.StoredText(), stored);
}

void TestCtlOutputUnix::restoreIsDoneWithoutAReader_data()
{
    AddBrokenOutputs({Words("restore 1")});
}

void TestCtlOutputUnix::restoreIsDoneWithoutAReader()
{
    QFETCH(const BrokenOutput::Kind, kind);
    QFETCH(const QStringList, arguments);
    const BrokenOutput output(kind);
    HostSetUp setUp;
    setUp.Fill("one");
    setUp.Fill("two");
    QProcess process;
    output.Give(process, STDOUT_FILENO);
    setUp.Start(process, arguments);
    const auto result = HostSetUp::End(process);
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(result.error, QStringLiteral("vexelctl: cannot write everything to standard output\n"));
    QVERIFY(!QFileInfo::exists(setUp.Config() + QStringLiteral("/vexelhost.lock")));
    QCOMPARE(setUp.Names(), Words("one"));
}

void TestCtlOutputUnix::unwritableOutputDoesNotStopTheWork_data()
{
    AddBrokenOutputs({Words("connect mast"), Words("connect mast --json"), Words("wait"), Words("wait --json")});
}

// The command still waits for the applications, although nobody reads its lines.
void TestCtlOutputUnix::unwritableOutputDoesNotStopTheWork()
{
    QFETCH(const BrokenOutput::Kind, kind);
    QFETCH(const QStringList, arguments);
    const BrokenOutput output(kind);
    HostSetUp setUp;
    setUp.Install(QDir().absoluteFilePath(QStringLiteral(PROGRAM_DIRECTORY "/kitecontrol")), 1);
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("0.5"));
    setUp.Environment().insert(QStringLiteral("KITECONTROL_REPORT_DIR"), setUp.Path("."));
    setUp.Fill("mast");
    QProcess host;
    const bool needsHost = arguments.constFirst() == QLatin1String("wait");
    if (needsHost) {
        setUp.StartDialog(host);
        QCOMPARE(setUp.Run("connect mast").exitCode, 0);
    }
    QProcess process;
    output.Give(process, STDOUT_FILENO);
    setUp.Start(process, arguments);
    const auto result = HostSetUp::End(process);
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(result.ErrorLines().filter(QStringLiteral("cannot write everything to standard output")).size(), 1);
    // The application has come to its own end.
    QCOMPARE(QDir(setUp.Path(".")).entryList({QStringLiteral("*.txt")}).size(), 1);
    if (needsHost) {
        QVERIFY(setUp.Run("status --json").output.contains(QLatin1String("\"inUse\": [\n    ]")));
        host.terminate();
        QVERIFY(host.waitForFinished());
    }
}

void TestCtlOutputUnix::watchEndsWithItsReader_data()
{
    AddBrokenOutputs({Words("watch"), Words("watch --json")});
}

void TestCtlOutputUnix::watchEndsWithItsReader()
{
    QFETCH(const BrokenOutput::Kind, kind);
    QFETCH(const QStringList, arguments);
    const BrokenOutput output(kind);
    HostSetUp setUp;
    setUp.Fill("one");
    setUp.WriteList("more.xml", "more");
    QProcess host;
    setUp.StartDialog(host);
    QProcess watch;
    output.Give(watch, STDOUT_FILENO);
    setUp.Start(watch, arguments);
    // It ends with the first line that it cannot write.
    QTRY_VERIFY(setUp.Run("add more.xml").exitCode == 0 && watch.state() == QProcess::NotRunning);
    const auto result = HostSetUp::End(watch);
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(result.error, QStringLiteral("vexelctl: cannot write everything to standard output\n"));
    host.terminate();
    QVERIFY(host.waitForFinished());
}

void TestCtlOutputUnix::unwritableErrorOutputKeepsTheExitCode_data()
{
    AddBrokenOutputs({Words("no-such-command"), Words("restore 7")});
}

void TestCtlOutputUnix::unwritableErrorOutputKeepsTheExitCode()
{
    QFETCH(const BrokenOutput::Kind, kind);
    QFETCH(const QStringList, arguments);
    const BrokenOutput errors(kind);
    HostSetUp setUp;
    setUp.Fill("one");
    QProcess process;
    errors.Give(process, STDERR_FILENO);
    setUp.Start(process, arguments);
    QCOMPARE(HostSetUp::End(process).exitCode, 1);
}

void TestCtlOutputUnix::closedStreamsBecomeNoFiles_data()
{
    QTest::addColumn<QList<int>>("closed");
    QTest::newRow("output") << QList<int>{STDOUT_FILENO};
    QTest::newRow("errors") << QList<int>{STDERR_FILENO};
    QTest::newRow("output and errors") << QList<int>{STDOUT_FILENO, STDERR_FILENO};
    QTest::newRow("all") << QList<int>{STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO};
}

void TestCtlOutputUnix::closedStreamsBecomeNoFiles()
{
    QFETCH(const QList<int>, closed);
    HostSetUp setUp;
    setUp.Fill("one");
    const QByteArray stored = setUp.StoredText();
    QProcess process;
    process.setChildProcessModifier([&closed] {
        for (const int stream : closed)
            ::close(stream);
    });
    setUp.Start(process, "screenshot - --trace --trace-file trace.log");
    QCOMPARE(HostSetUp::End(process).exitCode, closed.contains(STDOUT_FILENO) ? 2 : 0);
    QCOMPARE(setUp.StoredText(), stored);
    QFile traces(setUp.Path("trace.log"));
    QVERIFY(traces.open(QIODevice::ReadOnly));
    QList<QByteArray> lines = traces.readAll().split('\n');
    QCOMPARE(lines.takeLast(), QByteArray());
    QVERIFY(!lines.isEmpty());
    for (const QByteArray& line : std::as_const(lines)) {
        QVERIFY2(line.contains(" trace "), line.constData());
        QCOMPARE(lines.count(line), 1);
    }
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCtlOutputUnix)
#include "tst_ctloutput_unix.moc"
