#pragma once

#include <QString>
#include <QXmlStreamReader>

/// Steps through documents that are not this program's own; see `RefuseEntityDeclarations`.

/// Reads the next token. `Invalid` at an error, and after one.
QXmlStreamReader::TokenType ReadToken(QXmlStreamReader& reader);

/// Goes on to the next start element within the current element. False at the end of that element, and at an error.
bool ReadNextChild(QXmlStreamReader& reader);

/// With the reader at a start element: goes on to the end of that element, or to an error.
void SkipElement(QXmlStreamReader& reader);

/// With the reader at a start element: the text that directly follows the start tag, and nothing of what comes after a
/// comment or another element. Goes on to the end of the element, or to an error.
QString ReadElementText(QXmlStreamReader& reader);
