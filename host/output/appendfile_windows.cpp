#include "host/output/appendfile.h"

#include <QDir>

#include <string>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

bool OpenToAppend(QFile& file, const QString& name, QString* error)
{
    // With no other right than this the system puts every text behind all others, also those of other processes. Qt
    // asks for more, and then looks for the end once only.
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

bool IsOpenAt(const QFile& /*file*/, const QString& /*name*/)
{
    // While a file is open here, the system neither removes nor renames it.
    return true;
}
