// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Compares the filter, in each mode, with a matcher that steps through the pattern symbol by symbol.

#include "fuzz/fuzzing.h"
#include "userinterface/vexelconnectdlg/filter/connectionfilter.h"

#include <QStringListModel>

#include <map>
#include <vector>

using namespace Fuzzing;

namespace {

using Characters = std::vector<char32_t>;

constexpr char32_t kLastCharacter = 0x10FFFF;

Characters CharactersOf(const QString& text)
{
    const QList<uint> units = text.toUcs4();
    return {units.begin(), units.end()};
}

char32_t Folded(char32_t c)
{
    return QChar::toCaseFolded(c);
}

/// `c` and all characters that differ from it only in case.
Characters CaseVariants(char32_t c)
{
    static const std::map<char32_t, Characters> kVariants = [] {
        std::map<char32_t, Characters> variants;
        for (char32_t each = 0; each <= kLastCharacter; ++each)
            if (Folded(each) != each)
                variants[Folded(each)].push_back(each);
        return variants;
    }();
    Characters all{Folded(c)};
    const auto found = kVariants.find(Folded(c));
    if (found != kVariants.end())
        all.insert(all.end(), found->second.begin(), found->second.end());
    return all;
}

/// One symbol of a pattern.
struct Sign
{
    enum class Kind { Run, Any, Set };

    Kind kind = Kind::Set;
    bool isComplement = false;
    std::vector<std::pair<char32_t, char32_t>> ranges; ///< of a set

    bool Matches(char32_t c) const
    {
        if (kind == Kind::Any)
            return true;
        const Characters variants = CaseVariants(c);
        for (const auto& [low, high] : ranges) {
            for (const char32_t variant : variants)
                if (variant >= low && variant <= high)
                    return !isComplement;
        }
        return isComplement;
    }
};

struct Pattern
{
    std::vector<Sign> signs;
    bool isValid = true;
};

/// The set whose opening bracket is at `i`. Moves `i` to its closing bracket.
Sign SetAt(const Characters& pattern, std::size_t& i, bool& isValid)
{
    Sign set;
    ++i;
    if (i < pattern.size() && pattern[i] == U'^') {
        set.isComplement = true;
        ++i;
    }
    const std::size_t begin = i;
    for (; i < pattern.size() && (i == begin || pattern[i] != U']'); ++i) {
        // A hyphen makes a range, unless it is first or last in the set or follows a range.
        if (i + 2 < pattern.size() && pattern[i + 1] == U'-' && pattern[i + 2] != U']') {
            set.ranges.emplace_back(pattern[i], pattern[i + 2]);
            isValid = isValid && pattern[i] <= pattern[i + 2];
            i += 2;
        } else {
            set.ranges.emplace_back(pattern[i], pattern[i]);
        }
    }
    isValid = isValid && i < pattern.size();
    return set;
}

Pattern PatternOf(const QString& text)
{
    const Characters characters = CharactersOf(text);
    Pattern pattern;
    for (std::size_t i = 0; i < characters.size(); ++i) {
        const char32_t c = characters[i];
        if (c == U'*')
            pattern.signs.push_back({Sign::Kind::Run, false, {}});
        else if (c == U'?')
            pattern.signs.push_back({Sign::Kind::Any, false, {}});
        else if (c == U'[')
            pattern.signs.push_back(SetAt(characters, i, pattern.isValid));
        else
            pattern.signs.push_back({Sign::Kind::Set, false, {{c, c}}});
    }
    return pattern;
}

/// Whether `pattern` occurs anywhere in `text`. Simulates the pattern as an automaton: `reached` holds the symbols that
/// can be next.
bool Matches(const Pattern& pattern, const Characters& text)
{
    const std::size_t end = pattern.signs.size();
    std::vector<bool> reached(end + 1, false);
    for (std::size_t at = 0;; ++at) {
        reached[0] = true; // a match may start here
        for (std::size_t i = 0; i < end; ++i)
            if (reached[i] && pattern.signs[i].kind == Sign::Kind::Run)
                reached[i + 1] = true;
        if (reached[end])
            return true;
        if (at == text.size())
            return false;
        std::vector<bool> next(end + 1, false);
        for (std::size_t i = 0; i < end; ++i) {
            if (!reached[i])
                continue;
            if (pattern.signs[i].kind == Sign::Kind::Run)
                next[i] = true;
            else if (pattern.signs[i].Matches(text[at]))
                next[i + 1] = true;
        }
        reached = next;
    }
}

Pattern PlainPattern(const QString& text)
{
    Pattern pattern;
    for (const char32_t c : CharactersOf(text))
        pattern.signs.push_back({Sign::Kind::Set, false, {{c, c}}});
    return pattern;
}

/// The `texts` that the filter accepts.
QStringList Shown(const QStringList& texts, const QString& pattern, SearchMode mode)
{
    QStringListModel model(texts);
    ConnectionFilterModel filter;
    filter.setSourceModel(&model);
    filter.SetFilter(0, pattern, static_cast<int>(mode), nullptr);
    QStringList shown;
    for (int row = 0; row < filter.rowCount(); ++row)
        shown.append(filter.index(row, 0).data(Qt::EditRole).toString());
    return shown;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kLongestPattern = 60;
    constexpr std::size_t kLongestText = 300;
    const Tidy tidy;
    FuzzedDataProvider input(data, size);
    const int mode = input.ConsumeIntegralInRange(0, 5);
    const QString patternText = TakeText(input, kLongestPattern);
    QStringList texts;
    while (input.remaining_bytes() > 0 && texts.size() < 4)
        texts.append(TakeText(input, kLongestText));
    texts.append(patternText);

    // Most inputs test wildcards, the most complex mode.
    constexpr int kPlain = 0;
    constexpr int kExpression = 1;
    const SearchMode searchMode = mode == kPlain        ? SearchMode::PlainText
                                  : mode == kExpression ? SearchMode::RegularExpression
                                                        : SearchMode::Wildcard;
    const QRegularExpression expression = FilterExpression(patternText, static_cast<int>(searchMode));
    const QStringList shown = Shown(texts, patternText, searchMode);
    if (patternText.isEmpty()) {
        Require(shown == texts, "an empty pattern accepts everything");
        return 0;
    }
    if (searchMode == SearchMode::RegularExpression) {
        // Its meaning is up to QRegularExpression. It must only terminate, without a warning.
        Require(expression.isValid() || shown.isEmpty(), "an invalid expression accepts nothing");
        return 0;
    }

    const bool isWildcard = searchMode == SearchMode::Wildcard;
    const Pattern pattern = isWildcard ? PatternOf(patternText) : PlainPattern(patternText);
    Require(expression.isValid() == pattern.isValid, "the expression is valid if the pattern is");
    QStringList expected;
    for (const QString& text : texts)
        if (pattern.isValid && Matches(pattern, CharactersOf(text)))
            expected.append(text);
    Require(shown == expected, "the texts that match are shown");
    return 0;
}
