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

} // namespace

class TestHostOptions : public QObject
{
    Q_OBJECT

private slots:
    void nothingGiven();
    void everyOptionArrives();
    void pathsBecomeAbsolute();
    void namesToConnectAreTakenOnceAndAsTheyAre();
    void languageMayBeTheSourceTexts();
    void helpNamesEveryOptionAndEveryExitCode();
    void versionIsThatOfTheProject();
    void wrongCommandLines_data();
    void wrongCommandLines();
    void headlessOptions_data();
    void headlessOptions();
    void supportOptions();
};

void TestHostOptions::nothingGiven()
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
    const ParsedCommandLine parsed = Parse({QStringLiteral("--plugin"),
                                            QStringLiteral("/p/plug.so"),
                                            QStringLiteral("--config"),
                                            QStringLiteral("/c"),
                                            QStringLiteral("--data"),
                                            data.path(),
                                            QStringLiteral("--name"),
                                            QStringLiteral("Second"),
                                            QStringLiteral("--trace"),
                                            QStringLiteral("--trace-file"),
                                            QStringLiteral("/t/trace"),
                                            QStringLiteral("--language"),
                                            QStringLiteral("de_AT"),
                                            QStringLiteral("--add"),
                                            QStringLiteral("/l/one.xml"),
                                            QStringLiteral("--add"),
                                            QStringLiteral("/l/two.xml"),
                                            QStringLiteral("--import"),
                                            QStringLiteral("/l/all.xml"),
                                            QStringLiteral("--export"),
                                            QStringLiteral("/l/out.xml"),
                                            QStringLiteral("--list"),
                                            QStringLiteral("--connect"),
                                            QStringLiteral("A"),
                                            QStringLiteral("--connect=B"),
                                            QStringLiteral("--wait"),
                                            QStringLiteral("--screenshot"),
                                            QStringLiteral("/s/end"),
                                            QStringLiteral("--screenshot-before"),
                                            QStringLiteral("/s/before"),
                                            QStringLiteral("--screenshot-during"),
                                            QStringLiteral("/s/during")});
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

    const ParsedCommandLine rest =
        Parse({QStringLiteral("--list"), QStringLiteral("--json"), QStringLiteral("--connect-selected")});
    QCOMPARE(rest.outcome, Outcome::Run);
    QVERIFY(rest.options.json);
    QVERIFY(rest.options.connectSelected);
}

