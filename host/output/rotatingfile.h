#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>

#include <array>
#include <memory>

/// A file that lines are appended to and that is put aside when it is full, so that weeks of lines cannot fill a disk:
/// FILE becomes FILE.1, what was FILE.1 becomes FILE.2 and so on, and what was FILE.5 is gone.
///
/// A line stands in one file whole, even if it alone is larger than a file shall be; of a line that the disk has no
/// room for there may be a part, and the next line begins behind that on a line of its own. A device or a pipe is never
/// put aside. When a file cannot be put aside, it is written on, and tried again when it has grown as much once more.
///
/// Several processes may write the same file. Each appends whole lines; one puts the file aside, and the others move on
/// to the new one with their next line. A line that another process writes at that very moment may come to stand in
/// FILE.1 behind later ones. On systems that do not rename a file that is open elsewhere, it is put aside when only one
/// process writes. A file that somebody else removes or renames is made anew with the next line.
class RotatingFile
{
public:
    static constexpr int kKeptFiles = 5;

    /// Opens `fileName` to append to. An empty text, or why that cannot be done; a pipe that nobody reads from cannot
    /// be opened. A file is full when a line would make it larger than `largest` bytes.
    QString Open(const QString& fileName, qint64 largest);
    /// Whether `Open` has succeeded.
    bool IsOpen() const { return !m_name.isEmpty(); }

    /// Appends `line`, which holds its line break, at once. The result is what is wrong with the file, as a sentence
    /// without its subject ("cannot be written: ..."), each kind of trouble the first time only; else empty.
    QString Append(const QByteArray& line);

private:
    enum Trouble { Gone, NotPutAside, NotWritten, TroubleCount };

    QString NameOf(int number) const;
    bool IsFull(qint64 added) const;
    bool EndsWithinALine() const;
    void FollowName();
    void MakeRoom(qint64 added);
    QString PutAside(qint64 added);
    QString ShiftEarlierFiles() const;
    QString OpenAgain();
    void Write(const QByteArray& line);
    void PrintError(Trouble trouble, const QString& text);

    QString m_name;
    std::unique_ptr<QFile> m_pFile; // none while it cannot be opened any more
    bool m_isFile = false;          // no device and no pipe
    bool m_isTorn = false;          // it ends within a line
    qint64 m_largest = 0;
    qint64 m_limit = 0; // as m_largest, or more after a failure
    QStringList m_complaints;
    std::array<bool, TroubleCount> m_hasComplained = {};
};
