#include "host/trayicon.h"

#include "host/programicon.h"
#include "host/statusmonitor.h"

#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds s_lookInterval = 1s;

} // namespace

TrayIcon::TrayIcon(const StatusMonitor& monitor, QObject* parent)
    : QObject(parent)
{
    m_Menu.setObjectName(QStringLiteral("m_TrayMenu"));
    m_Icon.setObjectName(QStringLiteral("m_TrayIcon"));
    m_Icon.setParent(this);
    m_Icon.setContextMenu(&m_Menu);

    QAction* show = m_Menu.addAction(tr("Show connect dialog"), this, &TrayIcon::DialogWanted);
    m_Menu.setDefaultAction(show);
    m_Menu.addAction(tr("Save now"), this, &TrayIcon::SaveWanted);
    m_Menu.addSeparator();
    m_Menu.addAction(tr("Quit"), this, &TrayIcon::EndWanted);

    connect(&m_Icon, &QSystemTrayIcon::activated, this, &TrayIcon::OnActivated);
    connect(&monitor, &StatusMonitor::InUseChanged, this, &TrayIcon::ShowCount);
    connect(&m_LookTimer, &QTimer::timeout, this, &TrayIcon::Look);

    ShowCount(monitor.CountInUse());
    m_Available = QSystemTrayIcon::isSystemTrayAvailable();
    // Where there never is a tray, Qt would complain of that.
    m_Icon.setVisible(m_Available);
    m_LookTimer.start(s_lookInterval);
}

void TrayIcon::Tell(const QString& text, QSystemTrayIcon::MessageIcon icon)
{
    if (m_Available)
        m_Icon.showMessage(tr("Vexel - Connect Dialog"), text, icon);
}

void TrayIcon::OnActivated(QSystemTrayIcon::ActivationReason reason)
{
    // A double click has been a click already, the menu's own click belongs to the menu.
    if (reason == QSystemTrayIcon::Trigger)
        emit DialogWanted();
}

void TrayIcon::Look()
{
    const bool available = QSystemTrayIcon::isSystemTrayAvailable();
    if (available == m_Available)
        return;
    m_Available = available;
    // Once it is visible, it is so in the tray that comes after this one, too.
    if (available)
        m_Icon.show();
    emit AvailabilityChanged(available);
}

void TrayIcon::ShowCount(int inUse)
{
    m_Icon.setIcon(ProgramIcon(inUse > 0));
    QString count = tr("%n entries in use", nullptr, inUse);
    if (inUse == 0)
        count = tr("no entry in use");
    else if (inUse == 1)
        count = tr("1 entry in use");
    m_Icon.setToolTip(tr("Vexel - Connect Dialog") + QLatin1Char('\n') + count);
}
