#include "host/store/storedset.h"

#include "platform/icfg.h"
#include "userinterface/vexelconnectdlg/xmlelement.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace {

/// As the plug-in reads it: an entry may stand at any depth, and its first end tag ends it.
StoredSet ReadDocument(const QByteArray& document)
{
    StoredSet set;
    QXmlStreamReader reader(document);
    bool withinEntry = false;
    while (!reader.atEnd()) {
        ReadToken(reader);
        if (reader.name() != u"Connection")
            continue;
        if (reader.isStartElement() && !withinEntry) {
            withinEntry = true;
            ++set.entries;
        } else if (reader.isEndElement()) {
            withinEntry = false;
        }
    }
    set.state = reader.hasError() ? StoredSet::State::Malformed : StoredSet::State::Whole;
    return set;
}

StoredSet ReadText(const QString& hex)
{
    return hex.isEmpty() ? StoredSet() : ReadDocument(QByteArray::fromHex(hex.toLatin1()));
}

QString TextOfSet(ICfg& document)
{
    const std::unique_ptr<ICfg> node(document.OpenChild(QStringLiteral("ConnectionsModel"), 0));
    return node->GetString(QStringLiteral("ModelMimeData"), QString(), 0);
}

} // namespace

StoredSet ReadStoredSet(ICfg& document)
{
    return ReadText(TextOfSet(document));
}

std::future<StoredSet> BeginToReadStoredSet(ICfg& document)
{
    // Where the system has no thread for it, it is done when somebody asks.
    return std::async(ReadText, TextOfSet(document));
}
