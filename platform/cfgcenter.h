// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/platformexport.h"
#include "platform/view.h"

#include <QMap>
#include <QString>

#include <functional>

class ICfg;

/// The values of a configuration document by key path: the names of the nodes and of the key, joined by '/'. In names,
/// slashes and percent signs are escaped.
using ConfigValues = QMap<QString, QString>;

/// The product configuration: one document per view and name, each stored as a file in the store directory.
///
/// Writing to a node changes the document in memory only; `SaveDocument` writes it to disk. Without `Open`, and after
/// `Close`, documents exist in memory only. GUI thread only.
class VEXELPLATFORM_EXPORT CfgCenter
{
public:
    CfgCenter() = delete;

    /// Returns the root node of the application's document in `view`. Not owned by the caller; valid until the next
    /// `Open`, `OpenReadOnly` or `Close`.
    static ICfg* GetAppCfg(View view);

    /// Returns the root node of document `name` in `view` or, if `sub` is not empty, its child node `sub`. The first
    /// write creates the document. Not owned by the caller; valid until the next `Open`, `OpenReadOnly` or `Close`.
    static ICfg* CreateCfg(const QString& name, View view, const QString& sub);

    /// Writes every changed document to disk. Each write is atomic: after a crash at any moment the file holds either
    /// the old or the new state, complete. Changes that another process made to other keys meanwhile are kept. A file
    /// that has become unreadable is kept under another name, and its last known content is written in its place.
    /// Returns false, with a trace, if a document could not be written; its file is then unchanged, and the next call
    /// tries again.
    static bool SaveDocument();

    /// Host side: writes to the document `name` in `view` and saves every changed document, as `CreateCfg`, `ICfg` and
    /// `SaveDocument` do, but in another thread, so that a long list keeps nobody waiting. What `write` writes is
    /// saved as a whole or not at all; then it remains to be saved, and the next save tries again.
    ///
    /// `write` is called with the document's root node, in that thread, in this one, or in both. It must not use
    /// `CfgCenter`. Returns when all is saved or that has failed. If it takes longer than a user notices,
    /// `whileWaiting` is called again and again, and can handle events; if it returns false, this function returns, and
    /// the save goes on.
    static void WriteDocument(const QString& name, View view, std::function<void(ICfg& root)> write,
                              const std::function<bool()>& whileWaiting);

    /// Host side: returns why the last save failed: a sentence for people that names the file. Empty if it did not.
    static QString SaveError();

    /// Host side: as `SaveDocument`, but writes in another thread. `done` is called on the GUI thread, by the event
    /// loop or by whatever has to wait for the end of this save: the next save, `Open` and `Close`.
    static void SaveDocumentAsync(std::function<void(bool isSaved)> done);

    /// Host side: opens `directory` as the store and creates it if missing. Drops every document, as `Close` does.
    /// Returns false, with a trace, if the directory cannot be used; documents then exist in memory only.
    static bool Open(const QString& directory);

    /// Host side: begins to read the application's document in the store `directory` in another thread, so that it is
    /// there when it is first used after `Open`. Changes nothing; a document that changes meanwhile is read again. Does
    /// nothing if `directory` is empty.
    static void ReadAhead(const QString& directory);

    /// Host side: returns the system's error message after an `Open` that returned false.
    static QString OpenError();

    /// Host side: opens `directory` as a read-only store: nothing is written there, and changed documents cannot be
    /// saved. Drops every document, as `Close` does. Returns false if it is not a directory; documents then exist in
    /// memory only.
    static bool OpenReadOnly(const QString& directory);

    /// Host side: drops every document and node without saving. Handles from `ICfg::OpenChild` remain safe to use and
    /// to delete, but what they write is lost.
    static void Close();

    /// Host side: returns the absolute path of the store directory; empty while documents exist in memory only.
    static QString Directory();

    /// Host side: returns whether the content of the application's document in `view` is known. False if its file
    /// exists but could be neither read nor kept under another name, and there is no earlier version to use instead;
    /// the document then appears empty and cannot be saved.
    static bool IsAppCfgKnown(View view);

    /// Host side: returns false if something else than `CfgCenter` had written the values of the application's document
    /// in `view` when it was opened. They are used, and the text as it was found is among the versions.
    static bool WasAppCfgIntact(View view);

    /// Host side: returns whether the content of the application's document in `view` is lost: its file could not be
    /// read and was quarantined, or is missing beside what is left of it, and no version can be read. The document
    /// begins empty; saving it ends this state.
    static bool IsAppCfgLost(View view);

    /// Host side: sets the function that receives a notice when a document cannot be read or kept as a version, on
    /// first access or while saving. A notice is one line of plain English that says where the file was kept and what
    /// is used instead; it is traced as well. An empty `sink`, the default, discards notices. `Open` and `Close` leave
    /// the sink in place.
    static void SetNoticeSink(std::function<void(const QString&)> sink);

    /// Host side: sets the function that decides whether a save that replaces the values `before` by `after` keeps the
    /// earlier content as a version. It is called in the thread that saves, possibly for several documents, and must
    /// not call `CfgCenter`. An empty `filter`, the default, keeps every one; content that something else than
    /// `CfgCenter` has written is always kept. `Open` and `Close` leave the filter in place; a save that has begun uses
    /// the one from before.
    static void SetVersionFilter(std::function<bool(const ConfigValues& before, const ConfigValues& after)> filter);
};
