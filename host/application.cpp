#include "host/application.h"

#include "host/desktop/dialogsession.h"
#include "host/headless/headlessjob.h"
#include "host/options/hostdefaults.h"
#include "host/output/console.h"
#include "host/plugin/connectdialog.h"
#include "host/plugin/datadirectory.h"
#include "host/store/brokenlistbackup.h"
#include "host/store/storedset.h"
#include "host/store/versionfilter.h"
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

/// Registers a translation domain for its lifetime.
class Translation
{
public:
    explicit Translation(QString domain)
        : m_domain(std::move(domain))
    {
        TranslationCenter::Instance().Register(m_domain);
    }
    ~Translation() { TranslationCenter::Instance().Unregister(m_domain); }

    Translation(const Translation&) = delete;
    Translation& operator=(const Translation&) = delete;

private:
    const QString m_domain;
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
    // Taken before anything is written, and held until everything has been.
    InstanceLock lock;
    if (lock.TryLock(m_options.configDirectory) == InstanceLock::Result::Busy) {
        Console::PrintError(lock.ErrorText());
        return ExitCode::Running;
    }
    if (!lock.Warning().isEmpty())
        m_notices.Report(lock.Warning());
    // A caller of the link expects a dialog, and a headless host shows none.
    CInterfaceCreator::SetServersAllowed(!m_options.IsHeadless());
    // Damaged documents are reported when they are first read.
    CfgCenter::SetNoticeSink([this](const QString& notice) { m_notices.Report(notice); });
    CfgCenter::SetVersionFilter(DiffersInMoreThanStatuses);
    const auto resetNoticeSink = qScopeGuard([] { CfgCenter::SetNoticeSink({}); });
    if (!OpenConfiguration(lock.ErrorText()))
        return ExitCode::Unusable;
    const ExitCode result = RunWithConfiguration(library, signalWatcher);
    CfgCenter::Close();
    return m_saver.HasFailed() ? ExitCode::Unusable : result;
}

/// Opens the configuration, read-only if it cannot be written and writing is not needed. Returns false after printing
/// an error if it cannot be used. `obstacle` says why writing is known to be impossible; empty if it is not.
bool Application::OpenConfiguration(QString obstacle)
{
    if (obstacle.isEmpty()) {
        if (CfgCenter::Open(m_options.configDirectory))
            return true;
        obstacle = QStringLiteral("the configuration directory %1 cannot be used: %2")
                       .arg(m_options.configDirectory, CfgCenter::OpenError());
    }
    // A configuration that cannot be written may still have to be viewed or exported.
    m_isReadOnly = m_options.IsReadOnly() && CfgCenter::OpenReadOnly(m_options.configDirectory);
    Console::PrintError(m_isReadOnly ? QStringLiteral("%1; opened read-only").arg(obstacle) : obstacle);
    return m_isReadOnly;
}

ExitCode Application::RunWithConfiguration(const PluginLibrary& library, SignalWatcher& signalWatcher)
{
    SetUpEnvironment();
    if (m_options.language)
        TranslationCenter::Instance().SetLocale(*m_options.language);
    // What a headless host prints about its work stays in one language.
    std::optional<Translation> toolkitTexts;
    if (!m_options.IsHeadless())
        toolkitTexts.emplace(QStringLiteral("qtbase"));
    const Translation ownTexts(QStringLiteral("vexelhost"));
    if (!m_options.dataDirectory.isEmpty())
        DataDirectory::Set(m_options.dataDirectory);
    // The list would look empty, and exporting it could overwrite a good file. The error has already been printed.
    if (!CfgCenter::IsAppCfgKnown(View::Application))
        return ExitCode::Unusable;
    // Read while the plug-in loads the list. Nothing is saved before the result is known.
    std::future<StoredSet> storedSet = ReadStoredSetAsync(*CfgCenter::GetAppCfg(View::Application));
    // A read-only command must not save an empty list in place of the lost one.
    const bool isLost = CfgCenter::IsAppCfgLost(View::Application);
    m_isReadOnly = m_isReadOnly || (isLost && m_options.IsReadOnly());
    if (isLost && !m_options.fileToExport.isEmpty()) {
        Console::PrintError(QStringLiteral("the list is lost; nothing is exported"));
        return ExitCode::Unusable;
    }

    ExitCode result = ExitCode::Unusable;
    {
        const PluginLibrary::Instance instance = CreateInstance(library);
        const StoredSet set = storedSet.get();
        if (const QString notice = m_isReadOnly ? QString() : BackUpBrokenList(set); !notice.isEmpty())
            m_notices.Report(notice);
        ReportLoss(set);
        if (!instance)
            Console::PrintError(QStringLiteral("the plug-in %1 returned no instance").arg(m_options.plugin));
        else if (!instance->IsAvailable())
            Console::PrintError(
                QStringLiteral("the plug-in %1 reports that it is not available").arg(m_options.plugin));
        else
            result = RunWithInstance(*instance, signalWatcher);
    }

    // The plug-in stored its settings again during tear-down. Objects it left to deleteLater() are deleted while the
    // services it uses still exist.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    SaveDocument();
    return result;
}

