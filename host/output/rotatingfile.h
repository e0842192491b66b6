// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>

#include <array>
#include <memory>

/// A log file with rotation, so that weeks of lines cannot fill a disk: a full FILE becomes FILE.1, FILE.1 becomes
/// FILE.2 and so on; FILE.5 is deleted.
///
/// A line is never split across files, even if it is larger than the limit. If the disk is full, part of a line may be
/// written; the next line then starts on a new line. Devices and pipes are not rotated. If rotation fails, the file
/// keeps growing, and rotation is tried again after another `maxSize` bytes.
///
/// Several processes may write the same file. Each appends whole lines; one of them rotates, and the others follow with
/// their next line. A line written during the rotation may end up in FILE.1 after later ones. Systems that cannot
/// rename an open file rotate only while a single process writes. A file that is removed or renamed by others is
/// recreated with the next line.
class RotatingFile
{
public:
    static constexpr int kBackupCount = 5;
    /// Returns the name of the earlier file `number`, from 1 to `kBackupCount`.
    static QString BackupName(const QString& fileName, int number);

    /// Opens `fileName` for appending. A line that would make the file larger than `maxSize` bytes triggers rotation.
    /// Returns the error, or empty on success. A pipe without a reader cannot be opened.
    QString Open(const QString& fileName, qint64 maxSize);
    /// Returns whether `Open` has succeeded.
    bool IsOpen() const { return !m_name.isEmpty(); }

    /// Appends `line`, which includes its line break, at once. Returns new problems as a sentence without its subject
    /// ("cannot be written: ..."), each kind only once; empty if there are none.
    QString Append(const QByteArray& line);

private:
    enum Problem { Removed, NotRotated, NotWritten, ProblemCount };

    QString NameOf(int number) const;
    bool IsFull(qint64 added) const;
    bool EndsMidLine() const;
    void ReopenIfReplaced();
    void TryRotate(qint64 added);
    QString Rotate(qint64 added);
    QString ShiftEarlierFiles() const;
    QString Reopen();
    void Write(const QByteArray& line);
    void AddProblem(Problem problem, const QString& text);

    QString m_name;
    std::unique_ptr<QFile> m_pFile; // null if it could not be reopened
    bool m_isRegular = false;       // a regular file
    bool m_endsMidLine = false;     // the last line has no line break
    qint64 m_maxSize = 0;
    qint64 m_limit = 0; // m_maxSize, or more after a failed rotation
    QStringList m_newProblems;
    std::array<bool, ProblemCount> m_isReported = {};
};
