// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/plugin/pluginsession.h"

#include "host/plugin/connectdialog.h"
#include "host/plugin/datadirectory.h"
#include "host/store/brokenlistbackup.h"
#include "host/store/storedset.h"
#include "host/store/versionfilter.h"
#include "host/system/environment.h"
#include "platform/cfgcenter.h"
#include "platform/guibase.h"
#include "platform/interfaces.h"
#include "platform/translationcenter.h"

#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QScopeGuard>

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

/// What the plug-in has found of the stored list, or would have. Nothing has been saved since.
StoredSet LoadedSet()
{
    QString error;
    const std::optional<ConnectDialog> dialog = ConnectDialog::Find(error);
    const std::optional<StoredSet> reported = dialog ? ReportedStoredSet(*dialog->Entries()) : std::nullopt;
    return reported ? *reported : ReadStoredSet(*CfgCenter::GetAppCfg(View::Application));
}

} // namespace

PluginSession::PluginSession(SessionOptions options, Mode mode, Notices& notices, Failed failed)
    : m_options(std::move(options))
    , m_mode(mode)
    , m_notices(notices)
    , m_failed(std::move(failed))
{
}

bool PluginSession::LoadPlugin()
{
    const bool isLoaded = m_library.Load(m_options.plugin) == PluginLibrary::Error::None;
    if (!isLoaded)
        Fail(FailureKind::PluginNotLoadable, m_library.ErrorText());
    return isLoaded;
}

ExitCode PluginSession::Run(const Work& work)
{
    // A caller of the link expects a dialog.
    CInterfaceCreator::SetServersAllowed(m_mode == Mode::Desktop);
    // Damaged documents are reported when they are first read.
    CfgCenter::SetNoticeSink([this](const QString& notice) { m_notices.Report(notice); });
    CfgCenter::SetVersionFilter(DiffersInMoreThanStatuses);
    const auto resetNoticeSink = qScopeGuard([] { CfgCenter::SetNoticeSink({}); });
    if (!OpenConfiguration())
        return ExitCode::Unusable;
    const ExitCode result = RunWithConfiguration(work);
    CfgCenter::Close();
    return m_saver.HasFailed() ? ExitCode::Unusable : result;
}

ExitCode PluginSession::Fail(FailureKind kind, const QString& error)
{
    m_failed(kind, error);
    return ExitCode::Unusable;
}

bool PluginSession::OpenConfiguration()
{
    const QString& directory = m_options.configDirectory;
    if (m_mode == Mode::ReadOnly) {
        if (CfgCenter::OpenReadOnly(directory))
            return true;
        Fail(FailureKind::ConfigurationUnusable,
             QStringLiteral("there is no configuration directory %1").arg(directory));
        return false;
    }
    if (CfgCenter::Open(directory))
        return true;
    Fail(FailureKind::ConfigurationUnusable,
         QStringLiteral("the configuration directory %1 cannot be used: %2").arg(directory, CfgCenter::OpenError()));
    return false;
}

ExitCode PluginSession::RunWithConfiguration(const Work& work)
{
    SetUpEnvironment();
    if (m_options.language)
        TranslationCenter::Instance().SetLocale(*m_options.language);
    const Translation toolkitTexts(QStringLiteral("qtbase"));
    const Translation ownTexts(QStringLiteral("vexelhost"));
    if (!m_options.dataDirectory.isEmpty())
        DataDirectory::Set(m_options.dataDirectory);
    // The list would look empty, and saving it could overwrite a good one. The reason has been reported.
    if (!CfgCenter::IsAppCfgKnown(View::Application))
        return Fail(FailureKind::ListUnreadable, QStringLiteral("the stored list cannot be read"));
    ExitCode result = ExitCode::Unusable;
    {
        const PluginLibrary::Instance instance = CreateInstance();
        // First of all: it reports a change by something else, and adopts it.
        const bool wasIntact = CfgCenter::WasAppCfgIntact(View::Application);
        const StoredSet set = LoadedSet();
        if (const QString notice = m_mode == Mode::ReadOnly ? QString() : BackUpBrokenList(set); !notice.isEmpty())
            m_notices.Report(notice);
        if (!wasIntact)
            ReportLoss(set);
        if (!instance)
            Fail(FailureKind::PluginUnusable,
                 QStringLiteral("the plug-in %1 returned no instance").arg(m_options.plugin));
        else if (!instance->IsAvailable())
            Fail(FailureKind::PluginUnusable,
                 QStringLiteral("the plug-in %1 reports that it is not available").arg(m_options.plugin));
        else
            result = RunWithInstance(*instance, work);
    }

    // The plug-in stored its settings again during tear-down. Objects it left to deleteLater() are deleted while the
    // services it uses still exist.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (m_mode != Mode::ReadOnly)
        m_saver.Save();
    return result;
}

/// Sets the environment that applications started by the plug-in inherit.
void PluginSession::SetUpEnvironment() const
{
    Environment::Set("VEXEL_CONFIG_DIR", QDir::toNativeSeparators(m_options.configDirectory));
    // The machine's file may name programs without a path; those installed with the host are in its folder.
    Environment::Prepend("PATH", QDir::toNativeSeparators(QCoreApplication::applicationDirPath()));
}

PluginLibrary::Instance PluginSession::CreateInstance()
{
    const bool isSet = !m_options.defaultDataDirectory.isEmpty();
    // The plug-in reads the directory only while it is being created.
    const DataDirectory::Fallback fallback(
        isSet ? m_options.defaultDataDirectory
              : DataDirectory::InstalledSamples(QCoreApplication::applicationDirPath()));
    m_usesSamples = !isSet && fallback.IsUsed();
    return m_library.Create(m_options.name);
}

ExitCode PluginSession::RunWithInstance(IDllInstance& instance, const Work& work)
{
    QString error;
    const std::optional<ConnectDialog> dialog = ConnectDialog::Find(error);
    if (!dialog)
        return Fail(FailureKind::PluginUnusable, error);
    m_pInstance = &instance;
    m_pDialog = &*dialog;
    const ExitCode result = work(*dialog);
    Save();
    m_pInstance = nullptr;
    m_pDialog = nullptr;
    return result;
}

QString PluginSession::Save()
{
    m_pInstance->SaveSettings();
    WriteEntryCount(*CfgCenter::GetAppCfg(View::Application), m_pDialog->Count());
    StoreWindowSize();
    return m_mode == Mode::ReadOnly ? QString() : m_saver.Save();
}

void PluginSession::SaveAsync(std::function<void(const QString& error)> done)
{
    m_pDialog->StoreFilter();
    StoreWindowSize();
    m_saver.SaveAsync(std::move(done));
}

void PluginSession::StoreWindowSize() const
{
    // The size of a window that is off screen is not worth storing.
    if (m_mode == Mode::Desktop)
        GuiBase::Instance().StoreWidgetSize(m_pDialog->Window());
}

/// Says how many entries a document has lost that something else than the host has written.
void PluginSession::ReportLoss(const StoredSet& set)
{
    const std::optional<int> before = ReadEntryCount(*CfgCenter::GetAppCfg(View::Application));
    m_notices.Report(
        before ? QStringLiteral("entries in the list when it was saved: %1, now: %2")
                     .arg(QString::number(*before), QString::number(set.entries))
               : QStringLiteral("entries in the list now: %1; how many it had is not known").arg(set.entries));
}
