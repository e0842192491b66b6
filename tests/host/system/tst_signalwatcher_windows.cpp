// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/signalwatcher.h"
#include "tests/support/testmain.h"

#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <memory>
#include <vector>

#include <windows.h>

namespace {

/// The top-level windows of this thread, hidden ones too, as a program finds them that asks this one to end.
std::vector<HWND> Windows()
{
    std::vector<HWND> windows;
    const auto add = [](HWND window, LPARAM list) -> BOOL {
        reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
        return TRUE;
    };
    EnumThreadWindows(GetCurrentThreadId(), add, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

/// Dispatches messages like a native loop, which does not know Qt.
void RunLoopOfWindows()
{
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
}

/// The function that Windows calls in a new thread on an event of the console.
LPTHREAD_START_ROUTINE ConsoleRoutine()
{
    const FARPROC found = GetProcAddress(GetModuleHandleW(L"kernelbase.dll"), "CtrlRoutine");
    return reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(found));
}

HANDLE TellOfConsole(DWORD event)
{
    return CreateThread(nullptr, 0, ConsoleRoutine(), reinterpret_cast<void*>(static_cast<quintptr>(event)), 0,
                        nullptr);
}

bool HasEnded(HANDLE thread)
{
    return WaitForSingleObject(thread, 0) == WAIT_OBJECT_0;
}

} // namespace

/// How a host learns that it is asked to end. Needs a desktop for its windows.
class TestSignalWatcher : public QObject
{
    Q_OBJECT

private slots:
    void requestToTheThreadIsSeen()
    {
        SignalWatcher watcher;
        const QSignalSpy requests(&watcher, &SignalWatcher::QuitRequested);
        PostThreadMessageW(GetCurrentThreadId(), WM_CLOSE, 0, 0);
        QTRY_COMPARE(requests.size(), 1);
    }

    // Native loops drop messages to the thread.
    void requestToTheWindowIsSeenInANativeLoop()
    {
        SignalWatcher watcher;
        const QSignalSpy requests(&watcher, &SignalWatcher::QuitRequested);
        for (const HWND window : Windows())
            PostMessageW(window, WM_CLOSE, 0, 0);
        RunLoopOfWindows();
        QCOMPARE(requests.size(), 1);
    }

    void sessionEnds()
    {
        SignalWatcher watcher;
        const QSignalSpy endings(&watcher, &SignalWatcher::SessionEnding);
        const QSignalSpy requests(&watcher, &SignalWatcher::QuitRequested);
        for (const HWND window : Windows())
            QCOMPARE(SendMessageW(window, WM_QUERYENDSESSION, 0, 0), TRUE);
        QCOMPARE(endings.size(), 0);
        for (const HWND window : Windows())
            SendMessageW(window, WM_ENDSESSION, TRUE, 0);
        // By now, since the process may be ended.
        QCOMPARE(endings.size(), 1);
        QTRY_COMPARE(requests.size(), 1);
    }

    void sessionGoesOn()
    {
        SignalWatcher watcher;
        const QSignalSpy endings(&watcher, &SignalWatcher::SessionEnding);
        const QSignalSpy requests(&watcher, &SignalWatcher::QuitRequested);
        for (const HWND window : Windows()) {
            SendMessageW(window, WM_QUERYENDSESSION, 0, 0);
            SendMessageW(window, WM_ENDSESSION, FALSE, 0);
        }
        QCoreApplication::processEvents();
        QCOMPARE(endings.size(), 0);
        QCOMPARE(requests.size(), 0);
    }

    void withoutARequestNothingIsSeen()
    {
        // The system may create some windows with the first.
        std::make_unique<SignalWatcher>().reset();
        const auto before = Windows().size();
        {
            const SignalWatcher watcher;
            QCOMPARE(Windows().size(), before + 1);
            for (const HWND window : Windows())
                QVERIFY(!IsWindowVisible(window));
        }
        QCOMPARE(Windows().size(), before);
    }

    void consoleIsInterrupted_data()
    {
        QTest::addColumn<int>("event");
        QTest::newRow("Ctrl+C") << int{CTRL_C_EVENT};
        QTest::newRow("Ctrl+Break") << int{CTRL_BREAK_EVENT};
    }
    void consoleIsInterrupted()
    {
        QFETCH(const int, event);
        QVERIFY(ConsoleRoutine());
        SignalWatcher watcher;
        const QSignalSpy requests(&watcher, &SignalWatcher::QuitRequested);
        const HANDLE thread = TellOfConsole(static_cast<DWORD>(event));
        QTRY_COMPARE(requests.size(), 1);
        QTRY_VERIFY(HasEnded(thread));
        CloseHandle(thread);
    }

    // Windows ends the process as soon as it has been told.
    void consoleIsClosed()
    {
        auto watcher = std::make_unique<SignalWatcher>();
        const QSignalSpy requests(watcher.get(), &SignalWatcher::QuitRequested);
        const HANDLE thread = TellOfConsole(CTRL_CLOSE_EVENT);
        QTRY_COMPARE(requests.size(), 1);
        QVERIFY(!HasEnded(thread));

        // An ending program releases the console thread without waiting; otherwise the thread times out later.
        bool hasEnded = false;
        const std::unique_ptr<QThread> look(QThread::create([&] {
            constexpr DWORD kLessThanItsTimeoutMs = 10'000;
            hasEnded = WaitForSingleObject(thread, kLessThanItsTimeoutMs) == WAIT_OBJECT_0;
        }));
        look->start();
        watcher.reset();
        QVERIFY(look->wait());
        QVERIFY(hasEnded);
        CloseHandle(thread);
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestSignalWatcher)
#include "tst_signalwatcher_windows.moc"
