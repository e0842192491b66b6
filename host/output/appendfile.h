// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QFile>
#include <QString>

/// Platform-specific functions for append-only files.

/// Opens or creates `name` with `file` for unbuffered appending. Does not block: opening a pipe without a reader fails.
/// Sets `error` on failure.
///
/// On Unix only the user can access a new file. In a folder in which other users can create files, fails for
/// everything that they may have planted there: links, pipes, and files of another user.
bool OpenForAppend(QFile& file, const QString& name, QString* error);

/// Returns whether `name` still refers to the open file, i.e. it was not removed or renamed.
bool IsSameFile(const QFile& file, const QString& name);
