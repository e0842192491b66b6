#pragma once

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
    /// Stores and saves everything. Returns false if saving failed.
    using Save = std::function<bool()>;

    /// `dialog` and `notices` must outlive the session.
    DialogSession(const ConnectDialog& dialog, Notices& notices, Save save, QObject* parent = nullptr);
    ~DialogSession() override;

    /// Shows the dialog and the pending notices: as tray messages if there is a tray, otherwise in a message box.
    void Start();

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

    Notices& m_notices;
    const Save m_save;
    StatusMonitor m_monitor;
    DialogVisibility m_visibility;
    TrayIcon m_tray;
    NoticeBox m_noticeBox;
    QuitQuestion m_quitQuestion;
    QuitQuestion m_unsavedQuestion;
    bool m_isUnsavedQuestionOpen = false;
};
