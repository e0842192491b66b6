#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

/// The lines, keys and values of a text in the form in which `QSettings` writes and reads `IniFormat`. Texts go between
/// the two in both directions.
namespace IniSyntax {

/// Takes a text apart into what means something: comments and empty lines are left out, and what a quotation mark or a
/// backslash holds together is one line.
class Lines
{
public:
    /// `text` must outlive the object.
    explicit Lines(QByteArrayView text)
        : m_text(text)
    {
    }

    struct Line
    {
        QByteArrayView text;
        qsizetype equals = -1;    // place of the sign between key and value; -1: there is none
        bool isBrokenOff = false; // the text ended inside of quotation marks or after a backslash
    };
    std::optional<Line> Next();

private:
    const QByteArrayView m_text;
    qsizetype m_at = 0;
};

/// What is written before the equals sign, or within a section's brackets.
QString ReadKey(QByteArrayView key);
QByteArray WriteKey(QStringView key);

/// What is written behind the equals sign; nothing where that is of another type than text. A list is the text that
/// somebody has typed without quotation marks.
std::optional<QString> ReadValue(QByteArrayView value);
QByteArray WriteValue(const QString& value);

/// The same with an end to what the text's end broke off, so that another line can follow.
QByteArray Closed(QByteArrayView value);

} // namespace IniSyntax
