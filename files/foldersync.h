// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

class QString;

/// Flushes a folder's entries to the disk, so that a power loss does not undo a rename. Returns false on failure; true
/// also if the system does this by itself or cannot do it.
bool SyncFolder(const QString& folder);
