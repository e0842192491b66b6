// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "starter/privatefolder.h"

#include "files/atomicfile.h"

// Folders in the user's profile inherit its access rights.
bool EnsurePrivateFolder(const QString& path)
{
    return CreateFolder(path);
}
