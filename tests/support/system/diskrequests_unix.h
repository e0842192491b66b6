// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QList>
#include <QString>

#include <sys/types.h>

/// Records, in order, the sync and rename calls of this process, which decide what survives a power failure.
namespace DiskRequests {

struct Request
{
    enum Kind { Sync, Rename } kind;
    ino_t file;
    QString path;   // the new one for Rename; a file being written may have none yet
    QString former; // only for Rename
};

/// All requests since the last call of `Forget`.
const QList<Request>& All();
void Forget();

/// Indices into `All`, or -1: the last rename to `path`, and the first sync of `path` at or after index `from`.
qsizetype LastRenameTo(const QString& path);
qsizetype FirstSyncOf(const QString& path, qsizetype from = 0);

/// Whether the file renamed by the request at index `rename` was synced before.
bool IsSyncedBefore(qsizetype rename);

} // namespace DiskRequests
