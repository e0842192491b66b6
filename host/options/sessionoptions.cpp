// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/options/sessionoptions.h"

#include "host/plugin/pluginlibrary.h"
#include "host/system/homefolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

QString ConfigDirectoryError(const SessionOptions& options)
{
    return options.configDirectory.isEmpty() ? PrepareHomeFolder() : QString();
}

QString DefaultConfigDirectory()
{
    if (!PrepareHomeFolder().isEmpty())
        return {};
    // Not the location that bears the program's name.
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/Vexel/vexelhost");
}

void SetDefaults(SessionOptions& options)
{
    if (options.plugin.isEmpty())
        options.plugin = PluginLibrary::DefaultFile(QCoreApplication::applicationDirPath());
    if (options.configDirectory.isEmpty())
        options.configDirectory = DefaultConfigDirectory();
}

bool IsLanguage(const QString& name)
{
    return name == QLatin1String("C") || QLocale(name) != QLocale::c();
}

QString LanguageError(const QString& language)
{
    return IsLanguage(language) ? QString() : QStringLiteral("--language: no such locale: %1").arg(language);
}

QString DataDirectoryError(const QString& directory, bool isForced)
{
    if (directory.isEmpty())
        return {};
    // The value is stored, so a typo would persist.
    if (!QFileInfo(directory).isDir())
        return QStringLiteral("--data: no such directory: %1").arg(directory);
    if (!isForced && !QFileInfo(QDir(directory).filePath(QStringLiteral("CfgVEXEL.xml"))).isFile()) {
        return QStringLiteral("--data: there is no CfgVEXEL.xml in %1, so no application could be started")
            .arg(directory);
    }
    return {};
}
