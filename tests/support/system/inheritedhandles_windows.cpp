// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/system/inheritedhandles.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

QStringList HandlesBesides(const std::vector<HANDLE>& others)
{
    // Inherited handles are inheritable; handles that a program opens itself are not.
    constexpr std::uintptr_t step = 4;
    constexpr std::uintptr_t end = 0x2000;
    QStringList handles;
    for (std::uintptr_t value = step; value < end; value += step) {
        const HANDLE handle = reinterpret_cast<HANDLE>(value); // NOLINT(performance-no-int-to-ptr)
        DWORD flags = 0;
        if (std::find(others.begin(), others.end(), handle) != others.end() || !GetHandleInformation(handle, &flags) ||
            !(flags & HANDLE_FLAG_INHERIT))
            continue;
        // Neither file, pipe nor socket. Wine passes handles of other kinds to every program.
        if (GetFileType(handle) == FILE_TYPE_UNKNOWN)
            continue;
        handles.append(QStringLiteral("handle %1 of type %2").arg(value).arg(GetFileType(handle)));
    }
    return handles;
}

} // namespace

QStringList InheritedHandles()
{
    return HandlesBesides(
        {GetStdHandle(STD_INPUT_HANDLE), GetStdHandle(STD_OUTPUT_HANDLE), GetStdHandle(STD_ERROR_HANDLE)});
}

QStringList HandlesToInherit()
{
    return HandlesBesides({});
}
