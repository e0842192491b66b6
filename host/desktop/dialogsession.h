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

/// The host while a person works with the dialog: brings together what happens to the dialog, the tray and the session
/// with what the host does about it.
class DialogSession : public QObject
{
    Q_OBJECT

public:
    /// Stores and saves everything; false when that failed.
    using Save = std::function<bool()>;

    /// Dialog and notices must outlive the session.
    DialogSession(const ConnectDialog& dialog, Notices& notices, Save save, QObject* parent = nullptr);
    ~DialogSession() override;

    /// Shows the dialog, and to the person what notices there are: from the tray where there is one, else in a box.
    void Start();

signals:
    /// Everything has been saved; or it could not be, and the person wants the end all the same.
    void EndWanted();

private:
    void SaveHidden();
    void SaveAndEnd();
    void Tell(const QString& text);
    void OnStaysHidden(int inUse);
    void OnWentToTray();
    void SaveNow();

    Notices& m_notices;
    const Save m_save;
    StatusMonitor m_monitor;
    DialogVisibility m_keeper;
    TrayIcon m_tray;
    NoticeBox m_noticeBox;
    QuitQuestion m_question;
    QuitQuestion m_unsavedQuestion;
    bool m_isAskedUnsaved = false;
};
