// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/crashdump.h"
#include "tests/host/hostsetup.h"
#include "tests/support/testmain.h"
#include "tests/support/waitforend.h"

#include <windows.h>

#include <dbghelp.h>

namespace {

constexpr quintptr kNowhere = 0x1000;
// Wine stops the process for each piece of memory that it reads. On a busy machine, all take half a minute.
constexpr int kTimeForADump = 120'000; // ms

/// Starts a thread of the process at this address.
bool StartThread(qint64 number, quintptr address)
{
    const HANDLE process = OpenProcess(PROCESS_ALL_ACCESS, FALSE, static_cast<DWORD>(number));
    if (!process)
        return false;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): an address in another process.
    const auto routine = reinterpret_cast<LPTHREAD_START_ROUTINE>(address);
    const HANDLE thread = CreateRemoteThread(process, nullptr, 0, routine, nullptr, 0, nullptr);
    if (thread)
        CloseHandle(thread);
    CloseHandle(process);
    return thread;
}

/// A part of a dump; null if the dump has none or is no dump.
template <class Stream>
const Stream* StreamOf(QByteArray& dump, ULONG type)
{
    MINIDUMP_DIRECTORY* directory = nullptr;
    void* stream = nullptr;
    ULONG size = 0;
    if (!dump.startsWith("MDMP") || !MiniDumpReadDumpStream(dump.data(), type, &directory, &stream, &size))
        return nullptr;
    return static_cast<const Stream*>(stream);
}

} // namespace

/// What a crash of the host leaves in the configuration directory.
class TestCrashDump : public QObject
{
    Q_OBJECT

private slots:
    void crashLeavesADump_data()
    {
        QTest::addColumn<quintptr>("address");
        QTest::addColumn<quint32>("code");
        QTest::newRow("access violation") << kNowhere << quint32(EXCEPTION_ACCESS_VIOLATION);
        // The system's libraries are at one place in all processes.
        const FARPROC abort = GetProcAddress(GetModuleHandleW(L"msvcrt.dll"), "abort");
        QTest::newRow("abort") << reinterpret_cast<quintptr>(abort) << quint32(STATUS_ASSERTION_FAILURE);
    }
    void crashLeavesADump()
    {
        QFETCH(const quintptr, address);
        QFETCH(const quint32, code);
        HostSetUp setUp;
        QProcess process;
        setUp.StartDialog(process);
        QCOMPARE(CrashDumps::Stored(setUp.Config()).size(), 0);
        QVERIFY(!QFile::exists(setUp.Path("config/crashes")));

        QVERIFY(StartThread(process.processId(), address));
        QVERIFY(WaitForEnd(process, kTimeForADump));
        QCOMPARE(process.exitStatus(), QProcess::CrashExit);
        const QFileInfoList dumps = CrashDumps::Stored(setUp.Config());
        QCOMPARE(dumps.size(), 1);
        QFile file(dumps.constFirst().filePath());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QByteArray dump = file.readAll();
        const auto* const exception = StreamOf<MINIDUMP_EXCEPTION_STREAM>(dump, ExceptionStream);
        QVERIFY(exception);
        QCOMPARE(exception->ExceptionRecord.ExceptionCode, code);
        if (address == kNowhere)
            QCOMPARE(exception->ExceptionRecord.ExceptionAddress, ULONG64(kNowhere));
        const auto* const modules = StreamOf<MINIDUMP_MODULE_LIST>(dump, ModuleListStream);
        QVERIFY(modules);
        QVERIFY(modules->NumberOfModules > 0);
    }

    void newestAreKept()
    {
        HostSetUp setUp;
        const QString folder = setUp.Path("config/crashes");
        QVERIFY(QDir().mkpath(folder));
        const auto nameOf = [](int day) {
            return QStringLiteral("vexelhost-202601%1T120000Z-44.dmp").arg(day, 2, 10, QLatin1Char('0'));
        };
        constexpr int kCount = 7;
        for (int day = 1; day <= kCount; ++day)
            setUp.Write(folder + u'/' + nameOf(day), "dump");
        // Somebody else's.
        setUp.Write(folder + QStringLiteral("/notes.txt"), "notes");
        QProcess process;
        setUp.StartDialog(process);
        QStringList names;
        for (const QFileInfo& dump : CrashDumps::Stored(setUp.Config()))
            names.append(dump.fileName());
        QCOMPARE(names, (QStringList{nameOf(7), nameOf(6), nameOf(5), nameOf(4), nameOf(3)}));
        QVERIFY(QFile::exists(folder + QStringLiteral("/notes.txt")));
        process.kill();
        QVERIFY(WaitForEnd(process, kTimeForADump));
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCrashDump)
#include "tst_crashdump_windows.moc"
