// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/crashdump.h"

#include <QDir>
#include <QFile>

#include <array>
#include <atomic>
#include <csignal>
#include <string>

#include <windows.h>

#include <dbghelp.h>

namespace {

QString FolderOf(const QString& configDirectory)
{
    return configDirectory + QStringLiteral("/crashes");
}

// Everything that the handler needs is prepared: after a crash, the memory of the process may be damaged.
std::wstring g_configDirectory;
std::wstring g_folder;
decltype(&MiniDumpWriteDump) g_writeDump = nullptr;
std::atomic<DWORD> g_crashedThread = 0;

void WriteDump(EXCEPTION_POINTERS* exception)
{
    CreateDirectoryW(g_configDirectory.c_str(), nullptr);
    CreateDirectoryW(g_folder.c_str(), nullptr);
    SYSTEMTIME time;
    GetSystemTime(&time);
    // As long as wsprintfW's longest result.
    std::array<wchar_t, 1025> file = {};
    wsprintfW(file.data(), L"%s\\vexelhost-%04d%02d%02dT%02d%02d%02dZ-%lu.dmp", g_folder.c_str(), time.wYear,
              time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond, GetCurrentProcessId());
    const HANDLE dump =
        CreateFileW(file.data(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (dump == INVALID_HANDLE_VALUE)
        return;
    MINIDUMP_EXCEPTION_INFORMATION information = {GetCurrentThreadId(), exception, FALSE};
    const BOOL isWritten =
        g_writeDump(GetCurrentProcess(), GetCurrentProcessId(), dump, MiniDumpNormal, &information, nullptr, nullptr);
    CloseHandle(dump);
    if (!isWritten)
        DeleteFileW(file.data());
}

LONG WINAPI OnCrash(EXCEPTION_POINTERS* exception)
{
    DWORD crashed = 0;
    if (g_crashedThread.compare_exchange_strong(crashed, GetCurrentThreadId()))
        WriteDump(exception);
    else if (crashed != GetCurrentThreadId())
        Sleep(INFINITE); // another thread has crashed first, and the process ends when its dump is written
    // Windows then reports the crash as usual, and ends the process.
    return EXCEPTION_CONTINUE_SEARCH;
}

// abort() ends the process without an exception. With this one, the exit code says that it has crashed.
void OnAbort(int /*signal*/)
{
    RaiseException(STATUS_ASSERTION_FAILURE, EXCEPTION_NONCONTINUABLE, 0, nullptr);
}

} // namespace

void CrashDumps::Install(const QString& configDirectory)
{
    const QFileInfoList stored = Stored(configDirectory);
    for (const QFileInfo& dump : stored.mid(kKept))
        QFile::remove(dump.filePath());

    const HMODULE library = LoadLibraryExW(L"dbghelp.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (!library)
        return;
    const FARPROC function = GetProcAddress(library, "MiniDumpWriteDump");
    g_writeDump = reinterpret_cast<decltype(g_writeDump)>(reinterpret_cast<void*>(function));
    if (!g_writeDump)
        return;
    g_configDirectory = QDir::toNativeSeparators(QDir(configDirectory).absolutePath()).toStdWString();
    g_folder = QDir::toNativeSeparators(QDir(FolderOf(configDirectory)).absolutePath()).toStdWString();
    // wsprintfW would cut longer names.
    constexpr std::size_t kLongestFolder = 900;
    if (g_folder.size() > kLongestFolder)
        return;
    // Room to write the dump after a stack overflow of the main thread.
    ULONG reserved = 64 * 1024;
    SetThreadStackGuarantee(&reserved);
    SetUnhandledExceptionFilter(OnCrash);
    std::signal(SIGABRT, OnAbort);
}

QFileInfoList CrashDumps::Stored(const QString& configDirectory)
{
    // The names begin with the time.
    return QDir(FolderOf(configDirectory))
        .entryInfoList({QStringLiteral("vexelhost-*.dmp")}, QDir::Files, QDir::Name | QDir::Reversed);
}
