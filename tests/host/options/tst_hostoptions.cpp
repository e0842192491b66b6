// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/options/hostoptions.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using Outcome = ParsedCommandLine::Outcome;

namespace {

ParsedCommandLine Parse(const QStringList& arguments)
{
    return ParseCommandLine(QStringList{QStringLiteral("vexelhost")} + arguments);
}

/// The same for arguments without blanks.
ParsedCommandLine Parse(const char* arguments)
{
    return Parse(QString::fromLatin1(arguments).split(u' ', Qt::SkipEmptyParts));
}

} // namespace

class TestHostOptions : public QObject
{
    Q_OBJECT

private slots:
    void defaults();
    void everyOptionArrives();
    void pathsBecomeAbsolute();
    void languageCSelectsTheSourceTexts();
    void helpNamesEveryOptionAndEveryExitCode();
    void versionIsThatOfTheProject();
    void wrongCommandLines_data();
    void wrongCommandLines();
    void dataDirectoryNeedsTheMachineFile();
    void autostartKeepsTheOptionsThatIdentifyTheHost();
};

void TestHostOptions::defaults()
{
    const ParsedCommandLine parsed = Parse({});
    QCOMPARE(parsed.outcome, Outcome::Run);
    QCOMPARE(parsed.options.name, QStringLiteral("VexelConnectDlg"));
    QVERIFY(parsed.options.plugin.isEmpty());
    QVERIFY(parsed.options.configDirectory.isEmpty());
    QVERIFY(parsed.options.dataDirectory.isEmpty());
    QVERIFY(!parsed.options.language);
    QVERIFY(!parsed.options.trace);
    QVERIFY(!parsed.options.hidden);
}

void TestHostOptions::everyOptionArrives()
{
    const ParsedCommandLine parsed =
        Parse("--plugin /p/plug.so --config /c --name Second --trace --trace-file /t/trace "
              "--language de_AT --hidden");
    QCOMPARE(parsed.text, QString());
    QCOMPARE(parsed.outcome, Outcome::Run);
    const HostOptions& options = parsed.options;
    // An absolute path has a drive on some systems.
    const auto absolute = [](const char* path) {
        return QFileInfo(QString::fromLatin1(path)).absoluteFilePath();
    };
    QCOMPARE(options.plugin, absolute("/p/plug.so"));
    QCOMPARE(options.configDirectory, absolute("/c"));
    QCOMPARE(options.name, QStringLiteral("Second"));
    QVERIFY(options.trace);
    QCOMPARE(options.traceFile, absolute("/t/trace"));
    QCOMPARE(options.language.value_or(QLocale::c()), QLocale(QLocale::German, QLocale::Austria));
    QVERIFY(options.hidden);
}

void TestHostOptions::pathsBecomeAbsolute()
{
    const ParsedCommandLine parsed = Parse("--plugin plug.so --config a/../b --trace-file t.log");
    QCOMPARE(parsed.outcome, Outcome::Run);
    const QDir here = QDir::current();
    QCOMPARE(parsed.options.plugin, here.absoluteFilePath(QStringLiteral("plug.so")));
    QCOMPARE(parsed.options.configDirectory, here.absoluteFilePath(QStringLiteral("b")));
    QCOMPARE(parsed.options.traceFile, here.absoluteFilePath(QStringLiteral("t.log")));
}

void TestHostOptions::languageCSelectsTheSourceTexts()
{
    const ParsedCommandLine parsed = Parse("--language C");
    QCOMPARE(parsed.outcome, Outcome::Run);
    QVERIFY(parsed.options.language.has_value());
    QCOMPARE(parsed.options.language.value_or(QLocale(QLocale::German)), QLocale::c());
}

