#include "host/dialogkeeper.h"

#include "host/connectdialog.h"
#include "host/statusmonitor.h"

#include <QApplication>
#include <QEvent>

DialogKeeper::DialogKeeper(const ConnectDialog& dialog, const StatusMonitor& monitor, QObject* parent)
    : QObject(parent)
    , m_Dialog(dialog)
    , m_Monitor(monitor)
{
    dialog.Window()->installEventFilter(this);
    // Connected after the dialog's own slot, so this runs when everything has been connected that can be.
    connect(dialog.ConnectButton(), &QAbstractButton::clicked, this, &DialogKeeper::OnConnectClicked);
    connect(&monitor, &StatusMonitor::InUseChanged, this, &DialogKeeper::DecideLater);
}

bool DialogKeeper::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_Dialog.Window()) {
        if (event->type() == QEvent::Show) {
            m_State = State::Shown;
        } else if (event->type() == QEvent::Hide && m_Dialog.Window()->isHidden() && m_State == State::Shown) {
            // A minimised window gets this event, too, but does not count as hidden.
            m_State = State::Closed;
            // "&Connect" hides first and connects then: whether anything is in use is known later.
            DecideLater();
        }
    }
    return QObject::eventFilter(watched, event);
}

void DialogKeeper::SetTrayAvailable(bool bAvailable)
{
    m_TrayAvailable = bAvailable;
    if (!bAvailable)
        DecideLater();
}

void DialogKeeper::ShowDialog()
{
    m_Dialog.BringToFront();
}

void DialogKeeper::AskToEnd()
{
    const int inUse = m_Monitor.CountInUse();
    if (inUse == 0)
        emit EndWanted();
    else
        emit EndNeedsAnswer(inUse);
}

void DialogKeeper::OnConnectClicked()
{
    if (m_State == State::Shown)
        return;
    m_State = State::Waiting;
    emit DialogHidden();
    Decide();
}

void DialogKeeper::DecideLater()
{
    QMetaObject::invokeMethod(this, &DialogKeeper::Decide, Qt::QueuedConnection);
}

void DialogKeeper::Decide()
{
    // A box that is open now was opened by "&Connect", which has more entries to go, or asks about the end; what
    // follows its answer decides.
    if (QApplication::activeModalWidget())
        return;

    switch (m_State) {
    case State::Shown:
        break;
    case State::Closed:
        DecideAboutClosed();
        break;
    case State::Waiting:
        if (m_Monitor.CountInUse() == 0)
            m_Dialog.BringToFront();
        break;
    case State::InTray:
        // The host is not ended for the loss of the tray: a panel that starts anew is no wish of the person.
        if (!m_TrayAvailable)
            ComeBackOrWait();
        break;
    }
}

void DialogKeeper::DecideAboutClosed()
{
    emit DialogHidden();
    if (m_TrayAvailable) {
        m_State = State::InTray;
        if (!m_WentToTrayBefore)
            emit WentToTray();
        m_WentToTrayBefore = true;
    } else if (m_Monitor.CountInUse() == 0) {
        emit EndWanted();
    } else {
        ComeBackOrWait();
    }
}

void DialogKeeper::ComeBackOrWait()
{
    m_State = State::Waiting;
    const int inUse = m_Monitor.CountInUse();
    if (inUse == 0)
        m_Dialog.BringToFront();
    else
        emit StaysHidden(inUse);
}
