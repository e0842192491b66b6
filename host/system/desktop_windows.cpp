// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/desktop.h"

#include "host/system/environment.h"

#include <QApplication>
#include <QDir>
#include <QFont>
#include <QFontDatabase>

#include <array>

#include <windows.h>

bool HasDesktop()
{
    return true;
}

void SetUpOffscreenFonts()
{
    // The offscreen platform has no default font directory.
    std::array<wchar_t, MAX_PATH> folder = {};
    if (!qEnvironmentVariableIsEmpty("QT_QPA_FONTDIR") ||
        GetWindowsDirectoryW(folder.data(), static_cast<UINT>(folder.size())) == 0)
        return;
    const QDir windows(QString::fromWCharArray(folder.data()));
    Environment::Set("QT_QPA_FONTDIR", windows.filePath(QStringLiteral("Fonts")));
}

void ChooseOffscreenFont()
{
    // Without a choice Qt takes the alphabetically first family.
    constexpr int kPointSize = 9;
    const QStringList families = QFontDatabase::families();
    for (const char* name : {"Segoe UI", "Tahoma", "Arial", "DejaVu Sans"}) {
        if (families.contains(QLatin1String(name))) {
            QApplication::setFont(QFont(QLatin1String(name), kPointSize));
            return;
        }
    }
}
