// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/store/storedset.h"

#include "host/plugin/connectdialog.h"
#include "platform/icfg.h"
#include "userinterface/vexelconnectdlg/formats/boundedxmlreader.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QVariant>

#include <memory>
#include <vector>

namespace {

/// Counts entries as the plug-in does: an entry may be at any depth and ends at its first end tag.
StoredSet ParseDocument(const QByteArray& document)
{
    StoredSet set;
    BoundedXmlReader reader(document);
    bool withinEntry = false;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.name() != u"Connection")
            continue;
        if (reader.isStartElement() && !withinEntry) {
            withinEntry = true;
            if (set.entries < ConnectionList::kRoomForOwnList.entries)
                ++set.entries;
            else
                reader.raiseError(QStringLiteral("The list has too many entries."));
        } else if (reader.isEndElement()) {
            withinEntry = false;
        }
    }
    set.state = reader.hasError() ? StoredSet::State::Malformed : StoredSet::State::Whole;
    return set;
}

StoredSet ParseHex(const QString& hex)
{
    return hex.isEmpty() ? StoredSet() : ParseDocument(QByteArray::fromHex(hex.toLatin1()));
}

const QString kTextKey = QStringLiteral("ModelMimeData");
const QString kCountKey = QStringLiteral("EntryCount");

/// The plug-in's node for its list.
std::unique_ptr<ICfg> ListNode(ICfg& document)
{
    return std::unique_ptr<ICfg>(document.OpenChild(QStringLiteral("ConnectionsModel"), 0));
}

std::unique_ptr<ICfg> HostNode(ICfg& document)
{
    return std::unique_ptr<ICfg>(document.OpenChild(QStringLiteral("Host"), 0));
}

QString TextIn(ICfg& document)
{
    return ListNode(document)->GetString(kTextKey, QString(), 0);
}

} // namespace

StoredSet ReadStoredSet(ICfg& document)
{
    return ParseHex(TextIn(document));
}

std::optional<StoredSet> ReportedStoredSet(const QObject& entries)
{
    const QVariant count = entries.property("entriesLoaded");
    const QVariant isMalformed = entries.property("isStoredListMalformed");
    if (!count.isValid() || !isMalformed.isValid())
        return std::nullopt;
    return StoredSet{isMalformed.toBool() ? StoredSet::State::Malformed : StoredSet::State::Whole, count.toInt()};
}

QByteArray ReadStoredDocument(ICfg& document)
{
    return QByteArray::fromHex(TextIn(document).toLatin1());
}

std::vector<Connection> ToConnections(const ListCopy& list)
{
    std::vector<Connection> entries;
    entries.reserve(list.rows.size());
    if (!list.document.isEmpty()) {
        ConnectionList::Read(
            list.document, [&entries](const Connection& entry) { entries.push_back(entry); },
            ConnectionList::kRoomForOwnList);
    }
    for (const EntryRow& row : list.rows)
        entries.push_back(ToConnection(row));
    return entries;
}

QByteArray ToDocument(const ListCopy& list)
{
    if (!list.document.isEmpty())
        return list.document;
    const std::vector<Connection> entries = ToConnections(list);
    std::vector<const Connection*> pointers;
    pointers.reserve(entries.size());
    for (const Connection& entry : entries)
        pointers.push_back(&entry);
    return ConnectionList::Write(pointers);
}

StoredText ToStoredText(const ListCopy& list)
{
    const QByteArray document = ToDocument(list);
    const int entries = list.document.isEmpty() ? static_cast<int>(list.rows.size()) : ParseDocument(document).entries;
    return {QString::fromLatin1(document.toHex()), entries};
}

void WriteStoredSet(ICfg& document, const StoredText& text)
{
    ListNode(document)->SetString(kTextKey, text.text, 0);
    WriteEntryCount(document, text.entries);
}

void WriteEntryCount(ICfg& document, int entries)
{
    HostNode(document)->SetInt(kCountKey, entries, 0);
}

std::optional<int> ReadEntryCount(ICfg& document)
{
    const int count = HostNode(document)->GetInt(kCountKey, -1, 0);
    return count < 0 ? std::nullopt : std::optional(count);
}
