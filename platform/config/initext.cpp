#include "platform/config/initext.h"

#include "platform/config/confignames.h"
#include "platform/config/inisyntax.h"

#include <QStringList>

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace {

// The section of this name holds the keys that belong to none; one that is really called so is spelled otherwise.
constexpr QByteArrayView kNoSection("general");
constexpr QByteArrayView kSectionGeneral("%general");

// No program keeps its keys deeper. What somebody has typed deeper is kept and read, and not learned.
constexpr qsizetype kMostSteps = 64;

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
    // Some editors put a mark at the beginning, which says nothing.
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

/// Whether no step of it is spelled in numbers.
bool MeansItself(const QString& spelling)
{
    return !spelling.contains(u'%') && !spelling.contains(u'\\');
}

/// The key path that the text spells so; nothing for a spelling that somebody typed and no program can ask for.
std::optional<QString> PathOf(const QString& spelling)
{
    if (spelling.isEmpty() || spelling.startsWith(u'/') || spelling.endsWith(u'/') ||
        spelling.contains(QLatin1String("//")))
        return std::nullopt;
    if (MeansItself(spelling))
        return spelling;

    QStringList steps = spelling.split(u'/');
    for (QString& step : steps)
        step = ConfigNames::ToStep(ConfigNames::FromStep(step));
    return steps.join(u'/');
}

/// How many characters of a spelling are its section's name; 0: it belongs to none. The rest begins behind a slash.
qsizetype SectionSize(const QString& spelling)
{
    return qMax(qsizetype(0), spelling.indexOf(u'/'));
}

/// What the keys of the section with this text between its brackets are spelled with at first.
QString SectionBeginning(QByteArrayView name)
{
    if (name.compare(kNoSection, Qt::CaseInsensitive) == 0)
        return {};
    if (name.compare(kSectionGeneral, Qt::CaseInsensitive) == 0)
        return QString::fromLatin1(name.sliced(1)) + u'/';
    return IniSyntax::ReadKey(name) + u'/';
}

QByteArray SectionName(QStringView section)
{
    if (section.isEmpty())
        return "General";
    const QByteArray name = IniSyntax::WriteKey(section);
    return name.compare(kNoSection, Qt::CaseInsensitive) == 0 ? '%' + name : name;
}

} // namespace

IniText::IniText(const QByteArray& text)
{
    m_isBlank = text.isEmpty();
    Body body;
    m_isDamaged = text.contains('\0') || !text.isValidUtf8();
    if (!m_isDamaged) {
        body = BodyOf(text);
        m_isDamaged = body.isCutOff || !TakeApart(body.text);
    }
    if (m_isDamaged)
        m_values.clear();
    else
        m_body = std::move(body.text);
    m_wasEmpty = m_values.isEmpty();
}

/// False where the text is no text of a document.
bool IniText::TakeApart(QByteArrayView text)
{
    QString section;
    IniSyntax::Lines lines(text);
    while (const auto line = lines.Next()) {
        if (line->text.startsWith('[')) {
            const qsizetype end = line->text.indexOf(']');
            if (end < 0)
                return false;
            section = SectionBeginning(line->text.sliced(1, end - 1).trimmed());
            continue;
        }
        if (line->equals < 0)
            return false;
        const QByteArrayView value = line->text.sliced(line->equals + 1);
        const QString spelling = section + IniSyntax::ReadKey(line->text.first(line->equals));
        m_values.insert(spelling, {line->isBrokenOff ? IniSyntax::Closed(value) : value.toByteArray(), m_nextPlace++});
        m_isChanged = m_isChanged || line->isBrokenOff; // or the text's last line would belong to it
        m_hasSpellings = m_hasSpellings || !MeansItself(spelling);
    }
    return true;
}

QMap<QString, QString> IniText::Values() const
{
    QMap<QString, QString> values;
    for (auto it = m_values.cbegin(); it != m_values.cend(); ++it) {
        const auto path = PathOf(it.key());
        const auto value = path ? IniSyntax::ReadValue(it->text) : std::nullopt;
        if (value)
            values.insert(values.cend(), *path, *value); // sorted nearly alike
    }
    return values;
}

