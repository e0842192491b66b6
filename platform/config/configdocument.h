// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/config/compacttext.h"
#include "platform/config/documentloader.h"

#include <QMap>
#include <QSet>
#include <QString>

#include <functional>
#include <future>
#include <optional>
#include <utility>

/// Whether the values `before` are worth a version when `after` replaces them. An empty function: always.
using VersionFilter = std::function<bool(const DocumentText::Values& before, const DocumentText::Values& after)>;

/// The working copy of one configuration document: values by key path, what of them was changed, and the file they come
/// from.
///
/// A save has three steps, so that the one that takes long, `RunSave`, can run in another thread: `BeginSave` takes the
/// changes, and `FinishSave` brings the result back. Between them the working copy can be read and changed.
class ConfigDocument
{
public:
    struct Entry
    {
        CompactText text;
        bool isChanged = false;
    };
    /// What a save needs to know.
    struct SaveRequest
    {
        QString file;
        DocumentAccess access = DocumentAccess::ReadWrite;
        QMap<QString, Entry> entries; // by key path
        QSet<QString> removed;        // key paths, also of nodes; removed before changed entries are written
        bool hadContent = false;      // the file was not missing when it was last read or written
        bool isKnown = true;
        VersionFilter versionFilter;
    };
    struct SaveResult
    {
        QString error;               ///< why it failed, a sentence for people; empty: the document is saved
        QString notice;              ///< what else went wrong; empty: nothing
        QString versionWarning;      ///< why the earlier content did not become a version; empty: it did
        DocumentText::Values values; ///< of a saved document: what the file holds now
        bool hasContent = false;     ///< the file is not missing now
    };

    /// Loads `file`, see `LoadDocument`; a missing one is an empty document. An empty `file` name: the document lives
    /// in memory alone.
    ConfigDocument(QString file, DocumentAccess access);
    /// A document that lives in memory alone.
    explicit ConfigDocument(const DocumentText::Values& values);
    ~ConfigDocument();

    ConfigDocument(const ConfigDocument&) = delete;
    ConfigDocument& operator=(const ConfigDocument&) = delete;

    /// What went wrong with the file since the last call, in one line for people; empty: nothing.
    QString TakeNotice() { return std::exchange(m_notice, QString()); }

    /// False: the file exists, could not be read, and nothing else is used in its place; only what was written here
    /// since is known. May change when a check that still runs ends, as `IsLost` may.
    bool IsKnown() const { return m_isKnown; }
    /// False: the file's values were used as they were when it was opened, but something else had written them.
    /// Waits for the end of a check that still runs.
    bool WasIntact();
    /// True: what the file held cannot be read, and no version of it can; nothing has been saved since.
    bool IsLost() const { return m_isLost; }

    /// The value at `path`; nothing where there is none.
    std::optional<QString> Value(const QString& path);
    void SetValue(const QString& path, const QString& value);
    /// Removes the key at `path` and everything below it.
    void Remove(const QString& path);

    /// Whether there is something to save.
    bool IsChanged() const { return m_isChanged; }
    /// Reads the file again, which something else has written. Changes that have not been saved remain.
    void Reload();

    /// What there is to save. None: nothing was changed, and the file is not touched; also while another save runs. A
    /// file that has been removed is saved again.
    std::optional<SaveRequest> BeginSave(const VersionFilter& versionFilter);
    /// Writes the changes to the file, merged into what others changed there. If the filter says so, the file's earlier
    /// content becomes its newest version; where that fails, the notice says so and the save goes on. On failure, which
    /// is traced, the file is as it was. Any thread.
    static SaveResult RunSave(const SaveRequest& request);
    /// Takes over what the file holds now or, after a failure, keeps the changes for the next save.
    void FinishSave(const SaveResult& result);

private:
    void Load();
    /// Loads what was read ahead. Returns false if there is nothing.
    bool TakeReadAhead();
    /// Loads the document again, in the usual way, if it was read ahead and turns out not to be intact.
    void FinishCheck();
    void TakeOver(const DocumentText::Values& values);
    bool IsRemoved() const;

    const QString m_file;
    const DocumentAccess m_access = DocumentAccess::ReadWrite;
    QMap<QString, Entry> m_entries;
    QSet<QString> m_removed;
    bool m_isChanged = false; // there is something to save
    bool m_isKnown = true;
    bool m_wasIntact = true;
    bool m_isLost = false;
    std::future<bool> m_check; // valid: the document was read ahead; whether it is intact
    bool m_hadContent = false; // the file, when it was last read or written
    QString m_notice;
    QString m_versionWarning; // of the last save; told once
    std::optional<SaveRequest> m_runningSave;
};
