#pragma once

#include <QLockFile>
#include <QString>

#include <optional>

/// Keeps a second host from working on the same configuration directory: a lock file in it, held for as long as this
/// object lives. Both would store the list of entries, and the one that ends last would undo what the other did.
///
/// A lock whose owner is dead is taken over at once, also when its process number belongs to another program by now.
class InstanceLock
{
public:
    enum class Result {
        Taken,
        Held,    ///< another host works there
        Unusable ///< the directory cannot be made or written
    };

    InstanceLock() = default;

    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;

    /// Makes `directory` where it is missing and takes its lock; call once.
    Result Take(const QString& directory);

    /// After `Take`: why the lock was not taken, in a sentence for a person; empty when it was.
    const QString& ErrorText() const { return m_ErrorText; }

    /// The number of the process whose host works on `directory`; none where there is no such host. A lock without an
    /// owner is removed by the way; nothing else is written.
    static std::optional<qint64> Holder(const QString& directory);

private:
    std::optional<QLockFile> m_Lock;
    QString m_ErrorText;
};
