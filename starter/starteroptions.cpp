// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "starter/starteroptions.h"

#include "platform/starterport.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

namespace {

// The dialog does not answer while it starts an application, which may take 30 seconds.
constexpr int kDefaultSeconds = 40;
constexpr int kMaxSeconds = 3600;

// Wrapped by hand at the width that QCommandLineParser uses for the options.
QString Description()
{
    return QStringLiteral(R"(
Brings the connect dialog to the front. If none is running on this machine,
starts the host with the arguments after "--" and waits until its dialog
answers. Several starters at the same time start only one host.)");
}

/// The text after the options.
QString Notes()
{
    return QStringLiteral(R"(
Details:
  The dialog is called on port %1 of this machine, which only one program can
  use at a time. So the host that uses it comes to the front, even if the
  arguments given here are meant for another one. No data leaves the machine.
  A dialog comes to the front and closes the connection without sending
  anything. Another program on the port that does the same cannot be told from
  a dialog: the exit code is then 0, but no dialog comes to the front.
  On a machine with several users at a time, the dialog may be another user's;
  it then comes to the front on that user's desktop.
  The started host runs independently, with the current directory and the
  environment of this program. It shows its messages in the dialog instead of
  writing them to standard error; all other output is dropped. If it fails to
  start, this program prints its error, or the host shows a message box if this
  program has no standard error.

Exit codes:
  0  a dialog, or what cannot be told from one, has accepted the call, or the
     started host has called the dialog of its configuration and ended with 0
  1  the command line is invalid, or the output cannot be printed
  2  the host cannot be started
  3  the host was started, and ended before its dialog answered, or found its
     configuration in use by a program that shows no dialog
  4  the host was started, or another kitestarter is starting one, and its
     dialog did not answer in time; a started host is left running
  5  another program uses the port and sends data or resets connections, or the
     dialog is busy for longer than the time-out; no host was started
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
        QStringLiteral("host"), QStringLiteral("Start the program FILE. Default: the host installed with the starter."),
        QStringLiteral("FILE")};
    const QCommandLineOption m_timeOut = {
        QStringLiteral("timeout"),
        QStringLiteral("Time for the dialog to answer, including its start: 1 to %1. Default: %2.")
            .arg(kMaxSeconds)
            .arg(kDefaultSeconds),
        QStringLiteral("SECONDS"), QString::number(kDefaultSeconds)};
    const QCommandLineOption m_callOnly = {QStringLiteral("call-only"),
                                           QStringLiteral("Start nothing if no dialog is running.")};
};

Parser::Parser()
{
    m_parser.setApplicationDescription(Description());
    m_parser.addOptions({m_host, m_timeOut, m_callOnly, m_help, m_version});
}

QString Parser::HelpText() const
{
    // The parser's first line contains the path that the program was started by.
    const QString text = m_parser.helpText();
    return QStringLiteral("Usage: kitestarter [options] [-- HOST ARGUMENTS]") + text.mid(text.indexOf(u'\n')) + Notes();
}

/// Returns why a value on the command line is invalid; empty if all are valid.
QString Parser::CheckGivenValues() const
{
    if (!m_parser.positionalArguments().isEmpty()) {
        return QStringLiteral("unexpected argument \"%1\"; put the host's arguments after \"--\"")
            .arg(m_parser.positionalArguments().constFirst());
    }
    if (m_parser.isSet(m_host) && m_parser.value(m_host).isEmpty())
        return QStringLiteral("--host: the value must not be empty");
    bool isNumber = false;
    const int seconds = m_parser.value(m_timeOut).toInt(&isNumber);
    if (!isNumber || seconds < 1 || seconds > kMaxSeconds) {
        return QStringLiteral("--timeout: not a number from 1 to %1: \"%2\"")
            .arg(kMaxSeconds)
            .arg(m_parser.value(m_timeOut));
    }
    return {};
}

ParsedStarterCommandLine Parser::Parse(QStringList arguments)
{
    using Outcome = ParsedStarterCommandLine::Outcome;
    // Split here: the parser would also accept the host's arguments before "--".
    QStringList hostArguments;
    if (const qsizetype separator = arguments.indexOf(QLatin1String("--")); separator > 0) {
        hostArguments = arguments.mid(separator + 1);
        arguments.erase(arguments.cbegin() + separator, arguments.cend());
    }
    if (!m_parser.parse(arguments)) {
        // The parser's messages end with a full stop.
        QString error = m_parser.errorText();
        if (error.endsWith(u'.'))
            error.chop(1);
        return {Outcome::Invalid, error, {}};
    }
    if (m_parser.isSet(m_help))
        return {Outcome::Print, HelpText(), {}};
    if (m_parser.isSet(m_version))
        return {Outcome::Print, QStringLiteral("kitestarter " VEXEL_VERSION "\n"), {}};
    if (const QString error = CheckGivenValues(); !error.isEmpty())
        return {Outcome::Invalid, error, {}};

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
