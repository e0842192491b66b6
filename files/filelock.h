#pragma once

#include <QString>
#include <QtGlobal>

#include <chrono>

/// A file that one process of the system has at a time, for as long as it lives. The system itself knows who has it and
/// gives it back when that process ends, however it ends: neither its content nor its age says anything about that, and
/// a file that was left behind is in nobody's way.
///
/// In a folder of another machine this holds between the machines as far as the folder passes locks on, which network
/// file systems do where they are not told otherwise.
class FileLock
{
public:
    enum class Result {
        Locked,
        Busy,        ///< somebody has it; this process may be that, through another object
        Unsupported, ///< it is there, but its file system knows no locks: others can have it as well
        Failed       ///< it can neither be opened nor made, or it is no file
    };
    /// What can be said from outside.
    enum class State { Free, Locked, Unknown };

    FileLock() = default;
    /// Gives it back and removes it.
    ~FileLock();

    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// Makes `path` where it is missing, and takes it; may be tried again after `Busy`. Never waits. `error` says why
    /// where it failed.
    Result TryLock(const QString& path, QString* error);
    /// Calls `TryLock` until the result is not `Busy` or `timeout` has passed.
    Result Lock(const QString& path, std::chrono::milliseconds timeout, QString* error);
    /// Puts `content` in place of what the file says. Others can read it; it is of no weight, so on a full disk it is
    /// missing. Only after `Locked` or `Unsupported`.
    void Write(const QByteArray& content) const;

    /// How it stands with `path`. Neither takes nor changes anything.
    static State Query(const QString& path);

private:
    QString m_path;        // empty unless it was taken
    qintptr m_handle = -1; // the system's
};
