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
    // A box that is open now was opened by "&Connect", which has more entries to go; its end decides.
    if (m_State == State::Shown || QApplication::activeModalWidget())
        return;

    const int inUse = m_Monitor.CountInUse();
    if (m_State == State::Waiting) {
        if (inUse == 0)
            m_Dialog.BringToFront();
        return;
    }
    emit DialogHidden();
    if (inUse == 0) {
        emit EndWanted();
        return;
    }
    m_State = State::Waiting;
    emit StaysHidden(inUse);
}
