#include "platform/config/configdocument.h"

#include "platform/config/documenttransaction.h"
#include "platform/tracing.h"

#include <QCryptographicHash>

#include <utility>

namespace {

constexpr const char* kSource = "platform/config/configdocument";

QByteArray FingerprintOf(const QByteArray& content)
{
    return QCryptographicHash::hash(content, QCryptographicHash::Blake2b_256);
}

/// Removes the key at `path` and everything below it. Returns whether there was anything.
template <typename Value>
bool RemoveTree(QMap<QString, Value>& map, const QString& path)
{
    bool isRemoved = map.remove(path) > 0;
    const QString below = path + u'/';
    for (auto it = map.lowerBound(below); it != map.end() && it.key().startsWith(below);) {
        it = map.erase(it);
        isRemoved = true;
    }
    return isRemoved;
}

} // namespace

ConfigDocument::ConfigDocument(QString file, DocumentAccess access)
    : m_file(std::move(file))
    , m_access(access)
{
    if (!m_file.isEmpty())
        Load();
}

ConfigDocument::ConfigDocument(const DocumentText::Values& values)
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
    if (RemoveTree(m_entries, path)) {
        m_removed.insert(path);
        m_isChanged = true;
    }
}

void ConfigDocument::TakeOver(const DocumentText::Values& values)
{
    m_entries.clear();
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        m_entries.insert(m_entries.cend(), it.key(), {it.value(), false});
}

void ConfigDocument::Load()
{
    const LoadedDocument loaded = LoadDocument(m_file, m_access);
    m_notice = loaded.notice;
    if (!loaded.reading.values) {
        m_notice =
            QStringLiteral("%1 cannot be read at the moment, so nothing in it is known, and nothing is saved to it")
                .arg(m_file);
        m_isWriteProtected = true;
        m_isKnown = false;
    } else {
        TakeOver(*loaded.reading.values);
        m_fingerprint = FingerprintOf(loaded.reading.content);
    }
    if (loaded.isRecovered) {
        m_isWriteProtected = !loaded.isQuarantined;
        m_isKnown = loaded.isQuarantined || loaded.reading.state == DocumentReading::State::Valid;
    }
    if (!loaded.isInPlace) {
        MarkAllChanged();
        m_isChanged = loaded.isQuarantined; // the next save tries again
    }
    if (!m_notice.isEmpty())
        Trace(kSource, __LINE__, [&] { return QStringLiteral("ConfigDocument::Load(): %1").arg(m_notice); });
}

void ConfigDocument::MarkAllChanged()
{
    m_removed.clear();
    for (Entry& entry : m_entries)
        entry.isChanged = true;
}

bool ConfigDocument::Save()
{
    if (m_file.isEmpty() || !m_isChanged)
        return true;
    if (m_access == DocumentAccess::ReadOnly)
        return Fail(__LINE__, QStringLiteral("the configuration was opened read-only"));

    DocumentTransaction transaction(m_file);
    if (!transaction.Begin())
        return Fail(__LINE__, transaction.Error());
    if (m_isWriteProtected && transaction.Before().state != DocumentReading::State::Missing)
        return Fail(__LINE__, QStringLiteral("the file could neither be read nor quarantined when it was opened"));
    if (!Write(transaction))
        return Fail(__LINE__, transaction.Error());
    transaction.Commit();

    if (const auto& quarantined = transaction.Quarantined()) {
        const DocumentReading& before = transaction.Before();
        m_notice = QStringLiteral("%1 %2, quarantined as %3; its last known content is saved in its place")
                       .arg(m_file,
                            before.state == DocumentReading::State::Damaged
                                ? QStringLiteral("is damaged (%1)").arg(before.error)
                                : QStringLiteral("cannot be read"),
                            *quarantined);
        Trace(kSource, __LINE__, [&] { return QStringLiteral("ConfigDocument::Save(): %1").arg(m_notice); });
    }
    m_removed.clear();
    m_isChanged = false;
    m_isWriteProtected = false;
    m_isKnown = true;
    return true;
}

/// Merges the changes into what the file holds, and takes the result over.
bool ConfigDocument::Write(DocumentTransaction& transaction)
{
    const DocumentText::Values values = Merge(transaction.Before());
    QByteArray content = transaction.Before().content;
    if (values != transaction.Before().values) {
        content = DocumentText::Write(values);
        if (!transaction.Replace(content, DocumentTransaction::VersionPolicy::BestEffort))
            return false;
    }
    TakeOver(values);
    m_fingerprint = FingerprintOf(content);
    return true;
}

DocumentText::Values ConfigDocument::Merge(const DocumentReading& before) const
{
    // A file that was removed, damaged or made unreadable since it was read: the working copy still knows the content.
    const bool wasRemoved = before.state == DocumentReading::State::Missing && m_fingerprint != FingerprintOf({});
    const bool isLost = wasRemoved || before.NeedsRecovery();
    DocumentText::Values values = before.values.value_or(DocumentText::Values());
    for (const QString& path : m_removed)
        RemoveTree(values, path);
    for (auto it = m_entries.cbegin(); it != m_entries.cend(); ++it)
        if (it->isChanged || isLost)
            values.insert(it.key(), it->text);
    return values;
}

bool ConfigDocument::Fail(int line, const QString& reason) const
{
    Trace(kSource, line,
          [&] { return QStringLiteral("ConfigDocument::Save(): Could not save %1: %2").arg(m_file, reason); });
    return false;
}
