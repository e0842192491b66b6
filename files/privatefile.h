// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

class QString;

/// Creates an empty file that only its owner can read and write, whatever the umask. On Windows the folder decides who
/// can. Returns false if it exists or cannot be created.
bool CreatePrivateFile(const QString& file);

/// Creates a folder that only its owner can enter, likewise. Returns false if it exists or cannot be created.
bool CreatePrivateFolder(const QString& folder);
