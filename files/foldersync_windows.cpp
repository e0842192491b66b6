// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/foldersync.h"

#include <QString>

// The file system journals names, and flushing a folder needs administrator rights.
bool SyncFolder(const QString& /*folder*/)
{
    return true;
}
