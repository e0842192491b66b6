// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/desktop/dialogsession.h"

#include "host/commands/dialogpicture.h"
#include "host/desktop/operatorguide.h"
#include "host/desktop/unsavedtext.h"
#include "host/output/notices.h"
#include "host/plugin/connectdialog.h"
#include "host/system/autostart.h"

#include <QDir>
#include <QGuiApplication>
#include <QShortcut>

#include <utility>

DialogSession::DialogSession(const ConnectDialog& dialog, Notices& notices, SaveAll saveAll, AutoSave::Save autoSave,
                             MenuSettings settings, QObject* parent)
    : QObject(parent)
    , m_dialog(dialog)
    , m_notices(notices)
    , m_saveAll(std::move(saveAll))
    , m_settings(std::move(settings))
    , m_monitor(dialog)
    , m_visibility(dialog, m_monitor)
    , m_tray(m_monitor, this)
    , m_autoSave(dialog, std::move(autoSave), this)
{
    // Queued: a save that waits for this one may be followed by the question about unsaved changes.
    connect(&m_autoSave, &AutoSave::Saved, this, &DialogSession::OnAutoSaved, Qt::QueuedConnection);
    connect(&m_visibility, &DialogVisibility::DialogHidden, this, &DialogSession::SaveSoon);
    connect(&m_visibility, &DialogVisibility::QuitRequested, this, &DialogSession::SaveAndQuit);
    connect(&m_visibility, &DialogVisibility::QuitNeedsConfirmation, &m_quitQuestion, &QuitQuestion::Ask);
    connect(&m_visibility, &DialogVisibility::StaysHidden, this, &DialogSession::OnStaysHidden);
    connect(&m_visibility, &DialogVisibility::WentToTray, this, &DialogSession::OnWentToTray);

    m_visibility.SetTrayAvailable(m_tray.IsAvailable());
    connect(&m_tray, &TrayIcon::AvailabilityChanged, &m_visibility, &DialogVisibility::SetTrayAvailable);
    connect(&m_tray, &TrayIcon::ShowRequested, &m_visibility, &DialogVisibility::ShowDialog);
    connect(&m_tray, &TrayIcon::SaveRequested, this, &DialogSession::SaveNow);
    // The entry may have been changed meanwhile, by another program as well.
    connect(&m_tray, &TrayIcon::MenuShown, this, [this] { m_tray.SetAutostart(Autostart::IsOn()); });
    connect(&m_tray, &TrayIcon::AutostartRequested, this, &DialogSession::SetAutostart);
    connect(&m_tray, &TrayIcon::HelpRequested, this, &DialogSession::OpenGuide);
    m_tray.SetAutostart(Autostart::IsOn());
    m_tray.SetHelpAvailable(!m_settings.guide.isEmpty());
    if (!m_settings.guide.isEmpty())
        m_pHelpShortcut = std::make_unique<QShortcut>(Qt::Key_F1, dialog.Window(), this, [this] { OpenGuide(); });
    connect(&m_tray, &TrayIcon::QuitRequested, &m_visibility, &DialogVisibility::RequestQuit);

    connect(&m_quitQuestion, &QuitQuestion::Answered, this, [this](bool quit) {
        if (quit)
            SaveAndQuit();
        else
            m_visibility.DecideLater();
    });
    connect(&m_unsavedQuestion, &QuitQuestion::Answered, this, [this](bool quit) {
        m_isUnsavedQuestionOpen = false;
        // A user who stays wants to act on it, for example export to another disk.
        if (quit)
            emit QuitRequested();
        else
            m_visibility.ShowDialog();
    });

    // At the end of the session the process may not get further than this.
    connect(
        qApp, &QGuiApplication::commitDataRequest, this, [this] { Save(); }, Qt::DirectConnection);
}

DialogSession::~DialogSession()
{
    m_notices.SetDisplay({});
}

void DialogSession::Start(bool isHidden)
{
    if (isHidden)
        m_visibility.StartInTray();
    else
        m_visibility.ShowDialog();
    m_notices.SetDisplay([this](const QString& text) { ShowNotice(text); });
}

