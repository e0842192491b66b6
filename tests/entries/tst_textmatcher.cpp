// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/filter/textmatcher.h"

#include <QTest>

#include <array>
#include <limits>

namespace {

constexpr int kPlain = 0;
constexpr int kWildcard = 1;
constexpr int kRegExp = 2;
constexpr std::array kModeNames{"plain text", "wildcard", "regular expression"};

bool Matches(const QString& text, const QString& pattern, int mode)
{
    const bool matches = TextMatcher(pattern, mode).Matches(text);
    // This one always uses the regular expression engine.
    if (TextMatcher(FilterExpression(pattern, mode)).Matches(text) != matches)
        QTest::qFail("Another result with the regular expression", __FILE__, __LINE__);
    return matches;
}

void AddModes()
{
    QTest::addColumn<int>("mode");
    for (const int mode : {kPlain, kWildcard, kRegExp})
        QTest::newRow(kModeNames.at(static_cast<std::size_t>(mode))) << mode;
}

} // namespace

class TestTextMatcher : public QObject
{
    Q_OBJECT

private slots:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void patterns_data();
    void patterns();
    void invalidPatternMatchesNothing_data();
    void invalidPatternMatchesNothing();
    void emptyPatternMatchesEverything_data();
    void emptyPatternMatchesEverything();
    void unpairedSurrogatesMatch_data();
    void unpairedSurrogatesMatch();
    void nullCharacterIsMatchedLiterally_data();
    void nullCharacterIsMatchedLiterally();
    void longTextIsSearchedToTheEnd_data();
    void longTextIsSearchedToTheEnd();
    void otherModesArePlainText_data();
    void otherModesArePlainText();
    void catastrophicBacktrackingIsStopped();
};

void TestTextMatcher::patterns_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("matches");
    QTest::addColumn<int>("mode");
    int mode = kPlain;
    const auto add = [&mode](const char* name, const char16_t* pattern, const char16_t* text, bool matches) {
        QTest::addRow("%s: %s", kModeNames.at(static_cast<std::size_t>(mode)), name)
            << QString::fromUtf16(pattern) << QString::fromUtf16(text) << matches << mode;
    };
    add("part", u"as", u"Mast 1", true);
    add("case is ignored", u"mAST", u"Mast 1", true);
    add("no match", u"Post", u"Mast 1", false);
    add("literal dot", u".", u"Mast", false);
    add("literal star", u"M*t", u"Mast", false);
    add("literal question mark", u"M?st", u"Mast", false);
    add("literal bracket", u"[M]", u"Mast", false);
    add("literal parenthesis", u"(", u"Mast (1)", true);
    add("literal backslash", u"\\d", u"1", false);
    add("literal \\E", u"\\E", u"a\\E.b", true);
    add("literal dollar", u"$", u"5$", true);
    add("case of an umlaut", u"\u00DCBER", u"\u00FCber", true);
    add("outside the BMP", u"\U0001F4E1", u"a \U0001F4E1 b", true);
    add("case outside the BMP", u"\U00010400", u"\U00010428", true);
    add("line break", u"a\nb", u"xa\nby", true);

    mode = kWildcard;
    add("part", u"as", u"Mast 1", true);
    add("case is ignored", u"M*T", u"mast", true);
    add("star, long text after the match", u"a*a*a*a*a*b", u"aaaaab aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", true);
    add("stars, not enough characters", u"a*a*a*a*a*b", u"aaaa b", false);
    add("star, part repeated", u"ab*ab", u"abb a ab", true);
    add("star, parts in the wrong order", u"b*a", u"ab", false);
    add("star", u"M*1", u"Mast 1", true);
    add("star matches no character", u"Ma*st", u"Mast", true);
    add("star matches slashes", u"a*c", u"a/b\\b/c", true);
    add("star matches line breaks", u"a*c", u"a\nb\r\n\u2028c", true);
    add("star only", u"*", u"anything", true);
    add("adjacent stars", u"a***c", u"abc", true);
    add("not anchored", u"b*d", u"abcde", true);
    add("question mark", u"M?st", u"Mast", true);
    add("question mark is not optional", u"M?ast", u"Mast", false);
    add("question mark matches one character only", u"M?t", u"Mast", false);
    add("question mark matches a line break", u"a?b", u"a\nb", true);
    add("question mark matches a surrogate pair", u"a?b", u"a\U0001F4E1b", true);
    add("a surrogate pair is one character", u"a??b", u"a\U0001F4E1b", false);
    add("set", u"M[aeu]st", u"Mast", true);
    add("set, no member", u"M[eu]st", u"Mast", false);
    add("range, no member", u"1[0-4]", u"15", false);
    add("negated set", u"1[^0-4]", u"15", true);
    add("exclamation mark does not negate", u"a[!b]", u"a!", true);
    add("caret as a member", u"a[b^]", u"a^", true);
    add("star as a member", u"a[*]b", u"a*b", true);
    add("closing bracket as first member", u"a[]]b", u"a]b", true);
    add("closing bracket as first member, negated", u"a[^]]b", u"a]b", false);
    add("opening bracket as a member", u"a[[]b", u"a[b", true);
    add("no POSIX class in a set", u"a[[:digit:]]", u"a1", false);
    add("colons as members", u"a[:x:]b", u"a:b", true);
    add("dots as members", u"a[.x.]b", u"a.b", true);
    add("equals signs as members", u"a[=x=]b", u"a=b", true);
    add("backslash as a member", u"a[\\d]b", u"a\\b", true);
    add("no escape in a set", u"a[\\d]b", u"a1b", false);
    add("surrogate pair as a member", u"a[\U0001F4E1x]b", u"a\U0001F4E1b", true);
    add("literal dot", u"a.b", u"axb", false);
    add("device type", u"Alpha + *", u"Kite Alpha + Wren C", true);
    add("literal anchors", u"^a$", u"a", false);
    add("backslash does not escape", u"\\*", u"*", false);
    add("literal backslash", u"C:\\*", u"C:\\x", true);
    add("case of an umlaut", u"\u00DC*R", u"\u00FCber", true);
    add("outside the BMP", u"*\U0001F4E1", u"a\U0001F4E1", true);

    mode = kRegExp;
    add("case is ignored", u"mAST", u"Mast 1", true);
    add("dot matches a line break", u"a.b", u"a\nb", true);
    add("dot matches a surrogate pair", u"^.$", u"\U0001F4E1", true);
    add("anchor", u"ast$", u"Mast", true);
    add("digit of another script", u"\\d", u"\u0661", true);
    add("word character of another script", u"^\\w+$", u"K\u00FCste", true);
    add("escaped dot", u"10\\.0", u"10x0", false);
    add("case of an umlaut", u"^\u00DC", u"\u00FCber", true);
}

