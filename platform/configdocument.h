#pragma once

#include <QByteArray>
#include <QMap>
#include <QSet>
#include <QString>

#include <optional>

/// The working copy of one configuration document: key paths with values, what of them was changed, and the file they
/// come from.
class ConfigDocument
{
public:
    /// Reads `file`; a missing one is an empty document. A damaged file is moved aside, traced, and the document is
    /// empty. An empty `file` name: the document lives in memory alone.
    explicit ConfigDocument(QString file);

    ConfigDocument(const ConfigDocument&) = delete;
    ConfigDocument& operator=(const ConfigDocument&) = delete;

    /// The value at `path`, nothing where there is none.
    std::optional<QString> Value(const QString& path) const;
    void SetValue(const QString& path, const QString& value);
    /// Removes the key at `path` and everything below it.
    void Remove(const QString& path);

    /// Brings the changes into the file and takes over what others changed there. False, with a trace, when that could
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
    bool MoveDamagedFileAside() const;
    void RemoveLeftovers() const;

    const QString m_file;
    QMap<QString, Entry> m_entries; // by key path
    QSet<QString> m_removed;        // key paths, also of nodes; taken away before the changed entries are put in
    bool m_isChanged = false;       // something has to be saved
    QByteArray m_fingerprint;       // of the file's content when it was last read or written
};
