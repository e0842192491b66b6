#pragma once

#include <QByteArray>
#include <QString>

/// The host's standard output and error. Every line is flushed at once, so that a reader at the other end of a pipe
/// sees it when it happens.
namespace Console {

/// Writes `text` and a line break to standard output.
void Print(const QString& text);

/// Writes `text` to standard output as it stands.
void PrintRaw(const QString& text);
/// Writes `bytes` as they are, as for a document with an encoding of its own.
void PrintBytes(const QByteArray& bytes);

/// Writes "vexelhost: " and `message`, brought onto one line, to standard error.
void Complain(const QString& message);

} // namespace Console
