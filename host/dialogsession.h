#pragma once

#include "host/dialogkeeper.h"
#include "host/noticebox.h"
#include "host/quitquestion.h"
#include "host/statusmonitor.h"
#include "host/trayicon.h"

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

    Notices& m_Notices;
    const Save m_Save;
    StatusMonitor m_Monitor;
    DialogKeeper m_Keeper;
    TrayIcon m_Tray;
    NoticeBox m_NoticeBox;
    QuitQuestion m_Question;
    QuitQuestion m_UnsavedQuestion;
    bool m_IsAskedUnsaved = false;
};
