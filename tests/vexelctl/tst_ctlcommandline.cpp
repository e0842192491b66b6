// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"
#include "vexelctl/commandline.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using Outcome = ParsedCtlCommandLine::Outcome;

namespace {

ParsedCtlCommandLine Parse(const QStringList& arguments)
{
    return ParseCtlCommandLine(QStringList{QStringLiteral("vexelctl")} + arguments);
}

/// The same for arguments without blanks.
ParsedCtlCommandLine Parse(const char* arguments)
{
    return Parse(QString::fromUtf8(arguments).split(u' ', Qt::SkipEmptyParts));
}

/// `path` as an absolute one, with a drive on some systems.
QString Absolute(const char* path)
{
    return QDir().absoluteFilePath(QString::fromLatin1(path));
}

/// Every command with the arguments it needs.
QString Complete(const CommandInfo& info)
{
    if (info.command == Command::Connect)
        return QStringLiteral("connect --selected");
    return QLatin1String(info.name) + (info.minArguments > 0 ? QStringLiteral(" 1") : QString());
}

} // namespace

class TestCtlCommandLine : public QObject
{
    Q_OBJECT

private slots:
    void everyCommandHasTheCommonOptions();
    void everyOptionArrives();
    void pathsBecomeAbsolute();
    void aDashIsTheStandardStream();
    void namesAreTakenOnceAndAsTheyAre();
    void languageCSelectsTheSourceTexts();
    void generalHelpListsCommandsAndExitCodes();
    void helpOfACommandListsItsOptionsAlone();
    void helpFitsATerminal();
    void versionIsThatOfTheProject();
    void aSimilarCommandIsSuggested_data();
    void aSimilarCommandIsSuggested();
    void wrongCommandLines_data();
    void wrongCommandLines();
    void dataDirectoryNeedsTheMachineFile();
};

void TestCtlCommandLine::everyCommandHasTheCommonOptions()
{
    for (const CommandInfo& info : AllCommands()) {
        const ParsedCtlCommandLine parsed =
            Parse((Complete(info) + QStringLiteral(" --config /c --trace --trace-file /t/trace --language de_AT"))
                      .split(u' '));
        QCOMPARE(parsed.text, QString());
        QCOMPARE(parsed.outcome, Outcome::Run);
        QVERIFY(parsed.options.command == info.command);
        QCOMPARE(parsed.options.configDirectory, Absolute("/c"));
        QVERIFY(parsed.options.trace);
        QCOMPARE(parsed.options.traceFile, Absolute("/t/trace"));
        QCOMPARE(parsed.options.language->name(), QStringLiteral("de_AT"));
        // And without them.
        const CtlOptions plain = Parse(Complete(info).split(u' ')).options;
        QVERIFY(plain.configDirectory.isEmpty() && plain.traceFile.isEmpty() && !plain.trace && !plain.language);
        QCOMPARE(plain.name, QStringLiteral("VexelConnectDlg"));
    }
}

void TestCtlCommandLine::everyOptionArrives()
{
    const CtlOptions connect = Parse("connect A B --wait --ignore-exit-codes --screenshot-during /s/during --json "
                                     "--screenshot=/s/end --plugin /p/plug.so --name Second --data . --force")
                                   .options;
    QVERIFY(connect.command == Command::Connect);
    QCOMPARE(connect.names, QStringList({QStringLiteral("A"), QStringLiteral("B")}));
    QVERIFY(connect.wait && connect.ignoreExitCodes && connect.json && connect.force && !connect.selected);
    QCOMPARE(connect.screenshotDuring, Absolute("/s/during"));
    QCOMPARE(connect.screenshot, Absolute("/s/end"));
    QCOMPARE(connect.plugin, Absolute("/p/plug.so"));
    QCOMPARE(connect.name, QStringLiteral("Second"));
    QCOMPARE(connect.dataDirectory, QDir::currentPath());
    QVERIFY(Parse("connect --selected").options.selected);

    const CtlOptions restore = Parse("restore 3 --dry-run --json").options;
    QCOMPARE(restore.version, 3);
    QVERIFY(restore.dryRun && restore.json);
    QVERIFY(Parse("quit --force").options.force);
    QVERIFY(!Parse("quit").options.force);
    for (const char* command : {"list", "status", "wait", "watch", "backups", "diagnose", "check file"})
        QVERIFY2(Parse((QByteArray(command) + " --json").constData()).options.json, command);
}

void TestCtlCommandLine::pathsBecomeAbsolute()
{
    const CtlOptions options = Parse("add one.xml ../two.xml --config conf/../c --data .  --force").options;
    QCOMPARE(options.files, QStringList({Absolute("one.xml"), QDir::cleanPath(Absolute("../two.xml"))}));
    QCOMPARE(options.configDirectory, Absolute("c"));
    QCOMPARE(options.dataDirectory, QDir::currentPath());
}

