#include "files/filelock.h"

#include <QDeadlineTimer>
#include <QThread>

FileLock::Result FileLock::Lock(const QString& path, std::chrono::milliseconds timeout, QString* error)
{
    constexpr unsigned long kPauseMs = 5; // as long as a save takes
    const QDeadlineTimer deadline(timeout);
    Result result = TryLock(path, error);
    while (result == Result::Busy && !deadline.hasExpired()) {
        QThread::msleep(kPauseMs);
        result = TryLock(path, error);
    }
    return result;
}
