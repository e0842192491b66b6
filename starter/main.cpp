// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/arguments.h"
#include "process/librarysearch.h"
#include "process/standardstreams.h"
#include "starter/starter.h"
#include "starter/starteroptions.h"

#include <QCoreApplication>
#include <QLoggingCategory>

namespace {

using StandardStreams::Stream;

void PrintError(const QString& message)
{
    StandardStreams::Write(Stream::Error, QStringLiteral("kitestarter: %1\n").arg(message));
}

Starter::Settings ToSettings(const StarterOptions& options)
{
    Starter::Settings settings;
    settings.lockFile = Starter::DefaultLockFile(settings.port);
    // Without a reader the host shows its errors in a message box.
    if (StandardStreams::HasReader(Stream::Error))
        settings.errorFile = Starter::DefaultErrorFile(settings.port);
    settings.host =
        options.host.isEmpty() ? Starter::DefaultHost(QCoreApplication::applicationDirPath()) : options.host;
    settings.hostArguments = options.hostArguments;
    settings.timeOut = options.timeOut;
    settings.callOnly = options.callOnly;
    return settings;
}

ParsedStarterCommandLine ReadCommandLine(int argc, char** argv)
{
    if (const QString error = ArgumentsError(argc, argv); !error.isEmpty())
        return {ParsedStarterCommandLine::Outcome::Invalid, error, {}};
    return ParseStarterCommandLine(QCoreApplication::arguments());
}

StarterExit Run(const ParsedStarterCommandLine& commandLine)
{
    switch (commandLine.outcome) {
    case ParsedStarterCommandLine::Outcome::Print:
        if (StandardStreams::Write(Stream::Output, commandLine.text))
            return StarterExit::Called;
        PrintError(QStringLiteral("cannot write everything to standard output"));
        return StarterExit::Usage;
    case ParsedStarterCommandLine::Outcome::Invalid:
        PrintError(QStringLiteral("%1 (see --help)").arg(commandLine.text));
        return StarterExit::Usage;
    case ParsedStarterCommandLine::Outcome::Run:
        break;
    }
    const Starter::Outcome outcome = Starter(ToSettings(commandLine.options)).Run();
    if (!outcome.message.isEmpty())
        PrintError(outcome.message);
    return outcome.code;
}

} // namespace

int main(int argc, char** argv)
{
    RestrictLibrarySearch();
    StandardStreams::Prepare();
    const QCoreApplication application(argc, argv);
    // Errors are in the outcome.
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false"));
    return static_cast<int>(Run(ReadCommandLine(argc, argv)));
}
