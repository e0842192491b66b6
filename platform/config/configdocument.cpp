#include "platform/config/configdocument.h"

#include "platform/config/documentfile.h"
#include "platform/config/documentrecovery.h"
#include "platform/config/initext.h"
#include "platform/config/versionfolder.h"
#include "platform/tracing.h"

#include <QCryptographicHash>
#include <QLockFile>

#include <memory>
#include <utility>

namespace {

template <typename BuildText>
void Trace(int line, BuildText buildText)
{
    TraceWhenWanted("platform/config/configdocument", line, buildText);
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

ConfigDocument::ConfigDocument(QString file, Access access)
    : m_file(std::move(file))
    , m_access(access)
{
    if (!m_file.isEmpty())
        Load();
}

ConfigDocument::ConfigDocument(const QMap<QString, QString>& values)
{
    TakeOver(values);
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
    const DocumentFile file(m_file);
    auto reading = file.Read();
    if (!NeedsRecovery(reading)) {
        Use(reading);
        return;
    }

    // Another process may be mending it at this moment: what the lock's owner finds counts.
    const auto lock = m_access == Access::ReadOnly ? nullptr : file.Lock();
    if (lock)
        reading = file.Read();
    if (!NeedsRecovery(reading)) {
        Use(reading);
        return;
    }
    Recovery recovery = Recover(file, reading, lock != nullptr);
    m_notice = recovery.notice;
    Trace(__LINE__, [&] { return QStringLiteral("ConfigDocument::Load(): %1").arg(m_notice); });
    Use(recovery.reading);
    m_isToBeLeftAlone = !recovery.isQuarantined;
    m_isKnown = recovery.isQuarantined || recovery.reading.state != DocumentFile::State::Missing;
    if (!recovery.isInPlace) {
        ChangeAll();
        m_isChanged = recovery.isQuarantined; // the next save tries again
    }
}

void ConfigDocument::Use(const DocumentFile::Reading& reading)
{
    if (!reading.text) {
        m_notice =
            QStringLiteral("%1 cannot be read at the moment, so nothing in it is known, and nothing is saved to it")
                .arg(m_file);
        Trace(__LINE__, [&] { return QStringLiteral("ConfigDocument::Load(): %1").arg(m_notice); });
        m_isToBeLeftAlone = true;
        m_isKnown = false;
        return;
    }
    TakeOver(reading.text->Values());
    m_fingerprint = FingerprintOf(reading.content);
}

void ConfigDocument::ChangeAll()
{
    m_removed.clear();
    for (Entry& entry : m_entries)
        entry.isChanged = true;
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

    if (m_access == Access::ReadOnly)
        return fail(__LINE__, "the configuration was opened to look at it");
    const DocumentFile file(m_file);
    const auto lock = file.Lock();
    if (!lock)
        return fail(__LINE__, "its lock cannot be taken");
    file.RemoveLeftovers();

    auto before = file.Read();
    using State = DocumentFile::State;
    if (m_isToBeLeftAlone && before.state != State::Missing)
        return fail(__LINE__, "the file that is there could not be read at first, nor kept aside");

    std::optional<QString> aside;
    switch (before.state) {
    case State::Missing:
        if (m_fingerprint != FingerprintOf({})) // taken away since it was read; the working copy knows what was in it
            ChangeAll();
        break;
    case State::Whole:
        break;
    case State::Unavailable:
        return fail(__LINE__, "the file that is there cannot be read at the moment");
    case State::Damaged:
    case State::Unreadable:
        // So since it was read. The working copy still knows what was in it.
        aside = file.Quarantine();
        if (!aside)
            return fail(__LINE__, "what is in its place cannot be read, nor moved aside");
        before.content.clear();
        before.text = std::make_unique<IniText>(before.content);
        ChangeAll();
        break;
    }

    const bool wasDamaged = before.state == State::Damaged;
    const QByteArray after = Merge(*before.text);
    if (after.size() > kLargestDocument) {
        if (aside)
            file.UndoQuarantine(*aside);
        return fail(__LINE__, "it would be too large to be read again");
    }
    if (after != before.content && !Replace(file, before, after)) {
        if (aside)
            file.UndoQuarantine(*aside);
        return fail(__LINE__, "the file cannot be written");
    }
    lock->unlock(); // others need not wait for the rest
    if (aside) {
        m_notice =
            QStringLiteral("%1 %2, kept as %3; what was known of it is saved in its place")
                .arg(m_file, wasDamaged ? QStringLiteral("is damaged") : QStringLiteral("cannot be read"), *aside);
        Trace(__LINE__, [&] { return QStringLiteral("ConfigDocument::Save(): %1").arg(m_notice); });
    }

    if (m_fingerprint != FingerprintOf(before.content))
        TakeOver(before.text->Values());
    else // nobody else wrote: the working copy is what the file holds
        for (Entry& entry : m_entries)
            entry.isChanged = false;
    m_removed.clear();
    m_isChanged = false;
    m_isToBeLeftAlone = false;
    m_isKnown = true;
    m_fingerprint = FingerprintOf(after);
    return true;
}

QByteArray ConfigDocument::Merge(IniText& text) const
{
    for (const QString& path : m_removed)
        text.Remove(path);
    for (auto it = m_entries.cbegin(); it != m_entries.cend(); ++it)
        if (it->isChanged)
            text.Set(it.key(), it->text);
    return text.Text();
}

// Call while holding the lock.
bool ConfigDocument::Replace(const DocumentFile& file, const DocumentFile::Reading& before, const QByteArray& after)
{
    const VersionFolder versions(file.Path());
    std::optional<QString> kept;
    if (!before.text->IsEmpty())
        kept = versions.Keep(before.content);
    if (!file.Replace(after)) {
        VersionFolder::Forget(kept);
        return false;
    }
    if (kept)
        versions.Prune();
    return true;
}
