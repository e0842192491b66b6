// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/system/errorsto.h"

#include <QDir>

#include <cstdio>
#include <string>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

// Standard error exists twice: as the handle of the system and as the descriptor of the C run time.

namespace {

constexpr int kErrors = 2;

} // namespace

ErrorsTo::ErrorsTo(const QString& file)
{
    const std::wstring name = QDir::toNativeSeparators(file).toStdWString();
    const HANDLE handle = CreateFileW(name.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    m_former = reinterpret_cast<qintptr>(GetStdHandle(STD_ERROR_HANDLE));
    m_file = reinterpret_cast<qintptr>(handle);

    HANDLE another = nullptr;
    DuplicateHandle(GetCurrentProcess(), handle, GetCurrentProcess(), &another, 0, FALSE, DUPLICATE_SAME_ACCESS);
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(another), _O_TEXT);
    m_formerDescriptor = _dup(kErrors);
    _dup2(descriptor, kErrors);
    _close(descriptor);
    SetStdHandle(STD_ERROR_HANDLE, handle);
}

ErrorsTo::~ErrorsTo()
{
    std::fflush(stderr);
    if (m_formerDescriptor != -1) {
        _dup2(m_formerDescriptor, kErrors);
        _close(m_formerDescriptor);
    }
    SetStdHandle(STD_ERROR_HANDLE, reinterpret_cast<HANDLE>(m_former));
    CloseHandle(reinterpret_cast<HANDLE>(m_file));
}
