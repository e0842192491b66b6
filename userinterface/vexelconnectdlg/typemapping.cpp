#include "userinterface/vexelconnectdlg/typemapping.h"

#include "userinterface/vexelconnectdlg/xmlelement.h"

namespace {

struct Mapping
{
    int deviceType = -1;
    QString application;
};

/// With the reader at the start element "Mapping": reads up to its end, or to an error.
Mapping ReadMapping(QXmlStreamReader& reader)
{
    Mapping mapping;
    while (!reader.atEnd()) {
        ReadToken(reader);
        if (reader.isEndElement())
            break;
        if (!reader.isStartElement())
            continue;
        if (reader.name() == u"DeviceType") {
            bool isNumber = false;
            const int deviceType = ReadElementText(reader).toInt(&isNumber);
            mapping.deviceType = isNumber ? deviceType : -1;
        } else if (reader.name() == u"Application") {
            mapping.application = ReadElementText(reader);
        } else {
            SkipElement(reader);
        }
    }
    return mapping;
}

/// Whether `mapping` could be put into `executables`.
bool Keep(const Mapping& mapping, const QMap<QString, QStringList>& startLists, QMap<int, QString>& executables)
{
    if (mapping.deviceType < 0 || mapping.application.isEmpty())
        return false;
    if (mapping.application.contains(u".exe", Qt::CaseInsensitive)) {
        executables[mapping.deviceType] = mapping.application;
        return true;
    }
    const QStringList startList = startLists.value(mapping.application);
    if (startList.isEmpty())
        return false;
    executables[mapping.deviceType] = startList.constFirst();
    return true;
}

} // namespace

bool TypeMapping::Read(QXmlStreamReader& reader, const QMap<QString, QStringList>& startLists,
                       QMap<int, QString>& executables)
{
    bool lastKept = false;
    int depth = 0; // of open elements from "TypeApplicationMappings" on; 0 outside it
    while (!reader.atEnd()) {
        ReadToken(reader);
        if (reader.isEndElement() && depth > 0) {
            --depth;
        } else if (reader.isStartElement() && depth > 0 && reader.name() == u"Mapping") {
            const Mapping mapping = ReadMapping(reader);
            // One that an error cuts short is none.
            if (!reader.hasError())
                lastKept = Keep(mapping, startLists, executables);
        } else if (reader.isStartElement() && (depth > 0 || reader.name() == u"TypeApplicationMappings")) {
            ++depth;
        }
    }
    return lastKept;
}
