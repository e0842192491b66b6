#pragma once

#include <QFile>
#include <QString>

/// What a file that lines are appended to needs of the system.

/// Opens `name` with `file` to append texts, unbuffered, and makes it where it is missing. Waits for nobody: a pipe
/// that nobody reads from is not opened. `error` says why it failed.
bool OpenToAppend(QFile& file, const QString& name, QString* error);

/// Whether `name` still stands for what is open, and nobody has removed or renamed that.
bool IsOpenAt(const QFile& file, const QString& name);
