#pragma once

#include <QObject>

class ConnectDialog;
class StatusMonitor;

/// Decides what becomes of the host while its only window is hidden, so that a person never faces a host that cannot be
/// reached.
///
/// With an icon in the system tray, which the dialog can be called from:
///
/// - The dialog was closed: the host stays, and the dialog stays away until it is called.
///
/// Without one:
///
/// - The dialog was closed and no entry is in use: the host shall end.
/// - The dialog was closed while entries are in use: the host stays, and the dialog comes back when the last of them is
///   "Free" again.
/// - The tray goes while the dialog is away: it comes back when no entry is in use, which may be at once.
///
/// With or without:
///
/// - "&Connect" hid the dialog: it comes back when the last entry is "Free" again; at once when none could be
///   connected.
/// - The person asks for the end: that is asked about first while entries are in use, whose applications end with the
///   host.
///
/// Nothing is decided while a message box is open. Shows the dialog by itself; everything else is announced.
class DialogVisibility : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive the keeper. There is no tray at first.
    DialogVisibility(const ConnectDialog& dialog, const StatusMonitor& monitor, QObject* parent = nullptr);

    bool eventFilter(QObject* watched, QEvent* event) override;

    /// Whether the dialog can be called from the tray, from now on.
    void SetTrayAvailable(bool bAvailable);

    /// Shows the dialog in front of other windows, whatever it was hidden for.
    void ShowDialog();
    /// The person wants the host to end.
    void AskToEnd();
    /// To be called when a message box has been answered that is not the dialog's own, such as the one of
    /// `EndNeedsAnswer`.
    void DecideLater();

signals:
    /// The person is done with the dialog for now.
    void DialogHidden();
    void EndWanted();
    /// The person wants the end, but `inUse` entries are in use: ask.
    void EndNeedsAnswer(int inUse);
    /// Said each time: the dialog is hidden, and the host stays because of `inUse` entries.
    void StaysHidden(int inUse);
    /// Said once: the dialog was closed for the first time, and can be called from the tray.
    void WentToTray();

private:
    enum class State {
        Shown,
        Closed,  ///< hidden, and it is not yet decided what that means
        Waiting, ///< hidden until nothing is in use
        InTray   ///< hidden until it is called
    };

    void OnConnectClicked();
    void Decide();
    void DecideAboutClosed();
    void ComeBackOrWait();

    const ConnectDialog& m_dialog;
    const StatusMonitor& m_monitor;
    State m_state = State::Shown;
    bool m_trayAvailable = false;
    bool m_wentToTrayBefore = false;
};
