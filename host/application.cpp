#include "host/application.h"

#include "host/connectdialog.h"
#include "host/console.h"
#include "host/datadirectory.h"
#include "host/dialogsession.h"
#include "host/environment.h"
#include "host/headlessjob.h"
#include "host/hostdefaults.h"
#include "host/malformedset.h"
#include "host/signalwatcher.h"
#include "host/storedset.h"
#include "platform/cfgcenter.h"
#include "platform/guibase.h"
#include "platform/instancelock.h"
#include "platform/interfaces.h"
#include "platform/translationcenter.h"

#include <QApplication>
#include <QDir>
#include <QScopeGuard>

#include <future>
#include <utility>

namespace {

/// The translations of the host's own texts, for as long as it lives.
class Texts
{
public:
    Texts() { TranslationCenter::Instance().Register(m_Domain); }
    ~Texts() { TranslationCenter::Instance().Unregister(m_Domain); }

    Texts(const Texts&) = delete;
    Texts& operator=(const Texts&) = delete;

private:
    const QString m_Domain = QStringLiteral("vexelhost");
};

} // namespace

Application::Application(HostOptions options)
    : m_Options(WithDefaults(std::move(options)))
{
}

ExitCode Application::Run()
{
    // The dialog is the only window, and "Close" and "&Connect" hide it.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    SignalWatcher signalWatcher;

    PluginLibrary library;
    if (library.Load(m_Options.plugin) != PluginLibrary::Error::None) {
        Console::Complain(library.ErrorText());
        return ExitCode::Unusable;
    }
    // Before anything is written, and until everything is.
    InstanceLock lock;
    if (lock.Take(m_Options.configDirectory) == InstanceLock::Result::Held) {
        Console::Complain(lock.ErrorText());
        return ExitCode::Running;
    }
    if (!lock.Warning().isEmpty())
        m_Notices.Say(lock.Warning());
    // Whoever calls the link wants to see a dialog, and a headless host shows none.
    CInterfaceCreator::SetServersAllowed(!m_Options.IsHeadless());
    // What was found damaged, and what is used instead, comes up when it is first read.
    CfgCenter::SetNoticeSink([this](const QString& notice) { m_Notices.Say(notice); });
    const auto noNotices = qScopeGuard([] { CfgCenter::SetNoticeSink({}); });
    if (!OpenConfiguration(lock.ErrorText()))
        return ExitCode::Unusable;
    const ExitCode result = RunWithConfiguration(library, signalWatcher);
    CfgCenter::Close();
    return m_SaveFailed ? ExitCode::Unusable : result;
}

/// False, and complained of, where the configuration is of no use. `obstacle` is what is known to keep from writing
/// there; empty: nothing.
bool Application::OpenConfiguration(QString obstacle)
{
    if (obstacle.isEmpty()) {
        if (CfgCenter::Open(m_Options.configDirectory))
            return true;
        obstacle = QStringLiteral("the configuration directory %1 cannot be used: %2")
                       .arg(m_Options.configDirectory, CfgCenter::OpenError());
    }
    // Just when nothing can be written somebody may need to see, or to take elsewhere, what is there.
    m_LooksOnly = m_Options.ShowsOnly() && CfgCenter::OpenToLook(m_Options.configDirectory);
    Console::Complain(m_LooksOnly ? QStringLiteral("%1; it is only looked at").arg(obstacle) : obstacle);
    return m_LooksOnly;
}

ExitCode Application::RunWithConfiguration(const PluginLibrary& library, SignalWatcher& signalWatcher)
{
    SetUpEnvironment();
    if (m_Options.language)
        TranslationCenter::Instance().SetLocale(*m_Options.language);
    const Texts texts;
    if (!m_Options.dataDirectory.isEmpty())
        DataDirectory::Set(m_Options.dataDirectory);
    // The list would seem empty, and an export of it take the place of a good file. Why has been said.
    if (!CfgCenter::IsAppCfgKnown(View::Application))
        return ExitCode::Unusable;
    // The plug-in loads the list meanwhile. Nothing is saved before this is known.
    std::future<StoredSet> storedSet;
    if (!m_LooksOnly)
        storedSet = BeginToReadStoredSet(*CfgCenter::GetAppCfg(View::Application));

    ExitCode result = ExitCode::Unusable;
    {
        const PluginLibrary::Instance instance = CreateInstance(library);
        if (storedSet.valid()) {
            if (const QString notice = KeepMalformedSetAside(storedSet.get()); !notice.isEmpty())
                m_Notices.Say(notice);
        }
        if (!instance)
            Console::Complain(QStringLiteral("the plug-in %1 gives no instance").arg(m_Options.plugin));
        else if (!instance->IsAvailable())
            Console::Complain(QStringLiteral("the plug-in %1 says that it is not available").arg(m_Options.plugin));
        else
            result = RunWithInstance(*instance, signalWatcher);
    }

    // Tear-down has stored its settings once more. What it left to be deleted later goes while the plug-in's
    // surroundings still stand.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    SaveDocument();
    return result;
}

