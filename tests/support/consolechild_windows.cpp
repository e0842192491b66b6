// What a prompt does: starts the command line that follows its own name, redirects nothing, waits for the end, and ends
// with the exit code. A program of the console.

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
    // Its own name is in double quotes, or without blanks.
    const wchar_t end = *rest == L'"' ? L'"' : L' ';
    rest = std::wcschr(rest + 1, end);
    if (!rest)
        return 125;
    for (++rest; *rest == L' ';)
        ++rest;

    // It outlives an interrupt, so that its exit code is the program's. To ignore that is no way: programs inherit it.
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
