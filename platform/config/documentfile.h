#pragma once

#include "platform/config/initext.h"

#include <QByteArray>
#include <QLockFile>
#include <QString>
#include <QtGlobal>

#include <memory>
#include <optional>

/// In bytes. What is larger was not made by any program that saves documents: it is damaged. The largest list that can
/// be imported takes half of this.
constexpr qint64 kLargestDocument = qint64{256} * 1024 * 1024;

/// The file of one document, treated so that nothing in it is lost: written whole, and never thrown away for being
/// damaged.
class DocumentFile
{
public:
    explicit DocumentFile(QString path);

    const QString& Path() const { return m_path; }

    enum class State {
        Missing,
        Whole,
        Damaged,    ///< not the text of a document, or too large for one
        Unreadable, ///< no file but something else, or not for us to read
        Unavailable ///< this process lacks what reading takes, such as descriptors; may be different soon
    };
    struct Reading
    {
        State state = State::Unavailable;
        QByteArray content;
        std::unique_ptr<IniText> text; ///< of a missing or whole document: its content, taken apart; else null
    };
    Reading Read() const;

    /// Takes the document's lock: nobody else changes the file, or anything that belongs to it, while the result
    /// lives. Creates the file's folder. Null when that could not be done in some seconds.
    std::unique_ptr<QLockFile> Lock() const;

    // The rest: only while holding the lock.

    /// Replaces the file's content at once and durably: at every moment the file is the old one or the new one.
    /// False: it is as it was.
    bool Replace(const QByteArray& content) const;

    /// Gives what is there a second name, beside it, which is returned; where the system allows it, the first name
    /// stays, so that there is never no file. Nothing when neither worked.
    std::optional<QString> Quarantine() const;
    /// Undoes that as long as the document has not been replaced.
    void UndoQuarantine(const QString& aside) const;

    /// Removes what killed processes left beside the file: they had not finished writing it.
    void RemoveLeftovers() const;

private:
    const QString m_path;
};

/// Reads any file that holds the text of a document. One without a single byte counts as whole.
DocumentFile::Reading ReadDocument(const QString& file);

/// Whether two names stand for one and the same file.
bool IsSameFile(const QString& one, const QString& other);
