// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/output/rotatingfile.h"

#include "files/filelock.h"
#include "host/output/appendfile.h"

#include <QDir>
#include <QFileInfo>

#include <filesystem>
#include <system_error>
#include <utility>

namespace {

bool IsUsed(const QString& name)
{
    return QFileInfo::exists(name) || QFileInfo(name).isSymLink();
}

bool Rename(const QString& from, const QString& to)
{
    // If QFile cannot rename, it copies, which follows links and creates a file that others can read.
    std::error_code error;
    std::filesystem::rename(QFileInfo(from).filesystemFilePath(), QFileInfo(to).filesystemFilePath(), error);
    return !error;
}

} // namespace

QString RotatingFile::BackupName(const QString& fileName, int number)
{
    return fileName + QLatin1Char('.') + QString::number(number);
}

QString RotatingFile::Open(const QString& fileName, qint64 maxSize)
{
    m_name = fileName;
    m_maxSize = maxSize;
    m_limit = maxSize;
    const QString error = Reopen();
    if (!error.isEmpty())
        m_name.clear();
    return error;
}

QString RotatingFile::Append(const QByteArray& line)
{
    if (!IsOpen())
        return {};
    ReopenIfReplaced();
    if (IsFull(line.size()))
        TryRotate(line.size());
    Write(line);
    return std::exchange(m_newProblems, {}).join(QStringLiteral("; and it "));
}

QString RotatingFile::NameOf(int number) const
{
    return BackupName(m_name, number);
}

bool RotatingFile::IsFull(qint64 added) const
{
    // An empty file is never full: a line larger than the limit must go somewhere.
    return m_pFile && m_isRegular && m_pFile->size() > 0 && m_pFile->size() + added > m_limit &&
           QFileInfo(m_name).isFile();
}

bool RotatingFile::EndsMidLine() const
{
    QFile file(m_name);
    char last = '\n';
    return file.open(QIODevice::ReadOnly) && file.size() > 0 && file.seek(file.size() - 1) && file.getChar(&last) &&
           last != '\n';
}

/// Reopens the file if the name no longer refers to the open one.
void RotatingFile::ReopenIfReplaced()
{
    if (m_pFile && (!m_isRegular || IsSameFile(*m_pFile, m_name)))
        return;
    if (const QString error = Reopen(); !error.isEmpty())
        AddProblem(Removed, QStringLiteral("was removed or renamed and cannot be recreated: %1").arg(error));
}

void RotatingFile::TryRotate(qint64 added)
{
    const QString error = Rotate(added);
    if (error.isEmpty())
        return;
    // Do not try again with every line.
    m_limit = (m_pFile ? m_pFile->size() : 0) + m_maxSize;
    AddProblem(NotRotated, QStringLiteral("is full and cannot be rotated: %1; it keeps growing").arg(error));
}

/// Rotates the files to make room for `added` bytes. Returns the error, in which case lines go where they went before;
/// empty on success.
QString RotatingFile::Rotate(qint64 added)
{
    const QString lockName = m_name + QStringLiteral(".lock");
    FileLock lock;
    QString lockError;
    switch (lock.TryLock(lockName, &lockError)) {
    case FileLock::Result::Locked:
    case FileLock::Result::Unsupported:
        break;
    case FileLock::Result::Busy: // another process is rotating: the next line goes to the new file
        return {};
    case FileLock::Result::Failed:
        return QStringLiteral("its lock file cannot be created: %1").arg(lockError);
    }

    // Another process may have rotated already; the name then refers to its new file.
    m_limit = m_maxSize;
    if (const QString error = Reopen(); !error.isEmpty())
        return error;
    if (!IsFull(added))
        return {};

    if (const QString error = ShiftEarlierFiles(); !error.isEmpty())
        return error;
    m_pFile.reset();
    const bool isMoved = Rename(m_name, NameOf(1));
    if (!Reopen().isEmpty() && isMoved) {
        // A file that grows is better than none.
        Rename(NameOf(1), m_name);
        Reopen();
        return QStringLiteral("no new file can be created");
    }
    return isMoved ? QString() : QStringLiteral("it cannot be renamed to %1").arg(QDir::toNativeSeparators(NameOf(1)));
}

/// Renames FILE.n to FILE.n+1 to make FILE.1 available. Changes nothing if one of them is not a regular file.
QString RotatingFile::ShiftEarlierFiles() const
{
    int firstFree = 1;
    for (; firstFree <= kBackupCount && IsUsed(NameOf(firstFree)); ++firstFree)
        if (!QFileInfo(NameOf(firstFree)).isFile())
            return QStringLiteral("%1 is not a regular file").arg(QDir::toNativeSeparators(NameOf(firstFree)));
    if (firstFree > kBackupCount) {
        firstFree = kBackupCount;
        if (!QFile::remove(NameOf(firstFree)))
            return QStringLiteral("%1 cannot be removed").arg(QDir::toNativeSeparators(NameOf(firstFree)));
    }
    for (int number = firstFree; number > 1; --number)
        if (!Rename(NameOf(number - 1), NameOf(number)))
            return QStringLiteral("%1 cannot be renamed").arg(QDir::toNativeSeparators(NameOf(number - 1)));
    return {};
}

/// Opens the file that the name refers to. Returns the error, in which case lines go where they went before; empty on
/// success.
QString RotatingFile::Reopen()
{
    auto file = std::make_unique<QFile>();
    QString error;
    if (!OpenForAppend(*file, m_name, &error))
        return error;
    m_pFile = std::move(file);
    m_isRegular = !m_pFile->isSequential() && QFileInfo(m_name).isFile();
    m_endsMidLine = m_isRegular && EndsMidLine();
    return {};
}

void RotatingFile::Write(const QByteArray& line)
{
    if (!m_pFile)
        return;
    // Unbuffered, in one write: other processes append lines, too.
    QByteArray rest = m_endsMidLine ? '\n' + line : line;
    m_pFile->unsetError();
    while (!rest.isEmpty()) {
        const qint64 written = m_pFile->write(rest);
        if (written <= 0) {
            AddProblem(NotWritten, QStringLiteral("cannot be written: %1; lines are lost").arg(m_pFile->errorString()));
            return;
        }
        m_endsMidLine = rest.at(written - 1) != '\n';
        rest.remove(0, written);
    }
}

void RotatingFile::AddProblem(Problem problem, const QString& text)
{
    if (!std::exchange(m_isReported[problem], true))
        m_newProblems.append(text);
}
