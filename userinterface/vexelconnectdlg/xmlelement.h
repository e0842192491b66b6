#pragma once

#include <QString>
#include <QXmlStreamReader>

/// Helpers to read untrusted XML documents; see `RefuseEntityDeclarations`.

/// Reads the next token. Returns `Invalid` on and after an error.
QXmlStreamReader::TokenType ReadToken(QXmlStreamReader& reader);

/// Reads up to the next child element of the current element. Returns false at the end of that element and at an error.
bool ReadNextChild(QXmlStreamReader& reader);

/// Reads from a start element up to its end element or an error.
void SkipElement(QXmlStreamReader& reader);

/// Reads from a start element up to its end element or an error. Returns the text directly after the start tag, without
/// any text after a comment or a child element.
QString ReadElementText(QXmlStreamReader& reader);
