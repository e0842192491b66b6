// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// A console program that acts like a prompt: starts the command line in its arguments without redirection, waits for
// it, and returns its exit code.

#include <cwchar>

#include <windows.h>

namespace {

BOOL WINAPI StayAtInterrupt(DWORD event)
{
    return event == CTRL_C_EVENT;
}

} // namespace

int main()
{
    wchar_t* rest = GetCommandLineW();
    // This program's name is in double quotes or contains no spaces.
    const wchar_t end = *rest == L'"' ? L'"' : L' ';
    rest = std::wcschr(rest + 1, end);
    if (!rest)
        return 125;
    for (++rest; *rest == L' ';)
        ++rest;

    // Survives Ctrl+C, to return the program's exit code. With a handler, because child processes would inherit
    // ignoring it.
    SetConsoleCtrlHandler(&StayAtInterrupt, TRUE);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, rest, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
        return 126;
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    return static_cast<int>(code);
}
