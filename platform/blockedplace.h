#pragma once

#include <QFileInfo>

/// Whether something stands in the place of the file `path` that is no file, such as a folder, a device, a pipe, or a
/// link to nothing. It must not be opened as a file: a pipe keeps whoever opens it waiting for its other end.
inline bool IsBlocked(const QString& path)
{
    const QFileInfo info(path);
    return (info.exists() || info.isSymLink()) && !info.isFile();
}
