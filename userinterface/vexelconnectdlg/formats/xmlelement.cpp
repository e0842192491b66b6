// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/formats/xmlelement.h"

#include <QXmlStreamReader>

QString ReadElementText(QXmlStreamReader& reader)
{
    QString text;
    switch (reader.readNext()) {
    case QXmlStreamReader::EndElement:
        return text;
    case QXmlStreamReader::StartElement:
        reader.skipCurrentElement();
        break;
    case QXmlStreamReader::Characters:
        text = reader.text().toString();
        break;
    default:
        break;
    }
    reader.skipCurrentElement();
    return text;
}
