#include "userinterface/vexelconnectdlg/xmlguard.h"

#include <QXmlStreamReader>

void RefuseEntityDeclarations(QXmlStreamReader& reader)
{
    // The first token of every document is its start, so this is in force before any document type is read: an entity
    // longer than the reference to it is an error from then on. What stays possible within the document type cannot
    // grow it.
    reader.setEntityExpansionLimit(0);
    if (reader.tokenType() == QXmlStreamReader::DTD && !reader.entityDeclarations().isEmpty())
        reader.raiseError(QStringLiteral("Entity declarations are not supported."));
}
