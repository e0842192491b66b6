// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/desktop/trayicon.h"

#include "host/desktop/programicon.h"
#include "host/plugin/statusmonitor.h"

#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds kPollInterval = 1s;

} // namespace

TrayIcon::TrayIcon(const StatusMonitor& monitor, QObject* parent)
    : QObject(parent)
{
    m_menu.setObjectName(QStringLiteral("m_trayMenu"));
    m_icon.setObjectName(QStringLiteral("m_trayIcon"));
    m_icon.setParent(this);
    m_icon.setContextMenu(&m_menu);

    QAction* show = m_menu.addAction(tr("Show connect dialog"), this, &TrayIcon::ShowRequested);
    m_menu.setDefaultAction(show);
    m_menu.addAction(tr("Save now"), this, &TrayIcon::SaveRequested);
    m_menu.addSeparator();
    m_pAutostart = m_menu.addAction(tr("Start at login"));
    m_pAutostart->setCheckable(true);
    // Not toggled(), which SetAutostart emits as well.
    connect(m_pAutostart, &QAction::triggered, this, &TrayIcon::AutostartRequested);
    m_pHelp = m_menu.addAction(tr("Help"), QKeySequence(Qt::Key_F1), this, &TrayIcon::HelpRequested);
    m_pHelp->setEnabled(false);
    connect(&m_menu, &QMenu::aboutToShow, this, &TrayIcon::MenuShown);
    m_menu.addSeparator();
    m_menu.addAction(tr("Quit"), this, &TrayIcon::QuitRequested);

    connect(&m_icon, &QSystemTrayIcon::activated, this, &TrayIcon::OnActivated);
    connect(&monitor, &StatusMonitor::InUseChanged, this, &TrayIcon::ShowCount);
    connect(&m_pollTimer, &QTimer::timeout, this, &TrayIcon::UpdateAvailability);

    ShowCount(monitor.CountInUse());
    m_available = QSystemTrayIcon::isSystemTrayAvailable();
    // Showing the icon without a tray makes Qt print a warning.
    m_icon.setVisible(m_available);
    m_pollTimer.start(kPollInterval);
}

void TrayIcon::ShowMessage(const QString& text, QSystemTrayIcon::MessageIcon icon)
{
    if (m_available)
        m_icon.showMessage(tr("Vexel - Connect Dialog"), text, icon);
}

void TrayIcon::OnActivated(QSystemTrayIcon::ActivationReason reason)
{
    // A double click starts with a click; clicks for the context menu are handled by the menu.
    if (reason == QSystemTrayIcon::Trigger)
        emit ShowRequested();
}

void TrayIcon::UpdateAvailability()
{
    const bool available = QSystemTrayIcon::isSystemTrayAvailable();
    if (available == m_available)
        return;
    m_available = available;
    // A visible icon moves to a new tray by itself.
    if (available)
        m_icon.show();
    emit AvailabilityChanged(available);
}

void TrayIcon::ShowCount(int inUse)
{
    m_icon.setIcon(ProgramIcon(inUse > 0));
    QString count = tr("%n entries in use", nullptr, inUse);
    if (inUse == 0)
        count = tr("no entry in use");
    else if (inUse == 1)
        count = tr("1 entry in use");
    m_icon.setToolTip(tr("Vexel - Connect Dialog") + QLatin1Char('\n') + count);
}
