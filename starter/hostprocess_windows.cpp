// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "starter/hostprocess.h"

#include "host/output/starterrorfile.h"
#include "process/windowscommandline.h"

#include <QDir>
#include <QScopeGuard>

#include <qt_windows.h>

#include <string>
#include <vector>

namespace {

/// What the started process inherits: only standard streams to the null device. Without any, a GUI program uses the
/// console of its parent and would end with it.
class SpawnSettings
{
public:
    SpawnSettings()
    {
        SECURITY_ATTRIBUTES inheritable{};
        inheritable.nLength = sizeof inheritable;
        inheritable.bInheritHandle = TRUE;
        m_nullDevice = CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                   &inheritable, OPEN_EXISTING, 0, nullptr);
        if (m_nullDevice == INVALID_HANDLE_VALUE)
            return;
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        m_memory.resize(size);
        m_attributes = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(m_memory.data());
        m_isInitialized = InitializeProcThreadAttributeList(m_attributes, 1, 0, &size) != FALSE;
        // Excludes handles this process inherited unknowingly: a pipe's reader would wait as long as the host lives.
        m_isComplete =
            m_isInitialized && UpdateProcThreadAttribute(m_attributes, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST,
                                                         &m_nullDevice, sizeof m_nullDevice, nullptr, nullptr) != FALSE;
    }
    ~SpawnSettings()
    {
        if (m_isInitialized)
            DeleteProcThreadAttributeList(m_attributes);
        if (m_nullDevice != INVALID_HANDLE_VALUE)
            CloseHandle(m_nullDevice);
    }

    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    /// If false, GetLastError() has the reason.
    bool IsComplete() const { return m_isComplete; }
    /// Valid while this object lives.
    STARTUPINFOEXW StartUp() const
    {
        STARTUPINFOEXW startup{};
        startup.StartupInfo.cb = sizeof startup;
        startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
        startup.StartupInfo.hStdInput = m_nullDevice;
        startup.StartupInfo.hStdOutput = m_nullDevice;
        startup.StartupInfo.hStdError = m_nullDevice;
        startup.lpAttributeList = m_attributes;
        return startup;
    }

private:
    HANDLE m_nullDevice = INVALID_HANDLE_VALUE;
    std::vector<char> m_memory;
    LPPROC_THREAD_ATTRIBUTE_LIST m_attributes = nullptr;
    bool m_isInitialized = false;
    bool m_isComplete = false;
};

/// Returns whether the exit `code` is an unhandled exception: kSeverityError "error", with the reserved bit clear.
/// Negative exit codes have that bit set.
bool IsException(DWORD code)
{
    constexpr DWORD kSeverityError = 0xC0000000;
    constexpr DWORD kReservedBit = 0x10000000;
    return (code & (kSeverityError | kReservedBit)) == kSeverityError;
}

} // namespace

HostProcess::~HostProcess()
{
    if (m_handle != 0)
        CloseHandle(reinterpret_cast<HANDLE>(m_handle));
}

QString HostProcess::Start(const QString& file, const QStringList& arguments, const QString& errorFile)
{
    const QString program = QDir::toNativeSeparators(file);
    // CreateProcessW writes into the command line.
    std::wstring commandLine = WindowsCommandLine(QStringList{program} + arguments).toStdWString();
    // Not qputenv(), which converts to the system's code page. The process gets a copy of this one's environment.
    const std::wstring variable = QString::fromLatin1(kStartErrorFileVariable).toStdWString();
    if (!errorFile.isEmpty())
        SetEnvironmentVariableW(variable.c_str(), errorFile.toStdWString().c_str());
    const auto removeVariable = qScopeGuard([&] {
        if (!errorFile.isEmpty())
            SetEnvironmentVariableW(variable.c_str(), nullptr);
    });
    const SpawnSettings settings;
    STARTUPINFOEXW startup = settings.StartUp();
    PROCESS_INFORMATION process{};
    // Neither this program's console, whose closing would end the host, nor a new one.
    const DWORD flags = DETACHED_PROCESS | CREATE_NEW_PROCESS_GROUP | EXTENDED_STARTUPINFO_PRESENT;
    if (!settings.IsComplete() || !CreateProcessW(program.toStdWString().c_str(), commandLine.data(), nullptr, nullptr,
                                                  TRUE, flags, nullptr, nullptr, &startup.StartupInfo, &process))
        return qt_error_string(static_cast<int>(GetLastError()));
    CloseHandle(process.hThread);
    m_handle = reinterpret_cast<qintptr>(process.hProcess);
    m_id = process.dwProcessId;
    return {};
}

std::optional<HostProcess::ExitStatus> HostProcess::Poll()
{
    if (m_exitStatus || m_handle == 0)
        return m_exitStatus;
    const HANDLE process = reinterpret_cast<HANDLE>(m_handle);
    DWORD code = 0;
    if (WaitForSingleObject(process, 0) == WAIT_OBJECT_0 && GetExitCodeProcess(process, &code)) {
        if (IsException(code))
            m_exitStatus = ExitStatus{0, QStringLiteral("exception %1").arg(code, 8, 16, QLatin1Char('0'))};
        else
            m_exitStatus = ExitStatus{static_cast<int>(code), {}};
    }
    return m_exitStatus;
}
