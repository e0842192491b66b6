#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// What is read from a file at most, in bytes. The largest files in use are below 1 MiB; 64 MiB read in a moment.
inline constexpr qint64 kMaximumFileSize = qint64{64} * 1024 * 1024;

/// The whole content of the regular file `path`.
///
/// Nothing when it cannot be opened or read, when it holds more than `limit` bytes, and when it is no regular file
/// (nor a link to one): a directory has no content, a device may have no end, and opening a pipe may wait for ever.
/// `error`, if given, then says why, for a person.
std::optional<QByteArray> ReadRegularFile(const QString& path, qint64 limit = kMaximumFileSize,
                                          QString* error = nullptr);
