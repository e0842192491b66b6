// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/formats/typemapping.h"

#include "userinterface/vexelconnectdlg/formats/xmlelement.h"

#include <QHash>
#include <QXmlStreamReader>

#include <utility>

namespace {

struct Mapping
{
    int deviceType = -1;
    QString application;
};

/// Reads from the start element "Mapping" up to its end or an error.
Mapping ReadMapping(QXmlStreamReader& reader)
{
    Mapping mapping;
    while (reader.readNextStartElement()) {
        if (reader.name() == u"DeviceType") {
            bool isNumber = false;
            const int deviceType = ReadElementText(reader).toInt(&isNumber);
            mapping.deviceType = isNumber ? deviceType : -1;
        } else if (reader.name() == u"Application") {
            mapping.application = ReadElementText(reader);
        } else {
            reader.skipCurrentElement();
        }
    }
    return mapping;
}

/// Adds `mapping` to `executables` if it is valid.
TypeMapping::Outcome AddMapping(const Mapping& mapping, const QMap<QString, QStringList>& startLists,
                                QMap<int, QString>& executables)
{
    using Outcome = TypeMapping::Outcome;
    if (mapping.deviceType < 0)
        return Outcome::NoDeviceType;
    if (mapping.application.isEmpty())
        return Outcome::NoApplication;
    if (mapping.application.contains(u".exe", Qt::CaseInsensitive)) {
        executables[mapping.deviceType] = mapping.application;
        return Outcome::Kept;
    }
    const QStringList startList = startLists.value(mapping.application);
    if (startList.isEmpty())
        return Outcome::NoStartList;
    executables[mapping.deviceType] = startList.constFirst();
    return Outcome::Kept;
}

} // namespace

bool TypeMapping::Read(QXmlStreamReader& reader, const QMap<QString, QStringList>& startLists,
                       QMap<int, QString>& executables, const Observer& observer)
{
    bool lastKept = false;
    int depth = 0; // of open elements from "TypeApplicationMappings" on; 0 outside it
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isEndElement() && depth > 0) {
            --depth;
        } else if (reader.isStartElement() && depth > 0 && reader.name() == u"Mapping") {
            const Mapping mapping = ReadMapping(reader);
            // Ignore a mapping that an error cuts off.
            if (reader.hasError())
                continue;
            const Outcome outcome = AddMapping(mapping, startLists, executables);
            lastKept = outcome == Outcome::Kept;
            if (observer)
                observer(mapping.deviceType, mapping.application, outcome);
        } else if (reader.isStartElement() && (depth > 0 || reader.name() == u"TypeApplicationMappings")) {
            ++depth;
        }
    }
    return lastKept;
}

QMap<int, QStringList> TypeMapping::ServingApplications(QStringList applications,
                                                        const QMap<QString, QStringList>& startLists,
                                                        const QMap<int, QString>& executables)
{
    // The machine configuration may list an application twice.
    applications.removeDuplicates();
    QHash<QString, QStringList> byExecutable;
    for (const QString& application : std::as_const(applications)) {
        const QStringList startList = startLists.value(application);
        if (!startList.isEmpty())
            byExecutable[startList.constFirst()].append(application);
    }
    QMap<int, QStringList> serving;
    for (auto type = executables.cbegin(); type != executables.cend(); ++type)
        if (const auto found = byExecutable.constFind(type.value()); found != byExecutable.cend())
            serving.insert(type.key(), *found);
    return serving;
}
