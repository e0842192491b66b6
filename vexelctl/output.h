// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/output/exitcode.h"

#include <QByteArray>
#include <QString>

/// Prints why a command failed, and returns `code`.
ExitCode Fail(ExitCode code, const QString& error);

/// Print a result. Return `Done`, or `Unusable` after an error if not all of it could be written.
ExitCode PrintResult(const QString& text);
ExitCode PrintResult(const QByteArray& bytes);

/// Writes `content` to `file`, or to standard output if that is "-". Returns `Done`, or `Unusable` after an error.
ExitCode WriteResult(const QString& file, const QByteArray& content);

/// Returns why `file` cannot be written, for the user; empty if it can. Leaves its content alone, and creates no file.
QString WritingObstacle(const QString& file);
