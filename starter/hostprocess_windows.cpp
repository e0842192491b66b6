#include "starter/hostprocess.h"

#include "starter/windowscommandline.h"

#include <QDir>

#include <qt_windows.h>

#include <string>
#include <vector>

namespace {

/// What a started process shall have of this one's, and nothing else: streams that lead nowhere. Without any, a
/// windowed program takes the console of who started it, and would end with that.
class Surroundings
{
public:
    Surroundings()
    {
        SECURITY_ATTRIBUTES inheritable{};
        inheritable.nLength = sizeof inheritable;
        inheritable.bInheritHandle = TRUE;
        m_nowhere = CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable,
                                OPEN_EXISTING, 0, nullptr);
        if (m_nowhere == INVALID_HANDLE_VALUE)
            return;
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        m_memory.resize(size);
        m_attributes = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(m_memory.data());
        m_isInitialized = InitializeProcThreadAttributeList(m_attributes, 1, 0, &size) != FALSE;
        // Also what this process was itself given without knowing: a pipe among it would keep its reader waiting for as
        // long as the host lives.
        m_isComplete =
            m_isInitialized && UpdateProcThreadAttribute(m_attributes, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, &m_nowhere,
                                                         sizeof m_nowhere, nullptr, nullptr) != FALSE;
    }
    ~Surroundings()
    {
        if (m_isInitialized)
            DeleteProcThreadAttributeList(m_attributes);
        if (m_nowhere != INVALID_HANDLE_VALUE)
            CloseHandle(m_nowhere);
    }

    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

    /// Where this is false, GetLastError() says why.
    bool IsComplete() const { return m_isComplete; }
    /// For as long as this object lives.
    STARTUPINFOEXW StartUp() const
    {
        STARTUPINFOEXW startup{};
        startup.StartupInfo.cb = sizeof startup;
        startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
        startup.StartupInfo.hStdInput = m_nowhere;
        startup.StartupInfo.hStdOutput = m_nowhere;
        startup.StartupInfo.hStdError = m_nowhere;
        startup.lpAttributeList = m_attributes;
        return startup;
    }

private:
    HANDLE m_nowhere = INVALID_HANDLE_VALUE;
    std::vector<char> m_memory;
    LPPROC_THREAD_ATTRIBUTE_LIST m_attributes = nullptr;
    bool m_isInitialized = false;
    bool m_isComplete = false;
};

/// Whether `code` is that of an exception that nobody caught, which then is the exit code: an error by its uppermost
/// bits, with the one unset that no such code uses. Exit codes below zero have it set.
bool IsException(DWORD code)
{
    constexpr DWORD severity = 0xC0000000;
    constexpr DWORD unused = 0x10000000;
    return (code & (severity | unused)) == severity;
}

} // namespace

HostProcess::~HostProcess()
{
    if (m_handle != 0)
        CloseHandle(reinterpret_cast<HANDLE>(m_handle));
}

QString HostProcess::Start(const QString& file, const QStringList& arguments)
{
    const QString program = QDir::toNativeSeparators(file);
    // The system writes into the command line.
    std::wstring commandLine = WindowsCommandLine(QStringList{program} + arguments).toStdWString();
    const Surroundings surroundings;
    STARTUPINFOEXW startup = surroundings.StartUp();
    PROCESS_INFORMATION process{};
    // Neither this program's console, whose end would be the host's, nor one of its own.
    const DWORD flags = DETACHED_PROCESS | CREATE_NEW_PROCESS_GROUP | EXTENDED_STARTUPINFO_PRESENT;
    if (!surroundings.IsComplete() ||
        !CreateProcessW(program.toStdWString().c_str(), commandLine.data(), nullptr, nullptr, TRUE, flags, nullptr,
                        nullptr, &startup.StartupInfo, &process))
        return qt_error_string(static_cast<int>(GetLastError()));
    CloseHandle(process.hThread);
    m_handle = reinterpret_cast<qintptr>(process.hProcess);
    m_iId = process.dwProcessId;
    return {};
}

std::optional<HostProcess::End> HostProcess::Ended()
{
    if (m_end || m_handle == 0)
        return m_end;
    const HANDLE process = reinterpret_cast<HANDLE>(m_handle);
    DWORD code = 0;
    if (WaitForSingleObject(process, 0) == WAIT_OBJECT_0 && GetExitCodeProcess(process, &code)) {
        if (IsException(code))
            m_end = End{0, QStringLiteral("exception %1").arg(code, 8, 16, QLatin1Char('0'))};
        else
            m_end = End{static_cast<int>(code), {}};
    }
    return m_end;
}
