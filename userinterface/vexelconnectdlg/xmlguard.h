#pragma once

class QXmlStreamReader;

/// Call after every `readNext()` on an untrusted document. Raises an XML error if the document type just read declares
/// entities; `tokenType()` is then `Invalid`, as after any error.
///
/// Entities that refer to one another can make the reader of this Qt version loop forever or exhaust the memory. No
/// document read here needs entities, so none is ever expanded: neither in the text after the document type nor within
/// the document type, where parameter entities would be expanded before the caller sees the token.
void RefuseEntityDeclarations(QXmlStreamReader& reader);
