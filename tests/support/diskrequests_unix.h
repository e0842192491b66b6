#pragma once

#include <QList>
#include <QString>

#include <sys/types.h>

/// What this process asks the system for that makes files and names outlast a loss of power, in its order.
namespace DiskRequests {

struct Request
{
    enum Kind { Sync, Rename } kind;
    ino_t file;
    QString path;   // a file that is written may have none yet; of a renaming the new one
    QString former; // of a renaming
};

/// All since the last call of `Forget`.
const QList<Request>& All();
void Forget();

/// The place among them of the last renaming to `path`, and of the first request from `from` on that brings what is at
/// `path` to the disk; -1 where there is none.
qsizetype LastRenameTo(const QString& path);
qsizetype FirstSyncOf(const QString& path, qsizetype from = 0);

/// Whether the content of the file that got its name by the request at `rename` was brought to the disk before.
bool IsSyncedBefore(qsizetype rename);

} // namespace DiskRequests
