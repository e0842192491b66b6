#pragma once

#include <QString>
#include <QStringList>

#include <chrono>

/// What the starter was asked to do: its command line as a value.
struct StarterOptions
{
    QString host;                 ///< the host's program, an absolute path; empty: the one beside the starter
    QStringList hostArguments;    ///< passed to the host as they are
    std::chrono::seconds timeOut; ///< how long a dialog may take to answer, also one that has to be started first
    bool callOnly = false;        ///< start nothing
};

/// The outcome of reading a command line.
struct ParsedStarterCommandLine
{
    enum class Outcome {
        Run,   ///< do what `options` says
        Print, ///< print `text` (help or version); nothing else
        Wrong, ///< the command line is wrong; `text` says in one line how
    };

    Outcome outcome = Outcome::Wrong;
    QString text;
    StarterOptions options;
};

/// Reads a command line; `arguments` begins with the program. Relative paths are taken from the current directory.
ParsedStarterCommandLine ParseStarterCommandLine(const QStringList& arguments);