/// Saves everything in another thread, and tells if that fails.
void DialogSession::SaveSoon()
{
    m_isErrorWanted = true;
    m_autoSave.SaveNow();
}

void DialogSession::SaveAndQuit()
{
    const QString error = Save();
    if (error.isEmpty()) {
        emit QuitRequested();
    } else {
        m_isUnsavedQuestionOpen = true;
        m_unsavedQuestion.AskUnsaved(error);
    }
}

void DialogSession::ShowNotice(const QString& text)
{
    if (m_tray.CanShowMessages())
        m_tray.ShowMessage(text, QSystemTrayIcon::Warning);
    else
        m_noticeBox.Show(text);
}

void DialogSession::OnStaysHidden(int inUse)
{
    m_notices.Report(
        QStringLiteral(
            "%1 still in use; the dialog reappears when the last application has ended, or when kitestarter is run")
            .arg(inUse == 1 ? QStringLiteral("1 entry is") : QStringLiteral("%1 entries are").arg(inUse)),
        (inUse == 1 ? tr("1 entry is still in use.") : tr("%n entries are still in use.", nullptr, inUse)) +
            QStringLiteral("\n\n") +
            tr("The connect dialog reappears when the last application has ended. Run kitestarter to show it now."));
}

void DialogSession::OnWentToTray()
{
    m_tray.ShowMessage(tr("The connect dialog stays here until you choose \"Quit\"."), QSystemTrayIcon::Information);
}

void DialogSession::SaveNow()
{
    m_isErrorForTheTray = true;
    SaveSoon();
}

void DialogSession::SetAutostart(bool isOn)
{
    if (const QString error = Autostart::Set(isOn, m_settings.autostartOptions); !error.isEmpty()) {
        const QString text = isOn ? tr("The start at login could not be switched on.")
                                  : tr("The start at login could not be switched off.");
        m_tray.ShowMessage(text + QStringLiteral("\n\n") + error, QSystemTrayIcon::Critical);
    }
    m_tray.SetAutostart(Autostart::IsOn());
}

void DialogSession::OpenGuide()
{
    if (!OperatorGuide::Open(m_settings.guide))
        ShowNotice(
            tr("The guide could not be opened. It is in the file %1.").arg(QDir::toNativeSeparators(m_settings.guide)));
}

bool DialogSession::ShowSamplesAreUsed()
{
    // Nobody is in front of a hidden host without a tray.
    if (!m_tray.CanShowMessages() && !m_dialog.Window()->isVisible())
        return false;
    const QString text = tr("No data directory is set, so the dialog uses the sample applications. Set the directory "
                            "that contains your CfgVEXEL.xml with the option --data, or have your administrator set it "
                            "for everybody.");
    if (m_tray.CanShowMessages())
        m_tray.ShowMessage(text, QSystemTrayIcon::Information);
    else
        m_noticeBox.Show(text, QMessageBox::Information);
    return true;
}

QString DialogSession::Save()
{
    m_autoSave.Cancel();
    m_isErrorWanted = false;
    m_isErrorForTheTray = false;
    const QString error = m_saveAll();
    m_hasAutoSaveFailed = m_hasAutoSaveFailed && !error.isEmpty();
    return error;
}

QString DialogSession::ShowDialog()
{
    m_visibility.ShowDialog();
    return {};
}

QByteArray DialogSession::Picture(QString* error)
{
    return DialogPicture(m_dialog, error);
}

void DialogSession::OnAutoSaved(const QString& error)
{
    const bool hasFailed = !error.isEmpty();
    const bool isNew = !std::exchange(m_hasAutoSaveFailed, hasFailed);
    const bool isWanted = std::exchange(m_isErrorWanted, false);
    const bool isForTheTray = std::exchange(m_isErrorForTheTray, false);
    if (!hasFailed || m_isUnsavedQuestionOpen) // which says the same
        return;
    if (isForTheTray)
        m_tray.ShowMessage(UnsavedText(error), QSystemTrayIcon::Critical);
    else if (isNew || isWanted) // not after every change
        m_notices.ShowIfUnread(UnsavedText(error));
}
