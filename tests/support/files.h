// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/// Reads and writes test files.
namespace Files {

/// The file's content; a null array if it cannot be read.
inline QByteArray Read(const QString& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Creates the file or overwrites it in place, as an editor or a failing disk does.
[[nodiscard]] inline bool Write(const QString& fileName, const QByteArray& content)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
}

} // namespace Files
