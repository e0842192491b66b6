#include "host/hostoptions.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace {

const QString s_defaultName = QStringLiteral("VexelConnectDlg");

// Both broken by hand at the width that QCommandLineParser uses for the options.
QString Description()
{
    return QStringLiteral(R"(
Shows the connect dialog: a list of connection entries, of which the ticked
ones are connected by starting the user-interface application that serves each
of them.)");
}

/// What the options alone do not say.
QString Notes()
{
    return QStringLiteral(R"(
With a person at the dialog:
  "Close" ends the host while no entry is in use. While one is, the host keeps
  running, says so on standard error, and shows the dialog again when the last
  application has ended. "Connect" hides the dialog until then, too; when it
  could start nothing, the dialog is back at once. SIGINT, SIGTERM and the end
  of the session end the host at any time. Whichever way it ends, it saves the
  list, the filter and the window's size first; applications that it started
  end with it.

Without a person (headless):
  --add, --list, --connect, --connect-selected, --wait and the --screenshot
  options need no display (without one, QT_QPA_PLATFORM=offscreen is set for
  what they start, too) and are done in this order: add, list, picture before,
  connect, picture during, wait, picture at the end. Then the host saves and
  ends, and the applications that it started end with it: use --wait to let
  them live.
  What the dialog would say in a box is written to standard error.

Environment:
  The host looks for programs in its own folder first, and tells the
  applications that it starts where the configuration is: VEXEL_CONFIG_DIR.

Exit codes:
  0  done
  1  the command line is wrong, or a file it names cannot be written
  2  the plug-in, the configuration or a file to add cannot be used, the
     configuration could not be saved, or there is no display to show the
     dialog on
  3  something asked for could not be connected
)");
}

class Parser
{
public:
    Parser();
    ParsedCommandLine Parse(const QStringList& arguments);

private:
    QString HelpText() const;
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
    const QCommandLineOption m_TraceFile = {QStringLiteral("trace-file"), QStringLiteral("Append trace lines to FILE."),
                                            QStringLiteral("FILE")};
    const QCommandLineOption m_Language = {
        QStringLiteral("language"),
        QStringLiteral("Language of the dialog, as in \"de\" or \"de_AT\". Default: the system's."),
        QStringLiteral("LOCALE")};
    const QCommandLineOption m_Add = {
        QStringLiteral("add"),
        QStringLiteral("Append the entries of the connection list FILE (XML) to the list. Repeatable."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_List = {QStringLiteral("list"),
                                       QStringLiteral("Print the entries as a table, before anything is connected.")};
    const QCommandLineOption m_Json = {
        QStringLiteral("json"),
        QStringLiteral("With --list: print one JSON document instead, with numbers and texts. Not together with "
                       "--wait, which prints lines.")};
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
};

Parser::Parser()
{
    m_Parser.setApplicationDescription(Description());
    m_Parser.addOptions({m_Plugin, m_Config, m_Data, m_Name, m_Trace, m_TraceFile, m_Language, m_Add, m_List, m_Json,
                         m_Connect, m_ConnectSelected, m_Wait, m_Screenshot, m_ScreenshotBefore, m_ScreenshotDuring,
                         m_Help, m_Version});
}

QString Parser::HelpText() const
{
    // The parser's own first line names whatever path the program was started by.
    const QString text = m_Parser.helpText();
    return QStringLiteral("Usage: vexelhost [options]") + text.mid(text.indexOf(QLatin1Char('\n'))) + Notes();
}

/// Why a value given on the command line cannot be taken; empty when all can.
QString Parser::CheckGivenValues() const
{
    if (!m_Parser.positionalArguments().isEmpty())
        return QStringLiteral("unexpected argument \"%1\"").arg(m_Parser.positionalArguments().constFirst());

    for (const QCommandLineOption* option : {&m_Plugin, &m_Config, &m_Data, &m_Name, &m_TraceFile, &m_Language, &m_Add,
                                             &m_Screenshot, &m_ScreenshotBefore, &m_ScreenshotDuring}) {
        const QStringList values = m_Parser.values(*option);
        if (values.contains(QString()))
            return QStringLiteral("--%1 needs a value that is not empty").arg(option->names().constFirst());
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
    if (options.json && !options.list)
        return QStringLiteral("--json needs --list");
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
    return options;
}

ParsedCommandLine Parser::Parse(const QStringList& arguments)
{
    using Outcome = ParsedCommandLine::Outcome;

    if (!m_Parser.parse(arguments))
        return {Outcome::Wrong, m_Parser.errorText(), {}};
    if (m_Parser.isSet(m_Help))
        return {Outcome::Print, HelpText(), {}};
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
    return list || wait || Connects() || !filesToAdd.isEmpty() || !screenshot.isEmpty() ||
           !screenshotBefore.isEmpty() || !screenshotDuring.isEmpty();
}

ParsedCommandLine ParseCommandLine(const QStringList& arguments)
{
    return Parser().Parse(arguments);
}
