// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/output/starterrorfile.h"
#include "tests/starter/startedhost.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QTcpServer>
#include <QTcpSocket>

#include <cstdio>
#include <memory>

class TestHostProcess : public QObject
{
    Q_OBJECT

private slots:
    void argumentsArriveUnchanged();
    void directoryAndEnvironmentAreKept();
    void errorFileIsPassed();
    void nothingElseIsInherited();
    void exitCode_data();
    void exitCode();
    void crash();
    void unusableProgramIsReported_data();
    void unusableProgramIsReported();
    void outlivesItsObject();
    void notStarted();
};

void TestHostProcess::argumentsArriveUnchanged()
{
    const QStringList arguments{QStringLiteral("--config"),
                                QStringLiteral("a folder with spaces"),
                                QString(),
                                QStringLiteral("\"quoted\" 'twice'"),
                                QStringLiteral("back\\slash\\"),
                                QStringLiteral("two\nlines\tand a tab "),
                                QStringLiteral("$HOME `id` $(id) ; | & * ? ~ %PATH%"),
                                QStringLiteral("\u00fc\u4e2d\u6587 \u0441\u0432\u044f\u0437\u044c \U0001F4E1"),
                                QStringLiteral("--")};
    const FakeHostRun run;
    HostProcess process;
    const QJsonObject start = Started(process, run, run.Arguments(QStringLiteral("hang"), 1, arguments));
    QCOMPARE(start.value(QLatin1String("arguments")).toArray(), QJsonArray::fromStringList(arguments));
    QCOMPARE(start.value(QLatin1String("process")).toInt(), process.Id());
}

void TestHostProcess::directoryAndEnvironmentAreKept()
{
    const FakeHostRun run;
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(QDir::rootPath()));
    qputenv("FAKEHOST_VARIABLE", "a value; $HOME");
    HostProcess process;
    const QJsonObject start = Started(process, run, run.Arguments(QStringLiteral("hang"), 1));
    qunsetenv("FAKEHOST_VARIABLE");
    QVERIFY(QDir::setCurrent(before));
    QCOMPARE(start.value(QLatin1String("directory")).toString(), QDir::rootPath());
    QCOMPARE(start.value(QLatin1String("variable")).toString(), QStringLiteral("a value; $HOME"));
}

void TestHostProcess::errorFileIsPassed()
{
    const FakeHostRun run;
    const QString errorFile = QStringLiteral("/a b/\u00fc=\u5317 \u0441\u0432\u044f\u0437\u044c");
    qputenv(kStartErrorFileVariable, "of this process");
    HostProcess process;
    const QJsonObject start = Started(process, run, run.Arguments(QStringLiteral("hang"), 1), errorFile);
    const QByteArray after = qgetenv(kStartErrorFileVariable);
    qunsetenv(kStartErrorFileVariable);
    QCOMPARE(start.value(QLatin1String("errorFile")).toString(), errorFile);
    QCOMPARE(after, QByteArray("of this process"));

    const FakeHostRun without;
    HostProcess another;
    const QJsonObject startWithout = Started(another, without, without.Arguments(QStringLiteral("hang"), 1));
    QCOMPARE(startWithout.value(QLatin1String("errorFile")).toString(), QString());
}

void TestHostProcess::nothingElseIsInherited()
{
    // What this test was handed by others, as the pipe that is its output under ctest, and what it has opened in such a
    // way that whoever it starts gets it.
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> handed(std::fopen(VEXEL_FAKEHOST, "rb"), &std::fclose);
    QVERIFY(handed);
    const FakeHostRun run;
    HostProcess process;
    const QJsonObject start = Started(process, run, run.Arguments(QStringLiteral("hang"), 1));
    QCOMPARE(start.value(QLatin1String("inherited")).toArray(), QJsonArray());
    const QString nothing = QStringLiteral("nothing");
    QCOMPARE(start.value(QLatin1String("streams")).toArray(), (QJsonArray{nothing, nothing, nothing}));
}

