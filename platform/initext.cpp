#include "platform/initext.h"

#include "platform/confignames.h"

#include <QFile>
#include <QVariantMap>

#include <utility>

namespace {

// Holds a value that the file's encoding cannot carry.
const QString kWrapped = QStringLiteral("text");

constexpr QByteArrayView kByteOrderMark("\xef\xbb\xbf");

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
    if (!m_directory.isValid())
        return;
    if (!text.isEmpty()) {
        // Some editors put a mark at the beginning, which QSettings takes for a line that says nothing.
        const QByteArray body = text.startsWith(kByteOrderMark) ? text.mid(kByteOrderMark.size()) : text;
        QFile copy(m_file);
        if (!copy.open(QIODevice::WriteOnly) || copy.write(body) != body.size() || !copy.flush())
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
    if (!copy.exists())
        return QByteArray();
    if (!copy.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray text = copy.readAll();
    return copy.error() == QFileDevice::NoError ? std::optional(text) : std::nullopt;
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
