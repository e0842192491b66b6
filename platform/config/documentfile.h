#pragma once

#include "platform/config/documenttext.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <optional>

/// The largest document that is read or written, in bytes. The largest list that can be imported takes half of it.
constexpr qint64 kLargestDocument = qint64{256} * 1024 * 1024;

/// What reading a document's file, or one of its versions, gave.
struct DocumentReading
{
    enum class State {
        Missing,
        Valid,
        Damaged,    ///< not the text of a document, or larger than `kLargestDocument`
        Unreadable, ///< not a regular file, or no permission to read it
        Unavailable ///< the process has run out of a resource, such as file descriptors; may pass
    };
    State state = State::Unavailable;
    QByteArray content;
    std::optional<DocumentText::Values> values; ///< of a missing (no values) or valid document
    QString error;                              ///< of a damaged document: where and why

    /// True if the file holds no document and reading it again would not help.
    bool NeedsRecovery() const { return state == State::Damaged || state == State::Unreadable; }
};

DocumentReading ReadDocument(const QString& file);

/// Replaces the content of `file` atomically and durably; see `WriteAtomically`.
bool ReplaceDocument(const QString& file, const QByteArray& content);

/// Gives a damaged or unreadable document a second name beside it, "<file>.damaged-<time>", and returns that name.
/// Where the file system has hard links, the first name stays valid until the document is replaced. Call only while
/// holding the document's lock.
std::optional<QString> QuarantineDocument(const QString& file);

/// Undoes `QuarantineDocument`, as long as `file` has not been replaced.
void UndoQuarantine(const QString& file, const QString& quarantined);

/// True if both names lead to the same file.
bool IsSameFile(const QString& one, const QString& other);
