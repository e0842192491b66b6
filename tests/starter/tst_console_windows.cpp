// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/starter/fakehostrun.h"
#include "tests/support/system/pseudoconsole_windows.h"
#include "tests/support/testmain.h"
#include "tests/support/waitforend.h"

#include <QProcess>

/// Host and starter, which are windowed programs, where they are started from a console, and where they print to.
class TestConsole : public QObject
{
    Q_OBJECT

private slots:
    void versionIsShown_data() { programs(); }
    void versionIsShown();
    void everyLetterIsShown_data() { programs(); }
    void everyLetterIsShown();
    void redirectedStreamsAreUsed_data() { programs(); }
    void redirectedStreamsAreUsed();
    void hostOfTheStarterGetsNoConsole();

private:
    static void programs();
    static QString Name(const QString& program) { return QFileInfo(program).baseName(); }
    static QString Quoted(const QString& text) { return u'"' + text + u'"'; }
};

void TestConsole::programs()
{
    QTest::addColumn<QString>("program");
    QTest::newRow("host") << QStringLiteral(VEXELHOST);
    QTest::newRow("starter") << QStringLiteral(VEXEL_KITESTARTER);
}

void TestConsole::versionIsShown()
{
    QFETCH(const QString, program);
    PseudoConsole console;
    QVERIFY(console.Start(Quoted(program) + QStringLiteral(" --version")));
    QTRY_VERIFY_WITH_TIMEOUT(console.HasEnded(), 60'000);
    QCOMPARE(console.ExitCode(), 0);
    QTRY_VERIFY2(console.Text().contains(Name(program) + QStringLiteral(" " VEXEL_VERSION)),
                 qPrintable(console.Text()));
}

void TestConsole::everyLetterIsShown()
{
    QFETCH(const QString, program);
    const QString letters = QStringLiteral("\u00fc\u0441\u0432\u044f\u0437\u044c");
    PseudoConsole console;
    QVERIFY(console.Start(Quoted(program) + QStringLiteral(" --") + letters));
    QTRY_VERIFY_WITH_TIMEOUT(console.HasEnded(), 60'000);
    QCOMPARE(console.ExitCode(), 1);
    QTRY_VERIFY2(console.Text().contains(Name(program) + QStringLiteral(": ")), qPrintable(console.Text()));
    QVERIFY2(console.Text().contains(letters), qPrintable(console.Text()));
}

void TestConsole::redirectedStreamsAreUsed()
{
    QFETCH(const QString, program);
    const QTemporaryDir directory;
    const QString output = directory.filePath(QStringLiteral("output"));
    const QString letters = QStringLiteral("\u5317 \U0001F4E1");
    QProcess process;
    process.setStandardOutputFile(output);
    process.start(program, {QStringLiteral("--version")});
    QVERIFY(WaitForEnd(process));
    QFile file(output);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), Name(program).toUtf8() + " " VEXEL_VERSION "\n");

    // One to a file, the other to a pipe.
    process.start(program, {QStringLiteral("--") + letters});
    QVERIFY(WaitForEnd(process));
    QCOMPARE(file.size(), 0);
    const QByteArray error = process.readAllStandardError();
    QVERIFY2(error.contains(letters.toUtf8()), error.constData());
    QVERIFY(error.endsWith('\n') && !error.contains('\r'));
}

void TestConsole::hostOfTheStarterGetsNoConsole()
{
    const FakeHostRun run;
    PseudoConsole console;
    QVERIFY(console.Start(Quoted(QStringLiteral(VEXEL_KITESTARTER)) + QStringLiteral(" --host ") +
                          Quoted(FakeHostRun::Program()) + QStringLiteral(" --timeout 1 -- hang 1 ") +
                          Quoted(run.File())));
    QTRY_COMPARE_WITH_TIMEOUT(run.Starts().size(), 1, 60'000);
    QCOMPARE(run.Starts().constFirst().value(QLatin1String("console")).toBool(true), false);
    // This one itself had one.
    QTRY_VERIFY_WITH_TIMEOUT(console.HasEnded(), 60'000);
    QVERIFY2(console.Text().contains(QLatin1String("kitestarter: ")), qPrintable(console.Text()));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestConsole)
#include "tst_console_windows.moc"
