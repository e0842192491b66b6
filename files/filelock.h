// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>
#include <QtGlobal>

#include <chrono>

/// A lock file that at most one process holds. The system releases the lock when that process ends, in whatever way;
/// the file's content and age do not matter, and a leftover file does no harm.
///
/// On a network file system the lock holds between machines if the file system supports it, which most do by default.
class FileLock
{
public:
    enum class Result {
        Locked,
        Busy,        ///< held by another process, or by another object of this one
        Unsupported, ///< the file exists, but its file system has no locks: others can take it, too
        Failed       ///< the file cannot be opened or created, or is not a regular file
    };
    /// The state of a lock seen from outside.
    enum class State { Free, Locked, Unknown };
    /// The process that took a lock, as the lock's file names it. A killed process leaves its name there, so this means
    /// something only while the file is locked.
    struct Holder
    {
        qint64 process = 0; ///< process ID; 0 if unknown
        QString program;
        QString machine;
        QString address; ///< where it takes requests; empty: nowhere

        /// "process 4711 (vexelhost)", with the machine where it is not this one; empty if unknown.
        QString Text() const;
    };

    FileLock() = default;
    /// Releases the lock and removes the file.
    ~FileLock();

    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// Takes the lock, creating `path` if necessary, for the owner alone, and writes this process into it as its
    /// holder. Never blocks; may be retried after `Busy`. Sets `error` on `Failed`.
    Result TryLock(const QString& path, QString* error);
    /// Calls `TryLock` until the result is not `Busy` or `timeout` has passed.
    Result Lock(const QString& path, std::chrono::milliseconds timeout, QString* error);

    /// Names this process as the holder again, with the address where it takes requests. Errors, such as a full disk,
    /// are ignored. Call this only after `Locked` or `Unsupported`.
    void WriteHolder(const QString& address) const;
    /// Replaces the file's content, likewise.
    void Write(const QByteArray& content) const;

    /// Returns the state of the lock file `path` without taking or changing it.
    static State Query(const QString& path);
    /// Returns who is named in the lock file `path`.
    static Holder ReadHolder(const QString& path);

private:
    Result TryOpen(const QString& path, QString* error);

    QString m_path;        // empty unless locked
    qintptr m_handle = -1; // native handle
};
