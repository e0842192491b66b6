// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/application.h"
#include "host/desktop/programicon.h"
#include "host/desktop/startfailure.h"
#include "host/options/hostoptions.h"
#include "host/output/console.h"
#include "host/output/qtmessages.h"
#include "host/output/tracelog.h"
#include "host/system/desktop.h"
#include "platform/cfgcenter.h"
#include "process/arguments.h"
#include "process/librarysearch.h"
#include "process/standardstreams.h"

#include <QApplication>

#include <array>
#include <memory>

namespace {

ParsedCommandLine ReadCommandLine(int& argc, char** argv)
{
    if (const QString error = ArgumentsError(argc, argv); !error.isEmpty())
        return {ParsedCommandLine::Outcome::Invalid, error, {}};
    // --help and --version need no display, so the options are read before the QApplication exists. QCoreApplication
    // handles how each system passes arguments.
    const QCoreApplication reader(argc, argv);
    ParsedCommandLine commandLine = ParseCommandLine(QCoreApplication::arguments());
    if (commandLine.outcome == ParsedCommandLine::Outcome::Run) {
        // Reading a long list takes as long as starting Qt's part with the fonts.
        HostOptions options = commandLine.options;
        SetDefaults(options);
        CfgCenter::ReadAhead(options.configDirectory);
    }
    return commandLine;
}

std::unique_ptr<QApplication> MakeApplication(char* program)
{
    // Qt would take its own options, such as -plugin, out of the command line.
    static std::array<char*, 2> argv = {program, nullptr};
    static int argc = 1;
    const QtStartMessages messages;
    return std::make_unique<QApplication>(argc, argv.data());
}

ExitCode Fail(ExitCode code, StartFailure::Kind kind, const QString& error, const HostOptions& options = {})
{
    Console::PrintError(error);
    StartFailure::Report(kind, error, options.language);
    return code;
}

ExitCode Run(int& argc, char** argv)
{
    const ParsedCommandLine commandLine = ReadCommandLine(argc, argv);
    switch (commandLine.outcome) {
    case ParsedCommandLine::Outcome::Print:
        return Console::PrintRaw(commandLine.text) ? ExitCode::Done : ExitCode::Unusable;
    case ParsedCommandLine::Outcome::Invalid:
        return Fail(ExitCode::Usage, StartFailure::Kind::CommandLine,
                    QStringLiteral("%1 (see --help)").arg(commandLine.text));
    case ParsedCommandLine::Outcome::Run:
        break;
    }
    const HostOptions& options = commandLine.options;
    if (const QString error = DataDirectoryError(options.dataDirectory, false); !error.isEmpty())
        return Fail(ExitCode::Usage, StartFailure::Kind::DataDirectory, error, options);
    TraceLog traceLog;
    if (const QString error = traceLog.Start(options.trace, options.traceFile); !error.isEmpty()) {
        return Fail(ExitCode::Unusable, StartFailure::Kind::TraceFile,
                    QStringLiteral("cannot write traces to %1: %2").arg(options.traceFile, error), options);
    }
    if (const QString error = ConfigDirectoryError(options); !error.isEmpty()) {
        return Fail(ExitCode::Unusable, StartFailure::Kind::NoConfigurationFolder,
                    QStringLiteral("there is no folder for the configuration: %1 (see --config)").arg(error), options);
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && !HasDesktop()) {
        return Fail(ExitCode::Unusable, StartFailure::Kind::NoDisplay,
                    QStringLiteral("there is no display to show the dialog on; vexelctl needs none"), options);
    }
    const std::unique_ptr<QApplication> application = MakeApplication(argv[0]);
    QApplication::setWindowIcon(ProgramIcon());
    // Wayland finds a window's name and icon by the desktop entry.
    QApplication::setDesktopFileName(QStringLiteral("vexelhost"));
    return Application(options).Run();
}

} // namespace

int main(int argc, char** argv)
{
    RestrictLibrarySearch();
    StandardStreams::Prepare();
    StartFailure::TakeErrorFile();
    QCoreApplication::setOrganizationName(QStringLiteral("Vexel"));
    QCoreApplication::setApplicationName(QStringLiteral("vexelhost"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VEXEL_VERSION));
    return static_cast<int>(Run(argc, argv));
}
