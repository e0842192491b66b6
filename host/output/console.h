#pragma once

#include <QByteArray>
#include <QString>

/// The host's standard output and error. Every line is flushed at once, so that a reader at the other end of a pipe
/// sees it when it happens.
namespace Console {

/// Writes `text` and a line break to standard output.
void Print(const QString& text);

/// Writes `text`, which somebody has asked for, to standard output as it stands. False, and complained of, where not
/// all of it could be written.
[[nodiscard]] bool PrintRaw(const QString& text);
/// The same with `bytes` as they are, as for a document with an encoding of its own.
[[nodiscard]] bool PrintBytes(const QByteArray& bytes);

/// Writes "vexelhost: " and `message`, brought onto one line, to standard error.
void PrintError(const QString& message);

} // namespace Console
