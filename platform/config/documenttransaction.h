// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "files/filelock.h"
#include "platform/config/documentfile.h"
#include "platform/config/versionfolder.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// One change of a document's file. Holds the document's lock from `Begin` until it is destroyed. The destructor undoes
/// what was done, unless the document was replaced or `Commit` was called.
class DocumentTransaction
{
public:
    /// Whether to keep the present content as a version. Content that somebody else wrote is always kept, or the
    /// replacement fails.
    enum class VersionPolicy {
        None,
        BestEffort, ///< where it cannot be kept, go on; see `Warning`
        Required    ///< where it cannot be kept, fail
    };

    /// @param file the document's file; need not exist.
    explicit DocumentTransaction(QString file);
    ~DocumentTransaction();

    DocumentTransaction(const DocumentTransaction&) = delete;
    DocumentTransaction& operator=(const DocumentTransaction&) = delete;

    /// Takes the lock, which may take some seconds, creates the document's folder, removes temporary files of killed
    /// processes, and reads the document. False: the lock could not be taken; see `Error`.
    bool Begin();

    /// What the document's file held at `Begin`.
    const DocumentReading& Before() const { return m_before; }

    /// Quarantines what is in the document's place. Does nothing where that is done already.
    bool Quarantine();

    /// Replaces the document by `content`: keeps a valid one as a version if `policy` says so, and quarantines what
    /// needs recovery. False: see `Error`.
    bool Replace(const QByteArray& content, VersionPolicy policy);

    /// Makes everything that was done permanent, and removes surplus versions.
    void Commit();

    /// The quarantined document's file; empty where nothing was quarantined.
    QString QuarantinedFile() const { return m_quarantined ? m_quarantined->file : QString(); }

    /// Why `Replace` went on without keeping a version, for people; empty: it did not.
    const QString& Warning() const { return m_warning; }

    /// Why the last operation failed: the end of a sentence.
    const QString& Error() const { return m_error; }

private:
    bool Fail(const QString& error);
    bool KeepBefore(VersionPolicy policy);
    QString BusyError(const QString& lockName) const;
    QString LockError(const QString& lockName, const QString& error) const;

    const QString m_file;
    const VersionFolder m_versions;
    FileLock m_lock;
    DocumentReading m_before;
    std::optional<Quarantined> m_quarantined;
    std::optional<VersionFolder::Kept> m_kept; // what `Replace` did to the versions
    bool m_isFinal = false;                    // nothing is undone any more
    QString m_warning;
    QString m_error;
};
