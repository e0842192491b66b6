#include "tests/host/hostsetup.h"
#include "tests/support/testmain.h"

// The host's executable beside others of its kind: who may work on a configuration directory, and what it says when it
// finds one that others have left in disorder.
class TestVexelHostLife : public QObject
{
    Q_OBJECT

private slots:
    void aSecondHostIsRefused_data();
    void aSecondHostIsRefused();
    void aKilledHostIsSucceeded();
    void aDamagedConfigurationIsTold();
    void aFullTraceFileIsPutAside();
    void aTraceFileThatCannotBePutAsideIsToldOnce();

private:
    /// Starts a host with its dialog, and waits until it is there.
    static void StartDialog(HostSetUp& setUp, QProcess& process)
    {
        setUp.Environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        setUp.Start(process, {QStringLiteral("--data"), setUp.Data(), QStringLiteral("--trace")});
        QByteArray said;
        QTRY_VERIFY((said += process.readAllStandardError()).contains("UpdateTypeDeviceMappings"));
    }
    static qint64 FillUp(const QString& fileName)
    {
        QFile file(fileName);
        return file.open(QIODevice::WriteOnly) && file.resize(10 * 1024 * 1024) ? file.size() : -1;
    }
};

void TestVexelHostLife::aSecondHostIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("with a dialog") << QStringList();
    QTest::newRow("headless") << QStringList{QStringLiteral("--list")};
    QTest::newRow("that would change the list")
        << QStringList{QStringLiteral("--add"), QStringLiteral(PROGRAM_DIRECTORY "/../share/vexel/connections.xml")};
    QTest::newRow("that would change the data directory") << QStringList{QStringLiteral("--data"), QStringLiteral(".")};
}

void TestVexelHostLife::aSecondHostIsRefused()
{
    QFETCH(const QStringList, arguments);
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("one")});
    QProcess first;
    StartDialog(setUp, first);
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
    QCOMPARE(setUp.Names(), QStringList{QStringLiteral("one")});
}

void TestVexelHostLife::aKilledHostIsSucceeded()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("one")});
    QProcess first;
    StartDialog(setUp, first);
    first.kill();
    HostSetUp::End(first);
    const auto next = setUp.Run({QStringLiteral("--list")});
    QCOMPARE(next.exitCode, 0);
    QCOMPARE(next.error, QString());
    QCOMPARE(setUp.Names(), QStringList{QStringLiteral("one")});
}

void TestVexelHostLife::aDamagedConfigurationIsTold()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("one")});
    setUp.Fill({QStringLiteral("two")});
    const QString document = setUp.Config() + QStringLiteral("/application/@application.json");
    QVERIFY(QFileInfo(document).size() > 0);
    setUp.Write(document, QByteArray(1000, '\0'));

    const auto result = setUp.Run({QStringLiteral("--list")});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.ErrorLines().size(), 1);
    QVERIFY2(result.error.startsWith(QLatin1String("vexelhost: ")) && result.error.contains(QLatin1String("damaged")),
             qPrintable(result.error));
    // The version before the last change.
    QCOMPARE(result.OutputLines().size(), 2);
    QVERIFY(result.OutputLines().constLast().startsWith(QLatin1String("one ")));
    // Said once, and mended.
    QCOMPARE(setUp.Run({QStringLiteral("--list")}).error, QString());
}

void TestVexelHostLife::aFullTraceFileIsPutAside()
{
    HostSetUp setUp;
    const QString fileName = setUp.Path("trace.log");
    const qint64 size = FillUp(fileName);
    QVERIFY(size > 0);
    const auto result = setUp.Run(
        {QStringLiteral("--data"), setUp.Data(), QStringLiteral("--list"), QStringLiteral("--trace-file"), fileName});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.error, QString());
    QCOMPARE(QFileInfo(fileName + QStringLiteral(".1")).size(), size);
    QVERIFY(QFileInfo(fileName).size() > 0 && QFileInfo(fileName).size() < 100'000);
}

void TestVexelHostLife::aTraceFileThatCannotBePutAsideIsToldOnce()
{
    HostSetUp setUp;
    const QString fileName = setUp.Path("trace.log");
    const qint64 size = FillUp(fileName);
    QVERIFY(size > 0);
    QVERIFY(QDir().mkdir(fileName + QStringLiteral(".1")));
    const auto result = setUp.Run(
        {QStringLiteral("--data"), setUp.Data(), QStringLiteral("--list"), QStringLiteral("--trace-file"), fileName});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.ErrorLines().size(), 1);
    QVERIFY2(result.error.contains(QDir::toNativeSeparators(fileName) + QStringLiteral(".1")),
             qPrintable(result.error));
    QVERIFY(QFileInfo(fileName).size() > size);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelHostLife)
#include "tst_vexelhostlife.moc"