void TestHostOptions::pathsBecomeAbsolute()
{
    const ParsedCommandLine parsed = Parse(
        {QStringLiteral("--plugin"), QStringLiteral("plug.so"), QStringLiteral("--config"), QStringLiteral("a/../b"),
         QStringLiteral("--trace-file"), QStringLiteral("t.log"), QStringLiteral("--add"), QStringLiteral("l.xml"),
         QStringLiteral("--import"), QStringLiteral("i.xml"), QStringLiteral("--export"), QStringLiteral("./e.xml"),
         QStringLiteral("--screenshot"), QStringLiteral("s.png"), QStringLiteral("--data"), QStringLiteral(".")});
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

void TestHostOptions::languageMayBeTheSourceTexts()
{
    const ParsedCommandLine parsed = Parse({QStringLiteral("--language"), QStringLiteral("C")});
    QCOMPARE(parsed.outcome, Outcome::Run);
    QVERIFY(parsed.options.language.has_value());
    QCOMPARE(parsed.options.language.value_or(QLocale(QLocale::German)), QLocale::c());
}

void TestHostOptions::helpNamesEveryOptionAndEveryExitCode()
{
    for (const QString& option : {QStringLiteral("--help"), QStringLiteral("-h")}) {
        const ParsedCommandLine parsed = Parse({option});
        QCOMPARE(parsed.outcome, Outcome::Print);
        for (const char* part : {"Usage: vexelhost [options]\n",
                                 "--plugin <FILE>",
                                 "--config <DIR>",
                                 "--data <DIR>",
                                 "--name <NAME>",
                                 "--trace ",
                                 "--trace-file <FILE>",
                                 "--language <LOCALE>",
                                 "--import <FILE>",
                                 "--add <FILE>",
                                 "--export <FILE>",
                                 "--list",
                                 "--json",
                                 "--connect <NAME>",
                                 "--connect-selected",
                                 "--wait",
                                 "--screenshot <FILE>",
                                 "--screenshot-before <FILE>",
                                 "--screenshot-during <FILE>",
                                 "--backups",
                                 "--restore <N>",
                                 "--diagnose",
                                 "import, add, export, list, screenshot before",
                                 "-h, --help",
                                 "-v, --version",
                                 "VEXEL_CONFIG_DIR",
                                 "Exit codes:",
                                 "\n  0  done",
                                 "\n  1  ",
                                 "\n  2  ",
                                 "\n  3  an entry could not be connected",
                                 "\n  4  another host uses the same configuration directory"})
            QVERIFY2(parsed.text.contains(QLatin1String(part)), part);
    }
}

void TestHostOptions::versionIsThatOfTheProject()
{
    const ParsedCommandLine parsed = Parse({QStringLiteral("--version")});
    QCOMPARE(parsed.outcome, Outcome::Print);
    QCOMPARE(parsed.text, QStringLiteral("vexelhost " VEXEL_VERSION "\n"));
}

void TestHostOptions::wrongCommandLines_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("hint");

    const auto row = [](const char* name, const QStringList& arguments, const char* hint) {
        QTest::newRow(name) << arguments << QString::fromLatin1(hint);
    };
    row("unknown option", {QStringLiteral("--frobnicate")}, "frobnicate");
    row("value missing", {QStringLiteral("--plugin")}, "plugin");
    row("value for a flag", {QStringLiteral("--list=yes")}, "list");
    row("positional", {QStringLiteral("connections.xml")}, "\"connections.xml\"");
    row("empty plug-in", {QStringLiteral("--plugin="), QStringLiteral("--list")}, "--plugin");
    row("empty configuration", {QStringLiteral("--config"), QString()}, "--config");
    row("empty name", {QStringLiteral("--name"), QString()}, "--name");
    row("empty file to add", {QStringLiteral("--add"), QString()}, "--add");
    row("empty picture", {QStringLiteral("--screenshot"), QString()}, "--screenshot");
    row("empty trace file", {QStringLiteral("--trace-file"), QString()}, "--trace-file");
    row("empty language", {QStringLiteral("--language"), QString()}, "--language");
    row("no such language", {QStringLiteral("--language"), QStringLiteral("klingonisch")}, "klingonisch");
    row("no such data directory", {QStringLiteral("--data"), QStringLiteral("/no/such/dir")}, "/no/such/dir");
    row("JSON of nothing", {QStringLiteral("--json")}, "--list");
    row("JSON among lines", {QStringLiteral("--list"), QStringLiteral("--json"), QStringLiteral("--wait")}, "--wait");
    row("two ways to connect", {QStringLiteral("--connect"), QStringLiteral("A"), QStringLiteral("--connect-selected")},
        "--connect-selected");
    row("empty import", {QStringLiteral("--import"), QString()}, "--import");
    row("empty export", {QStringLiteral("--export"), QString()}, "--export");
    row("two imports", {QStringLiteral("--import=a.xml"), QStringLiteral("--import=b.xml")}, "only once");
    row("two exports", {QStringLiteral("--export=a.xml"), QStringLiteral("--export=b.xml")}, "only once");
    row("two versions", {QStringLiteral("--restore=1"), QStringLiteral("--restore=2")}, "only once");
    row("export among lines", {QStringLiteral("--export"), QStringLiteral("-"), QStringLiteral("--list")}, "--list");
    row("export among changes",
        {QStringLiteral("--export=-"), QStringLiteral("--connect-selected"), QStringLiteral("--wait")}, "--wait");
    row("no version", {QStringLiteral("--restore")}, "restore");
    row("empty version", {QStringLiteral("--restore"), QString()}, "--restore");
    row("present state", {QStringLiteral("--restore"), QStringLiteral("0")}, "--restore");
    row("version below", {QStringLiteral("--restore=-1")}, "--restore");
    row("version of a name", {QStringLiteral("--restore"), QStringLiteral("now")}, "--restore");
    row("version of many digits", {QStringLiteral("--restore"), QStringLiteral("99999999999")}, "--restore");
    row("versions and one of them", {QStringLiteral("--backups"), QStringLiteral("--restore=1")}, "--restore");
    row("versions and diagnosis", {QStringLiteral("--backups"), QStringLiteral("--diagnose")}, "--diagnose");
    row("restored JSON", {QStringLiteral("--restore=1"), QStringLiteral("--json")}, "--json");
    for (const char* command : {"--backups", "--restore=1", "--diagnose"}) {
        for (const char* work : {"--list", "--wait", "--connect=A", "--connect-selected", "--add=a.xml",
                                 "--import=a.xml", "--export=a.xml", "--screenshot=a.png"}) {
            QTest::addRow("%s %s", command, work)
                << QStringList{QString::fromLatin1(command), QString::fromLatin1(work)}
                << QString::fromLatin1(command).section(u'=', 0, 0);
        }
    }
    row("versions and data", {QStringLiteral("--backups"), QStringLiteral("--data=.")}, "--data");
    row("version and data", {QStringLiteral("--restore=1"), QStringLiteral("--data=.")}, "--data");
    row("during nothing", {QStringLiteral("--screenshot-during"), QStringLiteral("a.png")}, "--connect");
}

