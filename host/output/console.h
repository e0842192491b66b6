// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QString>

/// Standard output and error of `vexelhost` and `vexelctl`. Output is flushed at once, so that a reader of a pipe sees
/// it immediately.
namespace Console {

/// Writes `text` and a line break to standard output.
void Print(const QString& text);

/// Writes `text` unchanged to standard output. Prints an error and returns false if not all of it could be written.
[[nodiscard]] bool PrintRaw(const QString& text);
/// Writes `bytes` likewise, for example a document with its own encoding.
[[nodiscard]] bool PrintBytes(const QByteArray& bytes);

/// Writes the name of the application, ": " and `message`, escaped to a single line, to standard error.
void PrintError(const QString& message);

} // namespace Console
