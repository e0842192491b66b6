#pragma once

class QString;

/// Has the system bring the names of a folder's files to the disk, as a loss of power would otherwise undo a renaming.
/// Returns false where that failed; true also where the system keeps names by itself or offers no way.
bool SyncFolder(const QString& folder);
