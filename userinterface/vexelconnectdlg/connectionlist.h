#pragma once

#include "userinterface/vexelconnectdlg/connection.h"

#include <QByteArray>

#include <functional>
#include <vector>

/// The connection list document: the one serialised form of a list of entries. It is what is dragged and dropped, what
/// is stored in the configuration, and what import and export files hold.
///
/// UTF-8 XML with the root element "ConnectionEntries" and one "Connection" per entry, whose ten children hold the
/// fields: numbers in decimal, "Selected" as "true" or "false", texts in CDATA sections.
namespace ConnectionList {

/// The mime type under which a document travels.
QString MimeType();

/// The document of `entries`, in their order, indented by 2. Characters that XML cannot hold (most control characters,
/// unpaired surrogates, U+FFFE and U+FFFF) are left out of texts; every other text reads back as it was.
QByteArray Write(const std::vector<const Connection*>& entries);

/// Receives each entry that was read.
using Consumer = std::function<void(const Connection& entry)>;

/// Reads `document` and hands each entry to `consumer`, in document order.
///
/// Lenient where a document can be understood: root and declaration are not checked, unknown elements are passed over,
/// a missing child leaves its field's default, the last of repeated children counts, a text that is no number reads
/// as 0. On an XML error, and for a document type that declares entities, it writes a trace and stops; the entry that
/// was being read then is handed over as far as it was read.
///
/// Returns true when at least one entry was read and there was no error.
bool Read(const QByteArray& document, const Consumer& consumer);

} // namespace ConnectionList
