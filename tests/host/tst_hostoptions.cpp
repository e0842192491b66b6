#include "host/options/hostoptions.h"
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
    void namesToConnectAreTakenOnceAndAsTheyAre();
    void languageCSelectsTheSourceTexts();
    void helpNamesEveryOptionAndEveryExitCode();
    void versionIsThatOfTheProject();
    void wrongCommandLines_data();
    void wrongCommandLines();
    void headlessOptions_data();
    void headlessOptions();
    void supportOptions();
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
    QVERIFY(!parsed.options.Connects());
    QVERIFY(!parsed.options.IsHeadless());
}

void TestHostOptions::everyOptionArrives()
{
    const QTemporaryDir data;
    const ParsedCommandLine parsed =
        Parse(QString(QStringLiteral("--plugin /p/plug.so --config /c --name Second --trace --trace-file /t/trace "
                                     "--language de_AT --add /l/one.xml --add /l/two.xml --import /l/all.xml "
                                     "--export /l/out.xml --list --connect A --connect=B --wait --screenshot /s/end "
                                     "--screenshot-before /s/before --screenshot-during /s/during"))
                  .split(u' ') +
              QStringList{QStringLiteral("--data"), data.path()});
    QCOMPARE(parsed.text, QString());
    QCOMPARE(parsed.outcome, Outcome::Run);
    const HostOptions& options = parsed.options;
    // An absolute path has a drive on some systems.
    const auto absolute = [](const char* path) {
        return QFileInfo(QString::fromLatin1(path)).absoluteFilePath();
    };
    QCOMPARE(options.plugin, absolute("/p/plug.so"));
    QCOMPARE(options.configDirectory, absolute("/c"));
    QCOMPARE(options.dataDirectory, data.path());
    QCOMPARE(options.name, QStringLiteral("Second"));
    QVERIFY(options.trace);
    QCOMPARE(options.traceFile, absolute("/t/trace"));
    QCOMPARE(options.language.value_or(QLocale::c()), QLocale(QLocale::German, QLocale::Austria));
    QCOMPARE(options.filesToAdd, QStringList({absolute("/l/one.xml"), absolute("/l/two.xml")}));
    QCOMPARE(options.fileToImport, absolute("/l/all.xml"));
    QCOMPARE(options.fileToExport, absolute("/l/out.xml"));
    QVERIFY(options.list);
    QVERIFY(!options.json);
    QCOMPARE(options.namesToConnect, QStringList({QStringLiteral("A"), QStringLiteral("B")}));
    QVERIFY(!options.connectSelected);
    QVERIFY(options.wait);
    QCOMPARE(options.screenshot, absolute("/s/end"));
    QCOMPARE(options.screenshotBefore, absolute("/s/before"));
    QCOMPARE(options.screenshotDuring, absolute("/s/during"));

    const ParsedCommandLine rest = Parse("--list --json --connect-selected");
    QCOMPARE(rest.outcome, Outcome::Run);
    QVERIFY(rest.options.json);
    QVERIFY(rest.options.connectSelected);
}

void TestHostOptions::pathsBecomeAbsolute()
{
    const ParsedCommandLine parsed = Parse("--plugin plug.so --config a/../b --trace-file t.log --add l.xml --import "
                                           "i.xml --export ./e.xml --screenshot s.png --data .");
    QCOMPARE(parsed.outcome, Outcome::Run);
    const QDir here = QDir::current();
    QCOMPARE(parsed.options.plugin, here.absoluteFilePath(QStringLiteral("plug.so")));
    QCOMPARE(parsed.options.configDirectory, here.absoluteFilePath(QStringLiteral("b")));
    QCOMPARE(parsed.options.traceFile, here.absoluteFilePath(QStringLiteral("t.log")));
    QCOMPARE(parsed.options.filesToAdd, QStringList(here.absoluteFilePath(QStringLiteral("l.xml"))));
    QCOMPARE(parsed.options.fileToImport, here.absoluteFilePath(QStringLiteral("i.xml")));
    QCOMPARE(parsed.options.fileToExport, here.absoluteFilePath(QStringLiteral("e.xml")));
    QCOMPARE(parsed.options.screenshot, here.absoluteFilePath(QStringLiteral("s.png")));
    QCOMPARE(parsed.options.dataDirectory, here.absolutePath());
}

