#include "tests/launcher/inheritedhandles.h"

#include <windows.h>

#include <array>
#include <cstdint>

QStringList InheritedHandles()
{
    // A handle that was inherited can be handed on itself; those that a program makes for itself cannot.
    constexpr std::uintptr_t step = 4;
    constexpr std::uintptr_t end = 0x10000;
    const std::array<HANDLE, 3> standard = {GetStdHandle(STD_INPUT_HANDLE), GetStdHandle(STD_OUTPUT_HANDLE),
                                            GetStdHandle(STD_ERROR_HANDLE)};
    QStringList handles;
    for (std::uintptr_t value = step; value < end; value += step) {
        const HANDLE handle = reinterpret_cast<HANDLE>(value); // NOLINT(performance-no-int-to-ptr)
        DWORD flags = 0;
        if (handle == standard[0] || handle == standard[1] || handle == standard[2] ||
            !GetHandleInformation(handle, &flags) || !(flags & HANDLE_FLAG_INHERIT))
            continue;
        handles.append(QStringLiteral("handle %1 of type %2").arg(value).arg(GetFileType(handle)));
    }
    return handles;
}
