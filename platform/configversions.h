// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/platformexport.h"
#include "platform/view.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <memory>
#include <optional>

class ICfg;

/// An earlier version of a configuration document.
struct ConfigVersion
{
    QString file;    ///< absolute path
    QDateTime saved; ///< when this version was written to the document; local time
};

/// Host side: the earlier versions of one document. A save that changes a document keeps its earlier content in a
/// folder beside it, unless the filter of `CfgCenter::SetVersionFilter` says otherwise: the newest ten versions, and
/// the last one of each of the thirty latest days that have one.
///
/// Reads the files of the store that `CfgCenter` has open when the object is made; without a store there are no
/// versions. Working copies that `CfgCenter` holds are neither read nor changed.
class VEXELPLATFORM_EXPORT ConfigVersions
{
public:
    /// @param view the view of the document.
    /// @param name the document's, as for `CfgCenter::CreateCfg`; empty: the application's own document in `view`.
    ConfigVersions(View view, const QString& name);

    /// The document's file; empty without a store. Need not exist.
    QString DocumentFile() const;
    /// The folder that holds the versions; empty without a store. Need not exist.
    QString Folder() const;

    /// The versions, newest first; at most forty unless somebody else added files. Nothing is said about their content.
    QList<ConfigVersion> List() const;

    /// The newest version that can be read: what replaces a damaged document.
    std::optional<ConfigVersion> NewestReadable() const;

    /// Why a document or version cannot be opened.
    enum class Obstacle {
        None,
        Missing,    ///< there is no file, but versions or quarantined files of the document
        Damaged,    ///< the file holds no document
        Unread,     ///< this process cannot read the file
        Unavailable ///< the file cannot be found or opened at this moment, and nothing is used in its place
    };

    /// The root node of a version, for reading; what is written to it is lost. Null if there is an obstacle, which is
    /// put into `obstacle`.
    std::unique_ptr<ICfg> Open(const ConfigVersion& version, Obstacle* obstacle = nullptr) const;
    /// The same for the document's file as it is on disk. A missing document is empty.
    std::unique_ptr<ICfg> OpenCurrent(Obstacle* obstacle = nullptr) const;

    /// Replaces the document by a version. The document becomes the newest version or, if it cannot be read, is
    /// quarantined; the path of the quarantined file is put into `quarantined`. False, with a trace: nothing has
    /// changed.
    ///
    /// A process that has the document open keeps its working copy until it calls `CfgCenter::Open` again.
    bool Restore(const ConfigVersion& version, QString* quarantined = nullptr) const;

private:
    const QString m_file; // the document's
};
