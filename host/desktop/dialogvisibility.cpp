#include "host/desktop/dialogvisibility.h"

#include "host/plugin/connectdialog.h"
#include "host/plugin/statusmonitor.h"

#include <QApplication>
#include <QEvent>

DialogVisibility::DialogVisibility(const ConnectDialog& dialog, const StatusMonitor& monitor, QObject* parent)
    : QObject(parent)
    , m_dialog(dialog)
    , m_monitor(monitor)
{
    dialog.Window()->installEventFilter(this);
    // Connected after the dialog's own slot, so this runs when everything has been connected that can be.
    connect(dialog.ConnectButton(), &QAbstractButton::clicked, this, &DialogVisibility::OnConnectClicked);
    connect(&monitor, &StatusMonitor::InUseChanged, this, &DialogVisibility::DecideLater);
}

bool DialogVisibility::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_dialog.Window()) {
        if (event->type() == QEvent::Show) {
            m_state = State::Shown;
        } else if (event->type() == QEvent::Hide && m_dialog.Window()->isHidden() && m_state == State::Shown) {
            // A minimised window gets this event, too, but does not count as hidden.
            m_state = State::Closed;
            // "&Connect" hides first and connects then: whether anything is in use is known later.
            DecideLater();
        }
    }
    return QObject::eventFilter(watched, event);
}

void DialogVisibility::SetTrayAvailable(bool bAvailable)
{
    m_trayAvailable = bAvailable;
    if (!bAvailable)
        DecideLater();
}

void DialogVisibility::ShowDialog()
{
    m_dialog.BringToFront();
}

void DialogVisibility::AskToEnd()
{
    const int inUse = m_monitor.CountInUse();
    if (inUse == 0)
        emit EndWanted();
    else
        emit EndNeedsAnswer(inUse);
}

void DialogVisibility::OnConnectClicked()
{
    if (m_state == State::Shown)
        return;
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
    // A box that is open now was opened by "&Connect", which has more entries to go, or asks about the end; what
    // follows its answer decides.
    if (QApplication::activeModalWidget())
        return;

    switch (m_state) {
    case State::Shown:
        break;
    case State::Closed:
        DecideAboutClosed();
        break;
    case State::Waiting:
        if (m_monitor.CountInUse() == 0)
            m_dialog.BringToFront();
        break;
    case State::InTray:
        // The host is not ended for the loss of the tray: a panel that starts anew is no wish of the person.
        if (!m_trayAvailable)
            ComeBackOrWait();
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
        emit EndWanted();
    } else {
        ComeBackOrWait();
    }
}

void DialogVisibility::ComeBackOrWait()
{
    m_state = State::Waiting;
    const int inUse = m_monitor.CountInUse();
    if (inUse == 0)
        m_dialog.BringToFront();
    else
        emit StaysHidden(inUse);
}
