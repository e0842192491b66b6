#pragma once

#include "process/parsedoptions.h"

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

using ParsedStarterCommandLine = ParsedOptions<StarterOptions>;

/// Reads a command line; `arguments` begins with the program. Relative paths are taken from the current directory.
ParsedStarterCommandLine ParseStarterCommandLine(const QStringList& arguments);
