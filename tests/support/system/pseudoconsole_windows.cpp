// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/system/pseudoconsole_windows.h"

#include <QRegularExpression>

#include <string>
#include <vector>

#include <windows.h>

namespace {

using Create = HRESULT(WINAPI*)(COORD size, HANDLE input, HANDLE output, DWORD flags, void** console);
using End = void(WINAPI*)(void* console);

// The compiler's headers define this only for the newest Windows versions.
constexpr DWORD_PTR kConsoleAttribute = 0x00020016;

template <typename Function>
Function Get(const char* name)
{
    const FARPROC found = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name);
    return reinterpret_cast<Function>(reinterpret_cast<void*>(found));
}

} // namespace

struct PseudoConsole::Private
{
    void* console = nullptr;
    HANDLE keys = nullptr;
    HANDLE screen = nullptr;
    HANDLE process = nullptr;
    QByteArray shown;
};

PseudoConsole::PseudoConsole()
    : d(std::make_unique<Private>())
{
}

PseudoConsole::~PseudoConsole()
{
    if (d->console)
        Get<End>("ClosePseudoConsole")(d->console);
    for (const HANDLE handle : {d->keys, d->screen, d->process})
        if (handle)
            CloseHandle(handle);
}

bool PseudoConsole::Start(const QString& commandLine)
{
    const auto create = Get<Create>("CreatePseudoConsole");
    HANDLE input = nullptr;
    HANDLE output = nullptr;
    if (!create || !CreatePipe(&input, &d->keys, nullptr, 0) || !CreatePipe(&d->screen, &output, nullptr, 0))
        return false;
    // Wide enough that no line is wrapped.
    constexpr COORD size{500, 500};
    const bool isThere = create(size, input, output, 0, &d->console) == S_OK;
    CloseHandle(input);
    CloseHandle(output);
    if (!isThere)
        return false;

    SIZE_T length = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &length);
    std::vector<char> memory(length);
    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    // Without this, the child would inherit this program's standard streams instead of the console's.
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory.data());
    InitializeProcThreadAttributeList(startup.lpAttributeList, 1, 0, &length);
    UpdateProcThreadAttribute(startup.lpAttributeList, 0, kConsoleAttribute, d->console, sizeof d->console, nullptr,
                              nullptr);
    std::wstring line = (QStringLiteral("\"" VEXEL_CONSOLECHILD "\" ") + commandLine).toStdWString();
    PROCESS_INFORMATION process{};
    const bool isStarted = CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, EXTENDED_STARTUPINFO_PRESENT,
                                          nullptr, nullptr, &startup.StartupInfo, &process) != FALSE;
    DeleteProcThreadAttributeList(startup.lpAttributeList);
    if (!isStarted)
        return false;
    CloseHandle(process.hThread);
    d->process = process.hProcess;
    return true;
}

bool PseudoConsole::HasEnded() const
{
    return WaitForSingleObject(d->process, 0) == WAIT_OBJECT_0;
}

int PseudoConsole::ExitCode() const
{
    DWORD code = 0;
    return GetExitCodeProcess(d->process, &code) ? static_cast<int>(code) : -1;
}

QString PseudoConsole::Text()
{
    DWORD waiting = 0;
    while (PeekNamedPipe(d->screen, nullptr, 0, nullptr, &waiting, nullptr) && waiting > 0) {
        QByteArray part(static_cast<qsizetype>(waiting), '\0');
        DWORD read = 0;
        if (!ReadFile(d->screen, part.data(), waiting, &read, nullptr))
            break;
        d->shown += part.left(static_cast<qsizetype>(read));
    }
    static const QRegularExpression notText(QStringLiteral("\x1b\\[[0-9;?]*[A-Za-z]|\x1b\\][^\x07]*\x07|\r"));
    return QString::fromUtf8(d->shown).remove(notText);
}
