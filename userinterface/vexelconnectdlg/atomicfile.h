#pragma once

#include <QByteArray>
#include <QString>

/// Replaces the content of file `path` atomically: after a failure or a crash the file has either the old or the new
/// content. Returns whether it was written.
bool ReplaceFile(const QString& path, const QByteArray& content);
