#pragma once

#include "platform/config/documentfile.h"

#include <QByteArray>
#include <QMap>
#include <QSet>
#include <QString>

#include <optional>
#include <utility>

/// The working copy of one configuration document: key paths with values, what of them was changed, and the file they
/// come from.
class ConfigDocument
{
public:
    enum class Access { ReadWrite, ReadOnly };

    /// Reads `file`; a missing one is an empty document. What cannot be read there is kept aside, traced, and the
    /// newest readable version put in its place; without one the document is empty. Where it cannot be kept aside, it
    /// is left alone: the version is used without being put anywhere, and nothing can be saved. An empty `file` name:
    /// the document lives in memory alone. With `Access::ReadOnly` nothing is written, and nothing can be saved.
    ConfigDocument(QString file, Access access);
    /// A document that lives in memory alone and begins with `values`, by key path.
    explicit ConfigDocument(const QMap<QString, QString>& values);

    ConfigDocument(const ConfigDocument&) = delete;
    ConfigDocument& operator=(const ConfigDocument&) = delete;

    /// What people should know about the reading of the file, in one line each time that it did not go as it should,
    /// since this was last asked; else empty.
    QString TakeNotice() { return std::exchange(m_notice, QString()); }

    /// Whether this holds what is stored, or what is used in its place. False: the file is there and could not be read,
    /// and only what was written here since is known.
    bool IsKnown() const { return m_isKnown; }

    /// The value at `path`, nothing where there is none.
    std::optional<QString> Value(const QString& path) const;
    void SetValue(const QString& path, const QString& value);
    /// Removes the key at `path` and everything below it.
    void Remove(const QString& path);

    /// Brings the changes into the file and takes over what others changed there. What the file held before is kept as
    /// its newest version; where that fails, it is traced, and the save goes on. False, with a trace, when that could
    /// not be done: changes and file are then as they were. Nothing changed: the file is not touched.
    bool Save();

private:
    struct Entry
    {
        QString text;
        bool isChanged = false;
    };

    void Load();
    void TakeOver(const QMap<QString, QString>& values);
    void Use(const DocumentFile::Reading& reading);
    void ChangeAll();
    QByteArray Merge(IniText& text) const;
    static bool Replace(const DocumentFile& file, const DocumentFile::Reading& before, const QByteArray& after);

    const QString m_file;
    const Access m_access = Access::ReadWrite;
    QMap<QString, Entry> m_entries; // by key path
    QSet<QString> m_removed;        // key paths, also of nodes; taken away before the changed entries are put in
    bool m_isChanged = false;       // something has to be saved
    bool m_isKnown = true;
    bool m_isToBeLeftAlone = false; // what is in the file is not known here, and must not be replaced
    QByteArray m_fingerprint;       // of the file's content when it was last read or written
    QString m_notice;
};
