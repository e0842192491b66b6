#include "host/hostoptions.h"

#include "host/helptext.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace {

const QString s_defaultName = QStringLiteral("VexelConnectDlg");

class Parser
{
public:
    Parser();
    ParsedCommandLine Parse(const QStringList& arguments);

private:
    QString Help() const;
    QString CheckGivenValues() const;
    QString CheckCombination(const HostOptions& options) const;
    QString AbsolutePath(const QCommandLineOption& option) const;
    HostOptions Read() const;

    QCommandLineParser m_Parser;
    const QCommandLineOption m_Help = {{QStringLiteral("h"), QStringLiteral("help")},
                                       QStringLiteral("Print this help.")};
    const QCommandLineOption m_Version = {{QStringLiteral("v"), QStringLiteral("version")},
                                          QStringLiteral("Print the version.")};
    const QCommandLineOption m_Plugin = {
        QStringLiteral("plugin"),
        QStringLiteral("Load the plug-in from FILE. Default: the one installed with the host."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_Config = {
        QStringLiteral("config"),
        QStringLiteral("Keep the configuration in DIR, which is made where it is missing. Default: this user's usual "
                       "place for configurations."),
        QStringLiteral("DIR")};
    const QCommandLineOption m_Data = {
        QStringLiteral("data"),
        QStringLiteral("Read CfgVEXEL.xml and TypeApplicationMappings.xml, which say what applications there are, "
                       "from DIR, and store that. Default: the directory last stored, else the installed samples."),
        QStringLiteral("DIR")};
    const QCommandLineOption m_Name = {
        QStringLiteral("name"),
        QStringLiteral("Name of the plug-in's instance and of its own configuration. Default: %1.").arg(s_defaultName),
        QStringLiteral("NAME")};
    const QCommandLineOption m_Trace = {QStringLiteral("trace"),
                                        QStringLiteral("Write trace lines to standard error.")};
    const QCommandLineOption m_TraceFile = {
        QStringLiteral("trace-file"),
        QStringLiteral("Append trace lines to FILE. Beyond 10 MiB it becomes FILE.1, an earlier FILE.1 becomes FILE.2, "
                       "and so on up to FILE.5."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_Language = {
        QStringLiteral("language"),
        QStringLiteral("Language of the dialog, as in \"de\" or \"de_AT\". Default: the system's."),
        QStringLiteral("LOCALE")};
    const QCommandLineOption m_Import = {
        QStringLiteral("import"),
        QStringLiteral("Put the entries of the connection list FILE (XML) in place of all entries."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_Add = {
        QStringLiteral("add"),
        QStringLiteral("Append the entries of the connection list FILE (XML) to the list. Repeatable."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_Export = {
        QStringLiteral("export"),
        QStringLiteral("Write the whole list to FILE, as --import and the dialog read it. \"-\": to standard output."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_List = {QStringLiteral("list"),
                                       QStringLiteral("Print the entries as a table, before anything is connected.")};
    const QCommandLineOption m_Json = {
        QStringLiteral("json"),
        QStringLiteral("With --list, --backups or --diagnose: print one JSON document, with numbers and "
                       "texts. Not together with --wait, which prints lines.")};
    const QCommandLineOption m_Connect = {
        QStringLiteral("connect"),
        QStringLiteral("Connect the entries called NAME, whether they are ticked or not; the ticks stay as they are. "
                       "Repeatable. If any NAME is unknown, nothing is connected."),
        QStringLiteral("NAME")};
    const QCommandLineOption m_ConnectSelected = {QStringLiteral("connect-selected"),
                                                  QStringLiteral("Connect the ticked entries.")};
    const QCommandLineOption m_Wait = {
        QStringLiteral("wait"),
        QStringLiteral("Wait until every entry that was connected is \"Free\" again. Prints each change of status as "
                       "a line \"TIME NAME: Free -> In Use\".")};
    const QCommandLineOption m_ScreenshotBefore = {
        QStringLiteral("screenshot-before"),
        QStringLiteral("Write a picture of the dialog before anything is connected to FILE (PNG)."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_ScreenshotDuring = {
        QStringLiteral("screenshot-during"),
        QStringLiteral("Write a picture of the dialog to FILE as soon as everything is connected. Needs --connect or "
                       "--connect-selected."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_Screenshot = {QStringLiteral("screenshot"),
                                             QStringLiteral("Write a picture of the dialog to FILE at the end."),
                                             QStringLiteral("FILE")};
    const QCommandLineOption m_Backups = {
        QStringLiteral("backups"),
        QStringLiteral("Print the versions of the stored list, newest first, with number, date and time, number of "
                       "entries, and file.")};
    const QCommandLineOption m_Restore = {
        QStringLiteral("restore"),
        QStringLiteral("Bring version N back, as --backups numbers them. What it replaces becomes version 1."),
        QStringLiteral("N")};
    const QCommandLineOption m_Diagnose = {
        QStringLiteral("diagnose"),
        QStringLiteral("Print what a support desk asks first: versions, paths, what was read from the data directory "
                       "and what of it was dropped, the state of the configuration and of the starter's port.")};
};

Parser::Parser()
{
    m_Parser.setApplicationDescription(HelpText::Description());
    m_Parser.addOptions({m_Plugin,
                         m_Config,
                         m_Data,
                         m_Name,
                         m_Trace,
                         m_TraceFile,
                         m_Language,
                         m_Import,
                         m_Add,
                         m_Export,
                         m_List,
                         m_Json,
                         m_Connect,
                         m_ConnectSelected,
                         m_Wait,
                         m_Screenshot,
                         m_ScreenshotBefore,
                         m_ScreenshotDuring,
                         m_Backups,
                         m_Restore,
                         m_Diagnose,
                         m_Help,
                         m_Version});
}

QString Parser::Help() const
{
    // The parser's own first line names whatever path the program was started by.
    const QString text = m_Parser.helpText();
    return QStringLiteral("Usage: vexelhost [options]") + text.mid(text.indexOf(QLatin1Char('\n'))) + HelpText::Notes();
}

/// Why a value given on the command line cannot be taken; empty when all can.
QString Parser::CheckGivenValues() const
{
    if (!m_Parser.positionalArguments().isEmpty())
        return QStringLiteral("unexpected argument \"%1\"").arg(m_Parser.positionalArguments().constFirst());

    for (const QCommandLineOption* option :
         {&m_Plugin, &m_Config, &m_Data, &m_Name, &m_TraceFile, &m_Language, &m_Import, &m_Add, &m_Export,
          &m_Screenshot, &m_ScreenshotBefore, &m_ScreenshotDuring}) {
        const QStringList values = m_Parser.values(*option);
        if (values.contains(QString()))
            return QStringLiteral("--%1 needs a value that is not empty").arg(option->names().constFirst());
    }

    // The other values are settings, of which the last one counts; these are work, and all of it is meant.
    for (const QCommandLineOption* option : {&m_Import, &m_Export, &m_Restore}) {
        if (m_Parser.values(*option).size() > 1)
            return QStringLiteral("--%1 can be given only once").arg(option->names().constFirst());
    }
    if (m_Parser.isSet(m_Restore)) {
        bool isNumber = false;
        if (m_Parser.value(m_Restore).toInt(&isNumber) < 1 || !isNumber)
            return QStringLiteral("--restore needs the number of a version, as --backups prints it");
    }

    const QString language = m_Parser.value(m_Language);
    if (!language.isEmpty() && language != QLatin1String("C") && QLocale(language) == QLocale::c())
        return QStringLiteral("--language: no such locale: %1").arg(language);

    // Stored as it is given, so a slip of the finger would last.
    if (m_Parser.isSet(m_Data) && !QFileInfo(m_Parser.value(m_Data)).isDir())
        return QStringLiteral("--data: no such directory: %1").arg(m_Parser.value(m_Data));
    return {};
}

QString Parser::CheckCombination(const HostOptions& options) const
{
    const int supportCommands =
        (options.backups ? 1 : 0) + (options.versionToRestore > 0 ? 1 : 0) + (options.diagnose ? 1 : 0);
    if (supportCommands > 1)
        return QStringLiteral("of --backups, --restore and --diagnose only one can be used at a time");
    if (supportCommands > 0 && options.IsHeadless()) {
        return QStringLiteral("--backups, --restore and --diagnose cannot be used together with work on the entries "
                              "or the dialog");
    }
    // It would have to be stored, and these leave the configuration's other values alone.
    if (!options.dataDirectory.isEmpty() && (options.backups || options.versionToRestore > 0))
        return QStringLiteral("--data cannot be used together with --backups or --restore");

    if (options.json && !options.list && !options.backups && !options.diagnose)
        return QStringLiteral("--json needs --list, --backups or --diagnose");
    if (options.fileToExport == HostOptions::s_standardOutput && (options.list || options.wait))
        return QStringLiteral("--export - cannot be used together with --list or --wait: they print, too");
    if (options.json && options.wait)
        return QStringLiteral("--json and --wait cannot be used together: one prints a document, the other lines");
    if (options.connectSelected && !options.namesToConnect.isEmpty())
        return QStringLiteral("--connect and --connect-selected cannot be used together");
    if (!options.screenshotDuring.isEmpty() && !options.Connects())
        return QStringLiteral("--screenshot-during needs --connect or --connect-selected");
    return {};
}

QString Parser::AbsolutePath(const QCommandLineOption& option) const
{
    const QString path = m_Parser.value(option);
    return path.isEmpty() ? QString() : QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

HostOptions Parser::Read() const
{
    HostOptions options;
    options.plugin = AbsolutePath(m_Plugin);
    options.configDirectory = AbsolutePath(m_Config);
    options.dataDirectory = AbsolutePath(m_Data);
    options.name = m_Parser.isSet(m_Name) ? m_Parser.value(m_Name) : s_defaultName;
    options.trace = m_Parser.isSet(m_Trace);
    options.traceFile = AbsolutePath(m_TraceFile);
    if (m_Parser.isSet(m_Language))
        options.language = QLocale(m_Parser.value(m_Language));
    options.fileToImport = AbsolutePath(m_Import);
    const bool printsExport = m_Parser.value(m_Export) == HostOptions::s_standardOutput;
    options.fileToExport = printsExport ? HostOptions::s_standardOutput : AbsolutePath(m_Export);
    for (const QString& file : m_Parser.values(m_Add))
        options.filesToAdd.append(QFileInfo(file).absoluteFilePath());
    options.list = m_Parser.isSet(m_List);
    options.json = m_Parser.isSet(m_Json);
    options.namesToConnect = m_Parser.values(m_Connect);
    options.namesToConnect.removeDuplicates();
    options.connectSelected = m_Parser.isSet(m_ConnectSelected);
    options.wait = m_Parser.isSet(m_Wait);
    options.screenshotBefore = AbsolutePath(m_ScreenshotBefore);
    options.screenshotDuring = AbsolutePath(m_ScreenshotDuring);
    options.screenshot = AbsolutePath(m_Screenshot);
    options.backups = m_Parser.isSet(m_Backups);
    options.versionToRestore = m_Parser.value(m_Restore).toInt();
    options.diagnose = m_Parser.isSet(m_Diagnose);
    return options;
}

ParsedCommandLine Parser::Parse(const QStringList& arguments)
{
    using Outcome = ParsedCommandLine::Outcome;

    if (!m_Parser.parse(arguments))
        return {Outcome::Wrong, m_Parser.errorText(), {}};
    if (m_Parser.isSet(m_Help))
        return {Outcome::Print, Help(), {}};
    if (m_Parser.isSet(m_Version))
        return {Outcome::Print, QStringLiteral("vexelhost " VEXEL_VERSION "\n"), {}};
    if (const QString error = CheckGivenValues(); !error.isEmpty())
        return {Outcome::Wrong, error, {}};
    const HostOptions options = Read();
    if (const QString error = CheckCombination(options); !error.isEmpty())
        return {Outcome::Wrong, error, {}};
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

bool HostOptions::ShowsOnly() const
{
    return IsHeadless() && !Connects() && fileToImport.isEmpty() && filesToAdd.isEmpty();
}

bool HostOptions::IsForSupport() const
{
    return backups || versionToRestore > 0 || diagnose;
}

ParsedCommandLine ParseCommandLine(const QStringList& arguments)
{
    return Parser().Parse(arguments);
}
