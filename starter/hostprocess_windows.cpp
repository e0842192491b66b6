#include "starter/hostprocess.h"

#include "starter/windowscommandline.h"

#include <QDir>

#include <qt_windows.h>

#include <string>

HostProcess::~HostProcess()
{
    if (m_Handle != 0)
        CloseHandle(reinterpret_cast<HANDLE>(m_Handle));
}

QString HostProcess::Start(const QString& file, const QStringList& arguments)
{
    const QString program = QDir::toNativeSeparators(file);
    // The system writes into the command line.
    std::wstring commandLine = WindowsCommandLine(QStringList{program} + arguments).toStdWString();
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    // Neither this program's console, whose end would be the host's, nor one of its own.
    const DWORD flags = DETACHED_PROCESS | CREATE_NEW_PROCESS_GROUP;
    if (!CreateProcessW(program.toStdWString().c_str(), commandLine.data(), nullptr, nullptr, FALSE, flags, nullptr,
                        nullptr, &startup, &process))
        return qt_error_string(static_cast<int>(GetLastError()));
    CloseHandle(process.hThread);
    m_Handle = reinterpret_cast<qintptr>(process.hProcess);
    m_iId = process.dwProcessId;
    return {};
}

std::optional<HostProcess::End> HostProcess::Ended()
{
    if (m_End || m_Handle == 0)
        return m_End;
    const HANDLE process = reinterpret_cast<HANDLE>(m_Handle);
    DWORD code = 0;
    if (WaitForSingleObject(process, 0) == WAIT_OBJECT_0 && GetExitCodeProcess(process, &code)) {
        // An exception that nobody caught is the code, and has the bits of an error.
        constexpr DWORD severityError = 0xC0000000;
        if ((code & severityError) == severityError)
            m_End = End{0, QStringLiteral("exception %1").arg(code, 8, 16, QLatin1Char('0'))};
        else
            m_End = End{static_cast<int>(code), {}};
    }
    return m_End;
}
