#include "userinterface/vexelconnectdlg/xmlelement.h"

#include "userinterface/vexelconnectdlg/xmlguard.h"

QXmlStreamReader::TokenType ReadToken(QXmlStreamReader& reader)
{
    reader.readNext();
    RefuseEntityDeclarations(reader);
    return reader.tokenType();
}

bool ReadNextChild(QXmlStreamReader& reader)
{
    while (!reader.atEnd()) {
        ReadToken(reader);
        if (reader.isStartElement())
            return true;
        if (reader.isEndElement())
            break;
    }
    return false;
}

namespace {

/// Reads until `depth` open elements have ended, starting with the current token.
void SkipOpenElements(QXmlStreamReader& reader, int depth)
{
    while (!reader.atEnd()) {
        if (reader.isStartElement())
            ++depth;
        else if (reader.isEndElement() && --depth == 0)
            return;
        ReadToken(reader);
    }
}

} // namespace

void SkipElement(QXmlStreamReader& reader)
{
    SkipOpenElements(reader, 0);
}

QString ReadElementText(QXmlStreamReader& reader)
{
    ReadToken(reader);
    const QString text = reader.isCharacters() ? reader.text().toString() : QString();
    SkipOpenElements(reader, 1);
    return text;
}
