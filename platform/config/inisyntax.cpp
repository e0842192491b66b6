#include "platform/config/inisyntax.h"

#include <QStringDecoder>
#include <QStringList>

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr std::array<std::pair<char, char>, 11> kEscapes = {{{'a', '\a'},
                                                             {'b', '\b'},
                                                             {'f', '\f'},
                                                             {'n', '\n'},
                                                             {'r', '\r'},
                                                             {'t', '\t'},
                                                             {'v', '\v'},
                                                             {'"', '"'},
                                                             {'?', '?'},
                                                             {'\'', '\''},
                                                             {'\\', '\\'}}};

// How values of types other than text begin; a bracket closes them.
constexpr std::array kOtherTypes = {"@Variant(", "@DateTime(", "@Invalid(", "@Rect(", "@Size(", "@Point("};

bool IsLineBreak(char byte)
{
    return byte == '\n' || byte == '\r';
}

bool IsBlank(char byte)
{
    return byte == ' ' || byte == '\t';
}

bool IsSpace(char byte)
{
    return IsBlank(byte) || IsLineBreak(byte);
}

/// Of a hexadecimal or, with `base` 8, octal digit; -1 for others.
int DigitOf(char byte, int base)
{
    int digit = -1;
    if (byte >= '0' && byte <= '9')
        digit = byte - '0';
    else if (byte >= 'a' && byte <= 'f')
        digit = byte - 'a' + 10;
    else if (byte >= 'A' && byte <= 'F')
        digit = byte - 'A' + 10;
    return digit < base ? digit : -1;
}

QByteArray Hex(ushort code, int width)
{
    return QByteArray::number(code, 16).toUpper().rightJustified(width, '0');
}

/// Reads one value, which may be a list.
class ValueReader
{
public:
    explicit ValueReader(QByteArrayView value)
        : m_value(value)
    {
    }

    /// More than one: a list.
    QStringList Read()
    {
        SkipBlanks();
        while (m_at < m_value.size())
            ReadPart();
        EndItem();
        return m_items;
    }

private:
    void ReadPart()
    {
        const char byte = m_value.at(m_at);
        if (byte == '\\') {
            ++m_at;
            ReadEscape();
            m_firstTrimmable = m_item.size();
        } else if (byte == '"') {
            ++m_at;
            m_isQuoted = true;
            m_isWithinQuotes = !m_isWithinQuotes;
            if (!m_isWithinQuotes)
                SkipBlanks();
        } else if (byte == ',' && !m_isWithinQuotes) {
            ++m_at;
            EndItem();
            SkipBlanks();
        } else {
            const qsizetype begin = m_at++;
            while (m_at < m_value.size() && m_value.at(m_at) != '\\' && m_value.at(m_at) != '"' &&
                   m_value.at(m_at) != ',')
                ++m_at;
            // A byte order mark is a character here, and not left out.
            QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
            m_item += decoder(m_value.sliced(begin, m_at - begin));
        }
    }

    void ReadEscape()
    {
        if (m_at == m_value.size())
            return;
        const char byte = m_value.at(m_at++);
        const auto* const known =
            std::find_if(kEscapes.begin(), kEscapes.end(), [byte](const auto& escape) { return escape.first == byte; });
        if (known != kEscapes.end()) {
            m_item += QLatin1Char(known->second);
        } else if (byte == 'x') {
            ReadNumber(16);
        } else if (DigitOf(byte, 8) >= 0) {
            --m_at;
            ReadNumber(8);
        } else if (IsLineBreak(byte) && m_at < m_value.size() && IsLineBreak(m_value.at(m_at)) &&
                   m_value.at(m_at) != byte) {
            ++m_at; // both bytes of one line's end
        }           // what means nothing is left out
    }

    void ReadNumber(int base)
    {
        if (m_at == m_value.size() || DigitOf(m_value.at(m_at), base) < 0)
            return;
        unsigned code = 0;
        for (; m_at < m_value.size() && DigitOf(m_value.at(m_at), base) >= 0; ++m_at)
            code = code * static_cast<unsigned>(base) + static_cast<unsigned>(DigitOf(m_value.at(m_at), base));
        m_item += QChar(static_cast<ushort>(code));
    }

