#pragma once

#include "platform/platformexport.h"
#include "platform/view.h"

#include <QString>

#include <functional>

class ICfg;

/// The product configuration: one document per view and name, each a file of the store.
///
/// Writing through a node changes the document in memory only; `SaveDocument` brings it to disk. Without `Open` (and
/// again after `Close`) documents live in memory alone. GUI thread only.
class VEXELPLATFORM_EXPORT CfgCenter
{
public:
    CfgCenter() = delete;

    /// The root node of the application's own document in `view`. Valid until `Open` or `Close`; not owned by the
    /// caller.
    static ICfg* GetAppCfg(View view);

    /// The root node of document `name` in `view`, or, where `sub` is not empty, its child node `sub`. Documents come
    /// into being on first write. Valid until `Open` or `Close`; not owned by the caller.
    static ICfg* CreateCfg(const QString& name, View view, const QString& sub);

    /// Brings every changed document to disk, each atomically: after a crash at any moment its file holds the old or
    /// the new state, whole. What another process changed meanwhile under other keys is kept. Returns false, with a
    /// trace, when a document could not be written; it then stays changed, and its file as it was. A file that cannot
    /// be read any more is kept aside, and what was known of it is written in its place.
    static bool SaveDocument();

    /// Host side: uses `directory` as the store and creates it where it is missing. Returns false, with a trace, when
    /// it cannot be used; the store is then as after `Close`. Drops every node as `Close` does.
    static bool Open(const QString& directory);

    /// Host side: after an `Open` that returned false: why, in the words of the system.
    static QString OpenError();

    /// Host side: uses `directory` as the store only to look at it: nothing is written there, and changed documents
    /// cannot be saved. Returns false when it is no directory; the store is then as after `Close`. Drops every node as
    /// `Close` does.
    static bool OpenReadOnly(const QString& directory);

    /// Host side: forgets every document and drops every node. Saves nothing. Handles that callers still own stay
    /// safe to use and to delete, but what they write goes nowhere.
    static void Close();

    /// Host side: the store's directory, whole path; empty while documents live in memory alone.
    static QString Directory();

    /// Host side: whether what is stored in the application's own document in `view`, or what is used in its place, is
    /// known. False where its file is there, and could neither be read nor kept aside, and there is no version of it;
    /// the document then seems empty, and cannot be saved.
    static bool IsAppCfgKnown(View view);

    /// Host side: who is told, in one plain English line, that a document could not be read when it was first asked
    /// for or when it was saved, where its file was kept, and what is used instead. An empty `sink`: nobody, as at
    /// first. Stays over `Open` and `Close`. The same is traced.
    static void SetNoticeSink(std::function<void(const QString&)> sink);
};
