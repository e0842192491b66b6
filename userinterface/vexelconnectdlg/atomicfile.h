#pragma once

#include <QByteArray>
#include <QString>

/// Makes `content` the content of file `path`, all of it or nothing: after a full disk or a crash the file is what it
/// was before, or the new one. Returns whether it was written.
bool ReplaceFile(const QString& path, const QByteArray& content);
