// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/platformexport.h"

#include <QString>

#include <memory>

class FileLock;

/// Host side: prevents a second host from using the same configuration directory. Locks a file in the directory for the
/// lifetime of this object. Without the lock both hosts would store the list of entries, and the last one to end would
/// overwrite the other's changes.
///
/// The operating system keeps the lock (see `FileLock`). A lock file left by a crashed host is therefore taken over at
/// once, even if its process number or machine name belongs to something else by now. The file's content, which names
/// the holder, is only informative.
class VEXELPLATFORM_EXPORT InstanceLock
{
public:
    /// The outcome of `TryLock`.
    enum class Result {
        Locked,
        Busy,    ///< another host uses the directory
        Unusable ///< the directory cannot be created or written
    };
    /// Whether a host uses a directory.
    enum class State { Nobody, Somebody, Unknown };
    /// The host that uses a directory.
    struct Owner
    {
        State state = State::Nobody; ///< `Unknown` if the lock file cannot be opened
        qint64 process = 0;          ///< process ID; 0 if unknown
        QString program;             ///< empty if unknown
        QString address;             ///< where it takes requests; empty if unknown or nowhere
    };

    InstanceLock();
    ~InstanceLock();

    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;

    /// Creates `directory` if missing and takes its lock, waiting up to 500 ms for its release. Call once.
    Result TryLock(const QString& directory);

    /// After `TryLock`: returns why the lock was not taken, as a sentence for the user; empty if it was taken.
    const QString& ErrorText() const { return m_errorText; }
    /// After `TryLock`: returns a warning for the user if the file system does not support locks, so that a second host
    /// is not prevented; otherwise empty.
    const QString& Warning() const { return m_warning; }

    /// Writes into the lock file where this host takes requests; see `Owner::address`. Call only after `Locked`.
    void SetAddress(const QString& address) const;

    /// Returns which host uses `directory`. Takes no lock and changes nothing.
    static Owner Query(const QString& directory);

private:
    std::unique_ptr<FileLock> m_file;
    QString m_errorText;
    QString m_warning;
};
