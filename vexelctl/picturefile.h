// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/// A screenshot that arrives as lines of an answer, and the file it is written to as soon as it is complete.
class PictureFile
{
public:
    /// Takes the picture of the moment "now", "during" or "end". `file` may be empty for none, or "-".
    PictureFile(const char* moment, QString file);

    /// Returns whether the file cannot be written, after an error.
    bool IsObstructed() const;

    /// Takes a line of an answer if it belongs to the picture.
    void Take(const QJsonObject& line);

    /// Returns whether a file was wanted and is not written. The reason has been printed.
    bool IsMissing() const { return !m_file.isEmpty() && !m_isWritten; }

private:
    const QString m_moment;
    const QString m_file;
    QByteArray m_picture;
    bool m_isWritten = false;
};
