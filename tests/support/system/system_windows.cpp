// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/system/system.h"

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <array>
#include <cstdint>
#include <cstdlib>

#include <windows.h>

#include <psapi.h>
#include <tlhelp32.h>

namespace {

class EndingFilter : public QAbstractNativeEventFilter
{
public:
    bool nativeEventFilter(const QByteArray& /*eventType*/, void* message, qintptr* /*result*/) override
    {
        if (static_cast<const MSG*>(message)->message == WM_CLOSE)
            std::_Exit(0);
        return false;
    }
};

} // namespace

namespace System {

bool IsProcess(qint64 number)
{
    return !ProgramOf(number).isEmpty();
}

bool Suspend(qint64 /*number*/)
{
    return false;
}

bool Resume(qint64 /*number*/)
{
    return false;
}

QString ProgramOf(qint64 number)
{
    const HANDLE process =
        OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(number));
    if (!process)
        return {};
    std::array<wchar_t, 1024> name = {};
    DWORD length = name.size();
    // A process that has ended can still be opened while another handle to it is open.
    const bool isRunning =
        WaitForSingleObject(process, 0) == WAIT_TIMEOUT && QueryFullProcessImageNameW(process, 0, name.data(), &length);
    CloseHandle(process);
    return isRunning ? QDir::fromNativeSeparators(QString::fromWCharArray(name.data())) : QString();
}

QStringList RequestsToEnd()
{
    return {QStringLiteral("CLOSE")};
}

bool AskToEnd(qint64 number, const QString& /*request*/)
{
    const HANDLE threads = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (threads == INVALID_HANDLE_VALUE)
        return false;
    bool wasAsked = false;
    THREADENTRY32 thread{};
    thread.dwSize = sizeof thread;
    for (BOOL more = Thread32First(threads, &thread); more; more = Thread32Next(threads, &thread))
        if (thread.th32OwnerProcessID == static_cast<DWORD>(number) &&
            PostThreadMessageW(thread.th32ThreadID, WM_CLOSE, 0, 0))
            wasAsked = true;
    CloseHandle(threads);
    return wasAsked;
}

bool Crash(qint64 number)
{
    const HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, static_cast<DWORD>(number));
    const bool hasEnded = process && TerminateProcess(process, static_cast<UINT>(STATUS_ACCESS_VIOLATION));
    if (process)
        CloseHandle(process);
    return hasEnded;
}

void EndWhenAsked()
{
    static EndingFilter filter;
    QCoreApplication::instance()->installNativeEventFilter(&filter);
}

void GoOnWhenAsked()
{
    // Programs without a window ignore WM_CLOSE by default.
}

QStringList Devices()
{
    return {QStringLiteral("NUL"), QStringLiteral("CON"), QStringLiteral("COM1")};
}

QString MakePipe(const QString& file)
{
    const QString name = QStringLiteral("\\\\.\\pipe\\vexel-%1-%2")
                             .arg(GetCurrentProcessId())
                             .arg(QString::fromLatin1(QFile::encodeName(file).toHex()).right(100));
    // Never closed: the pipe exists only while it is open.
    const HANDLE pipe = CreateNamedPipeW(name.toStdWString().c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE | PIPE_WAIT, 1,
                                         1024, 1024, 0, nullptr);
    return pipe == INVALID_HANDLE_VALUE ? QString() : name;
}

qsizetype OpenHandles()
{
    // Not GetProcessHandleCount, which includes handles that the system opens at any time.
    constexpr std::uintptr_t step = 4;
    constexpr std::uintptr_t end = 0x2000;
    qsizetype count = 0;
    for (std::uintptr_t value = step; value < end; value += step)
        if (GetFileType(reinterpret_cast<HANDLE>(value)) != FILE_TYPE_UNKNOWN) // NOLINT(performance-no-int-to-ptr)
            ++count;
    return count;
}

QString StreamTarget(int stream)
{
    constexpr std::array<DWORD, 3> numbers = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
    const HANDLE handle = GetStdHandle(numbers.at(static_cast<std::size_t>(stream)));
    switch (GetFileType(handle)) {
    case FILE_TYPE_PIPE:
        return QStringLiteral("pipe");
    case FILE_TYPE_DISK:
        return QStringLiteral("file");
    case FILE_TYPE_CHAR: {
        // A character device is either a console or NUL.
        DWORD mode = 0;
        return GetConsoleMode(handle, &mode) ? QStringLiteral("console") : QStringLiteral("nothing");
    }
    default:
        return QStringLiteral("nothing");
    }
}

bool HasConsole()
{
    const HANDLE console = CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                       nullptr, OPEN_EXISTING, 0, nullptr);
    if (console == INVALID_HANDLE_VALUE)
        return false;
    CloseHandle(console);
    return true;
}

bool TakeDisplay(QProcessEnvironment& /*environment*/)
{
    return false;
}

bool IsWine()
{
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

qint64 ResidentKiB()
{
    PROCESS_MEMORY_COUNTERS counters{};
    if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters))
        return 0;
    return static_cast<qint64>(counters.WorkingSetSize / 1024);
}

} // namespace System
