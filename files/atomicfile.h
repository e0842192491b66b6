#pragma once

#include "files/retry.h"
#include <QByteArray>
#include <QString>

/// Replaces the content of `file` by `content` atomically: at every moment the file holds the old content or the new
/// one, also after a loss of power, as far as the disks keep what they confirm. A symbolic link stays, and its target
/// is replaced. Any result but `Done`: the file is unchanged. `isDurable`, if given, is set on `Done`: false where the
/// new content is in place but a loss of power may still bring back the old one.
///
/// The temporary file lies beside the target; its name begins with ".unfinished-".
Attempt WriteAtomically(const QString& file, const QByteArray& content, bool* isDurable = nullptr);

/// Creates `folder` and its missing parents, durably. False: it could not be created.
bool CreateFolder(const QString& folder);

/// Removes temporary files that killed writers of `file` left behind. Call only where no other process can be writing
/// `file`.
void RemoveTemporaryFiles(const QString& file);

/// The same for every file in `folder`.
void RemoveAllTemporaryFiles(const QString& folder);
