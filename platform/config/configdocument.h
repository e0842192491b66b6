#pragma once

#include "platform/config/documentloader.h"

#include <QByteArray>
#include <QMap>
#include <QSet>
#include <QString>

#include <optional>
#include <utility>

class DocumentTransaction;

/// The working copy of one configuration document: values by key path, what of them was changed, and the file they come
/// from.
class ConfigDocument
{
public:
    /// Loads `file`, see `LoadDocument`; a missing one is an empty document. Where a damaged document could not be
    /// quarantined, nothing can be saved. An empty `file` name: the document lives in memory alone.
    ConfigDocument(QString file, DocumentAccess access);
    /// A document that lives in memory alone.
    explicit ConfigDocument(const DocumentText::Values& values);

    ConfigDocument(const ConfigDocument&) = delete;
    ConfigDocument& operator=(const ConfigDocument&) = delete;

    /// What went wrong with reading the file since the last call, in one line for people; empty: nothing.
    QString TakeNotice() { return std::exchange(m_notice, QString()); }

    /// False: the file exists, could not be read, and nothing else is used in its place; only what was written here
    /// since is known.
    bool IsKnown() const { return m_isKnown; }

    /// The value at `path`; nothing where there is none.
    std::optional<QString> Value(const QString& path) const;
    void SetValue(const QString& path, const QString& value);
    /// Removes the key at `path` and everything below it.
    void Remove(const QString& path);

    /// Writes the changes to the file and takes over what others changed there. The file's earlier content becomes its
    /// newest version; where that fails, it is traced and the save goes on. Without changes the file is not touched.
    /// False, with a trace: changes and file are as they were.
    bool Save();

private:
    struct Entry
    {
        QString text;
        bool isChanged = false;
    };

    void Load();
    void TakeOver(const DocumentText::Values& values);
    void MarkAllChanged();
    bool Write(DocumentTransaction& transaction);
    DocumentText::Values Merge(const DocumentReading& before) const;
    bool Fail(int line, const QString& reason) const;

    const QString m_file;
    const DocumentAccess m_access = DocumentAccess::ReadWrite;
    QMap<QString, Entry> m_entries; // by key path
    QSet<QString> m_removed;        // key paths, also of nodes; removed before changed entries are written
    bool m_isChanged = false;       // there is something to save
    bool m_isKnown = true;
    bool m_isWriteProtected = false; // the file's content is not known here and must not be replaced
    QByteArray m_fingerprint;        // of the file's content when it was last read or written
    QString m_notice;
};
