#include "tests/host/hostsetup.h"
#include "tests/support/brokenoutput_unix.h"
#include "tests/support/testmain.h"

#include <QFileInfo>

/// The executable of the host with outputs that cannot be written.
class TestVexelHostOutputUnix : public QObject
{
    Q_OBJECT

private slots:
    void unwritableOutputFails_data();
    void unwritableOutputFails();
    void restoreSucceedsWithoutAReader_data();
    void restoreSucceedsWithoutAReader();
    void unwritableErrorOutputKeepsTheExitCode_data();
    void unwritableErrorOutputKeepsTheExitCode();
    void closedStreamsBecomeNoFiles_data();
    void closedStreamsBecomeNoFiles();
};

void TestVexelHostOutputUnix::unwritableOutputFails_data()
{
    AddBrokenOutputs({{QStringLiteral("--export=-")},
                      {QStringLiteral("--list")},
                      {QStringLiteral("--list"), QStringLiteral("--json")},
                      {QStringLiteral("--backups")},
                      {QStringLiteral("--backups"), QStringLiteral("--json")},
                      {QStringLiteral("--diagnose")},
                      {QStringLiteral("--diagnose"), QStringLiteral("--json")},
                      {QStringLiteral("--help")},
                      {QStringLiteral("--version")}});
}

void TestVexelHostOutputUnix::unwritableOutputFails()
{
    QFETCH(const BrokenOutput::Kind, kind);
    QFETCH(const QStringList, arguments);
    const BrokenOutput output(kind);
    HostSetUp setUp;
    setUp.Fill("one");
    const QByteArray stored = setUp.StoredText();
    QProcess host;
    output.Give(host, STDOUT_FILENO);
    setUp.Start(host, arguments);
    const auto result = HostSetUp::End(host);
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(result.error, QStringLiteral("vexelhost: cannot write everything to standard output\n"));
    QCOMPARE(setUp.StoredText(), stored);
}

void TestVexelHostOutputUnix::restoreSucceedsWithoutAReader_data()
{
    AddBrokenOutputs({{QStringLiteral("--restore=1")}});
}

void TestVexelHostOutputUnix::restoreSucceedsWithoutAReader()
{
    QFETCH(const BrokenOutput::Kind, kind);
    QFETCH(const QStringList, arguments);
    const BrokenOutput output(kind);
    HostSetUp setUp;
    setUp.Fill("one");
    setUp.Fill("two");
    QProcess host;
    output.Give(host, STDOUT_FILENO);
    setUp.Start(host, arguments);
    const auto result = HostSetUp::End(host);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.error, QString());
    QVERIFY(!QFileInfo::exists(setUp.Config() + QStringLiteral("/vexelhost.lock")));
    QCOMPARE(setUp.Names(), Words("one"));
}

void TestVexelHostOutputUnix::unwritableErrorOutputKeepsTheExitCode_data()
{
    AddBrokenOutputs({{QStringLiteral("--no-such-option")}, {QStringLiteral("--restore=7")}});
}

void TestVexelHostOutputUnix::unwritableErrorOutputKeepsTheExitCode()
{
    QFETCH(const BrokenOutput::Kind, kind);
    QFETCH(const QStringList, arguments);
    const BrokenOutput errors(kind);
    HostSetUp setUp;
    setUp.Fill("one");
    QProcess host;
    errors.Give(host, STDERR_FILENO);
    setUp.Start(host, arguments);
    QCOMPARE(HostSetUp::End(host).exitCode, 1);
}

void TestVexelHostOutputUnix::closedStreamsBecomeNoFiles_data()
{
    QTest::addColumn<QList<int>>("closed");
    QTest::newRow("output") << QList<int>{STDOUT_FILENO};
    QTest::newRow("errors") << QList<int>{STDERR_FILENO};
    QTest::newRow("output and errors") << QList<int>{STDOUT_FILENO, STDERR_FILENO};
    QTest::newRow("all") << QList<int>{STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO};
}

void TestVexelHostOutputUnix::closedStreamsBecomeNoFiles()
{
    QFETCH(const QList<int>, closed);
    HostSetUp setUp;
    setUp.Fill("one");
    const QByteArray stored = setUp.StoredText();
    QProcess host;
    host.setChildProcessModifier([&closed] {
        for (const int stream : closed)
            ::close(stream);
    });
    setUp.Start(host, "--list --trace --trace-file trace.log");
    QCOMPARE(HostSetUp::End(host).exitCode, closed.contains(STDOUT_FILENO) ? 1 : 0);
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

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelHostOutputUnix)
#include "tst_vexelhostoutput_unix.moc"
