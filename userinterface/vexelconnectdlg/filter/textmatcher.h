// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QRegularExpression>
#include <QString>
#include <QStringMatcher>

#include <optional>
#include <vector>

/// How a filter pattern is interpreted. The values are the item indexes of the search mode box and are stored.
enum class SearchMode : int { PlainText = 0, Wildcard = 1, RegularExpression = 2 };

/// Returns the expression for a filter pattern, case-insensitive and unanchored.
///
/// Wildcard: "*" any run of characters, "?" one character, "[...]" a set, "[^...]" its complement; there is no escape
/// character. Regular expression: Perl syntax; "." also matches line breaks, and \w, \d and \s use Unicode properties.
/// Any other `mode` is plain text. An invalid pattern gives an invalid expression.
QRegularExpression FilterExpression(const QString& pattern, int mode);

/// Finds texts that a pattern matches. An invalid pattern matches none, without a warning for each text.
///
/// An expression that takes too long on a text (nested repetitions on a long name) is aborted, and the text does not
/// match. Otherwise ten thousand rows would block the window for minutes.
class TextMatcher
{
public:
    explicit TextMatcher(const QRegularExpression& expression = {});
    /// Finds what `FilterExpression(pattern, mode)` matches, without the regular expression engine if possible.
    TextMatcher(const QString& pattern, int mode);

    const QRegularExpression& Expression() const { return m_expression; }
    bool MatchesEverything() const { return m_expression.pattern().isEmpty(); }
    bool Matches(const QString& text) const;

private:
    QRegularExpression m_expression;
    /// The expression with match limits, for short and for long texts.
    QRegularExpression m_forNames;
    QRegularExpression m_forLongTexts;
    bool m_isValid;
    /// If the expression is a sequence of literal texts: finds the same.
    std::optional<std::vector<QStringMatcher>> m_literals;
};
