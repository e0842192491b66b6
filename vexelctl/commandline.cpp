// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/commandline.h"

#include "vexelctl/completion.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <vector>

namespace {

using Outcome = ParsedCtlCommandLine::Outcome;

/// The number of letters to insert, remove or replace in `one` to make it `other`.
qsizetype EditDistance(const QString& one, const QString& other)
{
    std::vector<qsizetype> distances(static_cast<std::size_t>(other.size()) + 1);
    for (std::size_t i = 0; i < distances.size(); ++i)
        distances[i] = static_cast<qsizetype>(i);
    for (const QChar letter : one) {
        qsizetype diagonal = distances[0]++;
        for (std::size_t i = 1; i < distances.size(); ++i) {
            const qsizetype replaced = diagonal + (other.at(static_cast<qsizetype>(i) - 1) == letter ? 0 : 1);
            diagonal = distances[i];
            distances[i] = std::min({distances[i] + 1, distances[i - 1] + 1, replaced});
        }
    }
    return distances.back();
}

ParsedCtlCommandLine Invalid(const QString& error)
{
    return {Outcome::Invalid, error, {}};
}

ParsedCtlCommandLine UnknownCommand(const QString& word)
{
    // Of a short word, much less than half must be wrong, or the suggestion would be a guess.
    constexpr qsizetype kNear = 2;
    QString nearest;
    qsizetype smallest = std::min(kNear, (word.size() - 1) / 2) + 1;
    if (word.size() < 30) {
        for (const CommandInfo& info : AllCommands()) {
            const QString name = QLatin1String(info.name);
            if (const qsizetype distance = EditDistance(word, name); distance < smallest) {
                smallest = distance;
                nearest = name;
            }
        }
    }
    const QString hint = nearest.isEmpty() ? QStringLiteral(" (see vexelctl --help)")
                                           : QStringLiteral("; did you mean \"%1\"?").arg(nearest);
    return Invalid(QStringLiteral("unknown command \"%1\"").arg(word) + hint);
}

/// `text` in lines as long as those of the parser, which wraps only the descriptions of options and arguments.
QString Wrapped(const QString& text)
{
    constexpr qsizetype kWidth = 79;
    QString lines;
    qsizetype length = 0;
    for (const QString& word : text.split(QLatin1Char(' '))) {
        const bool fits = length + 1 + word.size() <= kWidth;
        if (length > 0)
            lines += QLatin1Char(fits ? ' ' : '\n');
        length = (length > 0 && fits ? length + 1 : 0) + word.size();
        lines += word;
    }
    return lines;
}

/// The parser's first line contains the path that the program was started by.
QString WithUsage(const QString& usage, const QString& helpText)
{
    return QStringLiteral("Usage: ") + usage + helpText.mid(helpText.indexOf(QLatin1Char('\n')));
}

QString GeneralHelp()
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QLatin1Char('\n') +
        Wrapped(QStringLiteral("Reads, changes and connects the entries of the connect dialog. If a host runs on the "
                               "configuration, the command is passed to it; otherwise vexelctl works by itself.")));
    for (const CommandInfo& info : AllCommands())
        parser.addPositionalArgument(QLatin1String(info.name), QLatin1String(info.summary));
    parser.addOptions({{{QStringLiteral("h"), QStringLiteral("help")},
                        QStringLiteral("Print this help. After a COMMAND: its arguments and options.")},
                       {{QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Print the version.")}});
    QString text = WithUsage(QStringLiteral("vexelctl COMMAND [options]"), parser.helpText());
    text.replace(QStringLiteral("\nArguments:\n"), QStringLiteral("\nCommands:\n"));
    return text + QStringLiteral(R"(
Settings files:
  The files Vexel/vexelhost.ini set the data directory and the language where
  no option does; see vexelhost --help. "diagnose" prints what they set.

Exit codes:
  0    done
  1    the command line is invalid, or there is no version with the number to
       restore
  2    the plug-in, the configuration or a file cannot be used, or the output
       cannot be written
  3    an entry could not be connected, or its application crashed or ended
       with another code than 0
  4    refused: a host or another vexelctl is busy, does not answer or has
       another version, or the command needs a running host
  130  interrupted (Ctrl+C); on Unix 128 and the number of any other signal
)");
}

class Parser
{
public:
    explicit Parser(const CommandInfo& info);
    ParsedCtlCommandLine Parse(const QStringList& arguments);

private:
    QString Help() const;
    QString CheckArguments() const;
    QString CheckOptions() const;
    QString CheckCombination() const;
    CtlOptions Read() const;

    bool Has(const char* option) const { return m_info.FindOption(option); }
    bool IsSet(const char* option) const { return Has(option) && m_parser.isSet(QLatin1String(option)); }
    QString Value(const char* option) const { return Has(option) ? m_parser.value(QLatin1String(option)) : QString(); }
    QString AbsolutePath(const char* option) const;

    const CommandInfo& m_info;
    QCommandLineParser m_parser;
};

Parser::Parser(const CommandInfo& info)
    : m_info(info)
{
    const QString notes = QLatin1String(info.notes);
    m_parser.setApplicationDescription(
        QLatin1Char('\n') +
        Wrapped(QLatin1String(info.summary) + (notes.isEmpty() ? QString() : QLatin1Char(' ') + notes)));
    for (const OptionInfo& option : info.options) {
        QStringList names{QLatin1String(option.name)};
        if (names.constFirst() == QLatin1String("help"))
            names.prepend(QStringLiteral("h"));
        m_parser.addOption({names, QLatin1String(option.description), QLatin1String(option.value)});
    }
    if (*info.argument)
        m_parser.addPositionalArgument(QLatin1String(info.argument), QLatin1String(info.argumentDescription));
}

QString Parser::Help() const
{
    QString usage = QStringLiteral("vexelctl %1 [options]").arg(QLatin1String(m_info.name));
    if (*m_info.argument)
        usage +=
            QLatin1Char(' ') + QLatin1String(m_info.argument) + QLatin1String(m_info.maxArguments > 1 ? "..." : "");
    return WithUsage(usage, m_parser.helpText());
}

/// Returns why the positional arguments are invalid; empty if they are valid.
QString Parser::CheckArguments() const
{
    const QStringList arguments = m_parser.positionalArguments();
    if (arguments.size() > m_info.maxArguments)
        return QStringLiteral("unexpected argument \"%1\"").arg(arguments.at(m_info.maxArguments));
    const QString argument = QLatin1String(m_info.argument);
    if (arguments.size() < m_info.minArguments)
        return QStringLiteral("%1 is missing").arg(argument);
    if (arguments.contains(QString()))
        return QStringLiteral("%1 must not be empty").arg(argument);
    if (m_info.argumentKind == ValueKind::File && arguments.count(CtlOptions::kStandardStream) > 1)
        return QStringLiteral("standard input can be read only once");
    if (m_info.command == Command::Restore) {
        bool isNumber = false;
        if (arguments.constFirst().toInt(&isNumber) < 1 || !isNumber)
            return QStringLiteral("\"%1\" is not the number of a version, as backups prints it")
                .arg(arguments.constFirst());
    }
    return {};
}

/// Returns why the value of an option is invalid; empty if all are valid.
QString Parser::CheckOptions() const
{
    for (const OptionInfo& option : m_info.options)
        if (option.kind != ValueKind::None && m_parser.values(QLatin1String(option.name)).contains(QString()))
            return QStringLiteral("--%1: the value must not be empty").arg(QLatin1String(option.name));

    // Of settings the last one counts. These are actions, and a second one would be ignored.
    for (const char* option : {"screenshot", "screenshot-during"}) {
        if (!Has(option))
            continue;
        const QStringList values = m_parser.values(QLatin1String(option));
        if (values.size() > 1)
            return QStringLiteral("--%1 can be given only once").arg(QLatin1String(option));
        if (values.contains(CtlOptions::kStandardStream))
            return QStringLiteral("--%1: needs a file, because standard output is for the changes of status")
                .arg(QLatin1String(option));
    }

    if (IsSet("language")) {
        if (const QString error = LanguageError(Value("language")); !error.isEmpty())
            return error;
    }
    // Commands without --force only look.
    return IsSet("data") ? DataDirectoryError(Value("data"), IsSet("force") || !Has("force")) : QString();
}

/// Returns why the options cannot be used together; empty if they can.
QString Parser::CheckCombination() const
{
    if (Has("data") && IsSet("force") && !IsSet("data"))
        return QStringLiteral("--force needs --data");
    if (m_info.command != Command::Connect)
        return {};
    const bool hasNames = !m_parser.positionalArguments().isEmpty();
    if (hasNames && IsSet("selected"))
        return QStringLiteral("NAME and --selected cannot be used together");
    return hasNames || IsSet("selected") ? QString() : QStringLiteral("NAME or --selected is missing");
}

QString Parser::AbsolutePath(const char* option) const
{
    const QString path = Value(option);
    return path.isEmpty() ? QString() : QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

CtlOptions Parser::Read() const
{
    CtlOptions options;
    options.command = m_info.command;
    options.configDirectory = AbsolutePath("config");
    if (IsSet("language"))
        options.language = QLocale(Value("language"));
    options.trace = IsSet("trace");
    options.traceFile = AbsolutePath("trace-file");
    options.plugin = AbsolutePath("plugin");
    options.dataDirectory = AbsolutePath("data");
    if (IsSet("name"))
        options.name = Value("name");
    options.json = IsSet("json");
    options.force = IsSet("force");
    options.dryRun = IsSet("dry-run");
    options.selected = IsSet("selected");
    options.wait = IsSet("wait");
    options.ignoreExitCodes = IsSet("ignore-exit-codes");
    options.screenshotDuring = AbsolutePath("screenshot-during");
    options.screenshot = AbsolutePath("screenshot");
    const QStringList arguments = m_parser.positionalArguments();
    if (m_info.command == Command::Connect) {
        options.names = arguments;
        options.names.removeDuplicates();
    } else if (m_info.command == Command::Restore) {
        options.version = arguments.constFirst().toInt();
    }
    if (m_info.argumentKind == ValueKind::File) {
        for (const QString& file : arguments)
            options.files.append(
                file == CtlOptions::kStandardStream ? file : QDir::cleanPath(QFileInfo(file).absoluteFilePath()));
    }
    return options;
}

ParsedCtlCommandLine Parser::Parse(const QStringList& arguments)
{
    const auto invalid = [this](const QString& error) {
        const QString name = QLatin1String(m_info.name);
        return Invalid(QStringLiteral("%1: %2 (see vexelctl %1 --help)").arg(name, error));
    };
    if (!m_parser.parse(arguments)) {
        QString error = m_parser.errorText();
        while (error.endsWith(QLatin1Char('.')))
            error.chop(1);
        return invalid(error);
    }
    if (m_parser.isSet(QStringLiteral("help")))
        return {Outcome::Print, Help(), {}};
    for (const QString& error : {CheckArguments(), CheckOptions(), CheckCombination()})
        if (!error.isEmpty())
            return invalid(error);
    return {Outcome::Run, {}, Read()};
}

} // namespace

ParsedCtlCommandLine ParseCtlCommandLine(const QStringList& arguments)
{
    const QString first = arguments.value(1);
    if (first.isEmpty())
        return Invalid(QStringLiteral("a command is missing (see vexelctl --help)"));
    if (first == QLatin1String("--help") || first == QLatin1String("-h"))
        return {Outcome::Print, GeneralHelp(), {}};
    if (first == QLatin1String("--version") || first == QLatin1String("-v"))
        return {Outcome::Print, QStringLiteral("vexelctl " VEXEL_VERSION "\n"), {}};
    if (first == QLatin1String("--bash-completion"))
        return {Outcome::Print, BashCompletion(), {}};
    if (first.startsWith(QLatin1Char('-')))
        return Invalid(QStringLiteral("the command comes first, and \"%1\" is none (see vexelctl --help)").arg(first));
    for (const CommandInfo& info : AllCommands())
        if (first == QLatin1String(info.name))
            return Parser(info).Parse(arguments.mid(1));
    return UnknownCommand(first);
}
