// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/output/appendfile.h"

#include <QDir>

#include <string>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

bool OpenForAppend(QFile& file, const QString& name, QString* error)
{
    // With FILE_APPEND_DATA alone the system appends atomically, also between processes. Qt requests more rights and
    // seeks to the end only once.
    const std::wstring native = QDir::toNativeSeparators(name).toStdWString();
    const HANDLE handle =
        CreateFileW(native.c_str(), FILE_APPEND_DATA | FILE_READ_ATTRIBUTES | SYNCHRONIZE,
                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        *error = qt_error_string(static_cast<int>(GetLastError()));
        return false;
    }
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle), _O_APPEND | _O_BINARY);
    if (descriptor == -1) {
        *error = QStringLiteral("too many files are open");
        CloseHandle(handle);
        return false;
    }
    if (file.open(descriptor, QIODevice::WriteOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle))
        return true;
    *error = file.errorString();
    _close(descriptor);
    return false;
}

bool IsSameFile(const QFile& /*file*/, const QString& /*name*/)
{
    // Windows neither removes nor renames a file that is open here.
    return true;
}
