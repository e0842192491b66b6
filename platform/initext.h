#pragma once

#include <QByteArray>
#include <QHash>
#include <QMap>
#include <QSet>
#include <QSettings>
#include <QString>
#include <QTemporaryDir>

#include <memory>
#include <optional>

/// The text of one document, taken apart and put together again by `QSettings`.
///
/// `QSettings` works on a file; it is given a private copy instead of the document's own. On the document's file it
/// would write by itself through the event loop and when it is destroyed, would write what failed before at some later
/// time, and would miss another process's change that left the file's size and time stamp as they were.
///
/// A text that ends too early would still be one to QSettings. So the first line of what is written here, a comment,
/// says that there is a last one, and a text with that first line and without the last one is damaged, wherever it was
/// cut off. A program that uses QSettings directly drops both lines, and its text counts as whole.
class IniText
{
public:
    explicit IniText(const QByteArray& text);
    ~IniText();

    IniText(const IniText&) = delete;
    IniText& operator=(const IniText&) = delete;

    enum class State {
        Whole,
        Damaged,    ///< not the text of a document
        Unavailable ///< no room for the private copy
    };
    State GetState() const { return m_state; }

    /// Every key path with its value. Values that somebody else wrote and that are no text are left out (and kept).
    QMap<QString, QString> Values() const;
    /// Whether the text held nothing when it was taken apart.
    bool IsEmpty() const { return m_keys.isEmpty(); }

    void Set(const QString& path, const QString& value);
    /// Removes the key at `path` and everything below it.
    void Remove(const QString& path);

    /// The document's text with all changes; nothing when it could not be made.
    std::optional<QByteArray> Text();

private:
    void Learn();
    void Note(const QString& spelling);
    QString Spell(const QString& path);
    QString SpellNode(const QString& path);

    QTemporaryDir m_directory;
    QString m_file;
    std::unique_ptr<QSettings> m_settings;
    State m_state = State::Unavailable;
    bool m_isBlank = false; // no text at all
    QSet<QString> m_keys;   // as the text spelled them at first

    // Learned when the first name turns up that the text does not have: most saves come without one.
    bool m_isLearned = false;
    QHash<QString, QString> m_taken;     // spelling of a key or node, in lower case -> key path
    QHash<QString, QString> m_spellings; // key path -> spelling, where the two differ
    QString m_lastNode;                  // keys come node by node
    QString m_lastNodeSpelling;
};
