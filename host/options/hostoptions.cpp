// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/options/hostoptions.h"

#include "host/options/helptext.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

#include <utility>

namespace {

const QString kOn = QStringLiteral("on");
const QString kOff = QStringLiteral("off");

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
            "DIR in the configuration. Default: the stored one, else one of a settings file, else the installed "
            "samples."),
        QStringLiteral("DIR")};
    const QCommandLineOption m_name = {
        QStringLiteral("name"),
        QStringLiteral("Name of the plug-in's instance and of its configuration. Default: %1.")
            .arg(SessionOptions::kDefaultName),
        QStringLiteral("NAME")};
    const QCommandLineOption m_trace = {QStringLiteral("trace"),
                                        QStringLiteral("Write trace lines to standard error.")};
    const QCommandLineOption m_traceFile = {
        QStringLiteral("trace-file"),
        QStringLiteral(
            "Append trace lines to FILE. At 10 MiB it is renamed to FILE.1, FILE.1 to FILE.2, and so on up to "
            "FILE.5."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_language = {QStringLiteral("language"),
                                           QStringLiteral("Language of the dialog, such as \"de\" or \"de_AT\". "
                                                          "Default: that of a settings file, else the system's."),
                                           QStringLiteral("LOCALE")};
    const QCommandLineOption m_hidden = {QStringLiteral("hidden"),
                                         QStringLiteral("Start in the system tray. Without one, the dialog is shown.")};
    const QCommandLineOption m_autostart = {
        QStringLiteral("autostart"),
        QStringLiteral("Switch the start at login \"on\" or \"off\", and end: whether this user's session starts the "
                       "host in the system tray, with the --config, --data and --name given here."),
        QStringLiteral("on|off")};
    // For vexelctl, whose "diagnose" needs no display.
    QCommandLineOption m_describeDesktop{QStringLiteral("describe-desktop")};
};

Parser::Parser()
{
    m_parser.setApplicationDescription(HelpText::Description());
    m_describeDesktop.setFlags(QCommandLineOption::HiddenFromHelp);
    m_parser.addOptions({m_plugin, m_config, m_data, m_name, m_language, m_trace, m_traceFile, m_hidden, m_autostart,
                         m_help, m_version, m_describeDesktop});
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
    if (!m_parser.positionalArguments().isEmpty()) {
        return QStringLiteral("unexpected argument \"%1\"; commands are for vexelctl")
            .arg(m_parser.positionalArguments().constFirst());
    }
    for (const QCommandLineOption* option : {&m_plugin, &m_config, &m_data, &m_name, &m_traceFile, &m_language})
        if (m_parser.values(*option).contains(QString()))
            return QStringLiteral("--%1: the value must not be empty").arg(option->names().constFirst());
    if (const QString value = m_parser.value(m_autostart); m_parser.isSet(m_autostart) && value != kOn && value != kOff)
        return QStringLiteral("--autostart: neither \"on\" nor \"off\": %1").arg(value);
    if (m_parser.isSet(m_language))
        if (const QString error = LanguageError(m_parser.value(m_language)); !error.isEmpty())
            return error;
    return {};
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
    if (m_parser.isSet(m_name))
        options.name = m_parser.value(m_name);
    options.trace = m_parser.isSet(m_trace);
    options.traceFile = AbsolutePath(m_traceFile);
    if (m_parser.isSet(m_language))
        options.language = QLocale(m_parser.value(m_language));
    options.hidden = m_parser.isSet(m_hidden);
    if (m_parser.isSet(m_autostart))
        options.autostart = m_parser.value(m_autostart) == kOn;
    for (const auto& [option, value] : {std::pair{&m_config, options.configDirectory},
                                        std::pair{&m_data, options.dataDirectory}, std::pair{&m_name, options.name}})
        if (m_parser.isSet(*option))
            options.autostartOptions += {QStringLiteral("--") + option->names().constFirst(), value};
    options.describesDesktop = m_parser.isSet(m_describeDesktop);
    return options;
}

ParsedCommandLine Parser::Parse(const QStringList& arguments)
{
    using Outcome = ParsedCommandLine::Outcome;

    if (!m_parser.parse(arguments)) {
        // The parser's messages end with a full stop.
        QString error = m_parser.errorText();
        if (error.endsWith(u'.'))
            error.chop(1);
        return {Outcome::Invalid, error, {}};
    }
    if (m_parser.isSet(m_help))
        return {Outcome::Print, Help(), {}};
    if (m_parser.isSet(m_version))
        return {Outcome::Print, QStringLiteral("vexelhost " VEXEL_VERSION "\n"), {}};
    if (const QString error = CheckGivenValues(); !error.isEmpty())
        return {Outcome::Invalid, error, {}};
    return {Outcome::Run, {}, Read()};
}

} // namespace

ParsedCommandLine ParseCommandLine(const QStringList& arguments)
{
    return Parser().Parse(arguments);
}
