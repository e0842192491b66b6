// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/config/documenttransaction.h"

#include "files/atomicfile.h"
#include "platform/tracing.h"

#include <QFile>
#include <QFileInfo>

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

// A save takes milliseconds. A process that holds the lock for longer has a problem that waiting does not solve.
constexpr std::chrono::milliseconds kLockTimeout = 5s;

} // namespace

DocumentTransaction::DocumentTransaction(QString file)
    : m_file(std::move(file))
    , m_versions(m_file)
{
}

DocumentTransaction::~DocumentTransaction()
{
    if (m_isFinal)
        return;
    if (m_kept && m_kept->outcome == VersionFolder::Outcome::Added)
        QFile::remove(m_kept->file);
    if (m_quarantined)
        UndoQuarantine(m_file, *m_quarantined);
}

bool DocumentTransaction::Begin()
{
    if (!CreateFolder(QFileInfo(m_file).absolutePath()))
        return Fail(QStringLiteral("its folder %1 cannot be created").arg(QFileInfo(m_file).absolutePath()));
    QString error;
    const QString lockName = m_file + QStringLiteral(".lock");
    switch (m_lock.Lock(lockName, kLockTimeout, &error)) {
    case FileLock::Result::Locked:
        RemoveTemporaryFiles(m_file);
        RemoveAllTemporaryFiles(m_versions.Path());
        break;
    case FileLock::Result::Unsupported: // saving without a lock is better than not saving
        Trace("platform/config/documenttransaction", __LINE__, [&] {
            return QStringLiteral("DocumentTransaction::Begin(): The file system of %1 has no locks").arg(m_file);
        });
        break;
    case FileLock::Result::Busy:
        return Fail(BusyError(lockName));
    case FileLock::Result::Failed:
        return Fail(LockError(lockName, error));
    }
    m_before = ReadDocument(m_file);
    return true;
}

QString DocumentTransaction::LockError(const QString& lockName, const QString& error) const
{
    const QString folder = QFileInfo(m_file).absolutePath();
    if (const QString obstacle = CreationObstacle(folder); !obstacle.isEmpty())
        return QStringLiteral("%1: %2; make room, or let this user write there").arg(folder, obstacle);
    return QStringLiteral("its lock %1 cannot be taken: %2; remove it if no other program works there")
        .arg(lockName, error);
}

QString DocumentTransaction::BusyError(const QString& lockName) const
{
    const QString holder = FileLock::ReadHolder(lockName).Text();
    return QStringLiteral("%1 holds its lock %2; end it, or try again later")
        .arg(holder.isEmpty() ? QStringLiteral("another process") : holder, lockName);
}

bool DocumentTransaction::Quarantine()
{
    if (!m_quarantined)
        m_quarantined = QuarantineDocument(m_file, m_before);
    return m_quarantined || Fail(QStringLiteral("the existing file or folder can neither be read nor moved aside"));
}

bool DocumentTransaction::KeepBefore(VersionPolicy policy)
{
    m_kept = m_versions.Keep(m_before.content);
    if (m_kept->outcome != VersionFolder::Outcome::Failed)
        return true;
    const QString warning = QStringLiteral("its earlier content cannot be kept as a version: %1").arg(m_kept->error);
    if (policy == VersionPolicy::Required || !m_before.isIntact)
        return Fail(warning);
    m_warning = warning;
    return true;
}

bool DocumentTransaction::Replace(const QByteArray& content, VersionPolicy policy)
{
    if (content.size() > kLargestDocument)
        return Fail(QStringLiteral("it would be too large to be read again; delete entries"));
    switch (m_before.state) {
    case DocumentReading::State::Missing:
        break;
    case DocumentReading::State::Valid: {
        if (content == m_before.content)
            return true;
        const bool isWorthAVersion = policy != VersionPolicy::None && !m_before.values->isEmpty();
        if ((isWorthAVersion || !m_before.isIntact) && !KeepBefore(policy))
            return false;
        break;
    }
    case DocumentReading::State::Damaged:
    case DocumentReading::State::Unreadable:
        if (!Quarantine())
            return false;
        break;
    case DocumentReading::State::Unavailable:
        return Fail(QStringLiteral("the existing file cannot be read at the moment: %1").arg(m_before.error));
    }
    if (const QString error = ReplaceDocument(m_file, content); !error.isEmpty()) {
        const QFileInfo info(m_file);
        const bool isProtected = info.exists() && !info.isWritable();
        return Fail(
            isProtected
                ? QStringLiteral("%1; let this user write it").arg(error)
                : QStringLiteral("%1; make room, or let this user write in %2").arg(error, info.absolutePath()));
    }
    m_isFinal = true;
    return true;
}

void DocumentTransaction::Commit()
{
    m_isFinal = true;
    if (m_kept)
        m_versions.Prune();
}

bool DocumentTransaction::Fail(const QString& error)
{
    m_error = error;
    return false;
}
