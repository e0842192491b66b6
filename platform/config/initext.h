#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QHash>
#include <QMap>
#include <QString>

/// The text of one document, taken apart and put together again, in memory alone: a document can be read where nothing
/// can be written, while `QSettings` reads and writes named files alone. The form is that of `QSettings`, so that
/// programs which use it directly fit in. Values that nobody has set stay as they were written, byte for byte; comments
/// and empty lines go with the first change.
///
/// A text that ends too early would still be one in this form. So the first line of what is written here, a comment,
/// says that there is a last one, and a text with that first line and without the last one is damaged, wherever it was
/// cut off. A program that uses `QSettings` drops both lines, and its text counts as whole.
class IniText
{
public:
    explicit IniText(const QByteArray& text);

    IniText(const IniText&) = delete;
    IniText& operator=(const IniText&) = delete;

    /// Whether this is no text of a document; it then counts as empty.
    bool IsDamaged() const { return m_isDamaged; }

    /// Every key path with its value. Values that somebody else wrote and that are no text are left out (and kept).
    QMap<QString, QString> Values() const;
    /// Whether the text held nothing when it was taken apart.
    bool IsEmpty() const { return m_wasEmpty; }

    void Set(const QString& path, const QString& value);
    /// Removes the key at `path` and everything below it.
    void Remove(const QString& path);

    /// The document's text with all changes.
    QByteArray Text() const;

private:
    struct Value
    {
        QByteArray text; // as written
        int place = 0;   // by which values and sections follow each other
    };

    bool TakeApart(QByteArrayView text);
    QByteArray PutTogether(QByteArrayView lineEnd) const;
    void RemoveSpelling(const QString& spelling);
    void Learn();
    void Note(const QString& spelling);
    QString Spell(const QString& path);
    QString SpellNode(const QString& path);

    QMap<QString, Value> m_values; // by spelling: a section's name, if any, and a key's, as QSettings joins them
    QByteArray m_body;             // what it was taken apart from
    int m_nextPlace = 0;
    bool m_isDamaged = false;
    bool m_isBlank = false; // no text at all
    bool m_wasEmpty = true;
    bool m_isChanged = false;
    bool m_hasSpellings = false; // of keys or nodes that are not written as their paths

    // Learned when the first name turns up that the text does not have: most saves come without one.
    bool m_isLearned = false;
    QHash<QString, QString> m_taken;     // spelling of a key or node, in lower case -> key path
    QHash<QString, QString> m_spellings; // key path -> spelling, where the two differ
    QString m_lastNode;                  // keys come node by node
    QString m_lastNodeSpelling;
};
