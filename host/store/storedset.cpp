#include "host/store/storedset.h"

#include "host/plugin/connectdialog.h"
#include "platform/icfg.h"
#include "process/background.h"
#include "userinterface/vexelconnectdlg/boundedxmlreader.h"
#include "userinterface/vexelconnectdlg/connectionlist.h"

#include <QByteArray>
#include <QString>

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

Connection ToConnection(const std::array<QVariant, kEntryColumnCount>& row)
{
    const auto value = [&row](EntryColumn column) {
        return row[static_cast<std::size_t>(column)];
    };
    Connection entry;
    entry.Selected = value(EntryColumn::Tick).toBool();
    entry.ConnectionName = value(EntryColumn::Name).toString();
    entry.ConnectionStatus = value(EntryColumn::Status).toInt();
    entry.DeviceType = value(EntryColumn::DeviceType).toInt();
    entry.ConnectionType = value(EntryColumn::ConnectionType).toInt();
    entry.DeviceAddress = value(EntryColumn::DeviceAddress).toString();
    entry.DriverAddress = value(EntryColumn::DriverAddress).toString();
    entry.LinkSpeed = value(EntryColumn::LinkSpeed).toInt();
    entry.TimeoutSeconds = value(EntryColumn::Timeout).toInt();
    entry.Subsystem = value(EntryColumn::Subsystem).toString();
    return entry;
}

} // namespace

StoredSet ReadStoredSet(ICfg& document)
{
    return ParseHex(TextIn(document));
}

std::future<StoredSet> ReadStoredSetAsync(ICfg& document)
{
    return RunInBackground([text = TextIn(document)] { return ParseHex(text); });
}

QByteArray ReadStoredDocument(ICfg& document)
{
    return QByteArray::fromHex(TextIn(document).toLatin1());
}

StoredText ToStoredText(const ListCopy& list)
{
    const auto toHex = [](const QByteArray& document) {
        return QString::fromLatin1(document.toHex());
    };
    if (!list.document.isEmpty())
        return {toHex(list.document), ParseDocument(list.document).entries};
    std::vector<Connection> entries;
    entries.reserve(list.rows.size());
    std::vector<const Connection*> pointers;
    for (const auto& row : list.rows) {
        entries.push_back(ToConnection(row));
        pointers.push_back(&entries.back());
    }
    return {toHex(ConnectionList::Write(pointers)), static_cast<int>(pointers.size())};
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