    void SkipBlanks()
    {
        while (m_at < m_value.size() && IsBlank(m_value.at(m_at)))
            ++m_at;
        m_firstTrimmable = m_item.size();
    }

    void EndItem()
    {
        if (!m_isQuoted) {
            qsizetype size = m_item.size();
            while (size > m_firstTrimmable && (m_item.at(size - 1) == u' ' || m_item.at(size - 1) == u'\t'))
                --size;
            m_item.truncate(size);
        }
        m_items += std::exchange(m_item, QString());
        m_isQuoted = false;
    }

    const QByteArrayView m_value;
    qsizetype m_at = 0;
    QStringList m_items;
    QString m_item;
    qsizetype m_firstTrimmable = 0; // spaces before it are meant
    bool m_isQuoted = false;        // in part at least
    bool m_isWithinQuotes = false;
};

/// Nothing for what is of another type than text.
std::optional<QString> ReadItem(const QString& item)
{
    if (!item.startsWith(u'@'))
        return item;
    if (item.startsWith(QLatin1String("@@")))
        return item.mid(1);
    if (!item.endsWith(u')'))
        return item;
    const auto begins = [&](const char* beginning) {
        return item.startsWith(QLatin1String(beginning));
    };
    const QString content = item.mid(item.indexOf(u'(') + 1).chopped(1);
    if (begins("@String("))
        return content;
    if (begins("@ByteArray("))
        return QString::fromUtf8(content.toLatin1());
    return std::any_of(kOtherTypes.begin(), kOtherTypes.end(), begins) ? std::nullopt : std::optional(item);
}

/// As one item that `ReadItem` reads.
QString ItemOf(const QString& value)
{
    if (value.contains(QChar::Null))
        return QLatin1String("@String(") + value + u')';
    return value.startsWith(u'@') ? u'@' + value : value;
}

/// Whether it is spelled as a number: it is a control character, has no place in UTF-8, being half of a surrogate pair,
/// or would be dropped by other readers.
bool NeedsNumber(QStringView text, qsizetype i)
{
    const QChar character = text.at(i);
    if (character.isHighSurrogate())
        return i + 1 == text.size() || !text.at(i + 1).isLowSurrogate();
    if (character.isLowSurrogate())
        return i == 0 || !text.at(i - 1).isHighSurrogate();
    return character < u' ' || character == QChar::ByteOrderMark;
}

bool IsNameCharacter(QChar character)
{
    const ushort code = character.unicode();
    return (code >= 'a' && code <= 'z') || (code >= 'A' && code <= 'Z') || (code >= '0' && code <= '9') ||
           code == '_' || code == '-' || code == '.';
}

} // namespace

namespace IniSyntax {

std::optional<Lines::Line> Lines::Next()
{
    for (;;) {
        while (m_at < m_text.size() && IsSpace(m_text.at(m_at)))
            ++m_at;
        if (m_at == m_text.size())
            return std::nullopt;
        if (m_text.at(m_at) != ';')
            break;
        while (m_at < m_text.size() && !IsLineBreak(m_text.at(m_at)))
            ++m_at;
    }

    const qsizetype begin = m_at;
    Line line;
    bool isWithinQuotes = false;
    for (; m_at < m_text.size(); ++m_at) {
        const char byte = m_text.at(m_at);
        if (byte == '"') {
            isWithinQuotes = !isWithinQuotes;
        } else if (byte == '\\') {
            line.isBrokenOff = m_at + 1 == m_text.size();
            // Belongs to what follows, and a line's end of two bytes to both of them.
            const QByteArrayView rest = m_text.sliced(m_at + 1);
            m_at += rest.startsWith("\r\n") || rest.startsWith("\n\r") ? 2 : 1;
            if (m_at >= m_text.size())
                break;
        } else if (isWithinQuotes) {
            continue;
        } else if (byte == '=' && line.equals < 0) {
            line.equals = m_at - begin;
        } else if (IsLineBreak(byte) || byte == ';') {
            break;
        }
    }
    m_at = std::min(m_at, m_text.size());
    line.text = m_text.sliced(begin, m_at - begin);
    line.isBrokenOff = line.isBrokenOff || isWithinQuotes;
    return line;
}

QString ReadKey(QByteArrayView key)
{
    const QString text = QString::fromUtf8(key.trimmed());
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        if (character == u'\\') {
            result += u'/';
            continue;
        }
        if (character == u'%') {
            const bool isLong = i + 1 < text.size() && text.at(i + 1) == u'U';
            const qsizetype first = i + (isLong ? 2 : 1);
            const qsizetype digits = isLong ? 4 : 2;
            bool isNumber = false;
            const ushort code = first + digits <= text.size()
                                    ? QStringView(text).mid(first, digits).toUShort(&isNumber, 16)
                                    : ushort(0);
            if (isNumber) {
                result += QChar(code);
                i = first + digits - 1;
                continue;
            }
        }
        result += character;
    }
    return result;
}

