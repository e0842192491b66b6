#include "host/application.h"

#include "host/desktop/dialogsession.h"
#include "host/headless/headlessjob.h"
#include "host/options/hostdefaults.h"
#include "host/output/console.h"
#include "host/plugin/connectdialog.h"
#include "host/plugin/datadirectory.h"
#include "host/store/brokenlistbackup.h"
#include "host/store/storedset.h"
#include "host/system/environment.h"
#include "host/system/signalwatcher.h"
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
    Texts() { TranslationCenter::Instance().Register(m_domain); }
    ~Texts() { TranslationCenter::Instance().Unregister(m_domain); }

    Texts(const Texts&) = delete;
    Texts& operator=(const Texts&) = delete;

private:
    const QString m_domain = QStringLiteral("vexelhost");
};

} // namespace

Application::Application(HostOptions options)
    : m_options(WithDefaults(std::move(options)))
{
}

ExitCode Application::Run()
{
    // The dialog is the only window, and "Close" and "&Connect" hide it.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    SignalWatcher signalWatcher;

    PluginLibrary library;
    if (library.Load(m_options.plugin) != PluginLibrary::Error::None) {
        Console::PrintError(library.ErrorText());
        return ExitCode::Unusable;
    }
    // Before anything is written, and until everything is.
    InstanceLock lock;
    if (lock.TryLock(m_options.configDirectory) == InstanceLock::Result::Busy) {
        Console::PrintError(lock.ErrorText());
        return ExitCode::Running;
    }
    if (!lock.Warning().isEmpty())
        m_notices.Say(lock.Warning());
    // Whoever calls the link wants to see a dialog, and a headless host shows none.
    CInterfaceCreator::SetServersAllowed(!m_options.IsHeadless());
    // What was found damaged, and what is used instead, comes up when it is first read.
    CfgCenter::SetNoticeSink([this](const QString& notice) { m_notices.Say(notice); });
    const auto noNotices = qScopeGuard([] { CfgCenter::SetNoticeSink({}); });
    if (!OpenConfiguration(lock.ErrorText()))
        return ExitCode::Unusable;
    const ExitCode result = RunWithConfiguration(library, signalWatcher);
    CfgCenter::Close();
    return m_saveFailed ? ExitCode::Unusable : result;
}

/// False, and complained of, where the configuration is of no use. `obstacle` is what is known to keep from writing
/// there; empty: nothing.
bool Application::OpenConfiguration(QString obstacle)
{
    if (obstacle.isEmpty()) {
        if (CfgCenter::Open(m_options.configDirectory))
            return true;
        obstacle = QStringLiteral("the configuration directory %1 cannot be used: %2")
                       .arg(m_options.configDirectory, CfgCenter::OpenError());
    }
    // Just when nothing can be written somebody may need to see, or to take elsewhere, what is there.
    m_isReadOnly = m_options.ShowsOnly() && CfgCenter::OpenReadOnly(m_options.configDirectory);
    Console::PrintError(m_isReadOnly ? QStringLiteral("%1; it is only looked at").arg(obstacle) : obstacle);
    return m_isReadOnly;
}

ExitCode Application::RunWithConfiguration(const PluginLibrary& library, SignalWatcher& signalWatcher)
{
    SetUpEnvironment();
    if (m_options.language)
        TranslationCenter::Instance().SetLocale(*m_options.language);
    const Texts texts;
    if (!m_options.dataDirectory.isEmpty())
        DataDirectory::Set(m_options.dataDirectory);
    // The list would seem empty, and an export of it take the place of a good file. Why has been said.
    if (!CfgCenter::IsAppCfgKnown(View::Application))
        return ExitCode::Unusable;
    // The plug-in loads the list meanwhile. Nothing is saved before this is known.
    std::future<StoredSet> storedSet;
    if (!m_isReadOnly)
        storedSet = BeginToReadStoredSet(*CfgCenter::GetAppCfg(View::Application));

    ExitCode result = ExitCode::Unusable;
    {
        const PluginLibrary::Instance instance = CreateInstance(library);
        if (storedSet.valid()) {
            if (const QString notice = BackUpBrokenList(storedSet.get()); !notice.isEmpty())
                m_notices.Say(notice);
        }
        if (!instance)
            Console::PrintError(QStringLiteral("the plug-in %1 gives no instance").arg(m_options.plugin));
        else if (!instance->IsAvailable())
            Console::PrintError(QStringLiteral("the plug-in %1 says that it is not available").arg(m_options.plugin));
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
    Environment::Set("VEXEL_CONFIG_DIR", QDir::toNativeSeparators(m_options.configDirectory));
    // The machine's file may name programs without a path; those that came with the host stand beside it.
    Environment::Prepend("PATH", QDir::toNativeSeparators(QCoreApplication::applicationDirPath()));
}

PluginLibrary::Instance Application::CreateInstance(const PluginLibrary& library) const
{
    // The plug-in reads the directory while it is being created, and not later.
    const DataDirectory::Fallback fallback(DataDirectory::InstalledSamples(QCoreApplication::applicationDirPath()));
    return library.Create(m_options.name);
}

ExitCode Application::RunWithInstance(IDllInstance& instance, SignalWatcher& signalWatcher)
{
    QString error;
    const std::optional<ConnectDialog> dialog = ConnectDialog::Find(error);
    if (!dialog) {
        Console::PrintError(error);
        return ExitCode::Unusable;
    }
    // Not QCoreApplication::quit(): that asks every window first, and each of them can refuse.
    QObject::connect(&signalWatcher, &SignalWatcher::EndRequested, qApp, [] { QCoreApplication::exit(); });

    if (m_options.IsHeadless()) {
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
    DialogSession session(
        dialog, m_notices, [&] { return SaveSettings(instance, dialog.Window()); });
    QObject::connect(
        &signalWatcher, &SignalWatcher::SessionEnding, &session, [&] { SaveSettings(instance, dialog.Window()); });
    QObject::connect(&session, &DialogSession::EndWanted, qApp, [] { QCoreApplication::exit(); });
    session.Start();
    QCoreApplication::exec();
}

ExitCode Application::RunHeadless(IDllInstance& instance, const ConnectDialog& dialog, SignalWatcher& signalWatcher)
{
    HeadlessJob job(m_options, dialog);
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
    const bool failed = !m_isReadOnly && !CfgCenter::SaveDocument();
    // Once is enough to know: saving is tried again at every occasion.
    if (failed && !m_saveFailed)
        Console::PrintError(
            QStringLiteral("the configuration in %1 could not be saved").arg(m_options.configDirectory));
    m_saveFailed = failed;
    return !failed;
}
