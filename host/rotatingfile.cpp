#include "host/rotatingfile.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>

namespace {

constexpr QIODevice::OpenMode s_mode =
    QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text | QIODevice::Unbuffered;

} // namespace

QString RotatingFile::Open(const QString& fileName, qint64 largest)
{
    m_File.setFileName(fileName);
    m_Largest = largest;
    m_Limit = largest;
    return m_File.open(s_mode) ? QString() : m_File.errorString();
}

QString RotatingFile::Append(const QByteArray& line)
{
    QString error;
    if (IsFull(line.size())) {
        error = PutAside(line.size());
        if (!error.isEmpty()) {
            // Not with every line from now on.
            m_Limit = m_File.size() + m_Largest;
            if (m_Complained)
                error.clear();
            m_Complained = true;
        }
    }
    // In one piece and not buffered: lines of other processes stand before or behind it.
    if (m_File.isOpen())
        m_File.write(line);
    return error;
}

QString RotatingFile::NameOf(int number) const
{
    return m_File.fileName() + QLatin1Char('.') + QString::number(number);
}

bool RotatingFile::IsFull(qint64 added) const
{
    // An empty file is never full: a line that is larger than a file shall be has to stand somewhere.
    return m_File.isOpen() && !m_File.isSequential() && m_File.size() > 0 && m_File.size() + added > m_Limit &&
           QFileInfo(m_File.fileName()).isFile();
}

/// Makes room for `added` bytes in a new file. An empty text, or why that failed; lines then go where they went.
QString RotatingFile::PutAside(qint64 added)
{
    QLockFile lock(m_File.fileName() + QStringLiteral(".lock"));
    if (!lock.tryLock(0)) {
        // Another process is at it: the next line finds the new file.
        if (lock.error() == QLockFile::LockFailedError)
            return {};
        return QStringLiteral("no file can be made beside it");
    }

    // Another process may have put aside what is open here; the name then stands for its new file already.
    m_Limit = m_Largest;
    if (!OpenAgain())
        return m_File.errorString();
    if (!IsFull(added))
        return {};

    if (const QString error = ShiftEarlierFiles(); !error.isEmpty())
        return error;
    const QString name = m_File.fileName();
    m_File.close();
    const bool isMoved = QFile::rename(name, NameOf(1));
    if (!OpenAgain() && isMoved) {
        // Better a file that grows than none.
        QFile::rename(NameOf(1), name);
        OpenAgain();
        return QStringLiteral("no new file can be made in its place");
    }
    return isMoved ? QString() : QStringLiteral("it cannot be renamed to %1").arg(QDir::toNativeSeparators(NameOf(1)));
}

/// Makes the first number free. Nothing is changed when something in the way is not a file.
QString RotatingFile::ShiftEarlierFiles() const
{
    int free = 1;
    for (; free <= KeptFiles && QFileInfo::exists(NameOf(free)); ++free) {
        if (!QFileInfo(NameOf(free)).isFile())
            return QStringLiteral("%1 is in the way").arg(QDir::toNativeSeparators(NameOf(free)));
    }
    if (free > KeptFiles) {
        free = KeptFiles;
        if (!QFile::remove(NameOf(free)))
            return QStringLiteral("%1 cannot be removed").arg(QDir::toNativeSeparators(NameOf(free)));
    }
    for (int number = free; number > 1; --number) {
        if (!QFile::rename(NameOf(number - 1), NameOf(number)))
            return QStringLiteral("%1 cannot be renamed").arg(QDir::toNativeSeparators(NameOf(number - 1)));
    }
    return {};
}

bool RotatingFile::OpenAgain()
{
    m_File.close();
    return m_File.open(s_mode);
}
