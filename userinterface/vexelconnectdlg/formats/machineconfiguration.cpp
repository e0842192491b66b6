// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/formats/machineconfiguration.h"

#include "userinterface/vexelconnectdlg/formats/xmlelement.h"

#include <QRegularExpression>
#include <QXmlStreamReader>

namespace {

/// Position of a parameter's index in its element name, after "Param".
constexpr qsizetype kIndexPosition = 5;

/// Parses a parameter count, which may have spaces around it: 0 if it is not a number, -1 if it does not fit an int.
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
        reader.readNext();
        if (reader.isStartElement() && reader.name() == u"Machine")
            break;
    }
    if (reader.atEnd())
        return false;

    while (reader.readNextStartElement())
        ReadApplication(reader);
    // There are no further applications, but there may be an error.
    while (!reader.atEnd())
        reader.readNext();
    return true;
}

void MachineConfiguration::ReadApplication(QXmlStreamReader& reader)
{
    const QString application = reader.name().toString();
    applications.append(application);

    bool startupSeen = false;
    int depth = 1;
    while (!reader.atEnd()) {
        reader.readNext();
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
    // By index, the executable at 0. A map, because the file may contain any index; those above the count are ignored.
    QMap<int, QString> slotTexts;
    int count = 0;
    while (reader.readNextStartElement()) {
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