void TestHostOptions::helpNamesEveryOptionAndEveryExitCode()
{
    for (const QString& option : {QStringLiteral("--help"), QStringLiteral("-h")}) {
        const ParsedCommandLine parsed = Parse({option});
        QCOMPARE(parsed.outcome, Outcome::Print);
        for (const QString& part :
             QStringLiteral("Usage: vexelhost [options]\n|--plugin <FILE>|--config <DIR>|--data <DIR>|"
                            "--name <NAME>|--trace |--trace-file <FILE>|--language <LOCALE>|--hidden|--autostart "
                            "<on|off>|vexelhost.ini|"
                            "-h, --help|-v, --version|VEXEL_CONFIG_DIR|vexelctl|Exit codes:|\n  0  |\n  1  |\n  2  |"
                            "\n  4  ")
                 .split(u'|'))
            QVERIFY2(parsed.text.contains(part), qPrintable(part));
    }
}

void TestHostOptions::versionIsThatOfTheProject()
{
    const ParsedCommandLine parsed = Parse("--version");
    QCOMPARE(parsed.outcome, Outcome::Print);
    QCOMPARE(parsed.text, QStringLiteral("vexelhost " VEXEL_VERSION "\n"));
}

void TestHostOptions::wrongCommandLines_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("hint");

    const auto row = [](const char* name, const char* arguments, const char* hint) {
        QTest::newRow(name) << QString::fromLatin1(arguments) << QString::fromLatin1(hint);
    };
    row("unknown option", "--frobnicate", "frobnicate");
    row("value missing", "--plugin", "plugin");
    row("value for a flag", "--hidden=yes", "hidden");
    row("file", "connections.xml", "\"connections.xml\"");
    row("command", "list", "vexelctl");
    row("empty plug-in", "--plugin=", "--plugin");
    row("empty configuration", "--config=", "--config");
    row("empty name", "--name=", "--name");
    row("empty trace file", "--trace-file=", "--trace-file");
    row("empty language", "--language=", "--language");
    row("neither on nor off", "--autostart maybe", "maybe");
    row("empty switch", "--autostart=", "--autostart");
    row("no such language", "--language klingonisch", "klingonisch");
}

void TestHostOptions::wrongCommandLines()
{
    QFETCH(const QString, arguments);
    QFETCH(const QString, hint);
    const ParsedCommandLine parsed = Parse(qPrintable(arguments));
    QCOMPARE(parsed.outcome, Outcome::Invalid);
    QVERIFY2(parsed.text.contains(hint), qPrintable(parsed.text));
    QVERIFY(!parsed.text.contains(QLatin1Char('\n')));
}

void TestHostOptions::dataDirectoryNeedsTheMachineFile()
{
    const QTemporaryDir data;
    QCOMPARE(DataDirectoryError(QString(), false), QString());
    QVERIFY(DataDirectoryError(QStringLiteral("/no/such/dir"), true).contains(QStringLiteral("/no/such/dir")));
    QVERIFY(DataDirectoryError(data.path(), false).contains(QStringLiteral("CfgVEXEL.xml")));
    QCOMPARE(DataDirectoryError(data.path(), true), QString());
    QVERIFY(Files::Write(data.filePath(QStringLiteral("CfgVEXEL.xml")), "<CfgVEXEL/>"));
    QCOMPARE(DataDirectoryError(data.path(), false), QString());
    QCOMPARE(Parse({QStringLiteral("--data"), data.path()}).options.dataDirectory, data.path());
}

void TestHostOptions::autostartKeepsTheOptionsThatIdentifyTheHost()
{
    QVERIFY(!Parse({}).options.autostart.has_value());
    QCOMPARE(Parse({}).options.autostartOptions, QStringList());
    QCOMPARE(Parse("--autostart on").options.autostart.value_or(false), true);
    QCOMPARE(Parse("--autostart off").options.autostart.value_or(true), false);
    const HostOptions options = Parse("--data /d --trace --config /c --name Second --autostart on --hidden").options;
    QCOMPARE(options.autostartOptions,
             QStringList({QStringLiteral("--config"), options.configDirectory, QStringLiteral("--data"),
                          options.dataDirectory, QStringLiteral("--name"), QStringLiteral("Second")}));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestHostOptions)
#include "tst_hostoptions.moc"
