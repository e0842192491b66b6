#include "host/output/rotatingfile.h"

#include "files/filelock.h"
#include "files/regularfile.h"
#include "host/output/appendfile.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

QString RotatingFile::Open(const QString& fileName, qint64 largest)
{
    m_name = fileName;
    m_largest = largest;
    m_limit = largest;
    const QString error = OpenAgain();
    if (!error.isEmpty())
        m_name.clear();
    return error;
}

QString RotatingFile::Append(const QByteArray& line)
{
    if (!IsOpen())
        return {};
    FollowName();
    if (IsFull(line.size()))
        MakeRoom(line.size());
    Write(line);
    return std::exchange(m_complaints, {}).join(QStringLiteral("; and it "));
}

QString RotatingFile::NameOf(int number) const
{
    return m_name + QLatin1Char('.') + QString::number(number);
}

bool RotatingFile::IsFull(qint64 added) const
{
    // An empty file is never full: a line that is larger than a file shall be has to stand somewhere.
    return m_pFile && m_isFile && m_pFile->size() > 0 && m_pFile->size() + added > m_limit &&
           QFileInfo(m_name).isFile();
}

bool RotatingFile::EndsWithinALine() const
{
    QFile file(m_name);
    char last = '\n';
    return file.open(QIODevice::ReadOnly) && file.size() > 0 && file.seek(file.size() - 1) && file.getChar(&last) &&
           last != '\n';
}

/// Where the name does not stand for what is open any more, opens what it stands for now.
void RotatingFile::FollowName()
{
    if (m_pFile && (!m_isFile || IsOpenAt(*m_pFile, m_name)))
        return;
    if (const QString error = OpenAgain(); !error.isEmpty())
        PrintError(Gone, QStringLiteral("was removed or renamed and cannot be made anew: %1").arg(error));
}

void RotatingFile::MakeRoom(qint64 added)
{
    const QString error = PutAside(added);
    if (error.isEmpty())
        return;
    // Not with every line from now on.
    m_limit = (m_pFile ? m_pFile->size() : 0) + m_largest;
    PrintError(NotPutAside, QStringLiteral("is full and cannot be put aside: %1; it grows on").arg(error));
}

/// Makes room for `added` bytes in a new file. An empty text, or why that failed; lines then go where they went.
QString RotatingFile::PutAside(qint64 added)
{
    const QString lockName = m_name + QStringLiteral(".lock");
    if (IsNotRegularFile(lockName))
        return QStringLiteral("%1 is in the way").arg(QDir::toNativeSeparators(lockName));
    FileLock lock;
    QString lockError;
    switch (lock.TryLock(lockName, &lockError)) {
    case FileLock::Result::Locked:
    case FileLock::Result::Unsupported:
        break;
    case FileLock::Result::Busy: // another process rotates the files: the next line finds the new one
        return {};
    case FileLock::Result::Failed:
        return QStringLiteral("no file can be made beside it: %1").arg(lockError);
    }

    // Another process may have put aside what is open here; the name then stands for its new file already.
    m_limit = m_largest;
    if (const QString error = OpenAgain(); !error.isEmpty())
        return error;
    if (!IsFull(added))
        return {};

    if (const QString error = ShiftEarlierFiles(); !error.isEmpty())
        return error;
    m_pFile.reset();
    const bool isMoved = QFile::rename(m_name, NameOf(1));
    if (!OpenAgain().isEmpty() && isMoved) {
        // Better a file that grows than none.
        QFile::rename(NameOf(1), m_name);
        OpenAgain();
        return QStringLiteral("no new file can be made in its place");
    }
    return isMoved ? QString() : QStringLiteral("it cannot be renamed to %1").arg(QDir::toNativeSeparators(NameOf(1)));
}

/// Makes the first number free. Nothing is changed when something in the way is not a file.
QString RotatingFile::ShiftEarlierFiles() const
{
    int free = 1;
    for (; free <= kKeptFiles && QFileInfo::exists(NameOf(free)); ++free)
        if (!QFileInfo(NameOf(free)).isFile())
            return QStringLiteral("%1 is in the way").arg(QDir::toNativeSeparators(NameOf(free)));
    if (free > kKeptFiles) {
        free = kKeptFiles;
        if (!QFile::remove(NameOf(free)))
            return QStringLiteral("%1 cannot be removed").arg(QDir::toNativeSeparators(NameOf(free)));
    }
    for (int number = free; number > 1; --number)
        if (!QFile::rename(NameOf(number - 1), NameOf(number)))
            return QStringLiteral("%1 cannot be renamed").arg(QDir::toNativeSeparators(NameOf(number - 1)));
    return {};
}

/// Opens what the name stands for. An empty text, or why that failed; lines then go where they went.
QString RotatingFile::OpenAgain()
{
    auto file = std::make_unique<QFile>();
    QString error;
    if (!OpenToAppend(*file, m_name, &error))
        return error;
    m_pFile = std::move(file);
    m_isFile = !m_pFile->isSequential() && QFileInfo(m_name).isFile();
    m_isTorn = m_isFile && EndsWithinALine();
    return {};
}

void RotatingFile::Write(const QByteArray& line)
{
    if (!m_pFile)
        return;
    // In one piece and not buffered: lines of other processes stand before or behind it.
    QByteArray left = m_isTorn ? '\n' + line : line;
    m_pFile->unsetError();
    while (!left.isEmpty()) {
        const qint64 written = m_pFile->write(left);
        if (written <= 0) {
            PrintError(NotWritten, QStringLiteral("cannot be written: %1; lines are lost").arg(m_pFile->errorString()));
            return;
        }
        m_isTorn = left.at(written - 1) != '\n';
        left.remove(0, written);
    }
}

void RotatingFile::PrintError(Trouble trouble, const QString& text)
{
    if (!std::exchange(m_hasComplained[trouble], true))
        m_complaints.append(text);
}
