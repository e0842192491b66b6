#pragma once

#include "platform/config/documentfile.h"
#include "platform/configversion.h"

#include <QString>

#include <optional>

enum class DocumentAccess { ReadWrite, ReadOnly };

/// A document as it is to be used: what its file holds or, where that cannot be read, the newest readable version.
struct LoadedDocument
{
    DocumentReading reading;    ///< of a recovered document: missing (no values) where there is no readable version
    bool isRecovered = false;   ///< `reading` is not what the file held
    bool isQuarantined = false; ///< what the file held is safe under another name
    bool isInPlace = true;      ///< the file now holds `reading`
    QString notice;             ///< of a recovered document: what happened, in one line for people
};

/// Reads the document `file`. One that is damaged or unreadable is quarantined and replaced by its newest readable
/// version, unless its lock cannot be taken or `access` is `ReadOnly`: then no file is changed.
LoadedDocument LoadDocument(const QString& file, DocumentAccess access);

struct ReadableVersion
{
    ConfigVersion version;
    DocumentReading reading; ///< valid
};

/// The newest version of the document `file` that can be read. Those that cannot are traced.
std::optional<ReadableVersion> NewestReadableVersion(const QString& file);
