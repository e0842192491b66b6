// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/starter/fakehostrun.h"
#include "tests/support/testmain.h"
#include "tests/support/waitforend.h"

#include <QProcess>

/// What vexelctl and starter make of the one text that Windows passes to a program, written in the ways of different
/// prompts and programs.
class TestCommandLines : public QObject
{
    Q_OBJECT

private slots:
    void commandLine_data() { lines(); }
    void commandLine();
    void starter_data() { lines(); }
    void starter();

private:
    static void lines();
};

void TestCommandLines::lines()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("argument");
    const auto row = [](const char* name, const QString& text, const QString& argument) {
        QTest::newRow(name) << text << argument;
    };
    row("plain", QStringLiteral("mast"), QStringLiteral("mast"));
    row("blanks", QStringLiteral("\"the  mast \""), QStringLiteral("the  mast "));
    row("quoted in the middle", QStringLiteral("the\" \"mast"), QStringLiteral("the mast"));
    row("letters", QStringLiteral("\u00fc\u0441\u0432\u044f\u0437\u044c\u5317\u6597"),
        QStringLiteral("\u00fc\u0441\u0432\u044f\u0437\u044c\u5317\u6597"));
    row("beyond 16 bits", QStringLiteral("\"\U0001F4E1 mast\""), QStringLiteral("\U0001F4E1 mast"));
    row("quotes", QStringLiteral("\"the \\\"tall\\\" mast\""), QStringLiteral("the \"tall\" mast"));
    row("backslash at the end", QStringLiteral("mast\\"), QStringLiteral("mast\\"));
    row("backslash at the end, quoted", QStringLiteral("\"the mast\\\\\""), QStringLiteral("the mast\\"));
    row("backslashes within", QStringLiteral("\"\\\\the\\\\mast\""), QStringLiteral("\\\\the\\\\mast"));
    row("backslash before a quote", QStringLiteral("a\\\\\\\"b"), QStringLiteral("a\\\"b"));
    row("percent signs", QStringLiteral("%PATH%"), QStringLiteral("%PATH%"));
    row("8,000 characters", QString(8000, u'x'), QString(8000, u'x'));
}

void TestCommandLines::commandLine()
{
    QFETCH(const QString, text);
    QFETCH(const QString, argument);
    const QTemporaryDir directory;
    QProcess process;
    process.setProgram(QStringLiteral(VEXELCTL));
    process.setNativeArguments(QStringLiteral("connect --config \"%1\" ").arg(directory.path()) + text);
    process.start();
    QVERIFY(WaitForEnd(process));
    QCOMPARE(process.exitCode(), 3);
    const QString error = QString::fromUtf8(process.readAllStandardError());
    const QString said = QStringLiteral("\nvexelctl: there is no entry called \"%1\"\n").arg(argument);
    QVERIFY2(error.endsWith(said), qPrintable(error));
}

void TestCommandLines::starter()
{
    QFETCH(const QString, text);
    QFETCH(const QString, argument);
    const FakeHostRun run;
    QProcess process;
    process.setProgram(QStringLiteral(VEXEL_KITESTARTER));
    // The port is the real one, where no dialog is to answer; what is started listens at none, and ends at once.
    process.setNativeArguments(QStringLiteral("--host \"%1\" -- 7 1 \"%2\" ").arg(FakeHostRun::Program(), run.File()) +
                               text + QStringLiteral(" \"\" last"));
    process.start();
    QVERIFY(WaitForEnd(process));
    QCOMPARE(run.Starts().size(), 1);
    QCOMPARE(run.Starts().constFirst().value(QLatin1String("arguments")).toArray(),
             (QJsonArray{argument, QString(), QStringLiteral("last")}));
    const QString error = QString::fromUtf8(process.readAllStandardError());
    QVERIFY2(error.contains(QLatin1String("exit code 7")), qPrintable(error));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCommandLines)
#include "tst_commandlines_windows.moc"