void TestCtlCommandLine::aDashIsTheStandardStream()
{
    for (const char* command : {"export -", "import -", "check -", "screenshot -"})
        QCOMPARE(Parse(command).options.files, QStringList(CtlOptions::kStandardStream));
    QCOMPARE(Parse("add a.xml -").options.files, QStringList({Absolute("a.xml"), CtlOptions::kStandardStream}));
    // Elsewhere it is a file.
    QCOMPARE(Parse("list --trace-file -").options.traceFile, Absolute("-"));
}

void TestCtlCommandLine::namesAreTakenOnceAndAsTheyAre()
{
    const QStringList names{QStringLiteral("say \"mast\""), QStringLiteral("it's"),
                            QStringLiteral("two\nlines"),   QStringLiteral(" "),
                            QStringLiteral("--wait"),       QStringLiteral("-")};
    const QStringList arguments{QStringLiteral("connect"), QStringLiteral("--json"), QStringLiteral("--")};
    const ParsedCtlCommandLine parsed = Parse(arguments + names + names);
    QCOMPARE(parsed.outcome, Outcome::Run);
    QCOMPARE(parsed.options.names, names);
    QVERIFY(!parsed.options.wait);
}

void TestCtlCommandLine::languageCSelectsTheSourceTexts()
{
    QCOMPARE(Parse("list --language C").options.language->language(), QLocale::C);
}

void TestCtlCommandLine::generalHelpListsCommandsAndExitCodes()
{
    for (const char* option : {"--help", "-h"}) {
        const ParsedCtlCommandLine parsed = Parse(option);
        QCOMPARE(parsed.outcome, Outcome::Print);
        QVERIFY(parsed.text.startsWith(QLatin1String("Usage: vexelctl COMMAND [options]\n")));
        const QString commands = parsed.text.section(QStringLiteral("\nCommands:\n"), 1);
        for (const CommandInfo& info : AllCommands())
            QVERIFY2(commands.contains(QStringLiteral("\n  %1 ").arg(QLatin1String(info.name))) ||
                         commands.startsWith(QStringLiteral("  %1 ").arg(QLatin1String(info.name))),
                     info.name);
        for (const char* code : {"  0 ", "  1 ", "  2 ", "  3 ", "  4 ", "  130 "})
            QVERIFY2(parsed.text.section(QStringLiteral("\nExit codes:"), 1)
                         .contains(QLatin1Char('\n') + QLatin1String(code)),
                     code);
        QVERIFY(!parsed.text.contains(QLatin1String("completion")));
    }
}

void TestCtlCommandLine::helpOfACommandListsItsOptionsAlone()
{
    const ParsedCtlCommandLine list = Parse("list --json --help");
    QCOMPARE(list.outcome, Outcome::Print);
    QVERIFY2(list.text.startsWith(QLatin1String("Usage: vexelctl list [options]\n")), qPrintable(list.text));
    for (const char* option : {"--json", "--config <DIR>", "--trace-file <FILE>", "-h, --help"})
        QVERIFY2(list.text.contains(QLatin1String(option)), option);
    for (const char* foreign : {"--plugin", "--force", "--screenshot", "Arguments:", "Commands:", "Exit codes:"})
        QVERIFY2(!list.text.contains(QLatin1String(foreign)), foreign);
    // Without the arguments that the command needs.
    const ParsedCtlCommandLine connect = Parse("connect -h");
    QCOMPARE(connect.outcome, Outcome::Print);
    QVERIFY(connect.text.startsWith(QLatin1String("Usage: vexelctl connect [options] NAME...\n")));
    QVERIFY(connect.text.contains(QLatin1String("Arguments:\n")));
}

void TestCtlCommandLine::helpFitsATerminal()
{
    QStringList texts{Parse("--help").text};
    for (const CommandInfo& info : AllCommands())
        texts.append(Parse({QLatin1String(info.name), QStringLiteral("--help")}).text);
    for (const QString& text : texts)
        for (const QString& line : text.split(u'\n'))
            QVERIFY2(line.size() <= 80, qPrintable(line));
}

void TestCtlCommandLine::versionIsThatOfTheProject()
{
    const ParsedCtlCommandLine parsed = Parse("--version");
    QCOMPARE(parsed.outcome, Outcome::Print);
    QCOMPARE(parsed.text, QStringLiteral("vexelctl " VEXEL_VERSION "\n"));
}

void TestCtlCommandLine::aSimilarCommandIsSuggested_data()
{
    QTest::addColumn<QString>("suggestion");
    QTest::newRow("lst") << QStringLiteral("list");
    QTest::newRow("List") << QStringLiteral("list");
    QTest::newRow("conect") << QStringLiteral("connect");
    QTest::newRow("backup") << QStringLiteral("backups");
    QTest::newRow("screnshoot") << QStringLiteral("screenshot");
    QTest::newRow("ls") << QString();
    QTest::newRow("remove") << QString();
    QTest::newRow("x") << QString();
}

void TestCtlCommandLine::aSimilarCommandIsSuggested()
{
    QFETCH(const QString, suggestion);
    const QString word = QLatin1String(QTest::currentDataTag());
    const ParsedCtlCommandLine parsed = Parse({word});
    QCOMPARE(parsed.outcome, Outcome::Invalid);
    const QString expected = suggestion.isEmpty() ? QStringLiteral(" (see vexelctl --help)")
                                                  : QStringLiteral("; did you mean \"%1\"?").arg(suggestion);
    QCOMPARE(parsed.text, QStringLiteral("unknown command \"%1\"").arg(word) + expected);
}

