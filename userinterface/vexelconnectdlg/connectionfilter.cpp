// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/connectionfilter.h"

#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/platedicon.h"

#include <QIcon>
#include <QItemSelectionModel>
#include <QStringList>

#include <algorithm>
#include <memory>
#include <tuple>
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

/// Returns the texts that a pattern searches one after the other, or none if it needs the regular expression engine.
///
/// Only for ASCII patterns: with others, QStringMatcher folds the case of some characters differently.
std::optional<std::vector<QStringMatcher>> Literals(const QString& pattern, int mode)
{
    const QLatin1String special(mode == static_cast<int>(SearchMode::Wildcard)            ? "?["
                                : mode == static_cast<int>(SearchMode::RegularExpression) ? "\\^$.|?*+()[{"
                                                                                          : "");
    const auto isLiteral = [special](QChar c) {
        return c.unicode() < 0x80 && !special.contains(c);
    };
    if (!std::all_of(pattern.begin(), pattern.end(), isLiteral))
        return std::nullopt;
    const QStringList parts =
        mode == static_cast<int>(SearchMode::Wildcard) ? pattern.split(u'*', Qt::SkipEmptyParts) : QStringList(pattern);
    std::vector<QStringMatcher> literals;
    for (const QString& part : parts)
        literals.emplace_back(part, Qt::CaseInsensitive);
    return literals;
}

/// A selected part of a row.
struct SelectedCells
{
    int row = 0;
    int firstColumn = 0;
    int lastColumn = 0;
};

std::vector<SelectedCells> CellsOf(const QItemSelection& selection)
{
    std::vector<SelectedCells> cells;
    for (const QItemSelectionRange& range : selection)
        for (int row = range.top(); row <= range.bottom(); ++row)
            cells.push_back({row, range.left(), range.right()});
    return cells;
}

QItemSelection SelectionOf(const QAbstractItemModel& model, std::vector<SelectedCells> cells)
{
    const auto key = [](const SelectedCells& each) {
        return std::tuple(each.firstColumn, each.lastColumn, each.row);
    };
    std::sort(cells.begin(), cells.end(),
              [key](const SelectedCells& left, const SelectedCells& right) { return key(left) < key(right); });
    QItemSelection selection;
    for (auto first = cells.begin(), next = first; first != cells.end(); first = next) {
        SelectedCells last = *first;
        for (++next; next != cells.end() && key(*next) == key({last.row + 1, last.firstColumn, last.lastColumn});
             ++next)
            last = *next;
        selection.append({model.index(first->row, first->firstColumn), model.index(last.row, last.lastColumn)});
    }
    return selection;
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

ConnectionFilterModel::ConnectionFilterModel(QObject* parent)
    : QSortFilterProxyModel(parent)
{
    // The first includes all sorting.
    connect(this, &QAbstractItemModel::layoutAboutToBeChanged, this, [this] {
        if (m_accepted.empty())
            ForgetOrder();
    });
    connect(this, &QAbstractItemModel::modelAboutToBeReset, this, &ConnectionFilterModel::ForgetOrder);
}

void ConnectionFilterModel::setSourceModel(QAbstractItemModel* model)
{
    for (const QMetaObject::Connection& connection : std::exchange(m_sourceConnections, {}))
        disconnect(connection);
    QSortFilterProxyModel::setSourceModel(model);
    if (!model)
        return;
    const auto dataChanged = [this](const QModelIndex& topLeft, const QModelIndex& bottomRight) {
        if (topLeft.column() <= sortColumn() && sortColumn() <= bottomRight.column())
            ForgetOrder();
    };
    m_sourceConnections = {
        connect(model, &QAbstractItemModel::rowsInserted, this, &ConnectionFilterModel::ForgetOrder),
        connect(model, &QAbstractItemModel::rowsRemoved, this, &ConnectionFilterModel::ForgetOrder),
        connect(model, &QAbstractItemModel::dataChanged, this, dataChanged),
    };
}

void ConnectionFilterModel::SetFilter(int column, const QString& pattern, int mode, QItemSelectionModel* selection)
{
    const std::vector<int> shown = ShownRows();
    std::vector<bool> accepted(static_cast<std::size_t>(sourceModel()->rowCount()));
    for (const int row : shown)
        accepted[static_cast<std::size_t>(row)] = true;

    // The base class must not notice a change before all rows have been matched.
    m_accepted = accepted;
    setFilterKeyColumn(column);
    setFilterRegularExpression(FilterExpression(pattern, mode));
    UpdateMatcher();
    m_literals = Literals(pattern, mode);
    for (std::size_t row = 0; row < m_accepted.size(); ++row)
        m_accepted[row] = MatchesRow(static_cast<int>(row), QModelIndex());
    if (m_accepted == accepted) {
        m_accepted.clear();
        return;
    }

    if (shown.size() == accepted.size())
        RememberOrder(shown);
    // Qt's selection would keep only enabled cells, and take the wrong rows if all were selected.
    QPersistentModelIndex current;
    std::vector<SelectedCells> selected;
    if (selection) {
        current = NextCurrent(shown, selection->currentIndex());
        selected = CellsOf(selection->selection());
        selection->clearSelection();
    }
    invalidate();
    rowCount(); // maps the rows, if no view has
    m_accepted.clear();
    if (rowCount() == sourceModel()->rowCount())
        ForgetOrder();

    for (SelectedCells& cells : selected)
        cells.row = mapFromSource(sourceModel()->index(shown[static_cast<std::size_t>(cells.row)], 0)).row();
    std::erase_if(selected, [](const SelectedCells& cells) { return cells.row < 0; });
    if (!selected.empty())
        selection->select(SelectionOf(*this, selected), QItemSelectionModel::Select);
    if (current.isValid())
        selection->setCurrentIndex(mapFromSource(current), QItemSelectionModel::NoUpdate);
}

std::vector<int> ConnectionFilterModel::ShownRows() const
{
    std::vector<int> rows(static_cast<std::size_t>(rowCount()));
    for (std::size_t row = 0; row < rows.size(); ++row)
        rows[row] = mapToSource(index(static_cast<int>(row), 0)).row();
    return rows;
}

QModelIndex ConnectionFilterModel::NextCurrent(const std::vector<int>& shown, const QModelIndex& current) const
{
    const auto isAccepted = [this](int row) {
        return m_accepted[static_cast<std::size_t>(row)];
    };
    const auto first = std::find_if(shown.begin(), shown.end(), isAccepted);
    if (!current.isValid() || first == shown.end())
        return {};
    const auto above = std::find_if(shown.rend() - current.row() - 1, shown.rend(), isAccepted);
    return sourceModel()->index(above == shown.rend() ? *first : *above, current.column());
}

void ConnectionFilterModel::RememberOrder(const std::vector<int>& shown)
{
    m_positions.resize(shown.size());
    int position = 0;
    for (const int row : shown)
        m_positions[static_cast<std::size_t>(row)] = sortOrder() == Qt::AscendingOrder ? position++ : position--;
}

void ConnectionFilterModel::ForgetOrder()
{
    m_positions = {};
}

bool ConnectionFilterModel::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    const bool isFiltering = !m_accepted.empty();
    const std::vector<int>& places = isFiltering && !m_positions.empty() ? m_positions : m_ranks;
    if (places.empty())
        return QSortFilterProxyModel::lessThan(left, right);
    return places[static_cast<std::size_t>(left.row())] < places[static_cast<std::size_t>(right.row())];
}

