#include "host/instancelock.h"

#include <QDir>
#include <QFileInfo>
#include <QSysInfo>

#include <chrono>

using namespace std::chrono_literals;

namespace {

// Whoever just looks holds the lock for a moment, and an owner writes its number a moment after it has made the file.
constexpr std::chrono::milliseconds s_patience = 500ms;

QString FileIn(const QString& directory)
{
    return directory + QStringLiteral("/vexelhost.lock");
}

/// Something in the lock file's place that is no file. It must not be opened: a pipe has no end.
bool IsBlocked(const QString& file)
{
    const QFileInfo info(file);
    return (info.exists() || info.isSymLink()) && !info.isFile();
}

bool IsReadable(const QLockFile& lock)
{
    qint64 process = 0;
    QString host;
    QString program;
    return lock.getLockInfo(&process, &host, &program);
}

bool TryTake(QLockFile& lock, std::chrono::milliseconds patience)
{
    // No age makes a lock stale, a host may run for months; only the death of its owner does.
    lock.setStaleLockTime(0);
    if (lock.tryLock(static_cast<int>(patience.count())))
        return true;
    // An owner that died between making the file and writing its number, or found the disk full, left a file that says
    // nothing. The system knows whether anybody still has it open, and only then it is not removed.
    return lock.error() == QLockFile::LockFailedError && !IsReadable(lock) && lock.removeStaleLockFile() &&
           lock.tryLock(0);
}

QString HeldText(const QLockFile& lock, const QString& file, const QString& directory)
{
    qint64 process = 0;
    QString host;
    QString program;
    lock.getLockInfo(&process, &host, &program);

    const QString native = QDir::toNativeSeparators(directory);
    if (!host.isEmpty() && host != QSysInfo::machineHostName()) {
        // Whether a process of another machine lives cannot be seen from here.
        return QStringLiteral("another host, process %1 on %2, works on the configuration directory %3; if it does not "
                              "run any more, remove %4")
            .arg(process)
            .arg(host, native, QDir::toNativeSeparators(file));
    }
    return QStringLiteral("another host, process %1, works on the configuration directory %2; kitestarter brings its "
                          "dialog to the front")
        .arg(process)
        .arg(native);
}

} // namespace

InstanceLock::Result InstanceLock::Take(const QString& directory)
{
    const QString file = FileIn(directory);
    if (!directory.isEmpty() && QDir().mkpath(directory) && !IsBlocked(file)) {
        m_Lock.emplace(file);
        if (TryTake(*m_Lock, s_patience)) {
            m_ErrorText.clear();
            return Result::Taken;
        }
        if (m_Lock->error() == QLockFile::LockFailedError) {
            m_ErrorText = HeldText(*m_Lock, file, directory);
            m_Lock.reset();
            return Result::Held;
        }
        m_Lock.reset();
    }
    m_ErrorText = QStringLiteral("the configuration directory %1 cannot be used").arg(directory);
    return Result::Unusable;
}

std::optional<qint64> InstanceLock::Holder(const QString& directory)
{
    const QString file = FileIn(directory);
    if (!QFileInfo(file).isFile())
        return std::nullopt;

    QLockFile lock(file);
    qint64 process = 0;
    QString host;
    QString program;
    const bool isReadable = lock.getLockInfo(&process, &host, &program);
    // Taking it is the way to find out whether its owner lives; it is given back at once.
    if (!isReadable || TryTake(lock, 0ms))
        return std::nullopt;
    return process;
}
