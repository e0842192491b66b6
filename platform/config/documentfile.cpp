#include "platform/config/documentfile.h"

#include "files/atomicfile.h"
#include "files/regularfile.h"
#include "files/retry.h"
#include "files/siblingname.h"
#include "platform/config/versionfolder.h"
#include "platform/tracing.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <chrono>
#include <filesystem>
#include <system_error>
#include <utility>

using namespace std::chrono_literals;

namespace {

// A save takes milliseconds; who holds the lock for longer has a problem that waiting will not solve.
constexpr std::chrono::milliseconds kLockTimeout = 5s;

// A lock's owner writes its name into it at once. QLockFile takes one without a name for alive for half a minute.
constexpr std::chrono::milliseconds kNamelessTimeout = 500ms;

std::filesystem::path NativePath(const QString& path)
{
    return QFileInfo(path).filesystemFilePath();
}

/// Without QFile's way out, which is to copy: that would never end on a pipe.
bool Rename(const QString& from, const QString& to)
{
    std::error_code error;
    std::filesystem::rename(NativePath(from), NativePath(to), error);
    return !error;
}

} // namespace

DocumentFile::DocumentFile(QString path)
    : m_path(std::move(path))
{
}

DocumentFile::Reading DocumentFile::Read() const
{
    // Nobody saves a document as no bytes, but many a program that fails while it writes leaves that. A file without
    // a history may have been made so by hand.
    Reading reading = ReadDocument(m_path);
    if (reading.state == State::Whole && reading.content.isEmpty() && !VersionFolder(m_path).List().isEmpty()) {
        reading.state = State::Damaged;
        reading.text.reset();
    }
    return reading;
}

std::unique_ptr<QLockFile> DocumentFile::Lock() const
{
    if (!CreateFolder(QFileInfo(m_path).absolutePath()))
        return nullptr;

    // The lock that QSettings takes when it writes this file, so that a program which uses it directly fits in.
    const QString name = m_path + QStringLiteral(".lock");
    if (IsNotRegularFile(name))
        return nullptr;
    auto lock = std::make_unique<QLockFile>(name);
    // QLockFile would by itself ask at ever longer intervals and come too late again and again where others save
    // often.
    constexpr unsigned long kPauseMs = 2;
    const QDeadlineTimer deadline(kLockTimeout);
    QDeadlineTimer nameless(kNamelessTimeout);
    while (!lock->tryLock(0)) {
        if (lock->error() != QLockFile::LockFailedError || deadline.hasExpired())
            return nullptr;
        QThread::msleep(kPauseMs);

        // A process was killed between making the lock and writing its name. Whoever lives holds more than the file,
        // which this minds.
        const QFileInfo file(lock->fileName());
        if (!file.exists() || file.size() > 0)
            nameless.setRemainingTime(kNamelessTimeout);
        else if (nameless.hasExpired())
            lock->removeStaleLockFile();
    }
    return lock;
}

bool DocumentFile::Replace(const QByteArray& content) const
{
    bool isDurable = true;
    const bool isWritten = Retry([&] { return WriteAtomically(m_path, content, &isDurable); });
    if (!isDurable) {
        TraceWhenWanted(
            "platform/config/documentfile", __LINE__,
            [&] {
                return QStringLiteral("DocumentFile::Replace(): %1 is written, but a loss of power may undo that")
                    .arg(m_path);
            });
    }
    return isWritten;
}

std::optional<QString> DocumentFile::Quarantine() const
{
    const QString aside = UniqueSiblingName(m_path, QStringLiteral(".damaged-"), QDateTime::currentDateTime());
    const QFileInfo info(m_path);
    std::error_code error;
    if (info.isFile() && !info.isSymLink()) { // a link is moved itself, and so lets go of what it leads to
        std::filesystem::create_hard_link(NativePath(m_path), NativePath(aside), error);
        if (!error)
            return aside;
    }
    return Retry([&] { return Rename(m_path, aside) ? Attempt::Done : Attempt::Busy; }) ? std::optional(aside)
                                                                                        : std::nullopt;
}

void DocumentFile::UndoQuarantine(const QString& aside) const
{
    if (!QFileInfo::exists(m_path))
        Rename(aside, m_path);
    else if (IsSameFile(aside, m_path))
        QFile::remove(aside);
}

void DocumentFile::RemoveLeftovers() const
{
    RemoveTemporaryFiles(m_path);
}

DocumentFile::Reading ReadDocument(const QString& file)
{
    using State = DocumentFile::State;
    DocumentFile::Reading reading;

    const QFileInfo info(file);
    if (info.exists()) {
        if (!info.isFile()) { // a pipe or device might never end
            reading.state = State::Unreadable;
            return reading;
        }
        if (info.size() > kLargestDocument) {
            reading.state = State::Damaged;
            return reading;
        }
        QFile device(file);
        const bool isRead = Retry([&] {
            if (!device.open(QIODevice::ReadOnly))
                return device.error() == QFileDevice::ResourceError ? Attempt::Failed : Attempt::Busy;
            reading.content = device.readAll();
            return device.error() == QFileDevice::NoError ? Attempt::Done : Attempt::Failed;
        });
        if (!isRead) {
            reading.content.clear();
            reading.state = device.error() == QFileDevice::ResourceError ? State::Unavailable : State::Unreadable;
            return reading;
        }
    }

    auto text = std::make_unique<IniText>(reading.content);
    if (text->IsDamaged()) {
        reading.state = State::Damaged;
    } else {
        reading.state = info.exists() ? State::Whole : State::Missing;
        reading.text = std::move(text);
    }
    return reading;
}

bool IsSameFile(const QString& one, const QString& other)
{
    std::error_code error;
    return std::filesystem::equivalent(NativePath(one), NativePath(other), error) && !error;
}
