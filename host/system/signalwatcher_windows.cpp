// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/signalwatcher.h"

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>
#include <QMutex>
#include <QMutexLocker>
#include <QWaitCondition>

#include <csignal>

#include <windows.h>

namespace {

// Windows calls the console handler in a separate thread; it reaches the watcher through these.
QMutex g_mutex;
QWaitCondition g_destroyed;
SignalWatcher* g_pWatcher = nullptr;

constexpr unsigned long kTimeoutMs = 20000;

BOOL WINAPI OnConsoleEvent(DWORD event)
{
    QMutexLocker locker(&g_mutex);
    if (!g_pWatcher)
        return FALSE;
    const int signal = event == CTRL_C_EVENT ? SIGINT : SIGTERM;
    QMetaObject::invokeMethod(
        g_pWatcher, [watcher = g_pWatcher, signal] { emit watcher->QuitRequested(signal); }, Qt::QueuedConnection);

    // After these events the process ends as soon as the handler returns: give the host time to save.
    if (event == CTRL_CLOSE_EVENT || event == CTRL_LOGOFF_EVENT || event == CTRL_SHUTDOWN_EVENT)
        g_destroyed.wait(&g_mutex, kTimeoutMs);
    return TRUE;
}

} // namespace

/// Receives termination requests sent to a hidden window and to the thread.
///
/// The window is needed because at the end of a session Windows asks windows only, and the host may show no other. It
/// also receives messages while a modal loop of Windows runs, for example while a window is moved; such loops drop
/// thread messages. Thread messages are for a host without a desktop, which cannot have a window.
///
/// Messages to other windows are not handled: the dialog reacts to being closed itself.
struct SignalWatcher::Private : QAbstractNativeEventFilter
{
    explicit Private(SignalWatcher& owner)
        : watcher(owner)
    {
        QCoreApplication::instance()->installNativeEventFilter(this);

        WNDCLASSW description{};
        description.lpfnWndProc = &Private::OnMessage;
        description.hInstance = GetModuleHandleW(nullptr);
        description.lpszClassName = kClassName;
        RegisterClassW(&description);
        // Not a message-only window: those are not asked at the end of a session.
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
        emit watcher.QuitRequested(SIGTERM);
        return true;
    }

    static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the system keeps it as a number.
        auto* const d = reinterpret_cast<Private*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (d && message == WM_CLOSE) {
            emit d->watcher.QuitRequested(SIGTERM);
            return 0;
        }
        if (d && message == WM_ENDSESSION && wParam) {
            emit d->watcher.SessionEnding();
            QMetaObject::invokeMethod(
                &d->watcher, [watcher = &d->watcher] { emit watcher->QuitRequested(SIGTERM); }, Qt::QueuedConnection);
            return 0;
        }
        // Also agrees to WM_QUERYENDSESSION.
        return DefWindowProcW(window, message, wParam, lParam);
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
        g_destroyed.wakeAll();
    }
    // Last: the system changes no handlers while one runs, and a running one may have waited for the lines above.
    SetConsoleCtrlHandler(OnConsoleEvent, FALSE);
}
