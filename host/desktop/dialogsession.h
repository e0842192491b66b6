// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/commands/dialoghost.h"
#include "host/desktop/autosave.h"
#include "host/desktop/dialogvisibility.h"
#include "host/desktop/noticebox.h"
#include "host/desktop/quitquestion.h"
#include "host/desktop/trayicon.h"
#include "host/plugin/statusmonitor.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class ConnectDialog;
class Notices;
class QShortcut;

/// What the tray's menu needs from the program.
struct MenuSettings
{
    QString guide;                ///< the operator's guide; empty: there is none
    QStringList autostartOptions; ///< the host's options at the start of the session, besides --hidden
};

/// The user's session with the dialog: connects the dialog, the tray icon, the message boxes and saving.
class DialogSession : public QObject, public DialogHost
{
    Q_OBJECT

public:
    /// Stores and saves everything. Returns why that failed; empty on success.
    using SaveAll = std::function<QString()>;

    /// `dialog` and `notices` must outlive the session.
    DialogSession(const ConnectDialog& dialog, Notices& notices, SaveAll saveAll, AutoSave::Save autoSave,
                  MenuSettings settings = {}, QObject* parent = nullptr);
    ~DialogSession() override;

    /// Shows the dialog, or starts in the tray if `isHidden` and there is a tray within some seconds. Shows the pending
    /// notices: as tray messages if there is a tray, otherwise in a message box.
    void Start(bool isHidden = false);

    /// Tells that the sample applications are used, because no data directory is set: as a tray message if there is a
    /// tray, otherwise in a message box if the dialog shows. Returns whether it has been told.
    bool ShowSamplesAreUsed();

    /// Saves everything, whatever is being saved already.
    QString Save() override;
    QString ShowDialog() override;
    QByteArray Picture(QString* error) override;
    void Quit() override { emit QuitRequested(); }

signals:
    /// The host shall end: everything has been saved, or the user chose to quit although saving failed.
    void QuitRequested();

private:
    void SaveSoon();
    void SaveAndQuit();
    void ShowNotice(const QString& text);
    void OnStaysHidden(int inUse);
    void OnWentToTray();
    void SaveNow();
    void SetAutostart(bool isOn);
    void OpenGuide();
    void OnAutoSaved(const QString& error);

    const ConnectDialog& m_dialog;
    Notices& m_notices;
    const SaveAll m_saveAll;
    const MenuSettings m_settings;
    StatusMonitor m_monitor;
    DialogVisibility m_visibility;
    TrayIcon m_tray;
    std::unique_ptr<QShortcut> m_pHelpShortcut; // of the dialog's window, which outlives the session
    NoticeBox m_noticeBox;
    QuitQuestion m_quitQuestion;
    QuitQuestion m_unsavedQuestion;
    bool m_isUnsavedQuestionOpen = false;
    AutoSave m_autoSave;
    bool m_hasAutoSaveFailed = false;
    bool m_isErrorWanted = false;     // of the save that is under way, also if the one before failed
    bool m_isErrorForTheTray = false; // likewise, from somebody who uses it
};
