// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/support/settingsreport.h"

#include "host/options/settings.h"
#include "host/plugin/datadirectory.h"
#include "host/system/autostart.h"
#include "platform/icfg.h"
#include "vexelctl/support/storereport.h"
#include "vexelctl/support/supportreport.h"

#include <QCoreApplication>
#include <QLocale>

#include <memory>

namespace {

const QString kBuiltIn = QStringLiteral("built in");

QString OriginOf(const Settings::Value& value)
{
    return value.file.isEmpty() ? kBuiltIn : value.file;
}

Setting LanguageSetting(const CtlOptions& options, const Settings& settings)
{
    if (options.language)
        return {options.language->name(), QStringLiteral("--language")};
    const Settings::Value value = settings.Get(Settings::Key::Language);
    if (!value.text.isEmpty())
        return {value.text, value.file};
    return {QLocale::system().uiLanguages().join(QStringLiteral(", ")), kBuiltIn + QStringLiteral(": the system's")};
}

QString TextOf(const Settings::Value& value, const char* builtIn)
{
    return value.text.isEmpty() ? QLatin1String(builtIn) : value.text;
}

QJsonArray Row(Settings::Key key, const QString& value, const QString& origin)
{
    return {Settings::Name(key), value, origin};
}

} // namespace

Setting DataDirectorySetting(const CtlOptions& options, const Settings& settings)
{
    if (!options.dataDirectory.isEmpty())
        return {options.dataDirectory, QStringLiteral("--data")};
    const std::unique_ptr<ICfg> node = OpenNewestReadable(View::Application, QStringLiteral("Administration"));
    const QString stored = node ? node->GetString(QStringLiteral("VexelDataDir"), QString(), 0) : QString();
    if (!stored.isEmpty())
        return {stored, QStringLiteral("the configuration")};
    if (const Settings::Value value = settings.Get(Settings::Key::Data); !value.text.isEmpty())
        return {value.text, value.file};
    if (const QString samples = DataDirectory::InstalledSamples(QCoreApplication::applicationDirPath());
        !samples.isEmpty())
        return {samples, QStringLiteral("the installed samples")};
    return {QString(), QStringLiteral("not set")};
}

void ReportSettings(SupportReport& report, const CtlOptions& options, const Settings& settings, const Setting& data)
{
    const Setting language = LanguageSetting(options, settings);
    const Settings::Value trace = settings.Get(Settings::Key::Trace);
    const Settings::Value traceFile = settings.Get(Settings::Key::TraceFile);
    report.BeginSection(QStringLiteral("Settings"));
    report.AddTable(QStringLiteral("settings"),
                    {QStringLiteral("Key"), QStringLiteral("Value"), QStringLiteral("From")},
                    {Row(Settings::Key::Data, data.value, data.origin),
                     Row(Settings::Key::Language, language.value, language.origin),
                     Row(Settings::Key::Trace, TextOf(trace, "false"), OriginOf(trace)),
                     Row(Settings::Key::TraceFile, TextOf(traceFile, "none"), OriginOf(traceFile))});
    QList<QJsonArray> files;
    for (const Settings::File& file : settings.Files())
        files.append({file.path, file.state});
    report.AddTable(QStringLiteral("files"), {QStringLiteral("File"), QStringLiteral("State")}, files);
    report.AddList(QStringLiteral("problems"), settings.Problems());
    report.AddFact(QStringLiteral("start at login"), Autostart::IsOn());
    report.AddFact(QStringLiteral("start at login by"), Autostart::Place());
}
