// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/standardstreams.h"

#include <QtGlobal>

#include <algorithm>
#include <array>

#include <windows.h>

namespace {

using StandardStreams::Stream;

// Consoles refuse much longer texts in a single call.
constexpr qsizetype kMaxConsoleWrite = 8192;

DWORD HandleId(Stream stream)
{
    return stream == Stream::Error ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE;
}

bool IsUsable(HANDLE handle)
{
    return handle && handle != INVALID_HANDLE_VALUE && GetFileType(handle) != FILE_TYPE_UNKNOWN;
}

bool IsConsole(HANDLE handle)
{
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != FALSE;
}

} // namespace

namespace StandardStreams {

void Prepare()
{
    for (const Stream stream : {Stream::Output, Stream::Error}) {
        // Redirected to a pipe or a file.
        if (IsUsable(GetStdHandle(HandleId(stream))))
            continue;
        // Fails if already attached, or if there is no console; CreateFileW then fails, too.
        AttachConsole(ATTACH_PARENT_PROCESS);
        const HANDLE console = CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                           nullptr, OPEN_EXISTING, 0, nullptr);
        if (console != INVALID_HANDLE_VALUE)
            SetStdHandle(HandleId(stream), console);
    }
    // Child processes have their own streams. Inheriting these would keep a pipe open for its reader after this program
    // has ended.
    for (const DWORD id : {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE})
        SetHandleInformation(GetStdHandle(id), HANDLE_FLAG_INHERIT, 0);
}

std::optional<QByteArray> ReadInput(qint64 limit, QString* error)
{
    QByteArray content;
    std::array<char, 65536> part = {};
    while (content.size() <= limit) {
        DWORD size = 0;
        if (!ReadFile(GetStdHandle(STD_INPUT_HANDLE), part.data(), static_cast<DWORD>(part.size()), &size, nullptr)) {
            // The end of a pipe.
            if (GetLastError() == ERROR_BROKEN_PIPE)
                return content;
            *error = qt_error_string(static_cast<int>(GetLastError()));
            return std::nullopt;
        }
        if (size == 0)
            return content;
        content.append(part.data(), static_cast<qsizetype>(size));
    }
    *error = QStringLiteral("more than %1 bytes").arg(limit);
    return std::nullopt;
}

bool HasReader(Stream stream)
{
    const HANDLE handle = GetStdHandle(HandleId(stream));
    if (!IsUsable(handle))
        return false;
    // The null device has a console's file type.
    return GetFileType(handle) != FILE_TYPE_CHAR || IsConsole(handle);
}

bool IsBroken(Stream /*stream*/)
{
    return false;
}

bool Write(Stream stream, const QString& text)
{
    const HANDLE handle = GetStdHandle(HandleId(stream));
    if (!IsConsole(handle))
        return Write(stream, text.toUtf8());
    for (qsizetype done = 0; done < text.size();) {
        qsizetype part = std::min(text.size() - done, kMaxConsoleWrite);
        // A console shows a surrogate pair written in two calls as two unknown characters.
        if (part > 1 && done + part < text.size() && text.at(done + part - 1).isHighSurrogate())
            --part;
        DWORD written = 0;
        if (!WriteConsoleW(handle, text.utf16() + done, static_cast<DWORD>(part), &written, nullptr) || written == 0)
            return false;
        done += static_cast<qsizetype>(written);
    }
    return true;
}

bool Write(Stream stream, const QByteArray& bytes)
{
    const HANDLE handle = GetStdHandle(HandleId(stream));
    // Started from a shortcut or by a session: nobody expects output.
    if (!IsUsable(handle))
        return true;
    for (qsizetype done = 0; done < bytes.size();) {
        const qsizetype part = std::min<qsizetype>(bytes.size() - done, 1 << 20);
        DWORD written = 0;
        if (!WriteFile(handle, bytes.constData() + done, static_cast<DWORD>(part), &written, nullptr) || written == 0)
            return false;
        done += static_cast<qsizetype>(written);
    }
    return true;
}

} // namespace StandardStreams
