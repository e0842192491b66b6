// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/config/configdocument.h"

#include "platform/config/documenttransaction.h"
#include "platform/config/readahead.h"
#include "platform/tracing.h"

#include <QFileInfo>

#include <utility>

namespace {

constexpr const char* kSource = "platform/config/configdocument";

ConfigDocument::Entry ChangedEntry(const QString& value)
{
    ConfigDocument::Entry entry{CompactText(value), true};
    entry.text.Compact();
    return entry;
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
    if (!m_file.isEmpty() && !TakeReadAhead())
        Load();
}

ConfigDocument::ConfigDocument(const DocumentText::Values& values)
{
    TakeOver(values);
}

ConfigDocument::~ConfigDocument()
{
    if (m_check.valid())
        m_check.wait();
}

std::optional<QString> ConfigDocument::Value(const QString& path)
{
    const auto entry = m_entries.find(path);
    if (entry == m_entries.end())
        return std::nullopt;
    QString text = entry->text.Text();
    entry->text.Compact();
    return text;
}

void ConfigDocument::SetValue(const QString& path, const QString& value)
{
    const auto entry = m_entries.lowerBound(path);
    if (entry == m_entries.end() || entry.key() != path)
        m_entries.insert(entry, path, ChangedEntry(value));
    else if (!(entry->text == value))
        *entry = ChangedEntry(value);
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

/// Replaces the values, but not the changes that have been made since they were saved.
void ConfigDocument::TakeOver(const DocumentText::Values& values)
{
    QMap<QString, Entry> before = std::exchange(m_entries, {});
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        m_entries.insert(m_entries.cend(), it.key(), {CompactText(it.value()), false});
    for (const QString& path : std::as_const(m_removed))
        RemoveTree(m_entries, path);
    for (auto it = before.cbegin(); it != before.cend(); ++it)
        if (it->isChanged)
            m_entries.insert(it.key(), *it);
}

void ConfigDocument::Load()
{
    LoadedDocument loaded = LoadDocument(m_file, m_access);
    const bool isRecoverable = loaded.reading.state == DocumentReading::State::Valid;
    m_notice = loaded.notice;
    m_isKnown = loaded.reading.values && (!loaded.isRecovered || loaded.isInPlace || isRecoverable);
    m_wasIntact = loaded.wasIntact;
    m_isLost = loaded.isLost;
    if (!loaded.reading.values) {
        m_notice = QStringLiteral("%1 cannot be read at the moment, so nothing in it is known, and nothing is saved to "
                                  "it: %2")
                       .arg(m_file, loaded.reading.error);
    } else {
        m_hadContent = !loaded.reading.content.isEmpty();
        loaded.reading.content.clear(); // of a long list, as much again
        TakeOver(*loaded.reading.values);
    }
    m_isChanged = m_isChanged || !loaded.isInPlace; // the next save tries again
    if (!m_notice.isEmpty())
        Trace(kSource, __LINE__, [&] { return QStringLiteral("ConfigDocument::Load(): %1").arg(m_notice); });
}

bool ConfigDocument::TakeReadAhead()
{
    std::optional<ReadAhead::Document> document = ReadAhead::Take(m_file);
    if (!document)
        return false;
    m_hadContent = true;
    m_check = std::move(document->isIntact);
    TakeOver(*document->reading.values);
    return true;
}

void ConfigDocument::FinishCheck()
{
    if (m_check.valid() && !m_check.get())
        Load();
}

void ConfigDocument::Reload()
{
    FinishCheck();
    Load();
}

bool ConfigDocument::WasIntact()
{
    FinishCheck();
    return m_wasIntact;
}

bool ConfigDocument::IsRemoved() const
{
    return m_hadContent && !QFileInfo::exists(m_file);
}

std::optional<ConfigDocument::SaveRequest> ConfigDocument::BeginSave(const VersionFilter& versionFilter)
{
    FinishCheck();
    if (m_file.isEmpty() || m_runningSave || (!m_isChanged && !IsRemoved()))
        return std::nullopt;
    m_runningSave =
        SaveRequest{m_file, m_access, m_entries, std::exchange(m_removed, {}), m_hadContent, m_isKnown, versionFilter};
    for (Entry& entry : m_entries)
        entry.isChanged = false;
    m_isChanged = false;
    return m_runningSave;
}

void ConfigDocument::FinishSave(const SaveResult& result)
{
    const SaveRequest request = std::exchange(m_runningSave, {}).value();
    if (!result.error.isEmpty()) {
        for (auto it = request.entries.cbegin(); it != request.entries.cend(); ++it)
            if (const auto entry = m_entries.find(it.key()); it->isChanged && entry != m_entries.end())
                entry->isChanged = true;
        m_removed += request.removed;
        m_isChanged = true;
        return;
    }
    TakeOver(result.values);
    for (Entry& entry : m_entries)
        entry.text.Compact();
    m_hadContent = result.hasContent;
    m_isKnown = true;
    m_isLost = false;
    m_notice = result.notice;
    if (std::exchange(m_versionWarning, result.versionWarning) != result.versionWarning && m_notice.isEmpty())
        m_notice = result.versionWarning;
}

namespace {

using SaveRequest = ConfigDocument::SaveRequest;
using SaveResult = ConfigDocument::SaveResult;

DocumentText::Values Merge(const SaveRequest& request, const DocumentReading& before)
{
    // A file that was removed, damaged or made unreadable since it was read: the working copy still knows the content.
    const bool wasRemoved = before.state == DocumentReading::State::Missing && request.hadContent;
    const bool isLost = wasRemoved || before.NeedsRecovery();
    DocumentText::Values values = before.values.value_or(DocumentText::Values());
    for (const QString& path : request.removed)
        RemoveTree(values, path);
    for (auto it = request.entries.cbegin(); it != request.entries.cend(); ++it)
        if (it->isChanged || isLost)
            values.insert(it.key(), it->text.Text());
    return values;
}

DocumentTransaction::VersionPolicy PolicyOf(const SaveRequest& request, const DocumentReading& before,
                                            const DocumentText::Values& after)
{
    const bool isWorthAVersion = !request.versionFilter || before.state != DocumentReading::State::Valid ||
                                 request.versionFilter(*before.values, after);
    return isWorthAVersion ? DocumentTransaction::VersionPolicy::BestEffort : DocumentTransaction::VersionPolicy::None;
}

SaveResult Failure(const SaveRequest& request, int line, const QString& reason)
{
    Trace(kSource, line,
          [&] { return QStringLiteral("ConfigDocument::RunSave(): Could not save %1: %2").arg(request.file, reason); });
    SaveResult result;
    result.error = QStringLiteral("%1: %2").arg(request.file, reason);
    return result;
}

/// What the user has to know about a save that worked; empty: nothing.
QString NoticeOf(const QString& file, const DocumentTransaction& transaction)
{
    const DocumentReading& before = transaction.Before();
    if (!before.isIntact)
        return AdoptionNotice(file, QStringLiteral("the text as it was found is now among the versions"));
    if (transaction.QuarantinedFile().isEmpty())
        return {};
    return QStringLiteral("%1 %2, quarantined as %3; its last known content is saved in its place")
        .arg(file,
             before.state == DocumentReading::State::Damaged ? QStringLiteral("is damaged (%1)").arg(before.error)
                                                             : QStringLiteral("cannot be read"),
             transaction.QuarantinedFile());
}

} // namespace

SaveResult ConfigDocument::RunSave(const SaveRequest& request)
{
    if (request.access == DocumentAccess::ReadOnly)
        return Failure(request, __LINE__, QStringLiteral("the configuration was opened read-only"));
    DocumentTransaction transaction(request.file);
    if (!transaction.Begin())
        return Failure(request, __LINE__, transaction.Error());
    const DocumentReading& before = transaction.Before();
    if (!request.isKnown && before.state != DocumentReading::State::Missing)
        return Failure(request, __LINE__, QStringLiteral("it could not be read when it was opened"));

    SaveResult result;
    result.values = Merge(request, before);
    QByteArray content = before.content;
    if (result.values != before.values || !before.isIntact) {
        content = DocumentText::Write(result.values);
        if (!transaction.Replace(content, PolicyOf(request, before, result.values)))
            return Failure(request, __LINE__, transaction.Error());
    }
    transaction.Commit();
    result.hasContent = !content.isEmpty();
    result.notice = NoticeOf(request.file, transaction);
    if (!transaction.Warning().isEmpty())
        result.versionWarning = QStringLiteral("%1 is saved, but %2").arg(request.file, transaction.Warning());
    for (const QString& text : {result.notice, result.versionWarning})
        if (!text.isEmpty())
            Trace(kSource, __LINE__, [&] { return QStringLiteral("ConfigDocument::RunSave(): %1").arg(text); });
    return result;
}
