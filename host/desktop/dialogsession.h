#pragma once

#include "host/desktop/autosave.h"
#include "host/desktop/dialogvisibility.h"
#include "host/desktop/noticebox.h"
#include "host/desktop/quitquestion.h"
#include "host/desktop/trayicon.h"
#include "host/plugin/statusmonitor.h"

#include <QObject>

#include <functional>

class ConnectDialog;
class Notices;

/// The host's interactive mode: connects the dialog, the tray icon, the message boxes and saving.
class DialogSession : public QObject
{
    Q_OBJECT

public:
    /// Stores and saves everything. Returns why that failed; empty on success.
    using SaveAll = std::function<QString()>;

    /// `dialog` and `notices` must outlive the session.
    DialogSession(const ConnectDialog& dialog, Notices& notices, SaveAll saveAll, AutoSave::Save autoSave,
                  QObject* parent = nullptr);
    ~DialogSession() override;

    /// Shows the dialog and the pending notices: as tray messages if there is a tray, otherwise in a message box.
    void Start();

    /// Saves everything, whatever is being saved already. Returns why that failed; empty on success.
    QString Save();

signals:
    /// The host shall end: everything has been saved, or the user chose to quit although saving failed.
    void QuitRequested();

private:
    void SaveOnHide();
    void SaveAndQuit();
    void ShowNotice(const QString& text);
    void OnStaysHidden(int inUse);
    void OnWentToTray();
    void SaveNow();
    void OnAutoSaved(const QString& error);

    Notices& m_notices;
    const SaveAll m_saveAll;
    StatusMonitor m_monitor;
    DialogVisibility m_visibility;
    TrayIcon m_tray;
    NoticeBox m_noticeBox;
    QuitQuestion m_quitQuestion;
    QuitQuestion m_unsavedQuestion;
    bool m_isUnsavedQuestionOpen = false;
    AutoSave m_autoSave;
    bool m_hasAutoSaveFailed = false;
};