void TestTextMatcher::patterns()
{
    QFETCH(QString, pattern);
    QFETCH(QString, text);
    QFETCH(bool, matches);
    QFETCH(int, mode);
    QCOMPARE(Matches(text, pattern, mode), matches);
}

void TestTextMatcher::invalidPatternMatchesNothing_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<int>("mode");
    for (const char* const pattern :
         {"(", ")", "[", "[a", "*", "+", "?", "a{2,1}", "\\", "(?<n>", "[z-a]", "(?P", "\\1"})
        QTest::addRow("expression %s", pattern) << QString::fromLatin1(pattern) << kRegExp;
    for (const char* const pattern : {"[", "a[", "[a", "[]", "[^", "[^]", "[z-a]"})
        QTest::addRow("wildcard %s", pattern) << QString::fromLatin1(pattern) << kWildcard;
}

void TestTextMatcher::invalidPatternMatchesNothing()
{
    QFETCH(QString, pattern);
    QFETCH(int, mode);
    QVERIFY(!FilterExpression(pattern, mode).isValid());
    // There is no warning for each row, either.
    QVERIFY(!Matches(pattern, pattern, mode));
    QVERIFY(!Matches(QStringLiteral(""), pattern, mode));
    // As plain text it is valid.
    QVERIFY(Matches(pattern, pattern, kPlain));
}

void TestTextMatcher::emptyPatternMatchesEverything_data()
{
    AddModes();
}

void TestTextMatcher::emptyPatternMatchesEverything()
{
    QFETCH(int, mode);
    for (const QString& pattern : {QString(), QStringLiteral("")}) {
        QVERIFY(Matches(QStringLiteral("Mast"), pattern, mode));
        QVERIFY(Matches(QStringLiteral(""), pattern, mode));
        QVERIFY(Matches(QStringLiteral("a\nb"), pattern, mode));
        QVERIFY(Matches(QString(QChar(0xD83D)), pattern, mode));
    }
}