void TestCtlCommandLine::wrongCommandLines_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const auto add = [](const char* arguments, const char* error) {
        QTest::newRow(arguments) << QString::fromLatin1(arguments).split(u' ', Qt::SkipEmptyParts)
                                 << QString::fromLatin1(error);
    };
    add("", "a command is missing (see vexelctl --help)");
    add("--json list", "the command comes first, and \"--json\" is none (see vexelctl --help)");
    add("list --frob", "list: Unknown option 'frob' (see vexelctl list --help)");
    add("list --plugin p", "list: Unknown option 'plugin' (see vexelctl list --help)");
    add("list --config", "list: Missing value after '--config' (see vexelctl list --help)");
    add("list more", "list: unexpected argument \"more\" (see vexelctl list --help)");
    add("export", "export: FILE is missing (see vexelctl export --help)");
    add("export a b", "export: unexpected argument \"b\" (see vexelctl export --help)");
    add("import a b", "import: unexpected argument \"b\" (see vexelctl import --help)");
    add("add", "add: FILE is missing (see vexelctl add --help)");
    add("add - a -", "add: standard input can be read only once (see vexelctl add --help)");
    add("restore", "restore: N is missing (see vexelctl restore --help)");
    for (const char* number : {"0", "x", "1x", "99999999999"}) {
        add((QByteArray("restore ") + number).constData(),
            (QByteArray("restore: \"") + number +
             "\" is not the number of a version, as backups prints it (see vexelctl restore --help)")
                .constData());
    }
    add("connect", "connect: NAME or --selected is missing (see vexelctl connect --help)");
    add("connect a --selected", "connect: NAME and --selected cannot be used together (see vexelctl connect --help)");
    add("connect a --screenshot b --screenshot c",
        "connect: --screenshot can be given only once (see vexelctl connect --help)");
    add("wait --screenshot -",
        "wait: --screenshot: needs a file, because standard output is for the changes of status (see vexelctl wait "
        "--help)");
    add("list --language xx", "list: --language: no such locale: xx (see vexelctl list --help)");
    add("add a --data /no/such", "add: --data: no such directory: /no/such (see vexelctl add --help)");
    add("add a --force", "add: --force needs --data (see vexelctl add --help)");
    QTest::newRow("empty command") << QStringList{QString()}
                                   << QStringLiteral("a command is missing (see vexelctl --help)");
    QTest::newRow("empty name") << QStringList{QStringLiteral("connect"), QString()}
                                << QStringLiteral("connect: NAME must not be empty (see vexelctl connect --help)");
    QTest::newRow("empty file") << QStringList{QStringLiteral("export"), QString()}
                                << QStringLiteral("export: FILE must not be empty (see vexelctl export --help)");
    for (const char* option : {"config", "trace-file", "language", "plugin", "name", "data", "screenshot"}) {
        QTest::addRow("empty %s", option)
            << QStringList{QStringLiteral("connect"), QStringLiteral("a"),
                           QStringLiteral("--%1=").arg(QLatin1String(option))}
            << QStringLiteral("connect: --%1: the value must not be empty (see vexelctl connect --help)")
                   .arg(QLatin1String(option));
    }
}

void TestCtlCommandLine::wrongCommandLines()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, error);
    const ParsedCtlCommandLine parsed = Parse(arguments);
    QCOMPARE(parsed.outcome, Outcome::Invalid);
    QCOMPARE(parsed.text, error);
}

void TestCtlCommandLine::dataDirectoryNeedsTheMachineFile()
{
    const QTemporaryDir data;
    for (const char* command : {"import", "add", "connect"}) {
        const QStringList arguments{QLatin1String(command), QStringLiteral("a"), QStringLiteral("--data"), data.path()};
        const ParsedCtlCommandLine refused = Parse(arguments);
        QCOMPARE(refused.outcome, Outcome::Invalid);
        QVERIFY2(refused.text.contains(QLatin1String("there is no CfgVEXEL.xml")), qPrintable(refused.text));
        const ParsedCtlCommandLine forced = Parse(arguments + QStringList{QStringLiteral("--force")});
        QCOMPARE(forced.text, QString());
        QCOMPARE(forced.outcome, Outcome::Run);
        QCOMPARE(forced.options.dataDirectory, data.path());
    }
    // These do not store it.
    QCOMPARE(Parse({QStringLiteral("diagnose"), QStringLiteral("--data"), data.path()}).outcome, Outcome::Run);

    QFile machine(data.filePath(QStringLiteral("CfgVEXEL.xml")));
    QVERIFY(machine.open(QIODevice::WriteOnly));
    QCOMPARE(Parse({QStringLiteral("add"), QStringLiteral("a"), QStringLiteral("--data"), data.path()}).outcome,
             Outcome::Run);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCtlCommandLine)
#include "tst_ctlcommandline.moc"