/// Sets the environment that applications started by the plug-in inherit.
void Application::SetUpEnvironment() const
{
    Environment::Set("VEXEL_CONFIG_DIR", QDir::toNativeSeparators(m_options.configDirectory));
    // The machine's file may name programs without a path; those installed with the host are in its folder.
    Environment::Prepend("PATH", QDir::toNativeSeparators(QCoreApplication::applicationDirPath()));
}

PluginLibrary::Instance Application::CreateInstance(const PluginLibrary& library) const
{
    // The plug-in reads the directory only while it is being created.
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
    // Not QCoreApplication::quit(): it asks every window first, and any of them can refuse.
    QObject::connect(&signalWatcher, &SignalWatcher::QuitRequested, qApp, [] { QCoreApplication::exit(); });

    if (m_options.IsHeadless()) {
        const ExitCode result = RunHeadless(instance, *dialog, signalWatcher);
        SaveSettings(instance, *dialog);
        return result;
    }
    RunDialog(instance, *dialog, signalWatcher);
    SaveSettings(instance, *dialog);
    return ExitCode::Done;
}

void Application::RunDialog(IDllInstance& instance, const ConnectDialog& dialog, SignalWatcher& signalWatcher)
{
    DialogSession session(
        dialog, m_notices, [&] { return SaveSettings(instance, dialog); },
        [&](auto done) { m_saver.SaveAsync(std::move(done)); });
    QObject::connect(&signalWatcher, &SignalWatcher::SessionEnding, &session, &DialogSession::Save);
    QObject::connect(&session, &DialogSession::QuitRequested, qApp, [] { QCoreApplication::exit(); });
    session.Start();
    QCoreApplication::exec();
}

ExitCode Application::RunHeadless(IDllInstance& instance, const ConnectDialog& dialog, SignalWatcher& signalWatcher)
{
    HeadlessJob job(m_options, dialog);
    QObject::connect(&signalWatcher, &SignalWatcher::QuitRequested, &job, &HeadlessJob::Stop);
    QObject::connect(&signalWatcher, &SignalWatcher::SessionEnding, &job, [&] {
        if (!job.IsChangingEntries())
            SaveSettings(instance, dialog);
    });

    // Runs inside the event loop, so that a request to quit reaches every nested loop of the job.
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

QString Application::SaveSettings(IDllInstance& instance, const ConnectDialog& dialog)
{
    instance.SaveSettings();
    WriteEntryCount(*CfgCenter::GetAppCfg(View::Application), dialog.Count());
    // A headless host sets the window's size for the screenshots, which is not worth storing.
    if (!m_options.IsHeadless())
        GuiBase::Instance().StoreWidgetSize(dialog.Window());
    return SaveDocument();
}

QString Application::SaveDocument()
{
    return m_isReadOnly ? QString() : m_saver.Save();
}

/// Says how many entries a document has lost that something else than the host has written.
void Application::ReportLoss(const StoredSet& set)
{
    if (CfgCenter::WasAppCfgIntact(View::Application))
        return;
    const std::optional<int> before = ReadEntryCount(*CfgCenter::GetAppCfg(View::Application));
    m_notices.Report(
        before ? QStringLiteral("entries in the list when it was saved: %1, now: %2")
                     .arg(QString::number(*before), QString::number(set.entries))
               : QStringLiteral("entries in the list now: %1; how many it had is not known").arg(set.entries));
}
