#include "host/options/hostdefaults.h"

#include "host/plugin/pluginlibrary.h"

#include <QCoreApplication>
#include <QStandardPaths>

HostOptions WithDefaults(HostOptions options)
{
    if (options.plugin.isEmpty())
        options.plugin = PluginLibrary::DefaultFile(QCoreApplication::applicationDirPath());
    if (options.configDirectory.isEmpty())
        options.configDirectory = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
    return options;
}
