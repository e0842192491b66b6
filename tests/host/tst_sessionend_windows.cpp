#include "tests/host/hostsetup.h"

#include <windows.h>

namespace {

struct Search
{
    DWORD process = 0;
    HWND found = nullptr;
};

BOOL CALLBACK Look(HWND window, LPARAM parameter)
{
    auto* const search = reinterpret_cast<Search*>(parameter);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process != search->process || !IsWindowVisible(window))
        return TRUE;
    search->found = window;
    return FALSE;
}

/// The dialog of a running host, as any program sees it.
HWND WindowOf(qint64 process)
{
    Search search;
    search.process = static_cast<DWORD>(process);
    EnumWindows(&Look, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

/// The answer to what the system asks every window; -1 where there is none.
int Ask(HWND window, UINT message, WPARAM parameter)
{
    DWORD_PTR answer = 0;
    constexpr UINT patienceMs = 30'000;
    const LRESULT isAnswered = SendMessageTimeoutW(window, message, parameter, 0, SMTO_NORMAL, patienceMs, &answer);
    return isAnswered ? static_cast<int>(answer) : -1;
}

} // namespace

/// What becomes of the host's configuration when the system ends the session. Needs real windows, since they are asked.
class TestSessionEnd : public QObject
{
    Q_OBJECT

private slots:
    void EverythingIsSaved()
    {
        HostSetUp setUp;
        QProcess process;
        setUp.Start(process, {QStringLiteral("--data"), setUp.Data()});
        HWND window = nullptr;
        QTRY_VERIFY_WITH_TIMEOUT((window = WindowOf(process.processId())) != nullptr, 60'000);
        QVERIFY(!setUp.StoredText().contains("FilterPattern"));

        QCOMPARE(Ask(window, WM_QUERYENDSESSION, 0), 1);
        QVERIFY(Ask(window, WM_ENDSESSION, TRUE) >= 0);
        // From here on the system may end it at any time, and does not ask again.
        process.kill();
        QVERIFY(process.waitForFinished());
        for (const char* part : {"FilterPattern", "ModelMimeData", "VexelDataDir"})
            QVERIFY2(setUp.StoredText().contains(part), part);
    }

    void ASessionThatGoesOnAfterAllLeavesTheHost()
    {
        HostSetUp setUp;
        QProcess process;
        setUp.Start(process, {QStringLiteral("--data"), setUp.Data()});
        HWND window = nullptr;
        QTRY_VERIFY_WITH_TIMEOUT((window = WindowOf(process.processId())) != nullptr, 60'000);
        QCOMPARE(Ask(window, WM_QUERYENDSESSION, 0), 1);
        QVERIFY(Ask(window, WM_ENDSESSION, FALSE) >= 0);
        QCOMPARE(Ask(window, WM_NULL, 0), 0);
        QVERIFY(IsWindowVisible(window));
        QCOMPARE(process.state(), QProcess::Running);
        process.kill();
        QVERIFY(process.waitForFinished());
    }
};

QTEST_GUILESS_MAIN(TestSessionEnd)
#include "tst_sessionend_windows.moc"
