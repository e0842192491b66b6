#pragma once

class QXmlStreamReader;

/// Call after every `readNext()` on a document that is not this program's own. Gives the reader an XML error when the
/// document type just read declares entities; `tokenType()` is then `Invalid`, as after any error.
///
/// The reader of this Qt can be kept busy for ever, or be made to fill the memory, by entities that refer to one
/// another. None of the documents read here has a use for entities of its own, so nothing of them is ever expanded:
/// not in the text that follows the document type, and not within the document type itself, where parameter entities
/// would grow before a caller sees the token.
void RefuseEntityDeclarations(QXmlStreamReader& reader);
