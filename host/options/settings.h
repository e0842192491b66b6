// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

struct SessionOptions;

/// The settings files "Vexel/vexelhost.ini": this user's in the configuration folder, then those of the system's
/// configuration folders, which an administrator writes for everybody. The first file that sets a key decides. What the
/// command line or the configuration says comes before all of them.
///
/// A file that is damaged or cannot be read counts as a whole as missing, an unusable value as not set. `Problems`
/// tells about both.
class Settings
{
public:
    enum class Key {
        Data,      ///< data directory, absolute
        Language,  ///< locale
        Trace,     ///< "true" or "false"
        TraceFile, ///< absolute
    };
    static QString Name(Key key);

    struct Value
    {
        QString text;
        QString file; ///< the file that sets it; empty: none does
    };
    struct File
    {
        QString path;
        QString state; ///< for a report: whether it has been read, or why not
    };

    /// Returns where the files are, whether they exist or not; this user's is the first. Sets a missing HOME.
    static QStringList DefaultFiles();
    /// Reads `files`; an earlier one wins.
    explicit Settings(const QStringList& files = DefaultFiles());

    Value Get(Key key) const { return m_values.value(key); }
    const QList<File>& Files() const { return m_files; }
    /// Returns what has been ignored, and why; each begins with the file.
    const QStringList& Problems() const { return m_problems; }
    /// Traces the problems.
    void TraceProblems() const;

private:
    void Read(const QString& file);
    /// QSettings separates a value without quotation marks at its commas.
    void TakeList(const QString& file, Key key, const QStringList& texts);
    void Take(const QString& file, Key key, const QString& text);

    QMap<Key, Value> m_values;
    QList<File> m_files;
    QStringList m_problems;
};

/// Sets the language where `options` name none, and the data directory for a configuration that stores none.
void ApplySettings(SessionOptions& options, const Settings& settings);
/// Sets where to write traces, unless the command line asks for traces.
void ApplyTraceSettings(SessionOptions& options, const Settings& settings);
