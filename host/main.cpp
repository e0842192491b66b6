// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/application.h"
#include "host/desktop/desktopdescription.h"
#include "host/desktop/programicon.h"
#include "host/desktop/startfailure.h"
#include "host/options/hostoptions.h"
#include "host/options/settings.h"
#include "host/output/console.h"
#include "host/output/qtmessages.h"
#include "host/output/tracelog.h"
#include "host/system/autostart.h"
#include "host/system/crashdump.h"
#include "host/system/desktop.h"
#include "platform/cfgcenter.h"
#include "platform/instancelock.h"
#include "process/arguments.h"
#include "process/librarysearch.h"
#include "process/standardstreams.h"

#include <QApplication>

#include <array>
#include <memory>

namespace {

/// Reading a long list takes as long as starting Qt's part with the fonts, so both run at the same time.
void ReadListAhead(HostOptions options)
{
    SetDefaults(options);
    // A host that runs already shows its list.
    if (InstanceLock::Query(options.configDirectory).state != InstanceLock::State::Somebody)
        CfgCenter::ReadAhead(options.configDirectory);
}

ParsedCommandLine ReadCommandLine(int& argc, char** argv)
{
    if (const QString error = ArgumentsError(argc, argv); !error.isEmpty())
        return {ParsedCommandLine::Outcome::Invalid, error, {}};
    // --help and --version need no display, so the options are read before the QApplication exists. QCoreApplication
    // handles how each system passes arguments.
    const QCoreApplication reader(argc, argv);
    ParsedCommandLine commandLine = ParseCommandLine(QCoreApplication::arguments());
    const HostOptions& options = commandLine.options;
    if (commandLine.outcome == ParsedCommandLine::Outcome::Run && !options.autostart && !options.describesDesktop)
        ReadListAhead(options);
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

ExitCode SwitchAutostart(const HostOptions& options, int& argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const bool isOn = options.autostart.value_or(false);
    if (const QString error = Autostart::Set(isOn, options.autostartOptions); !error.isEmpty()) {
        Console::PrintError(error);
        return ExitCode::Unusable;
    }
    Console::Print(isOn ? QStringLiteral("This user's session starts the host: %1").arg(Autostart::Place())
                        : QStringLiteral("This user's session does not start the host."));
    return ExitCode::Done;
}

/// Prints a description of the desktop for a report.
ExitCode DescribeDesktop(char* program)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && !HasDesktop()) {
        Console::PrintError(QStringLiteral("there is no display"));
        return ExitCode::Unusable;
    }
    const std::unique_ptr<QApplication> application = MakeApplication(program);
    return Console::PrintBytes(DesktopDescription()) ? ExitCode::Done : ExitCode::Unusable;
}

ExitCode Fail(ExitCode code, StartFailure::Kind kind, const QString& error, const HostOptions& options = {})
{
    Console::PrintError(error);
    StartFailure::Report(kind, error, options.language);
    return code;
}

ExitCode Run(int& argc, char** argv)
{
    ParsedCommandLine commandLine = ReadCommandLine(argc, argv);
    switch (commandLine.outcome) {
    case ParsedCommandLine::Outcome::Print:
        return Console::PrintRaw(commandLine.text) ? ExitCode::Done : ExitCode::Unusable;
    case ParsedCommandLine::Outcome::Invalid:
        return Fail(ExitCode::Usage, StartFailure::Kind::CommandLine,
                    QStringLiteral("%1 (see --help)").arg(commandLine.text));
    case ParsedCommandLine::Outcome::Run:
        break;
    }
    HostOptions& options = commandLine.options;
    if (options.describesDesktop)
        return DescribeDesktop(argv[0]);
    const Settings settings;
    ApplySettings(options, settings);
    const bool isTraceFileGiven = !options.traceFile.isEmpty();
    ApplyTraceSettings(options, settings);
    if (const QString error = DataDirectoryError(options.dataDirectory, false); !error.isEmpty())
        return Fail(ExitCode::Usage, StartFailure::Kind::DataDirectory, error, options);
    if (options.autostart)
        return SwitchAutostart(options, argc, argv);
    TraceLog traceLog;
    if (const QString reason = traceLog.Start(options.trace, options.traceFile); !reason.isEmpty()) {
        const QString error = QStringLiteral("cannot write traces to %1: %2").arg(options.traceFile, reason);
        if (isTraceFileGiven)
            return Fail(ExitCode::Unusable, StartFailure::Kind::TraceFile, error, options);
        // The user may not be able to change the settings file.
        Console::PrintError(error);
        traceLog.Start(options.trace, QString());
    }
    settings.TraceProblems();
    if (const QString error = ConfigDirectoryError(options); !error.isEmpty()) {
        return Fail(ExitCode::Unusable, StartFailure::Kind::NoConfigurationFolder,
                    QStringLiteral("there is no folder for the configuration: %1 (see --config)").arg(error), options);
    }
    CrashDumps::Install(options.configDirectory.isEmpty() ? DefaultConfigDirectory() : options.configDirectory);
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
