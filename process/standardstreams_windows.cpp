#include "process/standardstreams.h"

#include <QtGlobal>

#include <algorithm>

#include <windows.h>

namespace {

using StandardStreams::Stream;

// Consoles refuse much longer texts in one go.
constexpr qsizetype kULongestPart = 8192;

DWORD IdOf(Stream stream)
{
    return stream == Stream::Error ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE;
}

bool LeadsSomewhere(HANDLE handle)
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
        // What was redirected to a pipe or a file is there already.
        if (LeadsSomewhere(GetStdHandle(IdOf(stream))))
            continue;
        // Fails where this is done already, and where there is no console: then there is none to open, either.
        AttachConsole(ATTACH_PARENT_PROCESS);
        const HANDLE console = CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                           nullptr, OPEN_EXISTING, 0, nullptr);
        if (console != INVALID_HANDLE_VALUE)
            SetStdHandle(IdOf(stream), console);
    }
    // Programs that are started have streams of their own. They would keep these open for whoever reads the other end,
    // also when this program has ended.
    for (const DWORD id : {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE})
        SetHandleInformation(GetStdHandle(id), HANDLE_FLAG_INHERIT, 0);
}

bool IsRead(Stream stream)
{
    const HANDLE handle = GetStdHandle(IdOf(stream));
    if (!LeadsSomewhere(handle))
        return false;
    // The device that swallows everything is of a console's type.
    return GetFileType(handle) != FILE_TYPE_CHAR || IsConsole(handle);
}

bool Write(Stream stream, const QString& text)
{
    const HANDLE handle = GetStdHandle(IdOf(stream));
    if (!IsConsole(handle))
        return Write(stream, text.toUtf8());
    for (qsizetype done = 0; done < text.size();) {
        qsizetype part = std::min(text.size() - done, kULongestPart);
        // The console shows two halves of a character that come one by one as two unknown ones.
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
    const HANDLE handle = GetStdHandle(IdOf(stream));
    // As where it was started from a shortcut or by a session: nobody has asked for what it prints.
    if (!LeadsSomewhere(handle))
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
