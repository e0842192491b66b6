#pragma once

#include "platform/patience.h"
#include "platform/platformexport.h"

#include <QByteArray>
#include <QString>

/// Puts `content` in the place of `file` at once: at every moment the file is the old one or the new one, also after a
/// loss of power, as far as the system tells the truth about its disks. A symbolic link stays, and what it leads to is
/// replaced. Other than `Done`: the file is as it was.
///
/// What is not finished stands beside the file under a name that begins with ".unfinished-", which people give to
/// nothing of theirs.
VEXELPLATFORM_EXPORT Attempt WriteWholeFile(const QString& file, const QByteArray& content);

/// Makes `folder` and those on the way to it where they are missing, and has them outlast a loss of power. False: that
/// did not work.
VEXELPLATFORM_EXPORT bool MakeFolder(const QString& folder);

/// Removes what killed processes left beside `file` while they put something in its place. Only where nobody else can
/// be doing that at this moment.
void RemoveUnfinished(const QString& file);

/// The same for all files in `folder`.
void RemoveAllUnfinished(const QString& folder);
