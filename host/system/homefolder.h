// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

/// Prepares the search for this user's folders: sets a missing HOME to the home directory in the user database. Returns
/// why the folder for configurations cannot be found; empty on success. Platform-specific: Windows always knows it.
QString PrepareHomeFolder();
