#include "host/desktop.h"

#include <QDir>

#include <array>

#include <windows.h>

bool HasDesktop()
{
    return true;
}

void ProvideLettersOffScreen()
{
    // Off screen, Qt reads the fonts from a folder that it must be told of.
    std::array<wchar_t, MAX_PATH> folder = {};
    if (!qEnvironmentVariableIsEmpty("QT_QPA_FONTDIR") ||
        GetWindowsDirectoryW(folder.data(), static_cast<UINT>(folder.size())) == 0)
        return;
    const QDir windows(QString::fromWCharArray(folder.data()));
    qputenv("QT_QPA_FONTDIR", windows.filePath(QStringLiteral("Fonts")).toUtf8());
}
