// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/filelock.h"

#include <QDir>

#include <string>

#include <windows.h>

// The lock is an open file with FILE_SHARE_READ only: nobody else can open it for writing or remove it.

namespace {

std::wstring NativePath(const QString& path)
{
    return QDir::toNativeSeparators(path).toStdWString();
}

HANDLE ToHandle(qintptr handle)
{
    return reinterpret_cast<HANDLE>(handle);
}

} // namespace

FileLock::~FileLock()
{
    if (m_handle == -1)
        return;
    CloseHandle(ToHandle(m_handle));
    // Fails if another process has locked it by now.
    DeleteFileW(NativePath(m_path).c_str());
}

FileLock::Result FileLock::TryOpen(const QString& path, QString* error)
{
    const HANDLE file = CreateFileW(NativePath(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        const DWORD code = GetLastError();
        // Access is also denied while the file that another process has released is being deleted.
        const bool isDeleted =
            code == ERROR_ACCESS_DENIED && GetFileAttributesW(NativePath(path).c_str()) == INVALID_FILE_ATTRIBUTES;
        if (code == ERROR_SHARING_VIOLATION || isDeleted)
            return Result::Busy;
        *error = qt_error_string(static_cast<int>(code));
        return Result::Failed;
    }
    if (GetFileType(file) != FILE_TYPE_DISK) {
        *error = QStringLiteral("%1 is not a file").arg(path);
        CloseHandle(file);
        return Result::Failed;
    }
    m_path = path;
    m_handle = reinterpret_cast<qintptr>(file);
    return Result::Locked;
}

void FileLock::Write(const QByteArray& content) const
{
    const HANDLE file = ToHandle(m_handle);
    DWORD written = 0;
    SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    WriteFile(file, content.constData(), static_cast<DWORD>(content.size()), &written, nullptr);
    SetEndOfFile(file);
}

FileLock::State FileLock::Query(const QString& path)
{
    // Opening without FILE_SHARE_WRITE fails if there is a writer. A process that tries to lock at this very moment has
    // to retry.
    const HANDLE file = CreateFileW(NativePath(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
        CloseHandle(file);
        return State::Free;
    }
    switch (GetLastError()) {
    case ERROR_ACCESS_DENIED: {
        // A folder cannot be opened like this, and is never locked.
        const DWORD attributes = GetFileAttributesW(NativePath(path).c_str());
        const bool isFolder = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        return isFolder ? State::Free : State::Unknown;
    }
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
        return State::Free;
    case ERROR_SHARING_VIOLATION:
        return State::Locked;
    default:
        return State::Unknown;
    }
}
