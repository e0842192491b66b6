// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "starter/starterexit.h"
#include "starter/starteroptions.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QTest>

class TestStarterOptions : public QObject
{
    Q_OBJECT

private slots:
    void defaults();
    void everyOption();
    void hostArgumentsAreLeftAlone();
    void wrongCommandLines_data();
    void wrongCommandLines();
    void help();
    void helpNamesEveryExitCode();
    void version();
};

using Outcome = ParsedStarterCommandLine::Outcome;

namespace {

ParsedStarterCommandLine Parse(const QStringList& arguments)
{
    return ParseStarterCommandLine(QStringList(QStringLiteral("/any/where/kitestarter")) + arguments);
}

} // namespace

void TestStarterOptions::defaults()
{
    const auto parsed = Parse({});
    QCOMPARE(parsed.outcome, Outcome::Run);
    QCOMPARE(parsed.options.host, QString());
    QCOMPARE(parsed.options.hostArguments, QStringList());
    QCOMPARE(parsed.options.callOnly, false);
    // Longer than the dialog may be busy with starting an application.
    QVERIFY(parsed.options.timeOut > std::chrono::seconds(30));
    QVERIFY(Parse({QStringLiteral("--help")})
                .text.contains(QStringLiteral("Default: %1.").arg(parsed.options.timeOut.count())));
}

void TestStarterOptions::everyOption()
{
    const auto parsed = Parse({QStringLiteral("--host"), QStringLiteral("bin/../my host"), QStringLiteral("--timeout"),
                               QStringLiteral("3600"), QStringLiteral("--call-only")});
    QCOMPARE(parsed.outcome, Outcome::Run);
    QCOMPARE(parsed.options.host, QDir::currentPath() + QStringLiteral("/my host"));
    QCOMPARE(parsed.options.timeOut, std::chrono::seconds(3600));
    QCOMPARE(parsed.options.callOnly, true);
}

void TestStarterOptions::hostArgumentsAreLeftAlone()
{
    const QStringList arguments{QStringLiteral("--help"), QStringLiteral("--"),        QString(),
                                QStringLiteral("-x"),     QStringLiteral("--timeout"), QStringLiteral("a b")};
    const auto parsed =
        Parse(QStringList{QStringLiteral("--timeout"), QStringLiteral("1"), QStringLiteral("--")} + arguments);
    QCOMPARE(parsed.outcome, Outcome::Run);
    QCOMPARE(parsed.options.hostArguments, arguments);
    QCOMPARE(parsed.options.timeOut, std::chrono::seconds(1));
    QCOMPARE(Parse({QStringLiteral("--")}).outcome, Outcome::Run);
}

void TestStarterOptions::wrongCommandLines_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("hint");
    const auto row = [](const char* name, const QStringList& arguments, const char* hint) {
        QTest::newRow(name) << arguments << QString::fromLatin1(hint);
    };
    const QString timeOut = QStringLiteral("--timeout");
    row("unknown option", {QStringLiteral("--frobnicate")}, "frobnicate");
    row("argument before --", {QStringLiteral("host"), QStringLiteral("--")}, "\"host\"");
    row("argument alone", {QStringLiteral("list.xml")}, "after \"--\"");
    row("empty host", {QStringLiteral("--host"), QString()}, "--host");
    row("no host", {QStringLiteral("--host"), QStringLiteral("--"), QStringLiteral("x")}, "host");
    row("no time", {timeOut}, "timeout");
    row("zero", {timeOut, QStringLiteral("0")}, "\"0\"");
    row("negative", {timeOut + QStringLiteral("=-1")}, "\"-1\"");
    row("too long", {timeOut, QStringLiteral("3601")}, "3600");
    row("fraction", {timeOut, QStringLiteral("1.5")}, "\"1.5\"");
    row("no number", {timeOut, QStringLiteral("soon")}, "\"soon\"");
    row("beyond all numbers", {timeOut, QStringLiteral("99999999999999999999")}, "--timeout");
}

void TestStarterOptions::wrongCommandLines()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, hint);
    const auto parsed = Parse(arguments);
    QCOMPARE(parsed.outcome, Outcome::Invalid);
    QVERIFY2(parsed.text.contains(hint), qPrintable(parsed.text));
    QVERIFY(!parsed.text.contains(u'\n'));
}

void TestStarterOptions::help()
{
    for (const char* name : {"--help", "-h"}) {
        const auto parsed = Parse({QString::fromLatin1(name), QStringLiteral("--"), QStringLiteral("x")});
        QCOMPARE(parsed.outcome, Outcome::Print);
        QVERIFY(parsed.text.startsWith(QLatin1String("Usage: kitestarter [options] [-- HOST ARGUMENTS]\n")));
        QVERIFY(parsed.text.endsWith(u'\n'));
        for (const char* option : {"--host", "--timeout", "--call-only", "--help", "--version"})
            QVERIFY2(parsed.text.contains(QLatin1String(option)), option);
        // What exit code 0 does not say.
        QVERIFY(parsed.text.simplified().contains(QLatin1String("cannot be told from a dialog")));
        for (const QString& line : parsed.text.split(u'\n'))
            QVERIFY2(line.size() < 80, qPrintable(line));
    }
}

void TestStarterOptions::helpNamesEveryExitCode()
{
    const QString text = Parse({QStringLiteral("--help")}).text;
    const QString codes = text.mid(text.indexOf(QLatin1String("Exit codes:")));
    for (const StarterExit code :
         {StarterExit::Called, StarterExit::Usage, StarterExit::NotStarted, StarterExit::HostEnded,
          StarterExit::NoAnswer, StarterExit::PortTaken, StarterExit::NotRunning})
        QVERIFY2(codes.contains(QStringLiteral("\n  %1  ").arg(static_cast<int>(code))), qPrintable(codes));
}

void TestStarterOptions::version()
{
    const auto parsed = Parse({QStringLiteral("-v")});
    QCOMPARE(parsed.outcome, Outcome::Print);
    QCOMPARE(parsed.text, QStringLiteral("kitestarter " VEXEL_VERSION "\n"));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestStarterOptions)
#include "tst_starteroptions.moc"
