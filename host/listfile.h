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
