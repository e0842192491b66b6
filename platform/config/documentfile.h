// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/config/documenttext.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <optional>

/// The largest document that is read or written, in bytes. The largest list takes three quarters of it.
constexpr qint64 kLargestDocument = qint64{256} * 1024 * 1024;

/// What reading a document's file, or one of its versions, gave.
struct DocumentReading
{
    enum class State {
        Missing,
        Valid,
        Damaged,    ///< not the text of a document, or larger than `kLargestDocument`
        Unreadable, ///< not a regular file, or no permission to read it
        Unavailable ///< what it holds cannot be known here and now: out of file descriptors, a link that leads nowhere
    };
    State state = State::Unavailable;
    QByteArray content;
    std::optional<DocumentText::Values> values; ///< of a missing (no values) or valid document
    bool isIntact = true; ///< false of a valid document that something else than this library has written
    QString error;        ///< of a damaged or unavailable document: where and why

    /// True if the file holds no document and reading it again would not help.
    bool NeedsRecovery() const { return state == State::Damaged || state == State::Unreadable; }
};

DocumentReading ReadDocument(const QString& file);
/// Same, but takes every valid document for an intact one and sets `digest`, for `DocumentText::IsIntact`.
DocumentReading ReadDocumentUnchecked(const QString& file, QString& digest);

/// Replaces the content of `file` atomically and durably; see `WriteAtomically`. Returns why that failed, for people;
/// empty on success.
QString ReplaceDocument(const QString& file, const QByteArray& content);

/// A document that has been put aside.
struct Quarantined
{
    QString file;         ///< "<document>.damaged-<time>"
    bool isMoved = false; ///< the document's own name is gone
};

/// Puts a damaged or unreadable document aside, under a name beside it; `reading` is what reading it gave. It stays in
/// its place, so that no moment is without it; only what could not be read is moved. Call only while holding the
/// document's lock.
std::optional<Quarantined> QuarantineDocument(const QString& file, const DocumentReading& reading);

/// The names of the documents that were put aside beside `file`.
QStringList QuarantinedNames(const QString& file);

/// Undoes `QuarantineDocument`, as long as `file` has not been replaced.
void UndoQuarantine(const QString& file, const Quarantined& quarantined);

/// True if both names lead to the same file.
bool IsSameFile(const QString& one, const QString& other);
