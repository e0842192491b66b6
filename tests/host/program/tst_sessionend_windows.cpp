// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/host/hostsetup.h"
#include "tests/support/testmain.h"
#include "tests/support/waitforend.h"

#include <algorithm>

#include <windows.h>

namespace {

struct Search
{
    DWORD process = 0;
    QList<HWND> found;
};

BOOL CALLBACK Look(HWND window, LPARAM parameter)
{
    auto* const search = reinterpret_cast<Search*>(parameter);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process == search->process)
        search->found.append(window);
    return TRUE;
}

/// All top-level windows of a running host, also hidden ones, as any program sees them.
QList<HWND> WindowsOf(const QProcess& process)
{
    Search search;
    search.process = static_cast<DWORD>(process.processId());
    EnumWindows(&Look, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

/// The dialog, if it is shown.
HWND DialogOf(const QProcess& process)
{
    const QList<HWND> windows = WindowsOf(process);
    const auto dialog = std::find_if(windows.cbegin(), windows.cend(), &IsWindowVisible);
    return dialog == windows.cend() ? nullptr : *dialog;
}

/// The answer to what the system asks every window; -1 where there is none.
int Ask(HWND window, UINT message, WPARAM parameter)
{
    DWORD_PTR answer = 0;
    constexpr UINT timeoutMs = 30'000;
    const LRESULT isAnswered = SendMessageTimeoutW(window, message, parameter, 0, SMTO_NORMAL, timeoutMs, &answer);
    return isAnswered ? static_cast<int>(answer) : -1;
}

/// Sends what Windows sends to a program when the session ends. Returns the number of windows asked.
int EndSession(const QProcess& process)
{
    const QList<HWND> windows = WindowsOf(process);
    int asked = 0;
    for (const HWND window : windows)
        asked += Ask(window, WM_QUERYENDSESSION, 0) == 1 ? 1 : 0;
    for (const HWND window : windows)
        Ask(window, WM_ENDSESSION, TRUE);
    return asked;
}

} // namespace

/// Whether the host saves its configuration when the session ends. Needs real windows, since they are asked.
class TestSessionEnd : public QObject
{
    Q_OBJECT

private slots:
    void everythingIsSaved()
    {
        HostSetUp setUp;
        QProcess process;
        setUp.StartHost(process, "--data data");
        HWND window = nullptr;
        QTRY_VERIFY_WITH_TIMEOUT((window = DialogOf(process)) != nullptr, 60'000);
        QVERIFY(!setUp.StoredText().contains("FilterPattern"));

        QCOMPARE(Ask(window, WM_QUERYENDSESSION, 0), 1);
        QVERIFY(Ask(window, WM_ENDSESSION, TRUE) >= 0);
        // From here on the system may end it at any time, and does not ask again.
        process.kill();
        QVERIFY(WaitForEnd(process));
        for (const char* part : {"FilterPattern", "ModelMimeData", "VexelDataDir"})
            QVERIFY2(setUp.StoredText().contains(part), part);
    }

    void cancelledSessionEndKeepsTheHost()
    {
        HostSetUp setUp;
        QProcess process;
        setUp.StartHost(process, "--data data");
        HWND window = nullptr;
        QTRY_VERIFY_WITH_TIMEOUT((window = DialogOf(process)) != nullptr, 60'000);
        QCOMPARE(Ask(window, WM_QUERYENDSESSION, 0), 1);
        QVERIFY(Ask(window, WM_ENDSESSION, FALSE) >= 0);
        QCOMPARE(Ask(window, WM_NULL, 0), 0);
        QVERIFY(IsWindowVisible(window));
        QCOMPARE(process.state(), QProcess::Running);
        process.kill();
        QVERIFY(WaitForEnd(process));
    }

    // It has no visible window, and stores its settings at its end.
    void offScreenDialogIsSaved()
    {
        HostSetUp setUp;
        // Without a platform chosen: vexelctl draws nothing then.
        setUp.Environment().remove(QStringLiteral("QT_QPA_PLATFORM"));
        QProcess process;
        StartAtWork(setUp, process);
        QVERIFY(!setUp.StoredText().contains("FilterPattern"));

        QVERIFY(EndSession(process) > 0);
        process.kill();
        QVERIFY(WaitForEnd(process));
        for (const char* part : {"FilterPattern", "ModelMimeData", "VexelDataDir"})
            QVERIFY2(setUp.StoredText().contains(part), part);
        QCOMPARE(setUp.Names(), Words("mast"));
        EndApplications(setUp);
    }

    // Where there is time left, it ends in order.
    void vexelctlEnds()
    {
        HostSetUp setUp;
        setUp.Environment().remove(QStringLiteral("QT_QPA_PLATFORM"));
        QProcess process;
        StartAtWork(setUp, process);
        QVERIFY(EndSession(process) > 0);
        QCOMPARE(HostSetUp::End(process).exitCode, 143);
        QCOMPARE(setUp.Names(), Words("mast"));
        EndApplications(setUp);
    }

    // The dialog has gone to the tray, after which something has changed that is to be stored.
    void hiddenDialogIsSaved()
    {
        HostSetUp setUp;
        QProcess process;
        setUp.StartHost(process, "--data data");
        HWND window = nullptr;
        QTRY_VERIFY_WITH_TIMEOUT((window = DialogOf(process)) != nullptr, 60'000);
        QVERIFY(PostMessageW(window, WM_CLOSE, 0, 0));
        QTRY_VERIFY_WITH_TIMEOUT(!DialogOf(process) && setUp.StoredText().contains("FilterPattern"), 60'000);
        QCOMPARE(process.state(), QProcess::Running);
        for (const QString& name : QDir(setUp.Config() + QStringLiteral("/application")).entryList(QDir::Files))
            QVERIFY(QFile::remove(setUp.Config() + QStringLiteral("/application/") + name));

        QVERIFY(EndSession(process) > 0);
        process.kill();
        QVERIFY(WaitForEnd(process));
        QVERIFY(setUp.StoredText().contains("FilterPattern"));
    }

    void exampleSaves()
    {
        HostSetUp setUp;
        QProcess process;
        process.setProcessEnvironment(setUp.Environment());
        process.start(QStringLiteral(VEXEL_INTEGRATION), {QStringLiteral(VEXEL_PLUGIN), setUp.Config()});
        HWND window = nullptr;
        QTRY_VERIFY_WITH_TIMEOUT((window = DialogOf(process)) != nullptr, 60'000);
        QVERIFY(!setUp.StoredText().contains("ModelMimeData"));
        // When it answers; not only behind its event loop, for which there may be no time.
        QCOMPARE(Ask(window, WM_QUERYENDSESSION, 0), 1);
        for (const char* part : {"FilterPattern", "ModelMimeData"})
            QVERIFY2(setUp.StoredText().contains(part), part);
        process.kill();
        QVERIFY(WaitForEnd(process));
    }

private:
    /// A vexelctl that has connected an entry "mast", and waits for the end of its application.
    static void StartAtWork(HostSetUp& setUp, QProcess& process)
    {
        setUp.Install(QDir().absoluteFilePath(QStringLiteral(VEXEL_TESTCHILD)), 1);
        setUp.Fill("mast");
        setUp.Environment().insert(QStringLiteral("VEXEL_TESTCHILD_MODE"), QStringLiteral("polite"));
        setUp.Environment().insert(QStringLiteral("VEXEL_TESTCHILD_REPORTS"), setUp.Data());
        setUp.Start(process, "connect mast");
        QByteArray said;
        QTRY_VERIFY2_WITH_TIMEOUT((said += process.readAllStandardOutput()).contains("Free -> In Use"),
                                  process.readAllStandardError().constData(), 60'000);
        QTRY_VERIFY_WITH_TIMEOUT(!Reports(setUp).isEmpty(), 60'000);
    }

    static QStringList Reports(const HostSetUp& setUp)
    {
        return QDir(setUp.Data()).entryList({QStringLiteral("*.json")}, QDir::Files);
    }

    /// What a host leaves that was ended in the middle of its work.
    static void EndApplications(const HostSetUp& setUp)
    {
        for (const QString& report : Reports(setUp)) {
            const qint64 process = report.section(u'.', 0, 0).toLongLong();
            System::AskToEnd(process);
            QTRY_VERIFY_WITH_TIMEOUT(!System::IsProcess(process), 60'000);
        }
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestSessionEnd)
#include "tst_sessionend_windows.moc"
