#include "platform/config/documenttransaction.h"

#include "files/atomicfile.h"

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
    if (m_isCommitted)
        return;
    if (m_kept && m_kept->outcome == VersionFolder::Outcome::Added)
        QFile::remove(m_kept->file);
    if (m_quarantined)
        UndoQuarantine(m_file, *m_quarantined);
}

bool DocumentTransaction::Begin()
{
    if (!CreateFolder(QFileInfo(m_file).absolutePath()))
        return Fail("its folder cannot be created");
    QString error;
    switch (m_lock.Lock(m_file + QStringLiteral(".lock"), kLockTimeout, &error)) {
    case FileLock::Result::Locked:
    case FileLock::Result::Unsupported: // the file system has no locks: saving without one beats not saving
        break;
    case FileLock::Result::Busy:
    case FileLock::Result::Failed:
        return Fail("its lock cannot be taken");
    }
    RemoveTemporaryFiles(m_file);
    m_before = ReadDocument(m_file);
    return true;
}

bool DocumentTransaction::Quarantine()
{
    if (!m_quarantined)
        m_quarantined = QuarantineDocument(m_file);
    return m_quarantined || Fail("the existing file or folder can neither be read nor moved aside");
}

bool DocumentTransaction::KeepBefore(VersionPolicy policy)
{
    m_kept = m_versions.Keep(m_before.content);
    const bool isKept = m_kept->outcome != VersionFolder::Outcome::Failed;
    return isKept || policy == VersionPolicy::BestEffort || Fail("the present state cannot be kept as a version");
}

bool DocumentTransaction::Replace(const QByteArray& content, VersionPolicy policy)
{
    if (content.size() > kLargestDocument)
        return Fail("it would be too large to be read again");
    switch (m_before.state) {
    case DocumentReading::State::Missing:
        break;
    case DocumentReading::State::Valid:
        if (content == m_before.content)
            return true;
        if (!m_before.values->isEmpty() && !KeepBefore(policy))
            return false;
        break;
    case DocumentReading::State::Damaged:
    case DocumentReading::State::Unreadable:
        if (!Quarantine())
            return false;
        break;
    case DocumentReading::State::Unavailable:
        return Fail("the existing file cannot be read at the moment");
    }
    return ReplaceDocument(m_file, content) || Fail("the file cannot be written");
}

void DocumentTransaction::Commit()
{
    m_isCommitted = true;
    if (m_kept)
        m_versions.Prune();
}

bool DocumentTransaction::Fail(const char* error)
{
    m_error = QString::fromLatin1(error);
    return false;
}
