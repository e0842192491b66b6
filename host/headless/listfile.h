#pragma once

#include <QByteArray>
#include <QString>

/// The content of a connection list file, or why there is none.
struct ListFile
{
    QByteArray content;
    QString error; ///< the error with the file's name; empty on success
};

/// Reads a regular file of limited size: a pipe or a device might never end.
ListFile ReadListFile(const QString& fileName);

/// Replaces the content of a file atomically: after a failure or a crash it has its old content. Returns the error with
/// the file's name; empty on success.
QString WriteListFile(const QString& fileName, const QByteArray& content);
