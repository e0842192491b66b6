#include "host/options/hostoptions.h"

#include "host/options/helptext.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>

namespace {

const QString kDefaultName = QStringLiteral("VexelConnectDlg");

class Parser
{
public:
    Parser();
    ParsedCommandLine Parse(const QStringList& arguments);

private:
    QString Help() const;
    QString CheckGivenValues() const;
    QString AbsolutePath(const QCommandLineOption& option) const;
    HostOptions Read() const;

    QCommandLineParser m_parser;
    const QCommandLineOption m_help = {{QStringLiteral("h"), QStringLiteral("help")},
                                       QStringLiteral("Print this help.")};
    const QCommandLineOption m_version = {{QStringLiteral("v"), QStringLiteral("version")},
                                          QStringLiteral("Print the version.")};
    const QCommandLineOption m_plugin = {
        QStringLiteral("plugin"),
        QStringLiteral("Load the plug-in from FILE. Default: the one installed with the host."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_config = {
        QStringLiteral("config"),
        QStringLiteral(
            "Use the configuration in DIR, which is created if missing. Default: this user's configuration folder."),
        QStringLiteral("DIR")};
    const QCommandLineOption m_data = {
        QStringLiteral("data"),
        QStringLiteral(
            "Read CfgVEXEL.xml and TypeApplicationMappings.xml, which list the applications, from DIR, and store "
            "DIR in the configuration. Default: the stored one, else the installed samples."),
        QStringLiteral("DIR")};
    const QCommandLineOption m_name = {
        QStringLiteral("name"),
        QStringLiteral("Name of the plug-in's instance and of its configuration. Default: %1.").arg(kDefaultName),
        QStringLiteral("NAME")};
    const QCommandLineOption m_trace = {QStringLiteral("trace"),
                                        QStringLiteral("Write trace lines to standard error.")};
    const QCommandLineOption m_traceFile = {
        QStringLiteral("trace-file"),
        QStringLiteral(
            "Append trace lines to FILE. At 10 MiB it is renamed to FILE.1, FILE.1 to FILE.2, and so on up to "
            "FILE.5."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_language = {
        QStringLiteral("language"),
        QStringLiteral("Language of the dialog, such as \"de\" or \"de_AT\". Default: the system's."),
        QStringLiteral("LOCALE")};
    const QCommandLineOption m_import = {
        QStringLiteral("import"), QStringLiteral("Replace all entries by those of the connection list FILE (XML)."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_add = {
        QStringLiteral("add"),
        QStringLiteral("Append the entries of the connection list FILE (XML) to the list. Repeatable."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_export = {
        QStringLiteral("export"),
        QStringLiteral("Write all entries to FILE as a connection list (XML). \"-\": to standard output."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_list = {QStringLiteral("list"),
                                       QStringLiteral("Print the entries as a table, before anything is connected.")};
    const QCommandLineOption m_json = {
        QStringLiteral("json"),
        QStringLiteral(
            "With --list, --backups or --diagnose: print one JSON document. Not together with --wait, which prints "
            "lines.")};
    const QCommandLineOption m_connect = {
        QStringLiteral("connect"),
        QStringLiteral(
            "Connect the entries called NAME, ticked or not; the ticks do not change. Repeatable. If any NAME is "
            "unknown, nothing is connected."),
        QStringLiteral("NAME")};
    const QCommandLineOption m_connectSelected = {QStringLiteral("connect-selected"),
                                                  QStringLiteral("Connect the ticked entries.")};
    const QCommandLineOption m_wait = {
        QStringLiteral("wait"),
        QStringLiteral("Wait until all connected entries are \"Free\" again. Prints each change of status as a line "
                       "\"TIME NAME: Free -> In Use\".")};
    const QCommandLineOption m_screenshotBefore = {QStringLiteral("screenshot-before"),
                                                   QStringLiteral("Write a screenshot to FILE before connecting."),
                                                   QStringLiteral("FILE")};
    const QCommandLineOption m_screenshotDuring = {
        QStringLiteral("screenshot-during"),
        QStringLiteral("Write a screenshot to FILE after connecting. Needs --connect or --connect-selected."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_screenshot = {
        QStringLiteral("screenshot"), QStringLiteral("Write a screenshot of the dialog to FILE (PNG) at the end."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_backups = {
        QStringLiteral("backups"),
        QStringLiteral(
            "Print the versions of the stored list, newest first: number, date and time, number of entries, file.")};
    const QCommandLineOption m_restore = {
        QStringLiteral("restore"),
        QStringLiteral("Restore version N (see --backups). The current state becomes version 1."), QStringLiteral("N")};
    const QCommandLineOption m_diagnose = {
        QStringLiteral("diagnose"),
        QStringLiteral(
            "Print a report for a support desk: versions, paths, what was read from the data directory and what "
            "was ignored, the state of the configuration and who can access it, the state of the starter's port.")};
};

Parser::Parser()
{
    m_parser.setApplicationDescription(HelpText::Description());
    m_parser.addOptions({m_plugin,
                         m_config,
                         m_data,
                         m_name,
                         m_trace,
                         m_traceFile,
                         m_language,
                         m_import,
                         m_add,
                         m_export,
                         m_list,
                         m_json,
                         m_connect,
                         m_connectSelected,
                         m_wait,
                         m_screenshot,
                         m_screenshotBefore,
                         m_screenshotDuring,
                         m_backups,
                         m_restore,
                         m_diagnose,
                         m_help,
                         m_version});
}

QString Parser::Help() const
{
    // The parser's first line contains the path that the program was started by.
    const QString text = m_parser.helpText();
    return QStringLiteral("Usage: vexelhost [options]") + text.mid(text.indexOf(QLatin1Char('\n'))) + HelpText::Notes();
}

/// Returns why a value on the command line is invalid; empty if all are valid.
QString Parser::CheckGivenValues() const
{
    if (!m_parser.positionalArguments().isEmpty())
        return QStringLiteral("unexpected argument \"%1\"").arg(m_parser.positionalArguments().constFirst());

    for (const QCommandLineOption* option :
         {&m_plugin, &m_config, &m_data, &m_name, &m_traceFile, &m_language, &m_import, &m_add, &m_export,
          &m_screenshot, &m_screenshotBefore, &m_screenshotDuring}) {
        const QStringList values = m_parser.values(*option);
        if (values.contains(QString()))
            return QStringLiteral("--%1: the value must not be empty").arg(option->names().constFirst());
    }

    // Of settings the last one counts. These are actions, and a second one would be ignored.
    for (const QCommandLineOption* option : {&m_import, &m_export, &m_restore})
        if (m_parser.values(*option).size() > 1)
            return QStringLiteral("--%1 can be given only once").arg(option->names().constFirst());
    if (m_parser.isSet(m_restore)) {
        bool isNumber = false;
        if (m_parser.value(m_restore).toInt(&isNumber) < 1 || !isNumber)
            return QStringLiteral("--restore: not the number of a version (see --backups)");
    }

    const QString language = m_parser.value(m_language);
    if (!language.isEmpty() && language != QLatin1String("C") && QLocale(language) == QLocale::c())
        return QStringLiteral("--language: no such locale: %1").arg(language);

    // The value is stored, so a typo would persist.
    if (m_parser.isSet(m_data) && !QFileInfo(m_parser.value(m_data)).isDir())
        return QStringLiteral("--data: no such directory: %1").arg(m_parser.value(m_data));
    return {};
}

/// Why the options cannot be used together; empty when they can.
QString CheckCombination(const HostOptions& options)
{
    const bool restores = options.versionToRestore > 0;
    const int supportCommands = int(options.backups) + int(restores) + int(options.diagnose);
    const bool printsExport = options.fileToExport == HostOptions::kStandardOutput;
    struct Rule
    {
        bool isBroken;
        const char* message;
    };
    const std::array rules{
        Rule{supportCommands > 1, "of --backups, --restore and --diagnose only one can be used at a time"},
        Rule{supportCommands > 0 && options.IsHeadless(),
             "--backups, --restore and --diagnose cannot be used together with work on the entries or the dialog"},
        // It would have to be stored, and these leave the configuration's other values alone.
        Rule{!options.dataDirectory.isEmpty() && (options.backups || restores),
             "--data cannot be used together with --backups or --restore"},
        Rule{options.json && !options.list && !options.backups && !options.diagnose,
             "--json needs --list, --backups or --diagnose"},
        Rule{printsExport && (options.list || options.wait),
             "--export - cannot be used together with --list or --wait: they print, too"},
        Rule{options.json && options.wait,
             "--json and --wait cannot be used together: one prints a document, the other lines"},
        Rule{options.connectSelected && !options.namesToConnect.isEmpty(),
             "--connect and --connect-selected cannot be used together"},
        Rule{!options.screenshotDuring.isEmpty() && !options.Connects(),
             "--screenshot-during needs --connect or --connect-selected"},
    };
    const auto broken = std::find_if(rules.begin(), rules.end(), [](const Rule& rule) { return rule.isBroken; });
    return broken == rules.end() ? QString() : QString::fromLatin1(broken->message);
}

QString Parser::AbsolutePath(const QCommandLineOption& option) const
{
    const QString path = m_parser.value(option);
    return path.isEmpty() ? QString() : QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

HostOptions Parser::Read() const
{
    HostOptions options;
    options.plugin = AbsolutePath(m_plugin);
    options.configDirectory = AbsolutePath(m_config);
    options.dataDirectory = AbsolutePath(m_data);
    options.name = m_parser.isSet(m_name) ? m_parser.value(m_name) : kDefaultName;
    options.trace = m_parser.isSet(m_trace);
    options.traceFile = AbsolutePath(m_traceFile);
    if (m_parser.isSet(m_language))
        options.language = QLocale(m_parser.value(m_language));
    options.fileToImport = AbsolutePath(m_import);
    const bool printsExport = m_parser.value(m_export) == HostOptions::kStandardOutput;
    options.fileToExport = printsExport ? HostOptions::kStandardOutput : AbsolutePath(m_export);
    for (const QString& file : m_parser.values(m_add))
        options.filesToAdd.append(QFileInfo(file).absoluteFilePath());
    options.list = m_parser.isSet(m_list);
    options.json = m_parser.isSet(m_json);
    options.namesToConnect = m_parser.values(m_connect);
    options.namesToConnect.removeDuplicates();
    options.connectSelected = m_parser.isSet(m_connectSelected);
    options.wait = m_parser.isSet(m_wait);
    options.screenshotBefore = AbsolutePath(m_screenshotBefore);
    options.screenshotDuring = AbsolutePath(m_screenshotDuring);
    options.screenshot = AbsolutePath(m_screenshot);
    options.backups = m_parser.isSet(m_backups);
    options.versionToRestore = m_parser.value(m_restore).toInt();
    options.diagnose = m_parser.isSet(m_diagnose);
    return options;
}

ParsedCommandLine Parser::Parse(const QStringList& arguments)
{
    using Outcome = ParsedCommandLine::Outcome;

    if (!m_parser.parse(arguments))
        return {Outcome::Invalid, m_parser.errorText(), {}};
    if (m_parser.isSet(m_help))
        return {Outcome::Print, Help(), {}};
    if (m_parser.isSet(m_version))
        return {Outcome::Print, QStringLiteral("vexelhost " VEXEL_VERSION "\n"), {}};
    if (const QString error = CheckGivenValues(); !error.isEmpty())
        return {Outcome::Invalid, error, {}};
    const HostOptions options = Read();
    if (const QString error = CheckCombination(options); !error.isEmpty())
        return {Outcome::Invalid, error, {}};
    return {Outcome::Run, {}, options};
}

} // namespace

bool HostOptions::Connects() const
{
    return connectSelected || !namesToConnect.isEmpty();
}

bool HostOptions::IsHeadless() const
{
    return list || wait || Connects() || !fileToImport.isEmpty() || !filesToAdd.isEmpty() || !fileToExport.isEmpty() ||
           !screenshot.isEmpty() || !screenshotBefore.isEmpty() || !screenshotDuring.isEmpty();
}

bool HostOptions::IsReadOnly() const
{
    return IsHeadless() && !Connects() && fileToImport.isEmpty() && filesToAdd.isEmpty();
}

bool HostOptions::IsSupportCommand() const
{
    return backups || versionToRestore > 0 || diagnose;
}

ParsedCommandLine ParseCommandLine(const QStringList& arguments)
{
    return Parser().Parse(arguments);
}
