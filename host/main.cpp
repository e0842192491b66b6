#include "host/application.h"
#include "host/desktop/programicon.h"
#include "host/options/hostdefaults.h"
#include "host/options/hostoptions.h"
#include "host/output/console.h"
#include "host/output/qtmessages.h"
#include "host/output/tracelog.h"
#include "host/store/backups.h"
#include "host/support/diagnosis.h"
#include "host/system/desktop.h"
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
    // The options decide which platform plug-in Qt uses, so they are read before the QApplication exists.
    // QCoreApplication handles how each system passes arguments.
    const QCoreApplication reader(argc, argv);
    return ParseCommandLine(QCoreApplication::arguments());
}

/// Chooses Qt's platform plug-in. Returns false if there is no display to show a window on.
bool ChoosePlatform(bool headless)
{
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") || HasDesktop())
        return true;
    // Applications started by the host inherit this: without a display they have none either.
    if (headless)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    return headless;
}

std::unique_ptr<QApplication> MakeApplication(char* program, bool headless)
{
    // Qt would take its own options, such as -plugin, out of the command line. The platform is passed as an argument,
    // not in the environment: what a headless host starts must still appear on the user's desktop.
    static std::array<char, 10> option{"-platform"};
    static std::array<char, 10> offscreen{"offscreen"};
    static std::array<char*, 4> argv = {program, nullptr, nullptr, nullptr};
    static int argc = 1;
    if (headless && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        argv[1] = option.data();
        argv[2] = offscreen.data();
        argc = 3;
    }
    const QtStartMessages messages;
    return std::make_unique<QApplication>(argc, argv.data());
}

/// Runs the commands that need neither a plug-in instance nor a window.
ExitCode RunSupportCommand(const HostOptions& given, char* program)
{
    std::array<char*, 2> argv = {program, nullptr};
    int argc = 1;
    const QCoreApplication application(argc, argv.data());
    if (given.diagnose)
        return Diagnose(given);
    const HostOptions options = WithDefaults(given);
    return options.backups ? Backups::Print(options) : Backups::Restore(options);
}

ExitCode Run(int& argc, char** argv)
{
    const ParsedCommandLine commandLine = ReadCommandLine(argc, argv);
    switch (commandLine.outcome) {
    case ParsedCommandLine::Outcome::Print:
        return Console::PrintRaw(commandLine.text) ? ExitCode::Done : ExitCode::Usage;
    case ParsedCommandLine::Outcome::Invalid:
        Console::PrintError(QStringLiteral("%1 (see --help)").arg(commandLine.text));
        return ExitCode::Usage;
    case ParsedCommandLine::Outcome::Run:
        break;
    }
    const HostOptions& options = commandLine.options;

    // A diagnosis reports the state of the trace file without changing it.
    const QString traceFile = options.diagnose ? QString() : options.traceFile;
    TraceLog traceLog;
    if (const QString error = traceLog.Start(options.trace, traceFile); !error.isEmpty()) {
        Console::PrintError(QStringLiteral("cannot write traces to %1: %2").arg(options.traceFile, error));
        return ExitCode::Usage;
    }
    QCoreApplication::setOrganizationName(QStringLiteral("Vexel"));
    QCoreApplication::setApplicationName(QStringLiteral("vexelhost"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VEXEL_VERSION));
    // A diagnosis reports this, too.
    if (const QString error = ConfigDirectoryError(options); !error.isEmpty() && !options.diagnose) {
        Console::PrintError(QStringLiteral("there is no folder for the configuration: %1 (see --config)").arg(error));
        return ExitCode::Unusable;
    }
    if (options.IsSupportCommand())
        return RunSupportCommand(options, argv[0]);
    if (!ChoosePlatform(options.IsHeadless())) {
        Console::PrintError(
            QStringLiteral("there is no display to show the dialog on; use the headless options instead (see --help)"));
        return ExitCode::Unusable;
    }

    if (options.IsHeadless()) {
        SuppressHeadlessWarnings();
        SetUpOffscreenFonts();
    }
    const std::unique_ptr<QApplication> application = MakeApplication(argv[0], options.IsHeadless());
    QApplication::setWindowIcon(ProgramIcon());
    if (options.IsHeadless())
        ChooseOffscreenFont();
    return Application(options).Run();
}

} // namespace

int main(int argc, char** argv)
{
    RestrictLibrarySearch();
    StandardStreams::Prepare();
    return static_cast<int>(Run(argc, argv));
}