void ConnectionFilterModel::BeginLoading()
{
    m_isLoading = true;
    invalidateRowsFilter();
}

void ConnectionFilterModel::EndLoading(std::vector<int> ranks)
{
    m_isLoading = false;
    m_ranks = std::move(ranks);
    invalidateRowsFilter();
    m_ranks = {};
}

void ConnectionFilterModel::UpdateMatcher() const
{
    const QRegularExpression expression = filterRegularExpression();
    if (expression != m_expression) {
        m_expression = expression;
        const auto bounded = [&expression](const char* limit) {
            return QRegularExpression(QLatin1String(limit) + expression.pattern(), expression.patternOptions());
        };
        m_forNames = bounded(kMatchLimit);
        m_forLongTexts = bounded(kLongTextMatchLimit);
        m_literals.reset();
    }
}

bool ConnectionFilterModel::Matches(const QString& text) const
{
    if (!m_literals) {
        const QString wellFormed = WellFormed(text);
        return wellFormed.contains(wellFormed.size() > kLongText ? m_forLongTexts : m_forNames);
    }
    qsizetype from = 0;
    for (const QStringMatcher& literal : *m_literals) {
        const qsizetype found = literal.indexIn(text, from);
        if (found < 0)
            return false;
        from = found + literal.pattern().size();
    }
    return true;
}

bool ConnectionFilterModel::MatchesRow(int sourceRow, const QModelIndex& sourceParent) const
{
    if (m_expression.pattern().isEmpty())
        return true;
    if (!m_literals && !m_forNames.isValid())
        return false;
    const auto matches = [&](int column) {
        return Matches(sourceModel()->index(sourceRow, column, sourceParent).data(filterRole()).toString());
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

bool ConnectionFilterModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    if (m_isLoading)
        return false;
    if (static_cast<std::size_t>(sourceRow) < m_accepted.size())
        return m_accepted[static_cast<std::size_t>(sourceRow)];
    UpdateMatcher();
    return MatchesRow(sourceRow, sourceParent);
}
