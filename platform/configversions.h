#pragma once

#include "platform/cfgcenter.h"
#include "platform/platformexport.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <memory>
#include <optional>

class ICfg;

/// An earlier state of a document.
struct ConfigVersion
{
    QString file;    ///< whole path
    QDateTime saved; ///< when that state came into the document's file; local time, as the computer's clock said
};

/// The earlier states of one document. Every save that changes a document keeps what was there before, ten states
/// deep, in a folder beside it.
///
/// Host side; looks at the files of the store that `CfgCenter::Open` has named when the object is made. Without one
/// there are no versions. Working copies that `CfgCenter` holds are neither looked at nor changed.
class VEXELPLATFORM_EXPORT ConfigVersions
{
public:
    /// @param name the document's, as for `CfgCenter::CreateCfg`; empty: the application's own document in `view`.
    ConfigVersions(View view, const QString& name);

    /// The document's file; empty without a store. Need not exist.
    QString DocumentFile() const;
    /// The folder that holds the versions; empty without a store. Need not exist.
    QString Folder() const;

    /// The versions that are there, newest first; at most ten unless somebody else added some. Nothing is said about
    /// their content. Files with other names are left out.
    QList<ConfigVersion> List() const;

    /// The newest version that can be read: what is used where the document itself cannot be. None where there is none.
    std::optional<ConfigVersion> NewestReadable() const;

    /// Why there is nothing to see of a document or version.
    enum class Obstacle {
        None,
        Damaged, ///< what the file holds is no document
        Unread   ///< it cannot be looked at, by this process or at this moment; what it holds is not known
    };

    /// The root node of a version. Can be read; what is written to it goes nowhere. Null where there is an obstacle, of
    /// which kind `obstacle` says.
    std::unique_ptr<ICfg> Open(const ConfigVersion& version, Obstacle* obstacle = nullptr) const;
    /// The same of the document's file as it is on disk. A document that does not exist yet is empty.
    std::unique_ptr<ICfg> OpenCurrent(Obstacle* obstacle = nullptr) const;

    /// Puts a version in the document's place. What it replaces is kept as the newest version, or beside the document
    /// where it cannot be read; that file's path is then put into `quarantined`. Returns false, with a trace, when that
    /// could not be done; then nothing has changed.
    ///
    /// A process that has the document open keeps its working copy; call `CfgCenter::Open` again to see the change.
    bool Restore(const ConfigVersion& version, QString* quarantined = nullptr) const;

private:
    const QString m_file; // the document's
};
