#pragma once

#include "platform/platformexport.h"

#include <QString>

#include <memory>

class FileLock;

/// Host side: keeps a second host from working on the same configuration directory: a file in it that is held for as
/// long as this object lives. Both would store the list of entries, and the one that ends last would undo what the
/// other did.
///
/// Whether somebody holds it is known to the system alone (see `FileLock`): what a dead host left behind is taken over
/// at once, whatever its process number or the name of the machine stands for by now. The file says who holds it, for
/// people only.
class VEXELPLATFORM_EXPORT InstanceLock
{
public:
    enum class Result {
        Locked,
        Busy,    ///< another host works there
        Unusable ///< the directory cannot be made or written
    };
    enum class State { Nobody, Somebody, Unknown };
    /// Who works on a directory.
    struct Owner
    {
        State state = State::Nobody;
        qint64 process = 0; ///< its number; 0 where that is not known
    };

    InstanceLock();
    ~InstanceLock();

    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;

    /// Makes `directory` where it is missing and takes its lock; call once.
    Result TryLock(const QString& directory);

    /// After `TryLock`: why the lock was not taken, in a sentence for a person; empty when it was.
    const QString& ErrorText() const { return m_errorText; }
    /// After `TryLock`: what a person has to know of a lock that was taken, as of a file system that has no locks,
    /// where a second host is not kept away; else empty.
    const QString& Warning() const { return m_warning; }

    /// Who works on `directory`. Takes and changes nothing.
    static Owner Query(const QString& directory);

private:
    std::unique_ptr<FileLock> m_file;
    QString m_errorText;
    QString m_warning;
};
