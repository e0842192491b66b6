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

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace {

constexpr qint64 kMaximumSize = qint64{1024} * 1024;

constexpr std::array kAllKeys = {Settings::Key::Data, Settings::Key::Language, Settings::Key::Trace,
                                 Settings::Key::TraceFile};

/// Returns whether the line that sets `key` has a backslash, which QSettings takes for an escape.
bool HasBackslash(const QByteArray& content, const QString& key)
{
    const QList<QByteArray> lines = content.split('\n');
    return std::any_of(lines.cbegin(), lines.cend(), [name = key.toUtf8()](const QByteArray& line) {
        return line.left(line.indexOf('=')).trimmed() == name && line.contains('\\');
    });
}

/// A file for everybody can name a file in each user's home folder.
QString ExpandedPath(const QString& text)
{
    return QDir::cleanPath(text.startsWith(QLatin1String("~/")) ? QDir::homePath() + text.mid(1) : text);
}

QString PathError(const QString& path)
{
    return QDir::isAbsolutePath(path) ? QString() : QStringLiteral("not an absolute path: %1").arg(path);
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
    const auto ignore = [this, &file](const QString& state) {
        m_files.append({file, QStringLiteral("IGNORED: ") + state});
        m_problems.append(QStringLiteral("%1: ignored: %2").arg(file, state));
    };
    // Not exists(), which is false for a link to nothing.
    if (!QFileInfo(file).exists() && !QFileInfo(file).isSymLink()) {
        const QFileInfo folder(QFileInfo(file).path());
        if (folder.exists() && !folder.isReadable())
            return ignore(QStringLiteral("its folder cannot be read"));
        m_files.append({file, QStringLiteral("does not exist")});
        return;
    }
    QString error;
    const std::optional<QByteArray> content = ReadRegularFile(file, kMaximumSize, &error);
    if (!content)
        return ignore(QStringLiteral("cannot be read: %1").arg(error));
    // QSettings takes these for the end of a line.
    if (content->contains('\0') || !content->isValidUtf8())
        return ignore(QStringLiteral("damaged: not a text in UTF-8"));
    const QSettings settings(file, QSettings::IniFormat);
    QStringList unknown = settings.allKeys();
    // Of a file with such a line nothing is certain.
    if (settings.status() != QSettings::NoError)
        return ignore(QStringLiteral("damaged: a line is neither a section nor \"key=value\""));
    m_files.append({file, QStringLiteral("read")});
    for (const Key key : kAllKeys) {
        if (!unknown.removeOne(Name(key)))
            continue;
        if (HasBackslash(*content, Name(key)))
            m_problems.append(QStringLiteral("%1: %2: write / in place of \\").arg(file, Name(key)));
        else
            TakeList(file, key, settings.value(Name(key)).toStringList());
    }
    for (const QString& name : std::as_const(unknown))
        m_problems.append(QStringLiteral("%1: unknown key: %2").arg(file, name));
}

void Settings::TakeList(const QString& file, Key key, const QStringList& texts)
{
    if (texts.size() > 1)
        m_problems.append(QStringLiteral("%1: %2: a value with a comma needs quotation marks").arg(file, Name(key)));
    else
        Take(file, key, texts.join(QString()));
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