QByteArray WriteKey(QStringView key)
{
    QByteArray result;
    result.reserve(key.size());
    for (const QChar character : key)
        if (character == u'/')
            result += '\\';
        else if (IsNameCharacter(character))
            result += character.toLatin1();
        else if (character.unicode() <= 0xff)
            result += '%' + Hex(character.unicode(), 2);
        else
            result += "%U" + Hex(character.unicode(), 4);
    if (result.endsWith('\\')) { // would take the equals sign behind it with it
        result.chop(1);
        result += "%2F";
    }
    return result;
}

std::optional<QString> ReadValue(QByteArrayView value)
{
    const QStringList items = ValueReader(value).Read();
    if (items.size() == 1)
        return ReadItem(items.constFirst());
    QStringList texts;
    for (const QString& item : items)
        texts += ReadItem(item).value_or(QString());
    return texts.join(QStringLiteral(", "));
}

QByteArray WriteValue(const QString& value)
{
    // Whole lists are stored in hexadecimal: megabytes of what every reader takes as it stands.
    if (std::all_of(value.cbegin(), value.cend(), IsNameCharacter))
        return value.toLatin1();
    const QString item = ItemOf(value);
    bool needsQuotes = item.startsWith(u' ') || item.endsWith(u' ');
    bool isAfterNumber = false; // a digit would be taken for one of the number's
    QString result;
    result.reserve(item.size() + 2);
    for (qsizetype i = 0; i < item.size(); ++i) {
        const QChar character = item.at(i);
        needsQuotes = needsQuotes || character == u';' || character == u',' || character == u'=';
        const auto* const known = std::find_if(kEscapes.begin(), kEscapes.end(), [&](const auto& escape) {
            return QLatin1Char(escape.second) == character && escape.second != '?' && escape.second != '\'';
        });
        if (known != kEscapes.end()) {
            result += u'\\';
            result += QLatin1Char(known->first);
            isAfterNumber = false;
        } else if (NeedsNumber(item, i) || (isAfterNumber && DigitOf(character.toLatin1(), 16) >= 0)) {
            result += character.isNull() ? QStringLiteral("\\0")
                                         : QLatin1String("\\x") + QString::number(character.unicode(), 16);
            isAfterNumber = true;
        } else {
            result += character;
            isAfterNumber = false;
        }
    }
    return (needsQuotes ? u'"' + result + u'"' : result).toUtf8();
}

QByteArray Closed(QByteArrayView value)
{
    bool isWithinQuotes = false;
    qsizetype at = 0;
    for (; at < value.size(); ++at)
        if (value.at(at) == '"')
            isWithinQuotes = !isWithinQuotes;
        else if (value.at(at) == '\\' && ++at == value.size())
            return value.toByteArray() + (isWithinQuotes ? " \"" : " "); // an escaped space means nothing
    return value.toByteArray() + (isWithinQuotes ? "\"" : "");
}

} // namespace IniSyntax
