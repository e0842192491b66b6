#include "platform/initext.h"

#include "platform/confignames.h"

#include <QFile>
#include <QVariantMap>

#include <utility>

namespace {

// Holds a value that the file's encoding cannot carry.
const QString kWrapped = QStringLiteral("text");

constexpr QByteArrayView kByteOrderMark("\xef\xbb\xbf");

constexpr QByteArrayView kFirstLine("; The last line of this file tells that none of it is missing. Please keep both.");
constexpr QByteArrayView kLastLine("; end of file");

/// A text without the two lines that tell that it is whole.
struct Body
{
    QByteArray text;
    bool isCutOff = false; // the first of the two was there, and the second was not
};

bool IsLineEnd(QByteArrayView text)
{
    return text.startsWith('\n') || text.startsWith("\r\n");
}

QByteArrayView AfterLineEnd(QByteArrayView text)
{
    const qsizetype end = text.indexOf('\n');
    return end < 0 ? QByteArrayView() : text.sliced(end + 1);
}

Body BodyOf(QByteArrayView text)
{
    // Some editors put a mark at the beginning, which QSettings takes for a line that says nothing.
    if (text.startsWith(kByteOrderMark))
        text = text.sliced(kByteOrderMark.size());
    if (!text.startsWith(kFirstLine))
        return {text.toByteArray(), !text.isEmpty() && kFirstLine.startsWith(text)};

    const QByteArrayView rest = text.sliced(kFirstLine.size());
    const bool isLineEndHalved = rest == QByteArrayView("\r");
    if (!rest.isEmpty() && !IsLineEnd(rest) && !isLineEndHalved)
        return {text.toByteArray(), false}; // somebody made something else of the line
    text = AfterLineEnd(rest);

    // From the end, as the lines before can be long. Somebody may have typed more behind it.
    for (qsizetype at = text.lastIndexOf(kLastLine); at >= 0; at = text.first(at).lastIndexOf(kLastLine)) {
        const QByteArrayView behind = text.sliced(at + kLastLine.size());
        if ((at == 0 || text.at(at - 1) == '\n') && (behind.isEmpty() || IsLineEnd(behind)))
            return {text.first(at).toByteArray() + AfterLineEnd(behind).toByteArray(), false};
    }
    return {{}, true};
}

QVariant ToVariant(const QString& value)
{
    // The file is UTF-8: half of a surrogate pair has no place there, and a leading byte order mark is dropped on
    // reading. QSettings writes types that it does not know through QDataStream, which carries any string.
    if (!value.isValidUtf16() || value.startsWith(QChar::ByteOrderMark))
        return QVariantMap{{kWrapped, value}};
    return value;
}

/// The key path that the text spells so; nothing for a spelling that somebody typed and QSettings cannot find again.
std::optional<QString> PathOf(const QString& spelling)
{
    if (spelling.isEmpty() || spelling.startsWith(u'/') || spelling.endsWith(u'/') ||
        spelling.contains(QLatin1String("//")))
        return std::nullopt;
    if (!spelling.contains(u'%') && !spelling.contains(u'\\'))
        return spelling; // a step without these two means itself

    QStringList steps = spelling.split(u'/');
    for (QString& step : steps)
        step = ConfigNames::ToStep(ConfigNames::FromStep(step));
    return steps.join(u'/');
}

std::optional<QString> FromVariant(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QVariantMap: {
        const QVariantMap map = value.toMap();
        const auto wrapped = map.constFind(kWrapped);
        return wrapped == map.cend() ? std::nullopt : std::optional(wrapped->toString());
    }
    case QMetaType::QStringList:
    case QMetaType::QVariantList:
        // Somebody typed a text with commas and no quotes.
        return value.toStringList().join(QStringLiteral(", "));
    default:
        return value.canConvert<QString>() ? std::optional(value.toString()) : std::nullopt;
    }
}

} // namespace