void TestTextMatcher::unpairedSurrogatesMatch_data()
{
    AddModes();
}

void TestTextMatcher::unpairedSurrogatesMatch()
{
    QFETCH(int, mode);
    const QString high(QChar(0xD83D));
    const QString low(QChar(0xDCE1));
    for (const QString& half : {high, low}) {
        const QString text = QStringLiteral("Mast ") + half + QStringLiteral("1");
        QVERIFY(Matches(text, QStringLiteral("mast"), mode));
        QVERIFY(Matches(text, half + QStringLiteral("1"), mode));
        QVERIFY(!Matches(text, QStringLiteral("post"), mode));
        QVERIFY(!Matches(QStringLiteral("Mast 1"), half, mode));
    }
}

void TestTextMatcher::nullCharacterIsMatchedLiterally_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("plain text") << kPlain;
    QTest::newRow("wildcard") << kWildcard;
}

void TestTextMatcher::nullCharacterIsMatchedLiterally()
{
    QFETCH(int, mode);
    const QString null(1, QChar::Null);
    // A digit after the escaped character does not belong to its code.
    QVERIFY(Matches(QStringLiteral("a") + null + QStringLiteral("12"), null + QStringLiteral("12"), mode));
    QVERIFY(!Matches(QString(QChar(u'\n')), null + QStringLiteral("12"), mode));
    QVERIFY(!Matches(QStringLiteral("a"), null, mode));
}

void TestTextMatcher::longTextIsSearchedToTheEnd_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<int>("mode");
    QTest::newRow("plain text") << QStringLiteral("ab") << kPlain;
    QTest::newRow("plain text, one character") << QStringLiteral("b") << kPlain;
    QTest::newRow("wildcard") << QStringLiteral("ab") << kWildcard;
    QTest::newRow("wildcard, any run") << QStringLiteral("aa*b") << kWildcard;
    QTest::newRow("wildcard, set") << QStringLiteral("a[bc]") << kWildcard;
    QTest::newRow("regular expression") << QStringLiteral("ab$") << kRegExp;
    QTest::newRow("regular expression, alternatives") << QStringLiteral("ab|ac") << kRegExp;
}

void TestTextMatcher::longTextIsSearchedToTheEnd()
{
    QFETCH(QString, pattern);
    QFETCH(int, mode);
    QVERIFY(Matches(QString(300'000, u'a') + u'b', pattern, mode));
    QVERIFY(!Matches(QString(300'000, u'a') + u'c', QStringLiteral("ab"), mode));
}

void TestTextMatcher::otherModesArePlainText_data()
{
    QTest::addColumn<int>("mode");
    for (const int mode : {-1, 3, 7, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        QTest::addRow("%d", mode) << mode;
}

void TestTextMatcher::otherModesArePlainText()
{
    QFETCH(int, mode);
    QVERIFY(Matches(QStringLiteral("a.*b"), QStringLiteral(".*"), mode));
    QVERIFY(!Matches(QStringLiteral("ab"), QStringLiteral(".*"), mode));
    QVERIFY(Matches(QStringLiteral("AB"), QStringLiteral("ab"), mode));
}

// Without a limit each of these would block the window for hours.
void TestTextMatcher::catastrophicBacktrackingIsStopped()
{
    for (const int length : {40, 900, 5000, 100'000}) {
        const QString name(length, u'a');
        QVERIFY(!Matches(name, QStringLiteral("^(a+)+b$"), kRegExp));
        QVERIFY(!Matches(name, QStringLiteral("^(a|aa)+b$"), kRegExp));
        QVERIFY(!Matches(name, QStringLiteral("*a*a*a*a*a*a*a*a*a*b"), kWildcard));
        QVERIFY(Matches(name, QStringLiteral("^(a+)+$"), kRegExp));
        QVERIFY(Matches(name, QStringLiteral("*a*a*a*a*a*a*a*a*a"), kWildcard));
    }
    // The engine would find this match, but only after 250,000 steps back.
    const QString hard = QString(18, u'a') + QStringLiteral("! aab");
    const QString pattern = QStringLiteral("(a+)+b");
    QVERIFY(hard.contains(QRegularExpression(pattern)));
    QVERIFY(!Matches(hard, pattern, kRegExp));
    QVERIFY(Matches(QStringLiteral("aab"), pattern, kRegExp));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestTextMatcher)

#include "tst_textmatcher.moc"
