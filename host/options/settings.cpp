// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/options/settings.h"

#include "files/boundedfile.h"
#include "host/options/sessionoptions.h"
#include "host/system/homefolder.h"
#include "platform/tracing.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

#include <array>
#include <optional>
#include <utility>

namespace {

constexpr qint64 kMaximumSize = qint64{1024} * 1024;

constexpr std::array kAllKeys = {Settings::Key::Data, Settings::Key::Language, Settings::Key::Trace,
                                 Settings::Key::TraceFile};

/// Returns why nothing can be read from `file`; empty if its keys can.
QString ReadingObstacle(const QString& file)
{
    QString error;
    const std::optional<QByteArray> content = ReadRegularFile(file, kMaximumSize, &error);
    if (!content)
        return QStringLiteral("cannot be read: %1").arg(error);
    // QSettings takes these for the end of a line.
    return content->contains('\0') || !content->isValidUtf8() ? QStringLiteral("damaged: not a text in UTF-8")
                                                              : QString();
}

/// A file for everybody can name a file in each user's home folder.
QString ExpandedPath(const QString& text)
{
    return QDir::cleanPath(text.startsWith(QLatin1String("~/")) ? QDir::homePath() + text.mid(1) : text);
}

QString PathError(const QString& path)
{
    // A single backslash in such a file is an escape.
    return QDir::isAbsolutePath(path) ? QString() : QStringLiteral("not an absolute path with slashes: %1").arg(path);
}

QString ValueError(Settings::Key key, const QString& text)
{
    switch (key) {
    case Settings::Key::Data:
    case Settings::Key::TraceFile:
        return PathError(text);
    case Settings::Key::Language:
        return IsLanguage(text) ? QString() : QStringLiteral("no such locale: %1").arg(text);
    case Settings::Key::Trace:
        return text == QLatin1String("true") || text == QLatin1String("false")
                   ? QString()
                   : QStringLiteral("neither true nor false: %1").arg(text);
    }
    return {};
}

} // namespace

QString Settings::Name(Key key)
{
    switch (key) {
    case Key::Data:
        return QStringLiteral("data");
    case Key::Language:
        return QStringLiteral("language");
    case Key::Trace:
        return QStringLiteral("trace");
    case Key::TraceFile:
        return QStringLiteral("trace-file");
    }
    return {};
}

QStringList Settings::DefaultFiles()
{
    const bool hasUserFolder = PrepareHomeFolder().isEmpty();
    QStringList files;
    const QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
    for (qsizetype i = hasUserFolder ? 0 : 1; i < folders.size(); ++i)
        files.append(folders.at(i) + QStringLiteral("/Vexel/vexelhost.ini"));
    return files;
}

Settings::Settings(const QStringList& files)
{
    for (const QString& file : files)
        Read(file);
}

void Settings::Read(const QString& file)
{
    // Not exists(), which is false for a link to nothing.
    if (!QFileInfo(file).exists() && !QFileInfo(file).isSymLink()) {
        m_files.append({file, QStringLiteral("does not exist")});
        return;
    }
    const auto ignore = [this, &file](const QString& state) {
        m_files.append({file, QStringLiteral("IGNORED: ") + state});
        m_problems.append(QStringLiteral("%1: ignored: %2").arg(file, state));
    };
    if (const QString obstacle = ReadingObstacle(file); !obstacle.isEmpty())
        return ignore(obstacle);
    const QSettings content(file, QSettings::IniFormat);
    QStringList unknown = content.allKeys();
    // Of a file with such a line nothing is certain.
    if (content.status() != QSettings::NoError)
        return ignore(QStringLiteral("damaged: a line is neither a section nor \"key=value\""));
    m_files.append({file, QStringLiteral("read")});
    for (const Key key : kAllKeys)
        if (unknown.removeOne(Name(key)))
            Take(file, key, content.value(Name(key)).toStringList().join(QStringLiteral(", ")));
    for (const QString& name : std::as_const(unknown))
        m_problems.append(QStringLiteral("%1: unknown key: %2").arg(file, name));
}

void Settings::Take(const QString& file, Key key, const QString& text)
{
    const bool isPath = key == Key::Data || key == Key::TraceFile;
    const QString value = isPath && !text.isEmpty() ? ExpandedPath(text) : text;
    if (const QString error = ValueError(key, value); !error.isEmpty())
        m_problems.append(QStringLiteral("%1: %2: %3").arg(file, Name(key), error));
    else if (!m_values.contains(key))
        m_values.insert(key, {value, file});
}

void Settings::TraceProblems() const
{
    for (const QString& problem : m_problems)
        Trace(
            "host/options/settings", __LINE__, [&problem] { return problem; });
}

void ApplySettings(SessionOptions& options, const Settings& settings)
{
    if (const QString language = settings.Get(Settings::Key::Language).text; !options.language && !language.isEmpty())
        options.language = QLocale(language);
    options.defaultDataDirectory = settings.Get(Settings::Key::Data).text;
}

void ApplyTraceSettings(SessionOptions& options, const Settings& settings)
{
    if (options.trace || !options.traceFile.isEmpty())
        return;
    options.trace = settings.Get(Settings::Key::Trace).text == QLatin1String("true");
    options.traceFile = settings.Get(Settings::Key::TraceFile).text;
}
