#include "userinterface/vexelconnectdlg/xmlguard.h"

#include <QXmlStreamReader>

void RefuseEntityDeclarations(QXmlStreamReader& reader)
{
    // The first token is always StartDocument, so the limit is set before any document type is read. From then on an
    // entity that is longer than its reference is an error, so expansion within the document type cannot grow the text.
    reader.setEntityExpansionLimit(0);
    if (reader.tokenType() == QXmlStreamReader::DTD && !reader.entityDeclarations().isEmpty())
        reader.raiseError(QStringLiteral("Entity declarations are not supported."));
}
