#pragma once

#include "host/dialogkeeper.h"
#include "host/quitquestion.h"
#include "host/statusmonitor.h"
#include "host/trayicon.h"

#include <QObject>

#include <functional>

class ConnectDialog;

/// The host while a person works with the dialog: brings together what happens to the dialog, the tray and the session
/// with what the host does about it.
class DialogSession : public QObject
{
    Q_OBJECT

public:
    /// Stores and saves everything; false when that failed.
    using Save = std::function<bool()>;

    /// The dialog must outlive the session.
    DialogSession(const ConnectDialog& dialog, Save save, QObject* parent = nullptr);

    /// Shows the dialog.
    void Start();

signals:
    /// Nothing is saved for this yet.
    void EndWanted();

private:
    void OnStaysHidden(int inUse);
    void OnWentToTray();
    void SaveNow();

    const Save m_Save;
    StatusMonitor m_Monitor;
    DialogKeeper m_Keeper;
    TrayIcon m_Tray;
    QuitQuestion m_Question;
};
