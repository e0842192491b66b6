#include "host/system/signalwatcher.h"

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>
#include <QMutex>
#include <QMutexLocker>
#include <QWaitCondition>

#include <windows.h>

namespace {

// The console calls its handler on a thread of its own, so the one watcher is reached through these.
QMutex g_mutex;
QWaitCondition g_gone;
SignalWatcher* g_pWatcher = nullptr;

constexpr unsigned long kTimeoutMs = 20000;

BOOL WINAPI OnConsoleEvent(DWORD event)
{
    QMutexLocker locker(&g_mutex);
    if (!g_pWatcher)
        return FALSE;
    QMetaObject::invokeMethod(g_pWatcher, &SignalWatcher::EndRequested, Qt::QueuedConnection);

    // After these the process ends as soon as the handler returns: leave the host the time to save.
    if (event == CTRL_CLOSE_EVENT || event == CTRL_LOGOFF_EVENT || event == CTRL_SHUTDOWN_EVENT)
        g_gone.wait(&g_mutex, kTimeoutMs);
    return TRUE;
}

} // namespace

/// Hears what Windows and its programs send to a window, and what they send to the thread.
///
/// The window is never shown. It is what a host has that shows no other: Windows asks windows alone when the session
/// ends. It also hears what is sent while a loop of Windows' own runs, as while a window is moved: those leave out what
/// goes to the thread. The thread's messages are for the host that can have no window, without a desktop.
///
/// What is sent to other windows is none of this: the dialog has its own answer to being closed.
struct SignalWatcher::Private : QAbstractNativeEventFilter
{
    explicit Private(SignalWatcher& asked)
        : watcher(asked)
    {
        QCoreApplication::instance()->installNativeEventFilter(this);

        WNDCLASSW description{};
        description.lpfnWndProc = &Private::OnMessage;
        description.hInstance = GetModuleHandleW(nullptr);
        description.lpszClassName = kClassName;
        RegisterClassW(&description);
        // Not one for messages only: the system leaves those out.
        window = CreateWindowExW(0, kClassName, nullptr, WS_OVERLAPPED, 0, 0, 0, 0, nullptr, nullptr,
                                 description.hInstance, nullptr);
        if (window)
            SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    }
    ~Private() override
    {
        if (window)
            DestroyWindow(window);
        UnregisterClassW(kClassName, GetModuleHandleW(nullptr));
    }

    Private(const Private&) = delete;
    Private& operator=(const Private&) = delete;

    bool nativeEventFilter(const QByteArray& /*eventType*/, void* message, qintptr* /*result*/) override
    {
        const auto* const received = static_cast<const MSG*>(message);
        if (received->hwnd || received->message != WM_CLOSE)
            return false;
        emit watcher.EndRequested();
        return true;
    }

    static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM parameter, LPARAM more)
    {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the system keeps it as a number.
        auto* const d = reinterpret_cast<Private*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (d && message == WM_CLOSE) {
            emit d->watcher.EndRequested();
            return 0;
        }
        if (d && message == WM_ENDSESSION && parameter) {
            emit d->watcher.SessionEnding();
            QMetaObject::invokeMethod(&d->watcher, &SignalWatcher::EndRequested, Qt::QueuedConnection);
            return 0;
        }
        // Which agrees to WM_QUERYENDSESSION, too.
        return DefWindowProcW(window, message, parameter, more);
    }

    static constexpr const wchar_t* kClassName = L"VexelHostRequests";

    SignalWatcher& watcher;
    HWND window = nullptr;
};

SignalWatcher::SignalWatcher(QObject* parent)
    : QObject(parent)
    , d(std::make_unique<Private>(*this))
{
    const QMutexLocker locker(&g_mutex);
    g_pWatcher = this;
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

SignalWatcher::~SignalWatcher()
{
    {
        const QMutexLocker locker(&g_mutex);
        g_pWatcher = nullptr;
        g_gone.wakeAll();
    }
    // Not before: the system does nothing about handlers while one of them runs, and that one may have waited for this.
    SetConsoleCtrlHandler(OnConsoleEvent, FALSE);
}
