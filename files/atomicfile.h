#pragma once

#include "files/retry.h"
#include <QByteArray>
#include <QString>

/// Replaces the content of `file` atomically: after a crash or power loss the file has either the old or the new
/// content, as far as the disk keeps what it confirmed. A symbolic link stays, and its target is replaced. If the
/// result is not `Done`, the file is unchanged. On `Done`, `isDurable` (optional) is set to false if a power loss may
/// still bring back the old content.
///
/// The temporary file is next to the target; its name begins with ".unfinished-".
Attempt WriteAtomically(const QString& file, const QByteArray& content, bool* isDurable = nullptr);

/// Creates `folder` and its missing parents durably. Returns false on failure.
bool CreateFolder(const QString& folder);

/// Removes temporary files of `file` left behind by killed writers. Call this only if no other process can be writing
/// `file`.
void RemoveTemporaryFiles(const QString& file);

/// Removes them for every file in `folder`.
void RemoveAllTemporaryFiles(const QString& folder);