void IniText::Set(const QString& path, const QString& value)
{
    const QString spelling = Spell(path);
    const auto known = m_values.constFind(spelling);
    const int place = known == m_values.cend() ? m_nextPlace++ : known->place;
    m_values.insert(spelling, {IniSyntax::WriteValue(value), place});
    m_isChanged = true;
}

void IniText::Remove(const QString& path)
{
    RemoveSpelling(path);
    if (!m_hasSpellings)
        return;
    Learn();
    const auto known = m_spellings.constFind(path);
    if (known != m_spellings.cend())
        RemoveSpelling(*known);
}

void IniText::RemoveSpelling(const QString& spelling)
{
    m_isChanged = m_values.remove(spelling) > 0 || m_isChanged;
    const QString beginning = spelling + u'/';
    for (auto it = m_values.lowerBound(beginning); it != m_values.end() && it.key().startsWith(beginning);) {
        it = m_values.erase(it);
        m_isChanged = true;
    }
}

QByteArray IniText::Text() const
{
    const QByteArray lineEnd = m_body.contains("\r\n") ? "\r\n" : "\n";
    QByteArray body = m_isChanged ? PutTogether(lineEnd) : m_body;
    if (m_isBlank && body.isEmpty())
        return {};
    if (!body.isEmpty() && !body.endsWith('\n'))
        body += lineEnd;
    return kFirstLine.toByteArray() + lineEnd + body + kLastLine.toByteArray() + lineEnd;
}

QByteArray IniText::PutTogether(QByteArrayView lineEnd) const
{
    struct Key
    {
        int sectionPlace;
        int place;
        QStringView section;
        QStringView name;
        const QByteArray* value;
    };
    std::vector<Key> keys;
    keys.reserve(static_cast<std::size_t>(m_values.size()));
    QHash<QStringView, int> sectionPlaces;
    for (auto it = m_values.cbegin(); it != m_values.cend(); ++it) {
        const qsizetype size = SectionSize(it.key());
        const QStringView spelling(it.key());
        keys.push_back({0, it->place, spelling.first(size), spelling.sliced(size > 0 ? size + 1 : 0), &it->text});
        const auto known = sectionPlaces.find(spelling.first(size));
        if (known == sectionPlaces.end())
            sectionPlaces.insert(spelling.first(size), size > 0 ? it->place : -1);
        else
            *known = qMin(*known, it->place);
    }
    for (Key& key : keys)
        key.sectionPlace = sectionPlaces.value(key.section);
    std::sort(keys.begin(), keys.end(), [](const Key& one, const Key& other) {
        return std::pair(one.sectionPlace, one.place) < std::pair(other.sectionPlace, other.place);
    });

    QByteArray text;
    const Key* before = nullptr;
    for (const Key& key : keys) {
        if (!before || before->section != key.section) {
            if (before)
                text += lineEnd;
            text += '[' + SectionName(key.section) + ']' + lineEnd.toByteArray();
        }
        text += IniSyntax::WriteKey(key.name) + '=' + *key.value;
        if (key.value->endsWith('\r') || key.value->endsWith('\n')) // escaped, and this line's end would be, too
            text += "\\ ";                                          // means nothing
        text += lineEnd;
        before = &key;
    }
    return text;
}

void IniText::Learn()
{
    if (std::exchange(m_isLearned, true))
        return;
    for (auto it = m_values.cbegin(); it != m_values.cend(); ++it)
        Note(it.key());
}

void IniText::Note(const QString& spelling)
{
    const auto path = PathOf(spelling);
    if (!path || spelling.count(u'/') >= kMostSteps)
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
    if (m_values.contains(path))
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
    if (spelling != path) {
        m_spellings.insert(path, spelling);
        m_hasSpellings = true;
    }
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
