#pragma once

#include <QByteArray>
#include <QString>

/// The content of a connection list file, or why there is none.
struct ListFile
{
    QByteArray content;
    QString error; ///< a sentence that names the file; empty after a success
};

/// Reads a whole file, which must be a regular one of a sane size: a pipe or a device might never end.
ListFile ReadListFile(const QString& fileName);

/// Makes `content` the content of a file, all of it or nothing: after a failure or a crash the file is what it was
/// before. Returns a sentence that names the file and says why it could not be written; empty after a success.
QString WriteListFile(const QString& fileName, const QByteArray& content);