void TestHostOptions::wrongCommandLines()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, hint);
    const ParsedCommandLine parsed = Parse(arguments);
    QCOMPARE(parsed.outcome, Outcome::Invalid);
    QVERIFY2(parsed.text.contains(hint), qPrintable(parsed.text));
    QVERIFY(!parsed.text.contains(QLatin1Char('\n')));
}

void TestHostOptions::headlessOptions_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("headless");

    const auto row = [](const char* name, const QStringList& arguments, bool headless) {
        QTest::newRow(name) << arguments << headless;
    };
    row("list", {QStringLiteral("--list")}, true);
    row("add", {QStringLiteral("--add"), QStringLiteral("a.xml")}, true);
    row("connect", {QStringLiteral("--connect"), QStringLiteral("A")}, true);
    row("connect selected", {QStringLiteral("--connect-selected")}, true);
    row("wait", {QStringLiteral("--wait")}, true);
    row("picture", {QStringLiteral("--screenshot"), QStringLiteral("a.png")}, true);
    row("picture before", {QStringLiteral("--screenshot-before"), QStringLiteral("a.png")}, true);
    row("import", {QStringLiteral("--import"), QStringLiteral("a.xml")}, true);
    row("export", {QStringLiteral("--export"), QStringLiteral("a.xml")}, true);
    row("export to standard output", {QStringLiteral("--export"), QStringLiteral("-")}, true);
    row("trace", {QStringLiteral("--trace")}, false);
    row("places", {QStringLiteral("--config"), QStringLiteral("c"), QStringLiteral("--plugin"), QStringLiteral("p")},
        false);
}

void TestHostOptions::headlessOptions()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const bool, headless);
    const ParsedCommandLine parsed = Parse(arguments);
    QCOMPARE(parsed.outcome, Outcome::Run);
    QCOMPARE(parsed.options.IsHeadless(), headless);
}

void TestHostOptions::supportOptions()
{
    const ParsedCommandLine backups = Parse({QStringLiteral("--backups"), QStringLiteral("--json")});
    QCOMPARE(backups.outcome, Outcome::Run);
    QVERIFY(backups.options.backups && backups.options.json);
    QVERIFY(backups.options.IsSupportCommand());
    QVERIFY(!backups.options.IsHeadless());

    const ParsedCommandLine restore = Parse({QStringLiteral("--restore"), QStringLiteral("10")});
    QCOMPARE(restore.outcome, Outcome::Run);
    QCOMPARE(restore.options.versionToRestore, 10);
    QVERIFY(restore.options.IsSupportCommand());

    const ParsedCommandLine diagnose =
        Parse({QStringLiteral("--diagnose"), QStringLiteral("--json"), QStringLiteral("--data"), QStringLiteral("."),
               QStringLiteral("--plugin"), QStringLiteral("p"), QStringLiteral("--trace")});
    QCOMPARE(diagnose.outcome, Outcome::Run);
    QVERIFY(diagnose.options.diagnose && diagnose.options.json);
    QVERIFY(diagnose.options.IsSupportCommand());

    QVERIFY(!Parse({QStringLiteral("--list")}).options.IsSupportCommand());
    QCOMPARE(Parse({QStringLiteral("--export"), QStringLiteral("-")}).options.fileToExport,
             HostOptions::kStandardOutput);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestHostOptions)
#include "tst_hostoptions.moc"
