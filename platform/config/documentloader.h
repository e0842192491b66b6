// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/config/documentfile.h"
#include "platform/configversions.h"

#include <QString>

#include <optional>

enum class DocumentAccess { ReadWrite, ReadOnly };

/// A document as it is to be used: what its file holds or, where that cannot be had, the newest readable version.
struct LoadedDocument
{
    DocumentReading reading;  ///< of a recovered document: missing (no values) where there is no readable version
    bool isRecovered = false; ///< `reading` is not what the file held
    bool isInPlace = true;    ///< the file now holds `reading`; with nothing in it, it is missing
    bool isLost = false;      ///< what the file held cannot be read, and no version of it can
    bool wasIntact = true;    ///< false: something else than this library has written what the file held
    QString notice;           ///< what went wrong, in one line for people; empty: nothing
};

/// Reads the document `file`.
///
/// One that is damaged, unreadable, or missing beside its versions is quarantined and replaced by its newest readable
/// version. Where there is none, the document begins empty, and its file is missing until it is saved. One that
/// another program has changed is used, becomes a version, and is written anew. No file is changed where the lock
/// cannot be taken or `access` is `ReadOnly`.
LoadedDocument LoadDocument(const QString& file, DocumentAccess access);

/// True if the file does not hold the document, but something that is left of it does.
bool NeedsRecovery(const QString& file, const DocumentReading& reading);

/// Returns the notice about a valid document that another program has changed.
QString AdoptionNotice(const QString& file, const QString& consequence);

struct ReadableVersion
{
    ConfigVersion version;
    DocumentReading reading; ///< valid
};

/// The newest version of the document `file` that can be read. Those that cannot are traced.
std::optional<ReadableVersion> NewestReadableVersion(const QString& file);
