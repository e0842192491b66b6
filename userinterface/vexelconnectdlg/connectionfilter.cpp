// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/connectionfilter.h"

#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/platedicon.h"

#include <QIcon>
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

/// Replaces unpaired surrogates, which the regular expression engine rejects, by the replacement character. A text that
/// was cut off may end with one.
QString WellFormed(const QString& text)
{
    if (text.isValidUtf16())
        return text;
    const QList<uint> characters = text.toUcs4();
    return QString::fromUcs4(reinterpret_cast<const char32_t*>(characters.constData()), characters.size());
}

/// Returns the expression that matches `text` literally. Writes null characters as "\x{0}", because digits after Qt's
/// short form would be read as part of the number.
QString Escaped(const QString& text)
{
    QStringList parts = text.split(QChar::Null);
    for (QString& part : parts)
        part = QRegularExpression::escape(part);
    return parts.join(QLatin1String("\\x{0}"));
}

/// Appends the set that begins at `begin` ("[") to `expression` and returns the position after it. An unclosed set
/// stays unclosed, which makes the expression invalid.
qsizetype TranslateSet(const QString& pattern, qsizetype begin, QString& expression)
{
    qsizetype i = begin + 1;
    expression += u'[';
    if (i < pattern.size() && pattern.at(i) == u'^')
        expression += pattern.at(i++);
    // A closing bracket at the start is a member of the set.
    bool first = true;
    for (; i < pattern.size() && (first || pattern.at(i) != u']'); ++i) {
        const QChar c = pattern.at(i);
        // Escape the last three, which would begin a named class such as "[:alpha:]", or an error.
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

/// Returns the non-empty parts of the pattern between its stars, each as an expression.
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

/// Matches each part at its first occurrence after the previous part, without backtracking: a part always matches the
/// same number of characters, so a later occurrence is never better. With backtracking, five stars and a name of fifty
/// characters would exceed the match limit.
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

// Backtracking limits per text. The first is far more than a reasonable expression needs for a name, and takes a
// fraction of a millisecond. Texts of many thousand characters need more steps; a list has only a few of them.
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
    // One step only: with a value further out no column is selected.
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
    if (role == Qt::AccessibleTextRole && index.isValid() && index.column() == ConnectionsModel::ColumnSelected)
        return data(index, Qt::EditRole).toBool() ? tr("selected") : tr("not selected");
    QVariant value = QSortFilterProxyModel::data(index, role);
    if (role == Qt::DisplayRole && value.metaType() == QMetaType::fromType<QString>())
        return Shortened(value.toString());
    if (role == Qt::DecorationRole && value.metaType() == QMetaType::fromType<QIcon>())
        return PlatedIcon(value.value<QIcon>());
    return value;
}

QVariant ConnectionFilterModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role == Qt::AccessibleTextRole && orientation == Qt::Horizontal && section == ConnectionsModel::ColumnSelected)
        return tr("Selected");
    return QSortFilterProxyModel::headerData(section, orientation, role);
}

bool ConnectionFilterModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                         const QModelIndex& parent)
{
    setDynamicSortFilter(false);
    const bool isDropped = QSortFilterProxyModel::dropMimeData(data, action, row, column, parent);
    setDynamicSortFilter(true);
    return isDropped;
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
    // No column selected: search all.
    for (int column = 0; column < columns; ++column)
        if (matches(column))
            return true;
    return false;
}
