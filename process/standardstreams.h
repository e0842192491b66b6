#pragma once

#include <QByteArray>
#include <QString>

/// Standard output and error of a program, on every system. Everything is written at once, so that a reader at the
/// other end of a pipe sees it when it happens; a reader that has gone away is no reason to end.
///
/// Lines end with a line feed. Texts are in the encoding of the user's locale on Unix and in UTF-8 on Windows; a
/// console there shows every character.
namespace StandardStreams {

enum class Stream { Output, Error };

/// Call it first in a program. On Windows one with windows has no console: one that was started from a console without
/// having its output redirected prints there after this. On Unix a reader that goes away would end the program.
void Prepare();

/// False: not all of it could be written, as on a full disk or where nobody reads any more.
bool Write(Stream stream, const QString& text);
/// The same with `bytes` as they are.
bool Write(Stream stream, const QByteArray& bytes);

/// Whether somebody may read what is written to `stream`: it leads to a terminal, a pipe or a file. Not so where a
/// program is started without any of these, or, by a session, for its journal alone.
bool IsRead(Stream stream);

} // namespace StandardStreams
