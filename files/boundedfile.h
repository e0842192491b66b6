// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// Default limit in bytes. The largest files in use are below 1 MiB; 64 MiB can be read in a moment.
inline constexpr qint64 kMaximumFileSize = qint64{64} * 1024 * 1024;

/// Reads the whole regular file `path`.
///
/// Returns none if it cannot be opened or read, has more than `limit` bytes, or is not a regular file (or a link to
/// one): a directory has no content, a device may have no end, and opening a pipe may block forever. `error` (optional)
/// then says why, for the user.
std::optional<QByteArray> ReadRegularFile(const QString& path, qint64 limit = kMaximumFileSize,
                                          QString* error = nullptr);
