#pragma once

#include "userinterface/vexelconnectdlg/connection.h"

#include <QByteArray>

#include <functional>
#include <vector>

/// The connection list document: the serialised form of a list of entries, used for drag and drop, the configuration,
/// and import and export files.
///
/// UTF-8 XML with the root element "ConnectionEntries" and one "Connection" element per entry, whose ten children are
/// the fields: decimal numbers, "Selected" as "true" or "false", texts in CDATA sections.
namespace ConnectionList {

/// Returns the MIME type of a document in drag and drop.
QString MimeType();

/// Returns the document of `entries`, in their order, indented by 2. Characters that XML does not allow (most control
/// characters, unpaired surrogates, U+FFFE and U+FFFF) are removed from texts; everything else is read back unchanged.
QByteArray Write(const std::vector<const Connection*>& entries);

/// Receives each entry as it is read.
using Consumer = std::function<void(const Connection& entry)>;

/// Reads `document` and passes each entry to `consumer`, in document order.
///
/// Lenient: root element and XML declaration are not checked, unknown elements are skipped, a missing child leaves the
/// field's default, the last of repeated children counts, and a text that is not a number is read as 0. On an XML
/// error, including a document type that declares entities, it traces the error and stops; an incomplete entry is
/// passed on with the fields read so far.
///
/// Returns true if at least one entry was read and there was no error.
bool Read(const QByteArray& document, const Consumer& consumer);

} // namespace ConnectionList
