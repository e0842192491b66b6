#include "userinterface/vexelconnectdlg/connectionfilter.h"

#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QStringList>

#include <algorithm>
#include <memory>
#include <utility>

namespace {

const QString kSettingsNode = QStringLiteral("FilterSettings");
const QString kColumnKey = QStringLiteral("Column");
const QString kPatternKey = QStringLiteral("FilterPattern");
const QString kSearchModeKey = QStringLiteral("SearchMode");

std::unique_ptr<ICfg> OpenSettings()
{
    return std::unique_ptr<ICfg>(CfgCenter::GetAppCfg(View::User)->OpenChild(kSettingsNode, 0));
}

/// The engine takes no text that holds half of a surrogate pair, as one cut off at some length may: a half counts as
/// the character for what is none.
QString WellFormed(const QString& text)
{
    if (text.isValidUtf16())
        return text;
    const QList<uint> characters = text.toUcs4();
    return QString::fromUcs4(reinterpret_cast<const char32_t*>(characters.constData()), characters.size());
}

/// `text` as an expression for itself. A null character is spelt in full: in the short form that Qt gives it, digits
/// behind it would become a part of its number.
QString Escaped(const QString& text)
{
    QStringList parts = text.split(QChar::Null);
    for (QString& part : parts)
        part = QRegularExpression::escape(part);
    return parts.join(QLatin1String("\\x{0}"));
}

/// Copies the set that begins at `begin` ("[") into `expression` and returns the position behind it. A set that is
/// never closed stays so, which makes the expression invalid.
qsizetype TranslateSet(const QString& pattern, qsizetype begin, QString& expression)
{
    qsizetype i = begin + 1;
    expression += u'[';
    if (i < pattern.size() && pattern.at(i) == u'^')
        expression += pattern.at(i++);
    // A closing bracket in the first place is a member of the set.
    bool first = true;
    for (; i < pattern.size() && (first || pattern.at(i) != u']'); ++i) {
        const QChar c = pattern.at(i);
        // The last three would begin a class of a name, as in "[:alpha:]", or an error.
        if (c == u'\\' || c == u'[' || c == u']' || c == u':' || c == u'.' || c == u'=')
            expression += u'\\';
        expression += c;
        first = false;
    }
    if (i < pattern.size()) {
        expression += u']';
        ++i;
    }
    return i;
}

/// The pattern's parts between its stars, each as an expression; without empty ones.
QStringList TranslateParts(const QString& pattern)
{
    QStringList parts;
    QString part;
    qsizetype i = 0;
    while (i < pattern.size()) {
        const QChar c = pattern.at(i);
        if (c == u'[') {
            i = TranslateSet(pattern, i, part);
            continue;
        }
        if (c == u'*')
            parts.append(std::exchange(part, QString()));
        else if (c == u'?')
            part += u'.';
        else if (c.isHighSurrogate() && i + 1 < pattern.size())
            part += Escaped(pattern.mid(i++, 2));
        else
            part += Escaped(c);
        ++i;
    }
    parts.append(part);
    parts.removeAll(QString());
    return parts;
}

/// Each part is looked for behind the one before, and taken where it is found first: as a part always matches equally
/// many characters, a later place is never a better one. Going back to look for one would take more steps than the
/// engine may do, with no more than five stars and a name of fifty characters.
QString TranslateWildcard(const QString& pattern)
{
    const QStringList parts = TranslateParts(pattern);
    if (parts.isEmpty())
        return {};
    QString expression = parts.constFirst();
    if (parts.size() > 1)
        expression += QLatin1String("(*COMMIT)");
    for (qsizetype i = 1; i < parts.size(); ++i)
        expression += QLatin1String("(?>.*?") + parts.at(i) + u')';
    return expression;
}

// How often the engine may step back within one text: far more than an honest expression does on a name, and over in
// a fraction of a millisecond. A text of many thousand characters, of which a list holds few, takes more steps by
// itself.
constexpr const char* kMatchLimit = "(*LIMIT_MATCH=20000)";
constexpr const char* kLongTextMatchLimit = "(*LIMIT_MATCH=2000000)";
constexpr qsizetype kLongText = 1000; // characters

constexpr qsizetype kLongestShownText = 500; // characters; wider than any screen

bool IsLineBreak(QChar c)
{
    return c == QLatin1Char('\n') || c == QLatin1Char('\r') || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

QString Shortened(const QString& text)
{
    const bool tooLong = text.size() > kLongestShownText;
    if (!tooLong && std::none_of(text.begin(), text.end(), IsLineBreak))
        return text;
    QString line = tooLong ? text.left(kLongestShownText) + QChar(0x2026) : text;
    std::replace_if(line.begin(), line.end(), IsLineBreak, QLatin1Char(' '));
    return line;
}

} // namespace

QRegularExpression FilterExpression(const QString& pattern, int mode)
{
    constexpr auto kOptions = QRegularExpression::CaseInsensitiveOption |
                              QRegularExpression::DotMatchesEverythingOption |
                              QRegularExpression::UseUnicodePropertiesOption;
    const QString text = WellFormed(pattern);
    switch (static_cast<SearchMode>(mode)) {
    case SearchMode::Wildcard:
        return QRegularExpression(TranslateWildcard(text), kOptions);
    case SearchMode::RegularExpression:
        return QRegularExpression(text, kOptions);
    case SearchMode::PlainText:
        break;
    }
    return QRegularExpression(Escaped(text), kOptions);
}

FilterSettings FilterSettings::Load()
{
    const auto node = OpenSettings();
    FilterSettings settings;
    settings.column = node->GetInt(kColumnKey, ConnectionsModel::ColumnName, 0);
    // One step only: a value further out leaves the choice without a current column.
    if (settings.column < 0)
        ++settings.column;
    else if (settings.column >= ConnectionsModel::kColumnCount)
        --settings.column;
    settings.pattern = node->GetString(kPatternKey, QString(), 0);
    settings.searchMode = node->GetInt(kSearchModeKey, 0, 0);
    if (settings.searchMode < 0 || settings.searchMode > static_cast<int>(SearchMode::RegularExpression))
        settings.searchMode = static_cast<int>(SearchMode::PlainText);
    return settings;
}

void FilterSettings::Save() const
{
    const auto node = OpenSettings();
    node->SetInt(kColumnKey, column, 0);
    node->SetString(kPatternKey, pattern, 0);
    node->SetInt(kSearchModeKey, searchMode, 0);
}

QVariant ConnectionFilterModel::data(const QModelIndex& index, int role) const
{
    QVariant value = QSortFilterProxyModel::data(index, role);
    if (role == Qt::DisplayRole && value.metaType() == QMetaType::fromType<QString>())
        return Shortened(value.toString());
    return value;
}

void ConnectionFilterModel::UpdateBounds() const
{
    const QRegularExpression expression = filterRegularExpression();
    if (expression != m_expression) {
        m_expression = expression;
        const auto bounded = [&expression](const char* limit) {
            return QRegularExpression(QLatin1String(limit) + expression.pattern(), expression.patternOptions());
        };
        m_forNames = bounded(kMatchLimit);
        m_forLongTexts = bounded(kLongTextMatchLimit);
    }
}

bool ConnectionFilterModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    UpdateBounds();
    if (m_expression.pattern().isEmpty())
        return true;
    if (!m_forNames.isValid())
        return false;
    const auto matches = [&](int column) {
        const QString text =
            WellFormed(sourceModel()->index(sourceRow, column, sourceParent).data(filterRole()).toString());
        return text.contains(text.size() > kLongText ? m_forLongTexts : m_forNames);
    };
    const int columns = sourceModel()->columnCount(sourceParent);
    if (filterKeyColumn() >= 0)
        return filterKeyColumn() >= columns || matches(filterKeyColumn());
    // No column chosen: any will do.
    for (int column = 0; column < columns; ++column)
        if (matches(column))
            return true;
    return false;
}
