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

/// The same for a file that a person named: attempts again while another program holds the file, and leaves alone what
/// is no regular file, because replacing a pipe or a device by a file is not what writing to it means. Returns why it
/// could not be written, for a person; empty when it was.
QString ReplaceRegularFile(const QString& file, const QByteArray& content);

/// Why no file with `content` can be created in `folder`, for a person; empty where one can. Creates a temporary file,
/// because permissions do not tell: a file system may be read-only, and an administrator passes them all.
QString CreationObstacle(const QString& folder, const QByteArray& content = {});

/// Creates `folder` and its missing parents, durably. False: it could not be created.
bool CreateFolder(const QString& folder);

/// Removes temporary files that killed writers of `file` left behind. Call only where no other process can be writing
/// `file`.
void RemoveTemporaryFiles(const QString& file);

/// The same for every file in `folder`.
void RemoveAllTemporaryFiles(const QString& folder);
