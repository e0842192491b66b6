#include "platform/configdocument.h"

#include "platform/initext.h"
#include "platform/tracing.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QRegularExpression>
#include <QSaveFile>
#include <QThread>

#include <chrono>
#include <memory>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto kSource = "platform/configdocument";

// A save takes milliseconds; who holds the lock for longer has a problem that waiting will not solve.
constexpr std::chrono::milliseconds kLockPatience = 5s;

template <typename BuildText>
void Trace(int line, BuildText buildText)
{
    TraceWhenWanted(kSource, line, buildText);
}

// The lock that QSettings takes when it writes this file, so that a program which uses it directly fits in.
QString LockFileOf(const QString& file)
{
    return file + QStringLiteral(".lock");
}

/// Takes the lock. QLockFile would by itself ask at ever longer intervals and come too late again and again where
/// others save often.
bool Take(QLockFile& lock)
{
    constexpr unsigned long kPauseMs = 2;
    const QDeadlineTimer patience(kLockPatience);
    while (!lock.tryLock(0)) {
        if (lock.error() != QLockFile::LockFailedError || patience.hasExpired())
            return false;
        QThread::msleep(kPauseMs);
    }
    return true;
}

/// The content of a file; empty where there is no file, nothing where it cannot be read.
std::optional<QByteArray> Read(const QString& file)
{
    const QFileInfo info(file);
    if (!info.exists())
        return QByteArray();
    if (!info.isFile()) // a pipe or device might never end
        return std::nullopt;

    QFile device(file);
    if (!device.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray content = device.readAll();
    return device.error() == QFileDevice::NoError ? std::optional(content) : std::nullopt;
}

/// Puts a new content in the place of the file. QSaveFile writes a file beside it, has the system bring that to the
/// disk (fsync, FlushFileBuffers) and only then renames it over the old one. What a loss of power can still undo is
/// the renaming, which leaves the old content, whole.
bool Replace(const QString& file, const QByteArray& content)
{
    // Windows does not replace a file while somebody reads it. Readers are quick.
    constexpr int kAttempts = 4;
    constexpr unsigned long kPauseMs = 15;
    for (int attempt = 1; attempt <= kAttempts; ++attempt) {
        if (attempt > 1)
            QThread::msleep(kPauseMs);
        QSaveFile saving(file);
        if (saving.open(QIODevice::WriteOnly) && saving.write(content) == content.size() && saving.commit())
            return true;
    }
    return false;
}

QByteArray FingerprintOf(const QByteArray& content)
{
    return QCryptographicHash::hash(content, QCryptographicHash::Blake2b_256);
}

bool IsBelow(const QString& path, const QString& node)
{
    return path.size() > node.size() && path.startsWith(node) && path.at(node.size()) == u'/';
}

} // namespace

ConfigDocument::ConfigDocument(QString file)
    : m_file(std::move(file))
{
    if (!m_file.isEmpty())
        Load();
}

std::optional<QString> ConfigDocument::Value(const QString& path) const
{
    const auto entry = m_entries.constFind(path);
    return entry == m_entries.cend() ? std::nullopt : std::optional(entry->text);
}

void ConfigDocument::SetValue(const QString& path, const QString& value)
{
    const auto entry = m_entries.lowerBound(path);
    if (entry == m_entries.end() || entry.key() != path)
        m_entries.insert(entry, path, {value, true});
    else if (entry->text != value)
        *entry = {value, true};
    else
        return;
    m_isChanged = true;
}

void ConfigDocument::Remove(const QString& path)
{
    bool isRemoved = m_entries.remove(path) > 0;
    for (auto it = m_entries.lowerBound(path + u'/'); it != m_entries.end() && IsBelow(it.key(), path);) {
        it = m_entries.erase(it);
        isRemoved = true;
    }
    if (isRemoved) {
        m_removed.insert(path);
        m_isChanged = true;
    }
}

void ConfigDocument::TakeOver(const QMap<QString, QString>& values)
{
    m_entries.clear();
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        m_entries.insert(m_entries.cend(), it.key(), {it.value(), false});
}

