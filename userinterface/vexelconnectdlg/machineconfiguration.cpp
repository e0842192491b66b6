#include "userinterface/vexelconnectdlg/machineconfiguration.h"

#include "userinterface/vexelconnectdlg/xmlelement.h"

#include <QRegularExpression>

namespace {

/// Where a parameter's index begins in the name of its element: behind "Param".
constexpr qsizetype kIndexPosition = 5;

/// The parameter count that `text` states, blanks around it allowed: 0 when it is no number, -1 when it is one that no
/// int holds.
int ParameterCount(const QString& text)
{
    bool isNumber = false;
    const int count = text.toInt(&isNumber);
    if (isNumber)
        return count;
    static const QRegularExpression kNumber(QStringLiteral("^\\s*[+-]?\\d+\\s*$"));
    return kNumber.match(text).hasMatch() ? -1 : 0;
}

} // namespace

bool MachineConfiguration::Read(QXmlStreamReader& reader)
{
    while (!reader.atEnd()) {
        ReadToken(reader);
        if (reader.isStartElement() && reader.name() == u"Machine")
            break;
    }
    if (reader.atEnd())
        return false;

    while (ReadNextChild(reader))
        ReadApplication(reader);
    // What follows holds no application, but may hold an error.
    while (!reader.atEnd())
        ReadToken(reader);
    return true;
}

void MachineConfiguration::ReadApplication(QXmlStreamReader& reader)
{
    const QString application = reader.name().toString();
    applications.append(application);

    bool startupSeen = false;
    int depth = 1;
    while (!reader.atEnd()) {
        ReadToken(reader);
        if (reader.isEndElement()) {
            if (--depth == 0)
                return;
        } else if (reader.isStartElement()) {
            if (!startupSeen && reader.name() == u"Startup") {
                startupSeen = true;
                ReadStartup(reader, application);
            } else {
                ++depth;
            }
        }
    }
}

void MachineConfiguration::ReadStartup(QXmlStreamReader& reader, const QString& application)
{
    // By index, the executable at 0. Kept by number, because the file may name any: those above the count are ignored.
    QMap<int, QString> slotTexts;
    int count = 0;
    while (ReadNextChild(reader)) {
        const QString name = reader.name().toString();
        const QString text = ReadElementText(reader);
        if (name == u"exe") {
            slotTexts[0] = text;
        } else if (name == u"param") {
            slotTexts[1] = text;
            count = 1;
        } else if (name == u"NumParam") {
            count = ParameterCount(text);
        } else if (name.contains(u"Param")) {
            bool isNumber = false;
            const int index = name.mid(kIndexPosition).toInt(&isNumber);
            if (isNumber)
                slotTexts[index] = text;
        }
    }
    if (reader.hasError())
        return;

    if (count < 0 || count > kMaximumParameterCount || m_iSlots + count + 1 > kMaximumSlotCount) {
        unreadable.append(application);
        return;
    }
    m_iSlots += count + 1;
    StartList& startList = startLists[application];
    for (int index = 0; index <= count; ++index)
        startList.append(slotTexts.value(index));
}