/// The environment that the applications find which the plug-in starts.
void Application::SetUpEnvironment() const
{
    Environment::Set("VEXEL_CONFIG_DIR", QDir::toNativeSeparators(m_Options.configDirectory));
    // The machine's file may name programs without a path; those that came with the host stand beside it.
    Environment::Prepend("PATH", QDir::toNativeSeparators(QCoreApplication::applicationDirPath()));
}

PluginLibrary::Instance Application::CreateInstance(const PluginLibrary& library) const
{
    // The plug-in reads the directory while it is being created, and not later.
    const DataDirectory::Fallback fallback(DataDirectory::InstalledSamples(QCoreApplication::applicationDirPath()));
    return library.Create(m_Options.name);
}

ExitCode Application::RunWithInstance(IDllInstance& instance, SignalWatcher& signalWatcher)
{
    QString error;
    const std::optional<ConnectDialog> dialog = ConnectDialog::Find(error);
    if (!dialog) {
        Console::Complain(error);
        return ExitCode::Unusable;
    }
    // Not QCoreApplication::quit(): that asks every window first, and each of them can refuse.
    QObject::connect(&signalWatcher, &SignalWatcher::EndRequested, qApp, [] { QCoreApplication::exit(); });

    if (m_Options.IsHeadless()) {
        const ExitCode result = RunHeadless(instance, *dialog, signalWatcher);
        // The window has only had the sizes that its pictures needed.
        SaveSettings(instance, nullptr);
        return result;
    }
    RunDialog(instance, *dialog, signalWatcher);
    SaveSettings(instance, dialog->Window());
    return ExitCode::Done;
}

void Application::RunDialog(IDllInstance& instance, const ConnectDialog& dialog, SignalWatcher& signalWatcher)
{
    DialogSession session(dialog, m_Notices, [&] { return SaveSettings(instance, dialog.Window()); });
    QObject::connect(&signalWatcher, &SignalWatcher::SessionEnding, &session,
                     [&] { SaveSettings(instance, dialog.Window()); });
    QObject::connect(&session, &DialogSession::EndWanted, qApp, [] { QCoreApplication::exit(); });
    session.Start();
    QCoreApplication::exec();
}

ExitCode Application::RunHeadless(IDllInstance& instance, const ConnectDialog& dialog, SignalWatcher& signalWatcher)
{
    HeadlessJob job(m_Options, dialog);
    QObject::connect(&signalWatcher, &SignalWatcher::EndRequested, &job, &HeadlessJob::Stop);
    QObject::connect(&signalWatcher, &SignalWatcher::SessionEnding, &job, [&] {
        if (!job.IsChangingEntries())
            SaveSettings(instance, nullptr);
    });

    // Inside the event loop, so that a request to end reaches every loop that the job runs.
    ExitCode result = ExitCode::Done;
    QMetaObject::invokeMethod(
        &job,
        [&] {
            result = job.Run();
            QCoreApplication::exit();
        },
        Qt::QueuedConnection);
    QCoreApplication::exec();
    return result;
}

bool Application::SaveSettings(IDllInstance& instance, QWidget* window)
{
    instance.SaveSettings();
    if (window)
        GuiBase::Instance().StoreWidgetSize(window);
    return SaveDocument();
}

bool Application::SaveDocument()
{
    const bool failed = !m_LooksOnly && !CfgCenter::SaveDocument();
    // Once is enough to know: saving is tried again at every occasion.
    if (failed && !m_SaveFailed)
        Console::Complain(QStringLiteral("the configuration in %1 could not be saved").arg(m_Options.configDirectory));
    m_SaveFailed = failed;
    return !failed;
}