IniText::IniText(const QByteArray& text)
    : m_file(m_directory.filePath(QStringLiteral("document.ini")))
{
    if (text.contains('\0') || !text.isValidUtf8()) {
        m_state = State::Damaged;
        return;
    }
    const Body body = BodyOf(text);
    if (body.isCutOff) {
        m_state = State::Damaged;
        return;
    }
    if (!m_directory.isValid())
        return;
    m_isBlank = text.isEmpty();
    if (!m_isBlank) {
        QFile copy(m_file);
        if (!copy.open(QIODevice::WriteOnly) || copy.write(body.text) != body.text.size() || !copy.flush())
            return;
    }

    m_settings = std::make_unique<QSettings>(m_file, QSettings::IniFormat);
    const QStringList spellings = m_settings->allKeys(); // reads all of it, so the status is final
    if (m_settings->status() != QSettings::NoError) {
        m_state = m_settings->status() == QSettings::FormatError ? State::Damaged : State::Unavailable;
        return;
    }
    m_keys = QSet<QString>(spellings.cbegin(), spellings.cend());
    m_state = State::Whole;
}

IniText::~IniText()
{
    // QSettings keeps what it read of a file for the next one who asks, for as long as the process lives. Nobody will
    // ask for this file again; finding it gone lets go of that.
    if (m_settings) {
        QFile::remove(m_file);
        m_settings->sync();
    }
}

QMap<QString, QString> IniText::Values() const
{
    QMap<QString, QString> values;
    const QStringList spellings = m_settings->allKeys();
    for (const QString& spelling : spellings) {
        const auto path = PathOf(spelling);
        const auto value = path ? FromVariant(m_settings->value(spelling)) : std::nullopt;
        if (value)
            values.insert(values.cend(), *path, *value); // sorted nearly alike
    }
    return values;
}

void IniText::Set(const QString& path, const QString& value)
{
    m_settings->setValue(Spell(path), ToVariant(value));
}

void IniText::Remove(const QString& path)
{
    m_settings->remove(Spell(path));
}

std::optional<QByteArray> IniText::Text()
{
    m_settings->sync();
    if (m_settings->status() != QSettings::NoError)
        return std::nullopt;

    QFile copy(m_file);
    QByteArray body;
    if (copy.exists()) {
        if (!copy.open(QIODevice::ReadOnly))
            return std::nullopt;
        body = copy.readAll();
        if (copy.error() != QFileDevice::NoError)
            return std::nullopt;
    }
    if (m_isBlank && body.isEmpty())
        return QByteArray();

    if (!body.isEmpty() && !body.endsWith('\n'))
        body += '\n';
    const QByteArray lineEnd = body.contains("\r\n") ? "\r\n" : "\n";
    return kFirstLine.toByteArray() + lineEnd + body + kLastLine.toByteArray() + lineEnd;
}

void IniText::Learn()
{
    if (std::exchange(m_isLearned, true))
        return;
    for (const QString& spelling : std::as_const(m_keys))
        Note(spelling);
}

void IniText::Note(const QString& spelling)
{
    const auto path = PathOf(spelling);
    if (!path)
        return;

    m_taken.insert(spelling.toLower(), *path);
    if (*path != spelling)
        m_spellings.insert(*path, spelling);

    // And the nodes on the way to it, unless a key beside it has led through them already.
    const qsizetype slash = spelling.lastIndexOf(u'/');
    if (slash > 0 && !m_taken.contains(spelling.left(slash).toLower()))
        Note(spelling.left(slash));
}

// Some platforms take key and section names that differ in case only for the same. The second of two such names is
// spelled in numbers. On all platforms, so that a file can move between them.
QString IniText::Spell(const QString& path)
{
    if (m_keys.contains(path))
        return path;

    Learn();
    const auto known = m_spellings.constFind(path);
    if (known != m_spellings.cend())
        return *known;

    const qsizetype slash = path.lastIndexOf(u'/');
    const QString step = path.mid(slash + 1);
    const QString node = slash < 0 ? QString() : SpellNode(path.left(slash)) + u'/';

    QString spelling = node + step;
    const QString lower = spelling.toLower();
    const auto owner = m_taken.constFind(lower);
    if (owner != m_taken.cend() && *owner == path)
        return spelling;

    // The section of that name is where the format puts the root's keys.
    const bool isReserved = node.isEmpty() && lower == QLatin1String("general");
    if (isReserved || owner != m_taken.cend()) {
        spelling = node + ConfigNames::ToEscapedStep(ConfigNames::FromStep(step));
        m_taken.insert(spelling.toLower(), path);
    } else {
        m_taken.insert(lower, path);
    }
    if (spelling != path)
        m_spellings.insert(path, spelling);
    return spelling;
}

QString IniText::SpellNode(const QString& path)
{
    if (path != m_lastNode) {
        m_lastNodeSpelling = Spell(path);
        m_lastNode = path;
    }
    return m_lastNodeSpelling;
}
