#include "host/output/console.h"
#include "host/output/exitcode.h"
#include "process/arguments.h"
#include "process/librarysearch.h"
#include "process/standardstreams.h"
#include "vexelctl/commandline.h"

#include <QCoreApplication>

namespace {

ParsedCtlCommandLine ReadCommandLine(int argc, char** argv)
{
    if (const QString error = ArgumentsError(argc, argv); !error.isEmpty())
        return {ParsedCtlCommandLine::Outcome::Invalid, error, {}};
    return ParseCtlCommandLine(QCoreApplication::arguments());
}

ExitCode Run(int argc, char** argv)
{
    const ParsedCtlCommandLine commandLine = ReadCommandLine(argc, argv);
    switch (commandLine.outcome) {
    case ParsedCtlCommandLine::Outcome::Print:
        return Console::PrintRaw(commandLine.text) ? ExitCode::Done : ExitCode::Unusable;
    case ParsedCtlCommandLine::Outcome::Invalid:
        Console::PrintError(commandLine.text);
        return ExitCode::Usage;
    case ParsedCtlCommandLine::Outcome::Run:
        break;
    }
    Console::PrintError(QStringLiteral("not implemented"));
    return ExitCode::Usage;
}

} // namespace

int main(int argc, char** argv)
{
    RestrictLibrarySearch();
    StandardStreams::Prepare();
    QCoreApplication::setApplicationName(QStringLiteral("vexelctl"));
    const QCoreApplication application(argc, argv);
    return static_cast<int>(Run(argc, argv));
}
