// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/storedlist.h"

#include "host/output/console.h"
#include "host/plugin/datadirectory.h"
#include "host/store/brokenlistbackup.h"
#include "host/store/versionfilter.h"
#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "vexelctl/output.h"

#include <QScopeGuard>

#include <utility>

namespace {

ExitCode WithNotices(const std::function<ExitCode()>& work)
{
    CfgCenter::SetNoticeSink([](const QString& notice) { Console::PrintError(notice); });
    CfgCenter::SetVersionFilter(DiffersInMoreThanStatuses);
    const auto close = qScopeGuard([] {
        CfgCenter::Close();
        CfgCenter::SetNoticeSink({});
    });
    return work();
}

/// Returns whether the list is known. One that is not looks empty.
bool CheckKnown()
{
    const bool isKnown = CfgCenter::IsAppCfgKnown(View::Application);
    if (!isKnown)
        Console::PrintError(QStringLiteral("the stored list cannot be read"));
    return isKnown;
}

/// Says how many entries a document has lost that something else than this product has written.
void PrintLoss(ICfg& document, const StoredSet& set)
{
    if (CfgCenter::WasAppCfgIntact(View::Application))
        return;
    const std::optional<int> before = ReadEntryCount(document);
    Console::PrintError(
        before ? QStringLiteral("entries in the list when it was saved: %1, now: %2")
                     .arg(QString::number(*before), QString::number(set.entries))
               : QStringLiteral("entries in the list now: %1; how many it had is not known").arg(set.entries));
}

ExitCode EditOpen(const QString& dataDirectory, const StoredList::Change& change)
{
    // Saving would replace a good list.
    if (!CheckKnown())
        return ExitCode::Unusable;
    ICfg& document = *CfgCenter::GetAppCfg(View::Application);
    StoredList::Content content = StoredList::ContentOf(document);
    const StoredSet set = content.set;
    const std::optional<Entries> entries = change(std::move(content.entries));
    if (!entries)
        return ExitCode::Unusable;
    if (const QString notice = BackUpBrokenList(set); !notice.isEmpty())
        Console::PrintError(notice);
    PrintLoss(document, set);
    WriteStoredSet(document, {QString::fromLatin1(ToDocument(*entries).toHex()), static_cast<int>(entries->size())});
    if (!dataDirectory.isEmpty())
        DataDirectory::Set(dataDirectory);
    if (CfgCenter::SaveDocument())
        return ExitCode::Done;
    return Fail(ExitCode::Unusable,
                QStringLiteral("the configuration could not be saved: %1").arg(CfgCenter::SaveError()));
}

} // namespace

namespace StoredList {

ExitCode Look(const QString& directory, const std::function<ExitCode()>& work)
{
    return WithNotices([&] {
        if (CfgCenter::OpenReadOnly(directory))
            return work();
        return Fail(ExitCode::Unusable, QStringLiteral("there is no configuration directory %1").arg(directory));
    });
}

std::optional<Entries> Read()
{
    if (!CheckKnown())
        return std::nullopt;
    ICfg& document = *CfgCenter::GetAppCfg(View::Application);
    Content content = ContentOf(document);
    const StoredSet& set = content.set;
    if (set.state == StoredSet::State::Malformed) {
        Console::PrintError(
            QStringLiteral("the stored list is malformed after %1")
                .arg(set.entries == 1 ? QStringLiteral("1 entry") : QStringLiteral("%1 entries").arg(set.entries)));
    }
    PrintLoss(document, set);
    return std::move(content.entries);
}

Content ContentOf(ICfg& document)
{
    Content content;
    const QByteArray text = ReadStoredDocument(document);
    if (text.isEmpty())
        return content;
    const auto take = [&content](const Connection& entry) {
        content.entries.push_back(entry);
        content.entries.back().ConnectionStatus = Connection::Free;
    };
    ConnectionList::ReadError error;
    const bool isRead = ConnectionList::Read(text, take, ConnectionList::kRoomForOwnList, &error);
    // A list without entries is whole.
    content.set.state = isRead || error.row == 0 ? StoredSet::State::Whole : StoredSet::State::Malformed;
    content.set.entries = static_cast<int>(content.entries.size());
    return content;
}

ExitCode Edit(const QString& directory, const QString& dataDirectory, const Change& change)
{
    return WithNotices([&] {
        if (CfgCenter::Open(directory))
            return EditOpen(dataDirectory, change);
        return Fail(
            ExitCode::Unusable,
            QStringLiteral("the configuration directory %1 cannot be used: %2").arg(directory, CfgCenter::OpenError()));
    });
}

} // namespace StoredList
