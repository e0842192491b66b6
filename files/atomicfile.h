// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "files/retry.h"

#include <QByteArray>
#include <QString>

/// Who can read a file that is created. A file that is replaced keeps its permissions.
enum class FileAccess {
    Shared, ///< as the umask has it
    Private ///< the owner alone; on Windows as the folder has it
};

/// Replaces the content of `file` atomically: after a crash or power loss the file has either the old or the new
/// content, as far as the disk keeps what it confirmed. A symbolic link stays, and its target is replaced. If the
/// result is not `Done`, the file is unchanged. On `Done`, `isDurable` (optional) is set to false if a power loss may
/// still bring back the old content.
///
/// The temporary file is next to the target; its name begins with ".unfinished-".
Attempt WriteAtomically(const QString& file, const QByteArray& content, FileAccess access, bool* isDurable = nullptr);

/// Same, retrying while another program has the file open. Returns why the file could not be written, for the user;
/// empty on success.
QString WriteWithRetries(const QString& file, const QByteArray& content, FileAccess access, bool* isDurable = nullptr);

/// Same, of a file that the user named: does not replace a pipe or a device by a regular file.
///
/// If the file can be written, but its folder does not allow to replace it, the content is written in place, which is
/// not atomic: the former content is put back if the disk is full or a write fails, but it is lost if this process is
/// killed or the power fails half-way, and other programs may read part of both.
QString ReplaceRegularFile(const QString& file, const QByteArray& content, FileAccess access = FileAccess::Shared);

/// Returns why no file with `content` can be created in `folder`, for the user; empty if one can. Creates a temporary
/// file, because permissions are not enough: a file system may be read-only, and root ignores them.
QString CreationObstacle(const QString& folder, const QByteArray& content = {});

/// Creates `folder` and its missing parents durably; only the owner can enter them, see `CreatePrivateFolder`. Returns
/// false on failure.
bool CreateFolder(const QString& folder);

/// Removes temporary files of `file` left behind by killed writers. Call this only if no other process can be writing
/// `file`.
void RemoveTemporaryFiles(const QString& file);

/// Removes them for every file in `folder`.
void RemoveAllTemporaryFiles(const QString& folder);
