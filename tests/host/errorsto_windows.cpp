#include "tests/host/errorsto.h"

#include <QDir>

#include <cstdio>
#include <string>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

// There are two of it: the system's handle, and the descriptor of the compiler's runtime, which has one of its own.

namespace {

constexpr int s_errors = 2;

} // namespace

ErrorsTo::ErrorsTo(const QString& file)
{
    const std::wstring name = QDir::toNativeSeparators(file).toStdWString();
    const HANDLE handle = CreateFileW(name.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    m_Former = reinterpret_cast<qintptr>(GetStdHandle(STD_ERROR_HANDLE));
    m_File = reinterpret_cast<qintptr>(handle);

    HANDLE another = nullptr;
    DuplicateHandle(GetCurrentProcess(), handle, GetCurrentProcess(), &another, 0, FALSE, DUPLICATE_SAME_ACCESS);
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(another), _O_TEXT);
    m_FormerDescriptor = _dup(s_errors);
    _dup2(descriptor, s_errors);
    _close(descriptor);
    SetStdHandle(STD_ERROR_HANDLE, handle);
}

ErrorsTo::~ErrorsTo()
{
    std::fflush(stderr);
    if (m_FormerDescriptor != -1) {
        _dup2(m_FormerDescriptor, s_errors);
        _close(m_FormerDescriptor);
    }
    SetStdHandle(STD_ERROR_HANDLE, reinterpret_cast<HANDLE>(m_Former));
    CloseHandle(reinterpret_cast<HANDLE>(m_File));
}
