#include "host/store/storedset.h"

#include "platform/icfg.h"
#include "userinterface/vexelconnectdlg/boundedxmlreader.h"
#include "userinterface/vexelconnectdlg/connectionlist.h"

#include <QByteArray>
#include <QString>

#include <memory>

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

QString StoredText(ICfg& document)
{
    const std::unique_ptr<ICfg> node(document.OpenChild(QStringLiteral("ConnectionsModel"), 0));
    return node->GetString(QStringLiteral("ModelMimeData"), QString(), 0);
}

} // namespace

StoredSet ReadStoredSet(ICfg& document)
{
    return ParseHex(StoredText(document));
}

std::future<StoredSet> ReadStoredSetAsync(ICfg& document)
{
    // If no thread can be created, this runs when the result is requested.
    return std::async(ParseHex, StoredText(document));
}
