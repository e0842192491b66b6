#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/// A file that lines are appended to and that is put aside when it is full, so that weeks of lines cannot fill a disk:
/// FILE becomes FILE.1, what was FILE.1 becomes FILE.2 and so on, and what was FILE.5 is gone.
///
/// A line stands in one file whole, even if it alone is larger than a file shall be. A device or a pipe is never put
/// aside. When a file cannot be put aside, it is written on, and tried again when it has grown as much once more.
///
/// Several processes may write the same file. Each appends whole lines; one puts the file aside, and the others move on
/// to the new one with their next line. A line that another process writes at that very moment may come to stand in
/// FILE.1 behind later ones. On systems that do not rename a file that is open elsewhere, it is put aside when only one
/// process writes.
class RotatingFile
{
public:
    static constexpr int KeptFiles = 5;

    /// Opens `fileName` to append to. An empty text, or why that cannot be done. A file is full when a line would make
    /// it larger than `largest` bytes.
    QString Open(const QString& fileName, qint64 largest);
    bool IsOpen() const { return m_File.isOpen(); }

    /// Appends `line`, which holds its line break, at once. The result is why the file could not be put aside, the
    /// first time that happens; else empty.
    QString Append(const QByteArray& line);

private:
    QString NameOf(int number) const;
    bool IsFull(qint64 added) const;
    QString PutAside(qint64 added);
    QString ShiftEarlierFiles() const;
    bool OpenAgain();

    QFile m_File;
    qint64 m_Largest = 0;
    qint64 m_Limit = 0; // as m_Largest, or more after a failure
    bool m_Complained = false;
};
