#include "starter/starteroptions.h"

#include "platform/starterport.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

namespace {

// The dialog does not answer while it starts an application, which may take it 30 seconds.
constexpr int kDefaultSeconds = 40;
constexpr int kMostSeconds = 3600;

// Both broken by hand at the width that QCommandLineParser uses for the options.
QString Description()
{
    return QStringLiteral(R"(
Brings the connect dialog to the front. Where none is running on this machine,
starts the host with the arguments after "--", and waits until its dialog
answers. However many are started at once, there is one host.)");
}

/// What the options alone do not say.
QString Notes()
{
    return QStringLiteral(R"(
The call:
  The dialog is called on port %1 of this machine, which one program can have
  at a time. So whichever host has it comes to the front, whatever arguments
  are given here for another. Nothing leaves the machine.
  On a machine that several people work on at a time, that may be another
  person's dialog, which comes to the front where it is.
  The host that is started lives on by itself, with this program's current
  directory and environment. What it would write to standard error about its
  work, it shows at its dialog instead; the rest of its output is dropped. Why
  it ended before its dialog was there, it says when it is started by itself.

Exit codes:
  0  a dialog has come to the front: one that was running, or a new one
  1  the command line is wrong, or what it asks for cannot be printed
  2  the host cannot be started
  3  the host was started, and ended before its dialog answered, or gave way to
     one that works on the same configuration and shows no dialog
  4  the host was started, or another kitestarter is starting one, and its
     dialog did not answer in time; what was started is left running
  5  another program has the port and answers or cuts off calls, or a dialog
     that is busy for longer than the time-out; no host was started
  6  no dialog is running (with --call-only)
)")
        .arg(kStarterPort);
}

class Parser
{
public:
    Parser();
    ParsedStarterCommandLine Parse(QStringList arguments);

private:
    QString HelpText() const;
    QString CheckGivenValues() const;

    QCommandLineParser m_parser;
    const QCommandLineOption m_help = {{QStringLiteral("h"), QStringLiteral("help")},
                                       QStringLiteral("Print this help.")};
    const QCommandLineOption m_version = {{QStringLiteral("v"), QStringLiteral("version")},
                                          QStringLiteral("Print the version.")};
    const QCommandLineOption m_host = {
        QStringLiteral("host"),
        QStringLiteral("Start the program FILE. Default: the host that is installed with the starter."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_timeOut = {
        QStringLiteral("timeout"),
        QStringLiteral("How long a dialog may take to answer, also one that is starting: 1 to %1. Default: %2.")
            .arg(kMostSeconds)
            .arg(kDefaultSeconds),
        QStringLiteral("SECONDS"), QString::number(kDefaultSeconds)};
    const QCommandLineOption m_callOnly = {QStringLiteral("call-only"),
                                           QStringLiteral("Start nothing where no dialog is running.")};
};

Parser::Parser()
{
    m_parser.setApplicationDescription(Description());
    m_parser.addOptions({m_host, m_timeOut, m_callOnly, m_help, m_version});
}

QString Parser::HelpText() const
{
    // The parser's own first line names whatever path the program was started by.
    const QString text = m_parser.helpText();
    return QStringLiteral("Usage: kitestarter [options] [-- HOST ARGUMENTS]") + text.mid(text.indexOf(u'\n')) + Notes();
}

/// Why a value given on the command line cannot be taken; empty when all can.
QString Parser::CheckGivenValues() const
{
    if (!m_parser.positionalArguments().isEmpty()) {
        return QStringLiteral("unexpected argument \"%1\"; the host's arguments stand after \"--\"")
            .arg(m_parser.positionalArguments().constFirst());
    }
    if (m_parser.isSet(m_host) && m_parser.value(m_host).isEmpty())
        return QStringLiteral("--host needs a value that is not empty");
    bool isNumber = false;
    const int seconds = m_parser.value(m_timeOut).toInt(&isNumber);
    if (!isNumber || seconds < 1 || seconds > kMostSeconds) {
        return QStringLiteral("--timeout: not a number from 1 to %1: \"%2\"")
            .arg(kMostSeconds)
            .arg(m_parser.value(m_timeOut));
    }
    return {};
}

ParsedStarterCommandLine Parser::Parse(QStringList arguments)
{
    using Outcome = ParsedStarterCommandLine::Outcome;
    // Taken apart here: the parser would let the host's arguments stand before "--", too.
    QStringList hostArguments;
    if (const qsizetype separator = arguments.indexOf(QLatin1String("--")); separator > 0) {
        hostArguments = arguments.mid(separator + 1);
        arguments.erase(arguments.cbegin() + separator, arguments.cend());
    }
    if (!m_parser.parse(arguments)) {
        // The parser ends its own sentences.
        QString error = m_parser.errorText();
        if (error.endsWith(u'.'))
            error.chop(1);
        return {Outcome::Wrong, error, {}};
    }
    if (m_parser.isSet(m_help))
        return {Outcome::Print, HelpText(), {}};
    if (m_parser.isSet(m_version))
        return {Outcome::Print, QStringLiteral("kitestarter " VEXEL_VERSION "\n"), {}};
    if (const QString error = CheckGivenValues(); !error.isEmpty())
        return {Outcome::Wrong, error, {}};

    StarterOptions options;
    if (m_parser.isSet(m_host))
        options.host = QDir::cleanPath(QFileInfo(m_parser.value(m_host)).absoluteFilePath());
    options.hostArguments = hostArguments;
    options.timeOut = std::chrono::seconds(m_parser.value(m_timeOut).toInt());
    options.callOnly = m_parser.isSet(m_callOnly);
    return {Outcome::Run, {}, options};
}

} // namespace

ParsedStarterCommandLine ParseStarterCommandLine(const QStringList& arguments)
{
    return Parser().Parse(arguments);
}
