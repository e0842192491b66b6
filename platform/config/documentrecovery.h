#pragma once

#include "platform/config/documentfile.h"
#include "platform/configversions.h"

#include <QString>

#include <optional>

/// Reads a version of a document. One without a single byte is none: it has no text.
DocumentFile::Reading ReadVersion(const ConfigVersion& version);

struct ReadableVersion
{
    ConfigVersion version;
    DocumentFile::Reading reading;
};

/// The newest version that can be read of the document in the file `document`, for use in its place.
std::optional<ReadableVersion> NewestReadable(const QString& document);

/// What is used instead of a document that cannot be read.
struct Recovery
{
    DocumentFile::Reading reading; ///< the newest readable version's, or of an empty document
    bool isQuarantined = false;    ///< what could not be read is safe under another name
    bool isInPlace = false;        ///< the document's file now is what `reading` says
    QString notice;                ///< all that in one line, for people
};

/// Whether this is no document, and yet nothing that asking again at another time would change.
bool NeedsRecovery(const DocumentFile::Reading& reading);

/// Keeps aside what is in the document's place, `found` by its reading, and puts the newest readable version there.
/// Without the document's lock nothing is changed.
Recovery Recover(const DocumentFile& file, const DocumentFile::Reading& found, bool isLocked);
