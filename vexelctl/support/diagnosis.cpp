// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/support/diagnosis.h"

#include "host/options/settings.h"
#include "host/plugin/pluginlibrary.h"
#include "host/system/desktop.h"
#include "platform/icfg.h"
#include "platform/platformversion.h"
#include "platform/starterport.h"
#include "vexelctl/output.h"
#include "vexelctl/support/accessreport.h"
#include "vexelctl/support/crashreport.h"
#include "vexelctl/support/desktopreport.h"
#include "vexelctl/support/linkport.h"
#include "vexelctl/support/machinereport.h"
#include "vexelctl/support/settingsreport.h"
#include "vexelctl/support/storereport.h"
#include "vexelctl/support/supportreport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcessEnvironment>
#include <QSysInfo>

#include <memory>

namespace {

Setting OptionSetting(const QString& given, const QString& used, const char* option, const char* fallback)
{
    return {used, QLatin1String(given.isEmpty() ? fallback : option)};
}

Setting ConfigurationSetting(const CtlOptions& given, const CtlOptions& options)
{
    if (const QString error = ConfigDirectoryError(given); !error.isEmpty())
        return {QString(), QStringLiteral("NOT FOUND: ") + error};
    return OptionSetting(given.configDirectory, options.configDirectory, "--config", "this user's default location");
}

/// Returns the value of `key` in a document, as the next start would read it.
QString ConfiguredValue(const QString& document, const QString& key)
{
    const std::unique_ptr<ICfg> node = OpenNewestReadable(View::Application, document);
    return node ? node->GetString(key, QString(), 0) : QString();
}

QString PluginState(const QString& file)
{
    PluginLibrary library;
    return library.Load(file) == PluginLibrary::Error::None ? QStringLiteral("loads; exports ARCreateEx and ARDestroy")
                                                            : library.ErrorText();
}

QJsonValue TraceFileState(const QString& fileName)
{
    if (fileName.isEmpty())
        return {};
    const QFileInfo file(fileName);
    if (!file.exists())
        return file.dir().exists() ? QStringLiteral("does not exist yet") : QStringLiteral("its folder does not exist");
    if (!file.isFile())
        return QStringLiteral("not a regular file");
    return QStringLiteral("%1 bytes%2")
        .arg(file.size())
        .arg(file.isWritable() ? QString() : QStringLiteral(", cannot be written"));
}

/// Only the variables that matter here: an environment may contain secrets.
QStringList Environment()
{
    static const QStringList kOthers = QStringLiteral("LANG LANGUAGE LC_ALL LC_MESSAGES QT_QPA_PLATFORM "
                                                      "QT_QPA_PLATFORMTHEME QT_SCALE_FACTOR QT_SCREEN_SCALE_FACTORS "
                                                      "QT_STYLE_OVERRIDE XDG_CURRENT_DESKTOP")
                                           .split(QLatin1Char(' '));
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QStringList variables;
    const QStringList names = environment.keys();
    for (const QString& name : names)
        if (name.startsWith(QLatin1String("VEXEL_")) || kOthers.contains(name))
            variables.append(name + QLatin1Char('=') + environment.value(name));
    variables.sort();
    return variables;
}

/// Returns the version of the plug-in's file, whether or not it can be loaded.
QJsonValue PluginVersion(const QString& file)
{
    const QString version = PluginLibrary::VersionIn(file);
    return version.isEmpty() ? QJsonValue() : version;
}

void ReportVersions(SupportReport& report, const CtlOptions& options)
{
    report.BeginSection(QStringLiteral("Versions"));
    report.AddFact(QStringLiteral("program"), QStringLiteral(VEXEL_VERSION));
    report.AddFact(QStringLiteral("platform library"), PlatformVersion());
    report.AddFact(QStringLiteral("plug-in"), PluginVersion(options.plugin));
    report.AddFact(QStringLiteral("Qt"), QString::fromLatin1(qVersion()));
    report.AddFact(QStringLiteral("Qt built with"), QStringLiteral(QT_VERSION_STR));
    report.AddFact(QStringLiteral("system"), QSysInfo::prettyProductName());
    report.AddFact(QStringLiteral("kernel"), QSysInfo::kernelType() + QLatin1Char(' ') + QSysInfo::kernelVersion());
    report.AddFact(QStringLiteral("processor"), QSysInfo::currentCpuArchitecture());
    report.AddFact(QStringLiteral("compiler"), QStringLiteral(VEXEL_COMPILER));
}

void ReportPaths(SupportReport& report, const CtlOptions& given, const CtlOptions& options, const Setting& data)
{
    const auto addSetting = [&report](const char* label, const Setting& setting) {
        report.AddFact(QLatin1String(label), setting.value);
        report.AddFact(QLatin1String(label) + QStringLiteral(" from"), setting.origin);
    };
    report.BeginSection(QStringLiteral("Paths"));
    report.AddFact(QStringLiteral("program"), QCoreApplication::applicationFilePath());
    report.AddFact(QStringLiteral("current directory"), QDir::currentPath());
    addSetting("plug-in", OptionSetting(given.plugin, options.plugin, "--plugin", "installed with the host"));
    report.AddFact(QStringLiteral("plug-in state"), PluginState(options.plugin));
    addSetting("configuration", ConfigurationSetting(given, options));
    addSetting("data directory", data);
    report.AddFact(QStringLiteral("data directory exists"), QFileInfo(data.value).isDir());
    const QDir translations(
        QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/" VEXEL_BIN_TO_TRANSLATIONS)));
    report.AddFact(QStringLiteral("translations"), translations.path());
    report.AddFact(QStringLiteral("catalogues"),
                   QJsonArray::fromStringList(translations.entryList({QStringLiteral("*.qm")}, QDir::Files)));
    report.AddFact(QStringLiteral("trace file"), options.traceFile.isEmpty() ? QJsonValue() : options.traceFile);
    report.AddFact(QStringLiteral("trace file state"), TraceFileState(options.traceFile));
    ReportAccess(report, options.configDirectory, options.traceFile);
    report.AddFact(QStringLiteral("display"), HasDesktop());
    report.AddList(QStringLiteral("environment"), Environment());
}

QString PortState(const LinkPort& port)
{
    if (!port.error.isEmpty())
        return QStringLiteral("cannot be checked: %1").arg(port.error);
    return port.isFree ? QStringLiteral("free: no host answers the starter") : QStringLiteral("in use");
}

void ReportLink(SupportReport& report)
{
    const LinkPort port = ProbePort(kStarterPort);
    report.BeginSection(QStringLiteral("Starter link"));
    report.AddFact(QStringLiteral("port"), kStarterPort);
    report.AddFact(QStringLiteral("free"), port.isFree);
    report.AddFact(QStringLiteral("state"), PortState(port));
}

/// The host puts its own folder first in its children's search path.
QStringList ProgramDirectories()
{
    const QStringList path = qEnvironmentVariable("PATH").split(QDir::listSeparator(), Qt::SkipEmptyParts);
    return QStringList{QCoreApplication::applicationDirPath()} + path;
}

} // namespace

ExitCode Diagnose(const CtlOptions& given)
{
    CtlOptions options = given;
    SetDefaults(options);
    CfgCenter::OpenReadOnly(options.configDirectory);

    SupportReport report;
    ReportVersions(report, options);
    const Settings settings;
    ApplyTraceSettings(options, settings); // the host's file
    const Setting data = DataDirectorySetting(options, settings);
    ReportPaths(report, given, options, data);
    ReportSettings(report, given, settings, data);
    ReportDesktop(report);
    ReportMachine(report, {data.value, ConfiguredValue(options.name, QStringLiteral("TypeApplicationMappings")),
                           ProgramDirectories()});
    ReportStore(report, options.configDirectory);
    ReportCrashes(report, options.configDirectory);
    ReportLink(report);
    CfgCenter::Close();

    return options.json ? PrintResult(report.Json()) : PrintResult(report.Text());
}