void TestHostOptions::namesToConnectAreTakenOnceAndAsTheyAre()
{
    const QString odd = QStringLiteral(" a\nb ");
    const ParsedCommandLine parsed = Parse({QStringLiteral("--connect"), odd, QStringLiteral("--connect"), odd,
                                            QStringLiteral("--connect"), QStringLiteral("")});
    QCOMPARE(parsed.outcome, Outcome::Run);
    // An entry may have an empty name.
    QCOMPARE(parsed.options.namesToConnect, QStringList({odd, QString()}));
    QVERIFY(parsed.options.Connects());
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
                            "--name <NAME>|--trace |--trace-file <FILE>|--language <LOCALE>|--import <FILE>|"
                            "--add <FILE>|--export <FILE>|--list|--json|--connect <NAME>|--connect-selected|"
                            "--wait|--screenshot <FILE>|--screenshot-before <FILE>|--screenshot-during <FILE>|"
                            "--backups|--restore <N>|--diagnose|import, add, export, list, screenshot before|"
                            "-h, --help|-v, --version|VEXEL_CONFIG_DIR|Exit codes:|\n  0  done|\n  1  |\n  2  |"
                            "\n  3  an entry could not be connected|"
                            "\n  4  another host uses the same configuration directory")
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
    row("value for a flag", "--list=yes", "list");
    row("positional", "connections.xml", "\"connections.xml\"");
    row("empty plug-in", "--plugin= --list", "--plugin");
    row("empty configuration", "--config=", "--config");
    row("empty name", "--name=", "--name");
    row("empty file to add", "--add=", "--add");
    row("empty picture", "--screenshot=", "--screenshot");
    row("empty trace file", "--trace-file=", "--trace-file");
    row("empty language", "--language=", "--language");
    row("no such language", "--language klingonisch", "klingonisch");
    row("no such data directory", "--data /no/such/dir", "/no/such/dir");
    row("JSON of nothing", "--json", "--list");
    row("JSON among lines", "--list --json --wait", "--wait");
    row("two ways to connect", "--connect A --connect-selected", "--connect-selected");
    row("empty import", "--import=", "--import");
    row("empty export", "--export=", "--export");
    row("two imports", "--import=a.xml --import=b.xml", "only once");
    row("two exports", "--export=a.xml --export=b.xml", "only once");
    row("two versions", "--restore=1 --restore=2", "only once");
    row("export among lines", "--export - --list", "--list");
    row("export among changes", "--export=- --connect-selected --wait", "--wait");
    row("no version", "--restore", "restore");
    row("empty version", "--restore=", "--restore");
    row("present state", "--restore 0", "--restore");
    row("version below", "--restore=-1", "--restore");
    row("version of a name", "--restore now", "--restore");
    row("version of many digits", "--restore 99999999999", "--restore");
    row("versions and one of them", "--backups --restore=1", "--restore");
    row("versions and diagnosis", "--backups --diagnose", "--diagnose");
    row("restored JSON", "--restore=1 --json", "--json");
    for (const char* command : {"--backups", "--restore=1", "--diagnose"}) {
        for (const char* work : {"--list", "--wait", "--connect=A", "--connect-selected", "--add=a.xml",
                                 "--import=a.xml", "--export=a.xml", "--screenshot=a.png"}) {
            QTest::addRow("%s %s", command, work)
                << QStringLiteral("%1 %2").arg(QLatin1String(command), QLatin1String(work))
                << QString::fromLatin1(command).section(u'=', 0, 0);
        }
    }
    row("versions and data", "--backups --data=.", "--data");
    row("version and data", "--restore=1 --data=.", "--data");
    row("during nothing", "--screenshot-during a.png", "--connect");
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

void TestHostOptions::headlessOptions_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<bool>("headless");

    const auto row = [](const char* name, const char* arguments, bool headless) {
        QTest::newRow(name) << QString::fromLatin1(arguments) << headless;
    };
    row("list", "--list", true);
    row("add", "--add a.xml", true);
    row("connect", "--connect A", true);
    row("connect selected", "--connect-selected", true);
    row("wait", "--wait", true);
    row("picture", "--screenshot a.png", true);
    row("picture before", "--screenshot-before a.png", true);
    row("import", "--import a.xml", true);
    row("export", "--export a.xml", true);
    row("export to standard output", "--export -", true);
    row("trace", "--trace", false);
    row("places", "--config c --plugin p", false);
}

void TestHostOptions::headlessOptions()
{
    QFETCH(const QString, arguments);
    QFETCH(const bool, headless);
    const ParsedCommandLine parsed = Parse(qPrintable(arguments));
    QCOMPARE(parsed.outcome, Outcome::Run);
    QCOMPARE(parsed.options.IsHeadless(), headless);
}

void TestHostOptions::supportOptions()
{
    const ParsedCommandLine backups = Parse("--backups --json");
    QCOMPARE(backups.outcome, Outcome::Run);
    QVERIFY(backups.options.backups && backups.options.json);
    QVERIFY(backups.options.IsSupportCommand());
    QVERIFY(!backups.options.IsHeadless());

    const ParsedCommandLine restore = Parse("--restore 10");
    QCOMPARE(restore.outcome, Outcome::Run);
    QCOMPARE(restore.options.versionToRestore, 10);
    QVERIFY(restore.options.IsSupportCommand());

    const ParsedCommandLine diagnose = Parse("--diagnose --json --data . --plugin p --trace");
    QCOMPARE(diagnose.outcome, Outcome::Run);
    QVERIFY(diagnose.options.diagnose && diagnose.options.json);
    QVERIFY(diagnose.options.IsSupportCommand());

    QVERIFY(!Parse("--list").options.IsSupportCommand());
    QCOMPARE(Parse("--export -").options.fileToExport, HostOptions::kStandardOutput);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestHostOptions)
#include "tst_hostoptions.moc"
