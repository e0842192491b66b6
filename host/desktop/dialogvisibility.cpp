// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/desktop/dialogvisibility.h"

#include "host/plugin/connectdialog.h"
#include "host/plugin/statusmonitor.h"

#include <QApplication>
#include <QEvent>
#include <QTimer>

#include <chrono>

using namespace std::chrono_literals;

DialogVisibility::DialogVisibility(const ConnectDialog& dialog, const StatusMonitor& monitor, QObject* parent)
    : QObject(parent)
    , m_dialog(dialog)
    , m_monitor(monitor)
{
    dialog.Window()->installEventFilter(this);
    connect(&monitor, &StatusMonitor::InUseChanged, this, &DialogVisibility::DecideLater);
}

bool DialogVisibility::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_dialog.Window()) {
        if (event->type() == QEvent::Show) {
            m_state = State::Shown;
        } else if (event->type() == QEvent::Hide && m_dialog.Window()->isHidden() && m_state == State::Shown) {
            // Minimising sends this event, too, but does not count as hiding.
            m_state = State::Closed;
            // "&Connect" hides the dialog before it connects, so whether entries are in use is known only later.
            DecideLater();
        } else if (event->type() == QEvent::DynamicPropertyChange && !m_dialog.IsConnecting() &&
                   static_cast<QDynamicPropertyChangeEvent*>(event)->propertyName() == ConnectDialog::kIsConnecting) {
            OnConnected();
        }
    }
    return QObject::eventFilter(watched, event);
}

void DialogVisibility::SetTrayAvailable(bool available)
{
    m_trayAvailable = available;
    if (!available)
        DecideLater();
}

void DialogVisibility::ShowDialog()
{
    m_dialog.BringToFront();
}

void DialogVisibility::StartInTray()
{
    constexpr auto kTrayTime = 5s;
    m_state = m_trayAvailable ? State::InTray : State::Started;
    QTimer::singleShot(kTrayTime, this, [this] {
        if (m_state == State::Started)
            m_state = State::InTray;
        Decide();
    });
}

void DialogVisibility::RequestQuit()
{
    const int inUse = m_monitor.CountInUse();
    if (inUse == 0)
        emit QuitRequested();
    else
        emit QuitNeedsConfirmation(inUse);
}

void DialogVisibility::OnConnected()
{
    if (m_state == State::Shown)
        return;
    // A dialog in the tray stays there.
    if (m_state == State::Closed)
        m_state = State::Waiting;
    emit DialogHidden();
    Decide();
}

void DialogVisibility::DecideLater()
{
    QMetaObject::invokeMethod(this, &DialogVisibility::Decide, Qt::QueuedConnection);
}

void DialogVisibility::Decide()
{
    // An open box may ask about quitting. The next decision is made after it is answered, or when the entries have been
    // connected.
    if (QApplication::activeModalWidget() || m_dialog.IsConnecting())
        return;

    switch (m_state) {
    case State::Shown:
    case State::Started:
        break;
    case State::Closed:
        DecideAboutClosed();
        break;
    case State::Waiting:
        if (m_monitor.CountInUse() == 0)
            m_dialog.BringToFront();
        break;
    case State::InTray:
        // Losing the tray does not end the host: the panel may only be restarting.
        if (!m_trayAvailable)
            ShowOrWait();
        break;
    }
}

void DialogVisibility::DecideAboutClosed()
{
    emit DialogHidden();
    if (m_trayAvailable) {
        m_state = State::InTray;
        if (!m_wentToTrayBefore)
            emit WentToTray();
        m_wentToTrayBefore = true;
    } else if (m_monitor.CountInUse() == 0) {
        emit QuitRequested();
    } else {
        ShowOrWait();
    }
}

void DialogVisibility::ShowOrWait()
{
    m_state = State::Waiting;
    const int inUse = m_monitor.CountInUse();
    if (inUse == 0)
        m_dialog.BringToFront();
    else
        emit StaysHidden(inUse);
}
