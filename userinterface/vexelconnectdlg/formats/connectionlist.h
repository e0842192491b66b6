// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/vexelconnectdlg/connection.h"

#include <QByteArray>

#include <functional>
#include <limits>
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

/// The largest list that can be built from documents. As hexadecimal text, two characters per byte, it fits into the
/// configuration with a quarter of it to spare, and it can be exported and imported again.
inline constexpr int kMaximumEntries = 200'000;
inline constexpr qint64 kMaximumSize = qint64{96} * 1024 * 1024; ///< bytes of its document

/// Returns the bytes that `Write` takes for `entry`.
qint64 WrittenSize(const Connection& entry);

/// What may be added to a list. By default, what an empty list has room for.
struct Room
{
    qint64 entries = kMaximumEntries;
    qint64 bytes = kMaximumSize; ///< less the `WrittenSize` of each entry that the list has
};
/// For a list that was there before: nothing of it may be lost, even if editing has made it larger. The configuration
/// cannot hold more entries than this, however short.
inline constexpr Room kRoomForOwnList{320'000, std::numeric_limits<qint64>::max()};

/// Receives each entry as it is read.
using Consumer = std::function<void(const Connection& entry)>;

/// Why a document cannot be used.
struct ReadError
{
    qint64 row = 0;    ///< from 1; 0: the document as a whole
    qint64 column = 0; ///< from 0, as the XML reader counts
    QString text;      ///< in English

    /// Returns a sentence without a full stop.
    QString Sentence() const;
};

/// Reads `document` and passes each entry to `consumer`, in document order.
///
/// Lenient: root element and XML declaration are not checked, unknown elements are skipped, a missing child leaves the
/// field's default, the last of repeated children counts, and a text that is not a number is read as 0. On an XML
/// error it traces the error and stops; an incomplete entry is passed on with the fields read so far. What
/// `BoundedXmlReader` refuses is an XML error, and so is an entry for which there is no `room`; it is not passed on.
///
/// Returns true if at least one entry was read and there was no error; otherwise `error` (optional) says why not.
bool Read(const QByteArray& document, const Consumer& consumer, const Room& room = {}, ReadError* error = nullptr);

} // namespace ConnectionList
