// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QObject>

class ConnectDialog;
class StatusMonitor;

/// Decides what the host does while its only window is hidden, so that a running host can always be reached.
///
/// With a tray icon:
///
/// - The dialog is closed: the host keeps running, and the dialog stays hidden until the user opens it from the tray.
///
/// Without a tray icon:
///
/// - The dialog is closed and no entry is in use: the host ends.
/// - The dialog is closed while entries are in use: the host keeps running and shows the dialog when all entries are
///   "Free" again.
/// - The tray disappears while the dialog is hidden: the dialog is shown as soon as no entry is in use.
///
/// In both cases:
///
/// - Connecting entries hid the dialog: it is shown again when all entries are "Free", or at once if nothing could be
///   connected.
/// - The user quits: confirmation is needed while entries are in use, because their applications end with the host.
///
/// Nothing is decided while a message box is open or entries are being connected. This class shows the dialog itself;
/// everything else is a signal.
class DialogVisibility : public QObject
{
    Q_OBJECT

public:
    /// `dialog` and `monitor` must outlive this object. Initially there is no tray.
    DialogVisibility(const ConnectDialog& dialog, const StatusMonitor& monitor, QObject* parent = nullptr);

    bool eventFilter(QObject* watched, QEvent* event) override;

    /// Sets whether the dialog can be opened from the tray.
    void SetTrayAvailable(bool available);

    /// Shows the dialog in front of other windows, for whatever reason it was hidden.
    void ShowDialog();
    /// Leaves the dialog hidden at the start. It is shown if there is no tray within some seconds: at the start of a
    /// desktop's session the tray may come after the programs.
    void StartInTray();
    /// Handles the user's wish to quit: emits `QuitRequested` or `QuitNeedsConfirmation`.
    void RequestQuit();
    /// Decides again from the event loop. Call this when a message box other than the dialog's own has been closed,
    /// such as the one that `QuitNeedsConfirmation` opens.
    void DecideLater();

signals:
    /// The dialog was closed, or entries have been connected, which hides it.
    void DialogHidden();
    void QuitRequested();
    /// The user wants to quit while `inUse` entries are in use.
    void QuitNeedsConfirmation(int inUse);
    /// The dialog is hidden, and the host keeps running because of `inUse` entries. Emitted every time.
    void StaysHidden(int inUse);
    /// The dialog was closed to the tray for the first time. Emitted once.
    void WentToTray();

private:
    enum class State {
        Shown,
        Closed,  ///< hidden, not yet decided what follows
        Waiting, ///< hidden until no entry is in use
        Started, ///< hidden, and there may be a tray soon
        InTray   ///< hidden until it is opened from the tray
    };

    void OnConnected();
    void Decide();
    void DecideAboutClosed();
    void ShowOrWait();

    const ConnectDialog& m_dialog;
    const StatusMonitor& m_monitor;
    State m_state = State::Shown;
    bool m_trayAvailable = false;
    bool m_wentToTrayBefore = false;
};
