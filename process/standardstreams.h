// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <optional>

/// The standard streams on every system. Everything that is written is flushed at once, so that a reader of a pipe sees
/// it immediately; a closed pipe does not end the process.
///
/// Lines end with a line feed. Text is encoded in the user's locale on Unix and in UTF-8 on Windows; a Windows console
/// shows every character.
namespace StandardStreams {

enum class Stream { Output, Error };

/// Prepares the streams. Call this first in a program. On Windows it attaches a GUI program to the console it was
/// started from, unless its output is redirected. On Unix it keeps a closed pipe from ending the program, and files
/// that are opened later from becoming a standard stream that is closed: reading and writing that one still fail.
void Prepare();

/// Writes `text`. Returns false if not all of it could be written, for example to a full disk or a closed pipe.
bool Write(Stream stream, const QString& text);
/// Writes `bytes` unchanged, likewise.
bool Write(Stream stream, const QByteArray& bytes);

/// Reads standard input to its end, unchanged. Returns none, and sets `error`, if it cannot be read or has more than
/// `limit` bytes.
std::optional<QByteArray> ReadInput(qint64 limit, QString* error);

/// Returns whether somebody may read what is written to `stream`, i.e. whether it is a terminal, a pipe or a file.
/// False for a program started without streams, or by a session that only logs them.
bool HasReader(Stream stream);

/// Returns whether `stream` is a pipe that nobody reads any more. Always false on Windows, which does not tell.
bool IsBroken(Stream stream);

} // namespace StandardStreams
