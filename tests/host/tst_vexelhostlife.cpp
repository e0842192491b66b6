#include "tests/host/hostsetup.h"
#include "tests/support/testmain.h"

// Several hosts on one configuration directory, and the trace file of the host.
class TestVexelHostLife : public QObject
{
    Q_OBJECT

private slots:
    void secondHostIsRefused_data();
    void secondHostIsRefused();
    void hostStartsAfterAKilledOne();
    void failedTraceFileRenameIsReportedOnce();
};

void TestVexelHostLife::secondHostIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("with a dialog") << QStringList();
    QTest::newRow("that would change the list")
        << QStringList{QStringLiteral("--add"), QStringLiteral(PROGRAM_DIRECTORY "/../share/vexel/connections.xml")};
    QTest::newRow("that would change the data directory") << Words("--data .");
}

void TestVexelHostLife::secondHostIsRefused()
{
    QFETCH(const QStringList, arguments);
    HostSetUp setUp;
    setUp.Fill("one");
    QProcess first;
    setUp.StartDialog(first);
    const QByteArray before = setUp.StoredText();

    const auto second = setUp.Run(arguments);
    QCOMPARE(second.exitCode, 4);
    QCOMPARE(second.output, QString());
    // Qt may have its say about the offscreen platform besides.
    const QStringList lines = second.ErrorLines().filter(QStringLiteral("vexelhost: "));
    QCOMPARE(lines.size(), 1);
    for (const QString& part : {QStringLiteral("vexelhost: "), QString::number(first.processId()),
                                QDir::toNativeSeparators(setUp.Config()), QStringLiteral("kitestarter")})
        QVERIFY2(lines.first().contains(part), qPrintable(second.error));
    QCOMPARE(setUp.StoredText(), before);

    first.terminate();
    QCOMPARE(HostSetUp::End(first).exitCode, 0);
    QCOMPARE(setUp.Names(), Words("one"));
}

void TestVexelHostLife::hostStartsAfterAKilledOne()
{
    HostSetUp setUp;
    setUp.Fill("one");
    QProcess first;
    setUp.StartDialog(first);
    first.kill();
    HostSetUp::End(first);
    const auto next = setUp.Run("--list");
    QCOMPARE(next.exitCode, 0);
    QCOMPARE(next.error, QString());
    QCOMPARE(setUp.Names(), Words("one"));
}

void TestVexelHostLife::failedTraceFileRenameIsReportedOnce()
{
    HostSetUp setUp;
    constexpr qint64 full = 10LL * 1024 * 1024;
    setUp.Write(setUp.Path("trace.log"), QByteArray(full, '\n'));
    QVERIFY(QDir().mkdir(setUp.Path("trace.log.1")));
    const auto result = setUp.Run("--data data --list --trace-file trace.log");
    COMPARE_NOTICE(result, QDir::toNativeSeparators(setUp.Path("trace.log.1")));
    QVERIFY(QFileInfo(setUp.Path("trace.log")).size() > full);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelHostLife)
#include "tst_vexelhostlife.moc"
