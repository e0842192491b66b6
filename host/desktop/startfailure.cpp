// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/desktop/startfailure.h"

#include "host/desktop/programicon.h"
#include "host/output/starterrorfile.h"
#include "host/system/desktop.h"
#include "platform/translationcenter.h"
#include "process/standardstreams.h"
#include "process/textline.h"

#include <QApplication>
#include <QFile>
#include <QMessageBox>
#include <QScopeGuard>

#include <array>
#include <memory>

namespace {

QString g_errorFile;

/// Writes `line` for the starter. Returns false if none waits for it: its file goes with it.
bool WriteForStarter(const QString& line)
{
    QFile file(g_errorFile);
    if (g_errorFile.isEmpty() || !file.open(QIODevice::WriteOnly | QIODevice::ExistingOnly))
        return false;
    const QByteArray text = OneLine(line).toUtf8();
    return file.write(text) == text.size() && file.flush();
}

/// Returns whether a user can see and close a box. A platform without windows would wait for ever.
bool HasVisibleWindows()
{
    const QString platform = qEnvironmentVariable("QT_QPA_PLATFORM");
    return HasDesktop() && !platform.startsWith(QLatin1String("offscreen")) &&
           !platform.startsWith(QLatin1String("minimal"));
}

std::unique_ptr<QApplication> MakeMissingApplication()
{
    if (QCoreApplication::instance())
        return nullptr;
    // Without the host's command line, in which Qt would look for its own options.
    static std::array<char, 10> program{"vexelhost"};
    static std::array<char*, 2> argv{program.data(), nullptr};
    static int argc = 1;
    return std::make_unique<QApplication>(argc, argv.data());
}

} // namespace

void StartFailure::TakeErrorFile()
{
    g_errorFile = qEnvironmentVariable(kStartErrorFileVariable);
    qunsetenv(kStartErrorFileVariable);
}

void StartFailure::Report(Kind kind, const QString& line, const std::optional<QLocale>& language)
{
    if (!WriteForStarter(line) && !StandardStreams::HasReader(StandardStreams::Stream::Error) && HasVisibleWindows())
        ShowBox(kind, line, language);
}

void StartFailure::ShowBox(Kind kind, const QString& line, const std::optional<QLocale>& language)
{
    const std::unique_ptr<QApplication> application = MakeMissingApplication();
    TranslationCenter& translations = TranslationCenter::Instance();
    if (language)
        translations.SetLocale(*language);
    const QStringList domains{QStringLiteral("qtbase"), QStringLiteral("vexelhost")};
    for (const QString& domain : domains)
        translations.Register(domain);
    const auto unregister = qScopeGuard([&] {
        for (const QString& domain : domains)
            translations.Unregister(domain);
    });

    QMessageBox box(QMessageBox::Critical, tr("Vexel - Connect Dialog"),
                    QStringLiteral("%1 %2\n\n%3\n\n%4")
                        .arg(tr("The connect dialog cannot be started."), Reason(kind), OneLine(line), Advice(kind)),
                    QMessageBox::Ok);
    box.setObjectName(QStringLiteral("m_startFailureBox"));
    box.setWindowIcon(ProgramIcon());
    // The line contains file names, which must not be interpreted as markup, and which the user may want to copy.
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box.exec();
}

QString StartFailure::Reason(Kind kind)
{
    switch (kind) {
    case Kind::CommandLine:
        return tr("The options it was started with are not valid.");
    case Kind::TraceFile:
        return tr("The trace file cannot be written.");
    case Kind::NoConfigurationFolder:
        return tr("There is no folder for the configuration.");
    case Kind::NoDisplay:
        return tr("There is no display to show it on.");
    case Kind::ConfigurationUnusable:
        return tr("The configuration cannot be used.");
    case Kind::ConfigurationBusy:
        return tr("Another program is using the configuration.");
    case Kind::ListUnreadable:
        return tr("The stored list cannot be read.");
    case Kind::DataDirectory:
        return tr("The data directory does not name the applications of this machine.");
    case Kind::PluginNotLoadable:
        return tr("The plug-in cannot be loaded.");
    case Kind::PluginUnusable:
        return tr("The plug-in does not work.");
    }
    return {};
}

QString StartFailure::Advice(Kind kind)
{
    switch (kind) {
    case Kind::CommandLine:
        return tr("Correct the options in the shortcut or the script that starts it. \"vexelhost --help\" lists them.");
    case Kind::TraceFile:
        return tr("Choose another file with the option --trace-file, or start it without this option.");
    case Kind::NoConfigurationFolder:
        return tr("Choose a folder with the option --config, or have your home folder set up.");
    case Kind::NoDisplay:
        return tr("Start it in a desktop session.");
    case Kind::ConfigurationUnusable:
        return tr("Make sure that you may write to the folder and that the disk is not full, or choose another folder "
                  "with the option --config.");
    case Kind::ConfigurationBusy:
        return tr("Wait until that program has finished, and try again.");
    case Kind::ListUnreadable:
        return tr("Nothing has been changed. Make sure that you may read the files in the configuration folder. "
                  "\"vexelctl backups\" shows the earlier versions of the list.");
    case Kind::DataDirectory:
        return tr("Choose the directory that contains CfgVEXEL.xml with the option --data.");
    case Kind::PluginNotLoadable:
        return tr("Install the program again. If it is started with the option --plugin, check the file given there.");
    case Kind::PluginUnusable:
        return tr("Make sure that the plug-in and the program have the same version, or install both again.");
    }
    return {};
}
