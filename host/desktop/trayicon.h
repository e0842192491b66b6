// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <QTimer>

class StatusMonitor;

/// The host's icon in the system tray: shows how many entries are in use and has a menu to show the dialog, save,
/// choose whether the session starts the host, get help and quit. If there is no tray, waits for one.
///
/// Only emits signals; acts on nothing itself.
class TrayIcon : public QObject
{
    Q_OBJECT

public:
    /// `monitor` must outlive the icon.
    explicit TrayIcon(const StatusMonitor& monitor, QObject* parent = nullptr);

    /// Returns whether the icon is visible in a tray.
    bool IsAvailable() const { return m_available; }

    /// Returns whether the tray can show messages.
    bool CanShowMessages() const { return m_available && QSystemTrayIcon::supportsMessages(); }
    /// Shows a message beside the icon. Does nothing without a tray.
    void ShowMessage(const QString& text, QSystemTrayIcon::MessageIcon icon);

    /// Sets whether "Help" can be chosen; initially it cannot.
    void SetHelpAvailable(bool available) { m_pHelp->setEnabled(available); }
    /// Sets the tick of "Start at login".
    void SetAutostart(bool isOn) { m_pAutostart->setChecked(isOn); }

signals:
    /// The tray appeared or disappeared. Emitted with a delay, because most systems have to be polled for it.
    void AvailabilityChanged(bool available);
    void ShowRequested();
    void SaveRequested();
    /// The menu is about to be shown.
    void MenuShown();
    /// The user wants the session to start the host, or not any more.
    void AutostartRequested(bool isOn);
    void HelpRequested();
    void QuitRequested();

private:
    void OnActivated(QSystemTrayIcon::ActivationReason reason);
    void UpdateAvailability();
    void ShowCount(int inUse);

    QMenu m_menu;
    QAction* m_pAutostart = nullptr;
    QAction* m_pHelp = nullptr;
    QSystemTrayIcon m_icon;
    QTimer m_pollTimer;
    bool m_available = false;
};