void ConfigDocument::Load()
{
    auto content = Read(m_file);
    if (!content) {
        Trace(__LINE__, [&] { return QStringLiteral("ConfigDocument::Load(): Could not read %1").arg(m_file); });
        return;
    }
    auto text = std::make_unique<IniText>(*content);

    if (text->GetState() == IniText::State::Damaged) {
        // Another process may be mending it at this moment: what the lock's owner finds counts.
        QLockFile lock(LockFileOf(m_file));
        if (Take(lock)) {
            content = Read(m_file).value_or(QByteArray());
            text = std::make_unique<IniText>(*content);
            if (text->GetState() == IniText::State::Damaged)
                MoveDamagedFileAside();
        }
    }

    switch (text->GetState()) {
    case IniText::State::Whole:
        TakeOver(text->Values());
        m_fingerprint = FingerprintOf(*content);
        break;
    case IniText::State::Damaged:
        break;
    case IniText::State::Unavailable:
        Trace(__LINE__,
              [&] { return QStringLiteral("ConfigDocument::Load(): No temporary file for reading %1").arg(m_file); });
        break;
    }
}

bool ConfigDocument::Save()
{
    if (m_file.isEmpty() || !m_isChanged)
        return true;

    const auto fail = [this](int line, const char* reason) {
        Trace(line, [&] {
            return QStringLiteral("ConfigDocument::Save(): Could not save %1: %2")
                .arg(m_file, QString::fromLatin1(reason));
        });
        return false;
    };

    if (!QDir().mkpath(QFileInfo(m_file).absolutePath()))
        return fail(__LINE__, "its folder cannot be created");
    QLockFile lock(LockFileOf(m_file));
    if (!Take(lock))
        return fail(__LINE__, "its lock cannot be taken");
    RemoveLeftovers();

    auto before = Read(m_file);
    if (!before)
        return fail(__LINE__, "the file that is there cannot be read");
    auto text = std::make_unique<IniText>(*before);

    if (text->GetState() == IniText::State::Damaged) {
        // Damaged since it was read. The working copy still knows what was in it.
        if (!MoveDamagedFileAside())
            return fail(__LINE__, "the damaged file cannot be moved aside");
        before->clear();
        text = std::make_unique<IniText>(*before);
        m_removed.clear();
        for (Entry& entry : m_entries)
            entry.isChanged = true;
    }
    if (text->GetState() != IniText::State::Whole)
        return fail(__LINE__, "no temporary file");

    for (const QString& path : std::as_const(m_removed))
        text->Remove(path);
    for (auto it = m_entries.cbegin(); it != m_entries.cend(); ++it) {
        if (it->isChanged)
            text->Set(it.key(), it->text);
    }

    const auto after = text->Text();
    if (!after)
        return fail(__LINE__, "no temporary file");
    if (*after != *before && !Replace(m_file, *after))
        return fail(__LINE__, "the file cannot be written");
    lock.unlock(); // others need not wait for the rest

    if (m_fingerprint != FingerprintOf(*before)) {
        TakeOver(text->Values());
    } else { // nobody else wrote: the working copy is what the file holds
        for (Entry& entry : m_entries)
            entry.isChanged = false;
    }
    m_removed.clear();
    m_isChanged = false;
    m_fingerprint = FingerprintOf(*after);
    return true;
}

// Call while holding the lock.
bool ConfigDocument::MoveDamagedFileAside() const
{
    const QString stamp = QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMddTHHmmsszzz"));
    const QString aside = m_file + QStringLiteral(".damaged-") + stamp;

    // QFile::rename never replaces a file, so the loop ends at the first free name.
    QString target = aside;
    for (int i = 2; QFileInfo::exists(target); ++i)
        target = aside + QStringLiteral("-%1").arg(i);
    const bool isMoved = QFile::rename(m_file, target);

    Trace(__LINE__, [&] {
        return isMoved ? QStringLiteral("ConfigDocument::MoveDamagedFileAside(): %1 is damaged, kept as %2")
                             .arg(m_file, target)
                       : QStringLiteral(
                             "ConfigDocument::MoveDamagedFileAside(): %1 is damaged and could not be moved aside")
                             .arg(m_file);
    });
    return isMoved;
}

// A process that was killed while it saved leaves the file that it wrote beside the document's. Call while holding the
// lock: then nobody is writing one.
void ConfigDocument::RemoveLeftovers() const
{
    const QFileInfo info(m_file);
    static const QRegularExpression randomEnd(QStringLiteral("\\.[A-Za-z]{6}$"));
    QDir folder = info.dir();
    const QStringList names = folder.entryList({info.fileName() + QStringLiteral(".??????")}, QDir::Files);
    for (const QString& name : names) {
        if (randomEnd.match(name).hasMatch())
            folder.remove(name);
    }
}
