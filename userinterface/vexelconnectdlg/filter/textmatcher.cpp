// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/filter/textmatcher.h"

#include <QList>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace {

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

// Backtracking limits per text. The first is far more than a reasonable expression needs for a name, and takes a
// fraction of a millisecond. Texts of many thousand characters need more steps; a list has only a few of them.
constexpr const char* kMatchLimit = "(*LIMIT_MATCH=20000)";
constexpr const char* kLongTextMatchLimit = "(*LIMIT_MATCH=2000000)";
constexpr qsizetype kLongText = 1000; // characters

QRegularExpression Bounded(const QRegularExpression& expression, const char* limit)
{
    return QRegularExpression(QLatin1String(limit) + expression.pattern(), expression.patternOptions());
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

TextMatcher::TextMatcher(const QRegularExpression& expression)
    : m_expression(expression)
    , m_forNames(Bounded(expression, kMatchLimit))
    , m_forLongTexts(Bounded(expression, kLongTextMatchLimit))
    , m_isValid(m_forNames.isValid())
{
}

TextMatcher::TextMatcher(const QString& pattern, int mode)
    : TextMatcher(FilterExpression(pattern, mode))
{
    m_literals = Literals(pattern, mode);
}

bool TextMatcher::Matches(const QString& text) const
{
    if (!m_isValid)
        return false;
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