void TestHostProcess::exitCode_data()
{
    QTest::addColumn<int>("code");
    for (const int code : {0, 1, 4, 255})
        QTest::addRow("%d", code) << code;
#ifdef Q_OS_WIN
    // No exceptions, though they look much like those there.
    for (const int code : {-1, -255, 259})
        QTest::addRow("%d", code) << code;
#endif
}

void TestHostProcess::exitCode()
{
    QFETCH(const int, code);
    const FakeHostRun run;
    HostProcess process;
    QCOMPARE(process.Start(FakeHostRun::Program(), run.Arguments(QString::number(code), 1)), QString());
    QVERIFY(process.Id() > 0);
    QTRY_VERIFY_WITH_TIMEOUT(process.Poll(), 20'000);
    QCOMPARE(process.Poll()->crash, QString());
    QCOMPARE(process.Poll()->exitCode, code);
}

void TestHostProcess::crash()
{
    const FakeHostRun run;
    HostProcess process;
    QCOMPARE(process.Start(FakeHostRun::Program(), run.Arguments(QStringLiteral("crash"), 1)), QString());
    QTRY_VERIFY_WITH_TIMEOUT(process.Poll(), 20'000);
#ifdef Q_OS_WIN
    // There the C run time makes an exit code of it.
    QVERIFY(process.Poll()->exitCode != 0 || !process.Poll()->crash.isEmpty());
    // Exit codes of an access violation and of an uncaught C++ exception.
    for (const quint32 code : {0xC0000005, 0xE06D7363}) {
        const FakeHostRun another;
        HostProcess broken;
        const QString mode = QString::number(static_cast<qint32>(code));
        QCOMPARE(broken.Start(FakeHostRun::Program(), another.Arguments(mode, 1)), QString());
        QTRY_VERIFY_WITH_TIMEOUT(broken.Poll(), 20'000);
        QCOMPARE(broken.Poll()->crash, QStringLiteral("exception %1").arg(code, 8, 16, QLatin1Char('0')));
    }
#else
    QCOMPARE(process.Poll()->crash, QStringLiteral("signal 6"));
#endif
}

void TestHostProcess::unusableProgramIsReported_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : {"missing", "directory", "not a program"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
#ifdef Q_OS_UNIX
    // A shell would run this one.
    QTest::newRow("not executable") << QStringLiteral("not executable");
    QTest::newRow("text") << QStringLiteral("text");
#endif
}

void TestHostProcess::unusableProgramIsReported()
{
    QFETCH(const QString, kind);
    const QTemporaryDir directory;
    const QString name = directory.filePath(QStringLiteral("host.exe"));
    if (kind == QLatin1String("directory"))
        QVERIFY(QDir().mkdir(name));
    else if (kind != QLatin1String("missing")) {
        QFile file(name);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(kind == QLatin1String("text") ? "exit 0\n" : QByteArray(1000, '\1').constData());
        if (kind != QLatin1String("not executable"))
            QVERIFY(file.setPermissions(file.permissions() | QFile::ExeOwner | QFile::ExeUser));
    }
    HostProcess process;
    const QString error = process.Start(name, {QStringLiteral("x")});
    QVERIFY(!error.isEmpty());
    QVERIFY(!error.contains(u'\n'));
    QVERIFY(!process.Poll());
    QCOMPARE(process.Id(), 0);
}

void TestHostProcess::outlivesItsObject()
{
    const FakeHostRun run;
    // A call of its port shows whether the host runs.
    QTcpServer free;
    QVERIFY(free.listen(QHostAddress(QHostAddress::LocalHost)));
    const quint16 port = free.serverPort();
    free.close();
    {
        HostProcess process;
        (void)Started(process, run, run.Arguments(QStringLiteral("answer"), port));
    }
    QTcpSocket caller;
    QTRY_VERIFY_WITH_TIMEOUT(
        (caller.abort(), caller.connectToHost(QHostAddress::LocalHost, port), caller.waitForConnected()), 20'000);
    run.End();
    QTRY_COMPARE(caller.state(), QAbstractSocket::UnconnectedState);
}

void TestHostProcess::notStarted()
{
    HostProcess process;
    QVERIFY(!process.Poll());
    QCOMPARE(process.Id(), 0);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestHostProcess)
#include "tst_hostprocess.moc"
