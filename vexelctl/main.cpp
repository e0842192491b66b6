// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/options/settings.h"
#include "host/output/console.h"
#include "host/output/qtmessages.h"
#include "host/output/tracelog.h"
#include "host/system/desktop.h"
#include "platform/translationcenter.h"
#include "process/arguments.h"
#include "process/librarysearch.h"
#include "process/standardstreams.h"
#include "vexelctl/backups.h"
#include "vexelctl/commandline.h"
#include "vexelctl/entrycommands.h"
#include "vexelctl/hostcommands.h"
#include "vexelctl/output.h"
#include "vexelctl/support/diagnosis.h"

#include <QApplication>

#include <array>
#include <memory>

namespace {

ParsedCtlCommandLine ReadCommandLine(int& argc, char** argv)
{
    if (const QString error = ArgumentsError(argc, argv); !error.isEmpty())
        return {ParsedCtlCommandLine::Outcome::Invalid, error, {}};
    // The command decides which application object is made. QCoreApplication handles how each system passes arguments.
    const QCoreApplication reader(argc, argv);
    return ParseCtlCommandLine(QCoreApplication::arguments());
}

/// Returns whether the command may show the dialog off screen.
bool MayLoadPlugin(const CtlOptions& options)
{
    return options.command == Command::Connect || options.command == Command::Screenshot ||
           (options.command == Command::Wait && !options.screenshot.isEmpty());
}

std::unique_ptr<QCoreApplication> MakeApplication(char* program, const CtlOptions& options)
{
    // Qt would take its own options, such as -plugin, out of the command line. The platform is passed as an argument,
    // not in the environment: what this process starts must still appear on the user's desktop.
    static std::array<char, 10> option{"-platform"};
    static std::array<char, 10> offscreen{"offscreen"};
    static std::array<char*, 4> argv = {program, option.data(), offscreen.data(), nullptr};
    static int argc = 1;
    if (!MayLoadPlugin(options))
        return std::make_unique<QCoreApplication>(argc, argv.data());

    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        argc = 3;
        // The applications inherit this: without a display they have none either.
        if (!HasDesktop())
            qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    SuppressHeadlessWarnings();
    SetUpOffscreenFonts();
    std::unique_ptr<QCoreApplication> application;
    {
        const QtStartMessages messages;
        application = std::make_unique<QApplication>(argc, argv.data());
    }
    ChooseOffscreenFont();
    // The dialog is the only window.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return application;
}

ExitCode RunCommand(const CtlOptions& options)
{
    switch (options.command) {
    case Command::List:
        return EntryCommands::List(options);
    case Command::Status:
        return EntryCommands::Status(options);
    case Command::Connect:
        return HostCommands::Connect(options);
    case Command::Wait:
        return HostCommands::Wait(options);
    case Command::Watch:
        return HostCommands::Watch(options);
    case Command::Export:
        return EntryCommands::Export(options);
    case Command::Import:
        return EntryCommands::Import(options);
    case Command::Add:
        return EntryCommands::Add(options);
    case Command::Check:
        return EntryCommands::Check(options);
    case Command::Backups:
        return Backups::Print(options);
    case Command::Restore:
        return Backups::Restore(options);
    case Command::Diagnose:
        return Diagnose(options);
    case Command::Screenshot:
        return HostCommands::Screenshot(options);
    case Command::Show:
        return HostCommands::Show(options);
    case Command::Save:
        return HostCommands::Save(options);
    case Command::Quit:
        return HostCommands::Quit(options);
    }
    return ExitCode::Usage;
}

ExitCode Run(int& argc, char** argv)
{
    ParsedCtlCommandLine commandLine = ReadCommandLine(argc, argv);
    switch (commandLine.outcome) {
    case ParsedCtlCommandLine::Outcome::Print:
        return PrintResult(commandLine.text);
    case ParsedCtlCommandLine::Outcome::Invalid:
        return Fail(ExitCode::Usage, commandLine.text);
    case ParsedCtlCommandLine::Outcome::Run:
        break;
    }
    CtlOptions& options = commandLine.options;
    const std::unique_ptr<QCoreApplication> application = MakeApplication(argv[0], options);

    // A diagnosis reports these without changing or needing them.
    TraceLog traceLog;
    const bool diagnoses = options.command == Command::Diagnose;
    if (const QString error = traceLog.Start(options.trace, diagnoses ? QString() : options.traceFile);
        !error.isEmpty())
        return Fail(ExitCode::Unusable, QStringLiteral("cannot write traces to %1: %2").arg(options.traceFile, error));
    if (diagnoses)
        return RunCommand(options);
    const Settings settings;
    ApplySettings(options, settings);
    settings.TraceProblems();
    if (const QString error = ConfigDirectoryError(options); !error.isEmpty() && options.command != Command::Check) {
        return Fail(ExitCode::Unusable,
                    QStringLiteral("there is no folder for the configuration: %1 (see --config)").arg(error));
    }
    SetDefaults(options);

    if (options.language)
        TranslationCenter::Instance().SetLocale(*options.language);
    // The texts of entries are the plug-in's.
    const std::array domains{QStringLiteral("VexelConnectDlg"), QStringLiteral("vexelctl")};
    for (const QString& domain : domains)
        TranslationCenter::Instance().Register(domain);
    const ExitCode code = RunCommand(options);
    for (const QString& domain : domains)
        TranslationCenter::Instance().Unregister(domain);
    return code;
}

} // namespace

int main(int argc, char** argv)
{
    RestrictLibrarySearch();
    StandardStreams::Prepare();
    QCoreApplication::setOrganizationName(QStringLiteral("Vexel"));
    QCoreApplication::setApplicationName(QStringLiteral("vexelctl"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VEXEL_VERSION));
    return static_cast<int>(Run(argc, argv));
}
