#include "host/signalwatcher.h"

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>
#include <QMutex>
#include <QMutexLocker>
#include <QWaitCondition>

#include <windows.h>

namespace {

// The console calls its handler on a thread of its own, so the one watcher is reached through these.
QMutex g_Mutex;
QWaitCondition g_Gone;
SignalWatcher* g_pWatcher = nullptr;

constexpr unsigned long s_patienceMs = 20000;

BOOL WINAPI OnConsoleEvent(DWORD event)
{
    QMutexLocker locker(&g_Mutex);
    if (!g_pWatcher)
        return FALSE;
    QMetaObject::invokeMethod(g_pWatcher, &SignalWatcher::EndRequested, Qt::QueuedConnection);

    // After these the process ends as soon as the handler returns: leave the host the time to save.
    if (event == CTRL_CLOSE_EVENT || event == CTRL_LOGOFF_EVENT || event == CTRL_SHUTDOWN_EVENT)
        g_Gone.wait(&g_Mutex, s_patienceMs);
    return TRUE;
}

} // namespace

/// A host that shows no window and has no console can still be asked to end, by a message to its thread. Messages to
/// windows are none of this: the dialog has its own answer to being closed.
struct SignalWatcher::Private : QAbstractNativeEventFilter
{
    explicit Private(SignalWatcher& asked)
        : watcher(asked)
    {
        QCoreApplication::instance()->installNativeEventFilter(this);
    }

    bool nativeEventFilter(const QByteArray& /*eventType*/, void* message, qintptr* /*result*/) override
    {
        const auto* const received = static_cast<const MSG*>(message);
        if (received->hwnd || received->message != WM_CLOSE)
            return false;
        emit watcher.EndRequested();
        return true;
    }

    SignalWatcher& watcher;
};

SignalWatcher::SignalWatcher(QObject* parent)
    : QObject(parent)
    , d(std::make_unique<Private>(*this))
{
    const QMutexLocker locker(&g_Mutex);
    g_pWatcher = this;
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

SignalWatcher::~SignalWatcher()
{
    SetConsoleCtrlHandler(OnConsoleEvent, FALSE);
    const QMutexLocker locker(&g_Mutex);
    g_pWatcher = nullptr;
    g_Gone.wakeAll();
}
