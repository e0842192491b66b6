#include "host/options/hostdefaults.h"

#include "host/plugin/pluginlibrary.h"
#include "host/system/homefolder.h"

#include <QCoreApplication>
#include <QStandardPaths>

QString ConfigDirectoryError(const HostOptions& options)
{
    return options.configDirectory.isEmpty() ? PrepareHomeFolder() : QString();
}

HostOptions WithDefaults(HostOptions options)
{
    if (options.plugin.isEmpty())
        options.plugin = PluginLibrary::DefaultFile(QCoreApplication::applicationDirPath());
    if (options.configDirectory.isEmpty() && ConfigDirectoryError(options).isEmpty())
        options.configDirectory = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
    return options;
}
