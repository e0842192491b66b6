#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/// Files that tests write, and look into.
namespace Files {

/// What is in the file; a null array where it cannot be read.
inline QByteArray Read(const QString& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Writes into the file that is there, as an editor or a failing disk does, or makes it.
[[nodiscard]] inline bool Write(const QString& fileName, const QByteArray& content)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
}

} // namespace Files
