#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "tests/entries/entrysamples.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/connectionfilter.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QAbstractItemModelTester>
#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <memory>

namespace {

constexpr int kPlain = 0;
constexpr int kWildcard = 1;
constexpr int kRegExp = 2;

std::unique_ptr<ICfg> SettingsNode(View view = View::User)
{
    return std::unique_ptr<ICfg>(CfgCenter::GetAppCfg(view)->OpenChild(QStringLiteral("FilterSettings"), 0));
}

/// Whether the filter lets an entry of that name through.
bool LetsThrough(const QString& name, const QString& pattern, int mode)
{
    ConnectionsModel model(nullptr, QString());
    model.AddConnection(NamedEntry(name));
    ConnectionFilterModel filter;
    filter.setSourceModel(&model);
    filter.setFilterKeyColumn(ConnectionsModel::ColumnName);
    filter.setFilterRegularExpression(FilterExpression(pattern, mode));
    return filter.rowCount() == 1;
}

QStringList Shown(const ConnectionFilterModel& filter)
{
    QStringList names;
    for (int row = 0; row < filter.rowCount(); ++row)
        names += filter.index(row, ConnectionsModel::ColumnName).data().toString();
    return names;
}

void AddRow(const char* name, const char16_t* pattern, const char16_t* text, bool matches)
{
    QTest::newRow(name) << QString::fromUtf16(pattern) << QString::fromUtf16(text) << matches;
}

void AddColumns()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("matches");
}

} // namespace

/// What the filter's patterns mean, and how its settings outlive a run.
class TestConnectionFilter : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        CfgCenter::Close();
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    }
    void cleanup() { CfgCenter::Close(); }

    void plainText_data();
    void plainText();
    void wildcard_data();
    void wildcard();
    void regularExpression_data();
    void regularExpression();
    void invalidExpressionsMatchNothing_data();
    void invalidExpressionsMatchNothing();
    void anEmptyPatternLetsEveryRowThrough_data();
    void anEmptyPatternLetsEveryRowThrough();
    void halfAPairHidesNoText_data();
    void halfAPairHidesNoText();
    void aNullCharacterIsOneLikeAnyOther_data();
    void aNullCharacterIsOneLikeAnyOther();
    void aLongTextIsSearchedToItsEnd_data();
    void aLongTextIsSearchedToItsEnd();
    void anyOtherModeIsPlainText_data();
    void anyOtherModeIsPlainText();

    void anExpressionWithoutEndIsGivenUp();
    void filtersTheKeyColumnOnly();
    void noColumnChosenMeansAnyAndOneOutsideNone();
    void showsOneLineButFiltersAndEditsTheWhole();
    void filtersWhatIsDisplayed();
    void follows();
    void sorts();

    void settingsDefaults();
    void columnReadRule_data();
    void columnReadRule();
    void searchModeReadRule_data();
    void searchModeReadRule();
    void settingsAreStoredForTheUser();
    void settingsAreStoredAsTheyAre();
    void settingsSurviveTheRun();
    void settingsAreNotSavedByStoring();
};

void TestConnectionFilter::plainText_data()
{
    AddColumns();
    AddRow("whole", u"Mast", u"Mast", true);
    AddRow("part", u"as", u"Mast 1", true);
    AddRow("letter case", u"mAST", u"Mast 1", true);
    AddRow("no match", u"Post", u"Mast 1", false);
    AddRow("blank", u" ", u"Mast", false);
    AddRow("blank found", u" ", u"Mast 1", true);
    AddRow("dot is a dot", u".", u"Mast", false);
    AddRow("dot found", u"0.0", u"10.0.0.5", true);
    AddRow("star is a star", u"M*t", u"Mast", false);
    AddRow("star found", u"*", u"a*b", true);
    AddRow("question mark is one", u"M?st", u"Mast", false);
    AddRow("question mark found", u"?", u"what?", true);
    AddRow("bracket is a bracket", u"[M]", u"Mast", false);
    AddRow("bracket found", u"[1", u"Mast [1]", true);
    AddRow("parenthesis found", u"(", u"Mast (1)", true);
    AddRow("bar is a bar", u"a|b", u"a", false);
    AddRow("backslash found", u"\\d", u"a\\dir", true);
    AddRow("backslash is no class", u"\\d", u"1", false);
    AddRow("quoting marks", u"\\E", u"a\\E.b", true);
    AddRow("anchors are characters", u"^M", u"Mast", false);
    AddRow("dollar found", u"$", u"5$", true);
    AddRow("umlaut, letter case", u"\u00DCBER", u"\u00FCber", true);
    AddRow("Cyrillic, letter case", u"\u041C\u0410\u0427", u"\u043C\u0430\u0447\u0442\u0430", true);
    AddRow("Greek, letter case", u"\u03A3", u"\u03C3", true);
    AddRow("astral", u"\U0001F4E1", u"a \U0001F4E1 b", true);
    AddRow("astral, another", u"\U0001F4E1", u"a \U0001F4E2 b", false);
    AddRow("astral, letter case", u"\U00010400", u"\U00010428", true);
    AddRow("line break", u"a\nb", u"xa\nby", true);
}

void TestConnectionFilter::plainText()
{
    QFETCH(QString, pattern);
    QFETCH(QString, text);
    QFETCH(bool, matches);
    QCOMPARE(LetsThrough(text, pattern, kPlain), matches);
}

void TestConnectionFilter::wildcard_data()
{
    AddColumns();
    AddRow("plain part", u"as", u"Mast 1", true);
    AddRow("letter case", u"M*T", u"mast", true);
    AddRow("letter case, other way", u"m*t", u"MAST", true);
    AddRow("star, much behind the match", u"a*a*a*a*a*b", u"aaaaab aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", true);
    AddRow("star, too many of them", u"a*a*a*a*a*b", u"aaaa b", false);
    AddRow("star, the same part twice", u"ab*ab", u"abb a ab", true);
    AddRow("star, part found too early", u"b*a", u"ab", false);
    AddRow("star, any run", u"M*1", u"Mast 1", true);
    AddRow("star, no character", u"Ma*st", u"Mast", true);
    AddRow("star, not found", u"M*2", u"Mast 1", false);
    AddRow("star crosses slashes", u"a*c", u"a/b\\b/c", true);
    AddRow("star crosses line breaks", u"a*c", u"a\nb\r\n\u2028c", true);
    AddRow("star alone", u"*", u"anything", true);
    AddRow("star alone, nothing", u"*", u"", true);
    AddRow("stars in a row", u"a***c", u"abc", true);
    AddRow("not anchored", u"b*d", u"abcde", true);
    AddRow("question mark, one character", u"M?st", u"Mast", true);
    AddRow("question mark, not none", u"M?ast", u"Mast", false);
    AddRow("question mark, not two", u"M?t", u"Mast", false);
    AddRow("question mark, slash", u"a?b", u"a/b", true);
    AddRow("question mark, line break", u"a?b", u"a\nb", true);
    AddRow("question mark, astral", u"a?b", u"a\U0001F4E1b", true);
    AddRow("two question marks, one astral", u"a??b", u"a\U0001F4E1b", false);
    AddRow("as many as there are", u"????", u"abc", false);
    AddRow("set", u"M[aeu]st", u"Mast", true);
    AddRow("set, not in it", u"M[eu]st", u"Mast", false);
    AddRow("set, letter case", u"M[A]st", u"mast", true);
    AddRow("range", u"1[0-4]", u"12", true);
    AddRow("range, outside", u"1[0-4]", u"15", false);
    AddRow("complement", u"1[^0-4]", u"15", true);
    AddRow("complement, inside", u"1[^0-4]", u"12", false);
    AddRow("exclamation mark is a member", u"a[!b]", u"a!", true);
    AddRow("caret behind the beginning", u"a[b^]", u"a^", true);
    AddRow("star in a set", u"a[*]b", u"a*b", true);
    AddRow("star in a set is no run", u"a[*]b", u"axxb", false);
    AddRow("question mark in a set", u"a[?]b", u"axb", false);
    AddRow("closing bracket first in a set", u"a[]]b", u"a]b", true);
    AddRow("closing bracket first in a complement", u"a[^]]b", u"a]b", false);
    AddRow("opening bracket in a set", u"a[[]b", u"a[b", true);
    AddRow("no character class in a set", u"a[[:digit:]]", u"a1", false);
    AddRow("colons of a set", u"a[:x:]b", u"a:b", true);
    AddRow("colons of a set, between them", u"a[:x:]b", u"axb", true);
    AddRow("dots of a set", u"a[.x.]b", u"a.b", true);
    AddRow("equals signs of a set", u"a[=x=]b", u"a=b", true);
    AddRow("colons within a complement", u"a[^:x:]b", u"a:b", false);
    AddRow("backslash in a set", u"a[\\d]b", u"a\\b", true);
    AddRow("backslash in a set, its letter", u"a[\\d]b", u"adb", true);
    AddRow("backslash in a set is no class", u"a[\\d]b", u"a1b", false);
    AddRow("astral in a set", u"a[\U0001F4E1x]b", u"a\U0001F4E1b", true);
    AddRow("closing bracket alone", u"a]b", u"a]b", true);
    AddRow("dot is a dot", u"a.b", u"axb", false);
    AddRow("dot found", u"0.0", u"10.0", true);
    AddRow("plus is a plus", u"a+", u"aa", false);
    AddRow("device type", u"Alpha + *", u"Kite Alpha + Wren C", true);
    AddRow("braces are braces", u"a{2}", u"aa", false);
    AddRow("parentheses are parentheses", u"(a)", u"x(a)", true);
    AddRow("bar is a bar", u"a|b", u"b", false);
    AddRow("anchors are characters", u"^a$", u"a", false);
    AddRow("dollar found", u"a$", u"a$b", true);
    AddRow("backslash is no escape", u"\\*", u"*", false);
    AddRow("backslash found", u"C:\\*", u"C:\\x", true);
    AddRow("backslash at the end", u"a\\", u"a\\", true);
    AddRow("umlaut, letter case", u"\u00DC*R", u"\u00FCber", true);
    AddRow("Cyrillic, letter case", u"\u041C*\u0410", u"\u043C\u0430\u0447\u0442\u0430", true);
    AddRow("astral", u"*\U0001F4E1", u"a\U0001F4E1", true);
}

void TestConnectionFilter::wildcard()
{
    QFETCH(QString, pattern);
    QFETCH(QString, text);
    QFETCH(bool, matches);
    QCOMPARE(LetsThrough(text, pattern, kWildcard), matches);
}

void TestConnectionFilter::regularExpression_data()
{
    AddColumns();
    AddRow("part", u"as", u"Mast 1", true);
    AddRow("letter case", u"mAST", u"Mast 1", true);
    AddRow("dot", u"M.st", u"Mast", true);
    AddRow("dot, line break", u"a.b", u"a\nb", true);
    AddRow("dot, astral", u"^.$", u"\U0001F4E1", true);
    AddRow("repetition", u"^a{2,3}$", u"aaa", true);
    AddRow("repetition, too many", u"^a{2,3}$", u"aaaa", false);
    AddRow("alternatives", u"Post|Mast", u"Mast 1", true);
    AddRow("begin", u"^ast", u"Mast", false);
    AddRow("end", u"ast$", u"Mast", true);
    AddRow("set", u"[0-9]+$", u"Mast 12", true);
    AddRow("digit", u"\\d", u"Mast 1", true);
    AddRow("digit of another script", u"\\d", u"\u0661", true);
    AddRow("word character of another script", u"^\\w+$", u"K\u00FCste", true);
    AddRow("escaped dot", u"10\\.0", u"10x0", false);
    AddRow("back reference", u"(a)b\\1", u"aba", true);
    AddRow("look-ahead", u"Mast(?! 1)", u"Mast 1", false);
    AddRow("not greedy", u"^a.*?b$", u"axb", true);
    AddRow("umlaut, letter case", u"^\u00DC", u"\u00FCber", true);
    AddRow("star", u"M*t", u"t", true);
}

void TestConnectionFilter::regularExpression()
{
    QFETCH(QString, pattern);
    QFETCH(QString, text);
    QFETCH(bool, matches);
    QCOMPARE(LetsThrough(text, pattern, kRegExp), matches);
}

void TestConnectionFilter::invalidExpressionsMatchNothing_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<int>("mode");
    for (const char* const pattern :
         {"(", ")", "[", "[a", "*", "+", "?", "a{2,1}", "\\", "(?<n>", "[z-a]", "(?P", "\\1"})
        QTest::addRow("expression %s", pattern) << QString::fromLatin1(pattern) << kRegExp;
    for (const char* const pattern : {"[", "a[", "[a", "[]", "[^", "[^]", "[z-a]"})
        QTest::addRow("wildcard %s", pattern) << QString::fromLatin1(pattern) << kWildcard;
}

void TestConnectionFilter::invalidExpressionsMatchNothing()
{
    QFETCH(QString, pattern);
    QFETCH(int, mode);
    QVERIFY(!FilterExpression(pattern, mode).isValid());
    // Not even itself; and without a warning for each row.
    QVERIFY(!LetsThrough(pattern, pattern, mode));
    QVERIFY(!LetsThrough(QStringLiteral(""), pattern, mode));
    // As plain text each of them is a text like any other.
    QVERIFY(LetsThrough(pattern, pattern, kPlain));
}

void TestConnectionFilter::anEmptyPatternLetsEveryRowThrough_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("plain text") << kPlain;
    QTest::newRow("wildcard") << kWildcard;
    QTest::newRow("regular expression") << kRegExp;
}

void TestConnectionFilter::anEmptyPatternLetsEveryRowThrough()
{
    QFETCH(int, mode);
    for (const QString& pattern : {QString(), QStringLiteral("")}) {
        QVERIFY(LetsThrough(QStringLiteral("Mast"), pattern, mode));
        QVERIFY(LetsThrough(QStringLiteral(""), pattern, mode));
        QVERIFY(LetsThrough(QStringLiteral("a\nb"), pattern, mode));
        QVERIFY(LetsThrough(QString(QChar(0xD83D)), pattern, mode));
    }
}

void TestConnectionFilter::halfAPairHidesNoText_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("plain text") << kPlain;
    QTest::newRow("wildcard") << kWildcard;
    QTest::newRow("regular expression") << kRegExp;
}

void TestConnectionFilter::halfAPairHidesNoText()
{
    QFETCH(int, mode);
    const QString high(QChar(0xD83D));
    const QString low(QChar(0xDCE1));
    for (const QString& half : {high, low}) {
        const QString text = QStringLiteral("Mast ") + half + QStringLiteral("1");
        QVERIFY(LetsThrough(text, QStringLiteral("mast"), mode));
        QVERIFY(LetsThrough(text, half + QStringLiteral("1"), mode));
        QVERIFY(!LetsThrough(text, QStringLiteral("post"), mode));
        QVERIFY(!LetsThrough(QStringLiteral("Mast 1"), half, mode));
    }
}

void TestConnectionFilter::aNullCharacterIsOneLikeAnyOther_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("plain text") << kPlain;
    QTest::newRow("wildcard") << kWildcard;
}

void TestConnectionFilter::aNullCharacterIsOneLikeAnyOther()
{
    QFETCH(int, mode);
    const QString null(1, QChar::Null);
    // A digit behind it is no part of its number.
    QVERIFY(LetsThrough(QStringLiteral("a") + null + QStringLiteral("12"), null + QStringLiteral("12"), mode));
    QVERIFY(!LetsThrough(QString(QChar(u'\n')), null + QStringLiteral("12"), mode));
    QVERIFY(!LetsThrough(QStringLiteral("a"), null, mode));
}

void TestConnectionFilter::aLongTextIsSearchedToItsEnd_data()
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

void TestConnectionFilter::aLongTextIsSearchedToItsEnd()
{
    QFETCH(QString, pattern);
    QFETCH(int, mode);
    QVERIFY(LetsThrough(QString(300'000, u'a') + u'b', pattern, mode));
    QVERIFY(!LetsThrough(QString(300'000, u'a') + u'c', QStringLiteral("ab"), mode));
}

void TestConnectionFilter::anyOtherModeIsPlainText_data()
{
    QTest::addColumn<int>("mode");
    for (const int mode : {-1, 3, 7, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        QTest::addRow("%d", mode) << mode;
}

void TestConnectionFilter::anyOtherModeIsPlainText()
{
    QFETCH(int, mode);
    QVERIFY(LetsThrough(QStringLiteral("a.*b"), QStringLiteral(".*"), mode));
    QVERIFY(!LetsThrough(QStringLiteral("ab"), QStringLiteral(".*"), mode));
    QVERIFY(LetsThrough(QStringLiteral("AB"), QStringLiteral("ab"), mode));
}

// Each of these would keep the window busy for hours.
void TestConnectionFilter::anExpressionWithoutEndIsGivenUp()
{
    for (const int length : {40, 900, 5000, 100'000}) {
        const QString name(length, u'a');
        QVERIFY(!LetsThrough(name, QStringLiteral("^(a+)+b$"), kRegExp));
        QVERIFY(!LetsThrough(name, QStringLiteral("^(a|aa)+b$"), kRegExp));
        QVERIFY(!LetsThrough(name, QStringLiteral("*a*a*a*a*a*a*a*a*a*b"), kWildcard));
        QVERIFY(LetsThrough(name, QStringLiteral("^(a+)+$"), kRegExp));
        QVERIFY(LetsThrough(name, QStringLiteral("*a*a*a*a*a*a*a*a*a"), kWildcard));
    }
}

void TestConnectionFilter::noColumnChosenMeansAnyAndOneOutsideNone()
{
    ConnectionsModel model(nullptr, QString());
    for (const int number : {1, 2, 3})
        model.AddConnection(SampleEntry(number));
    ConnectionFilterModel filter;
    filter.setSourceModel(&model);
    filter.setFilterRegularExpression(FilterExpression(QStringLiteral("10.0.1.2"), kPlain));
    filter.setFilterKeyColumn(-1);
    QCOMPARE(Shown(filter), QStringList{QStringLiteral("entry 2")});
    filter.setFilterKeyColumn(ConnectionsModel::kColumnCount);
    QCOMPARE(filter.rowCount(), 3);
}

void TestConnectionFilter::showsOneLineButFiltersAndEditsTheWhole()
{
    const QString lines = QStringLiteral(u"a\nb\rc\u2028d\u2029e");
    const QString justFits = QString(500, u'x');
    const QString tooLong = justFits + u'z';
    ConnectionsModel model(nullptr, QString());
    for (const QString& name : {lines, justFits, tooLong})
        model.AddConnection(NamedEntry(name));
    ConnectionFilterModel filter;
    const QAbstractItemModelTester tester(&filter, QAbstractItemModelTester::FailureReportingMode::QtTest);
    filter.setSourceModel(&model);
    filter.setFilterKeyColumn(ConnectionsModel::ColumnName);
    QCOMPARE(Shown(filter), (QStringList{QStringLiteral("a b c d e"), justFits, justFits + QChar(0x2026)}));
    const auto cell = [&filter](int row) {
        return filter.index(row, ConnectionsModel::ColumnName);
    };
    QCOMPARE(cell(0).data(Qt::EditRole).toString(), lines);
    QCOMPARE(cell(2).data(Qt::EditRole).toString(), tooLong);
    QCOMPARE(filter.index(0, ConnectionsModel::ColumnTimeout).data(), QVariant(QStringLiteral("No Timeout")));

    filter.setFilterRegularExpression(FilterExpression(QStringLiteral("xz"), kPlain));
    QCOMPARE(filter.rowCount(), 1);
    QCOMPARE(cell(0).data(Qt::EditRole).toString(), tooLong);
    filter.setFilterRegularExpression(FilterExpression(QStringLiteral("b\rc"), kPlain));
    QCOMPARE(filter.rowCount(), 1);
    filter.setFilterRegularExpression(FilterExpression(QStringLiteral("b c"), kPlain));
    QCOMPARE(filter.rowCount(), 0);
}

void TestConnectionFilter::filtersTheKeyColumnOnly()
{
    ConnectionsModel model(nullptr, QString());
    for (const int number : {1, 2, 3})
        model.AddConnection(SampleEntry(number));
    ConnectionFilterModel filter;
    const QAbstractItemModelTester tester(&filter, QAbstractItemModelTester::FailureReportingMode::QtTest);
    filter.setSourceModel(&model);
    filter.setFilterRegularExpression(FilterExpression(QStringLiteral("10.0.1.2"), kPlain));
    filter.setFilterKeyColumn(ConnectionsModel::ColumnName);
    QCOMPARE(filter.rowCount(), 0);
    filter.setFilterKeyColumn(ConnectionsModel::ColumnDriverAddress);
    QCOMPARE(Shown(filter), QStringList{QStringLiteral("entry 2")});
}

void TestConnectionFilter::filtersWhatIsDisplayed()
{
    ConnectionsModel model(nullptr, QString());
    Connection entry = NamedEntry(QStringLiteral("a"));
    model.AddConnection(entry);
    entry = NamedEntry(QStringLiteral("b"));
    entry.ConnectionStatus = 1;
    entry.DeviceType = Connection::Heron;
    entry.TimeoutSeconds = 30;
    model.AddConnection(entry);
    ConnectionFilterModel filter;
    filter.setSourceModel(&model);
    const auto shown = [&filter](int column, const QString& pattern) {
        filter.setFilterKeyColumn(column);
        filter.setFilterRegularExpression(FilterExpression(pattern, kPlain));
        return Shown(filter);
    };
    const QStringList a{QStringLiteral("a")};
    const QStringList b{QStringLiteral("b")};
    QCOMPARE(shown(ConnectionsModel::ColumnStatus, QStringLiteral("free")), a);
    QCOMPARE(shown(ConnectionsModel::ColumnStatus, QStringLiteral("in use")), b);
    QCOMPARE(shown(ConnectionsModel::ColumnDeviceType, QStringLiteral("heron")), b);
    QCOMPARE(shown(ConnectionsModel::ColumnTimeout, QStringLiteral("no timeout")), a);
    QCOMPARE(shown(ConnectionsModel::ColumnTimeout, QStringLiteral("30")), b);
}

void TestConnectionFilter::follows()
{
    ConnectionsModel model(nullptr, QString());
    ConnectionFilterModel filter;
    const QAbstractItemModelTester tester(&filter, QAbstractItemModelTester::FailureReportingMode::QtTest);
    filter.setSourceModel(&model);
    filter.setFilterKeyColumn(ConnectionsModel::ColumnName);
    filter.setFilterRegularExpression(FilterExpression(QStringLiteral("mast *"), kWildcard));
    model.AddConnection(NamedEntry(QStringLiteral("Mast 1")));
    model.AddConnection(NamedEntry(QStringLiteral("Post 1")));
    QCOMPARE(Shown(filter), QStringList{QStringLiteral("Mast 1")});
    model.setData(model.index(1, ConnectionsModel::ColumnName), QStringLiteral("Mast 2"));
    QCOMPARE(Shown(filter), (QStringList{QStringLiteral("Mast 1"), QStringLiteral("Mast 2")}));
    filter.setFilterRegularExpression(FilterExpression(QStringLiteral("["), kWildcard));
    QCOMPARE(filter.rowCount(), 0);
    filter.setFilterRegularExpression(FilterExpression(QStringLiteral("[2]"), kWildcard));
    QCOMPARE(Shown(filter), QStringList{QStringLiteral("Mast 2")});
}

void TestConnectionFilter::sorts()
{
    ConnectionsModel model(nullptr, QString());
    for (const char* const name : {"b", "c", "a"}) {
        Connection entry = NamedEntry(QString::fromLatin1(name));
        entry.Selected = entry.ConnectionName == u'c';
        model.AddConnection(entry);
    }
    ConnectionFilterModel filter;
    filter.setSourceModel(&model);
    filter.sort(ConnectionsModel::ColumnName);
    QCOMPARE(Shown(filter), (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
    // The tick's one blank is what brings selected rows together.
    filter.sort(ConnectionsModel::ColumnSelected, Qt::DescendingOrder);
    QCOMPARE(Shown(filter).first(), QStringLiteral("c"));
}

void TestConnectionFilter::settingsDefaults()
{
    const FilterSettings settings = FilterSettings::Load();
    QCOMPARE(settings.column, 1);
    QCOMPARE(settings.pattern, QString());
    QCOMPARE(settings.searchMode, 0);
}

void TestConnectionFilter::columnReadRule_data()
{
    QTest::addColumn<int>("stored");
    QTest::addColumn<int>("column");
    for (int column = 0; column < 10; ++column)
        QTest::addRow("%d", column) << column << column;
    QTest::newRow("-1") << -1 << 0;
    QTest::newRow("10") << 10 << 9;
    // Further out they stay outside, and the choice then has no current column.
    QTest::newRow("-2") << -2 << -1;
    QTest::newRow("11") << 11 << 10;
    QTest::newRow("12") << 12 << 11;
    QTest::newRow("lowest") << std::numeric_limits<int>::min() << std::numeric_limits<int>::min() + 1;
    QTest::newRow("highest") << std::numeric_limits<int>::max() << std::numeric_limits<int>::max() - 1;
}

void TestConnectionFilter::columnReadRule()
{
    QFETCH(int, stored);
    QFETCH(int, column);
    SettingsNode()->SetInt(QStringLiteral("Column"), stored, 0);
    QCOMPARE(FilterSettings::Load().column, column);
    // Reading corrects nothing in the configuration.
    QCOMPARE(SettingsNode()->GetInt(QStringLiteral("Column"), 4711, 0), stored);
}

void TestConnectionFilter::searchModeReadRule_data()
{
    QTest::addColumn<int>("stored");
    QTest::addColumn<int>("mode");
    for (const int mode : {0, 1, 2})
        QTest::addRow("%d", mode) << mode << mode;
    for (const int stored : {-1, 3, 7, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        QTest::addRow("%d", stored) << stored << 0;
}

void TestConnectionFilter::searchModeReadRule()
{
    QFETCH(int, stored);
    QFETCH(int, mode);
    SettingsNode()->SetInt(QStringLiteral("SearchMode"), stored, 0);
    QCOMPARE(FilterSettings::Load().searchMode, mode);
}

void TestConnectionFilter::settingsAreStoredForTheUser()
{
    FilterSettings settings;
    settings.column = 3;
    settings.pattern = QStringLiteral("Heron");
    settings.searchMode = 2;
    settings.Save();
    QCOMPARE(SettingsNode()->GetInt(QStringLiteral("Column"), -1, 0), 3);
    QCOMPARE(SettingsNode()->GetString(QStringLiteral("FilterPattern"), QString(), 0), QStringLiteral("Heron"));
    QCOMPARE(SettingsNode()->GetInt(QStringLiteral("SearchMode"), -1, 0), 2);
    for (const View other : {View::Application, View::Shared})
        QCOMPARE(SettingsNode(other)->GetInt(QStringLiteral("Column"), -1, 0), -1);
}

void TestConnectionFilter::settingsAreStoredAsTheyAre()
{
    FilterSettings settings;
    settings.column = -1;
    settings.pattern = QStringLiteral("");
    settings.searchMode = -1;
    settings.Save();
    QCOMPARE(SettingsNode()->GetInt(QStringLiteral("Column"), 4711, 0), -1);
    QCOMPARE(SettingsNode()->GetString(QStringLiteral("FilterPattern"), QStringLiteral("(none)"), 0), QString());
    QCOMPARE(SettingsNode()->GetInt(QStringLiteral("SearchMode"), 4711, 0), -1);
}

void TestConnectionFilter::settingsSurviveTheRun()
{
    const QTemporaryDir store;
    FilterSettings settings;
    settings.column = 5;
    settings.searchMode = 2;
    for (const QString& pattern : {QStringLiteral("^10\\.0\\..*[;#=\"%,]$"), QStringLiteral(u" \U0001F4E1 \u00FC "),
                                   QStringLiteral("@Invalid()"), QStringLiteral("a\nb"), QStringLiteral("")}) {
        settings.pattern = pattern;
        QVERIFY(CfgCenter::Open(store.path()));
        settings.Save();
        QVERIFY(CfgCenter::SaveDocument());
        CfgCenter::Close();
        QVERIFY(CfgCenter::Open(store.path()));
        QCOMPARE(FilterSettings::Load().column, 5);
        QCOMPARE(FilterSettings::Load().pattern, pattern);
        QCOMPARE(FilterSettings::Load().searchMode, 2);
    }
}

void TestConnectionFilter::settingsAreNotSavedByStoring()
{
    const QTemporaryDir store;
    QVERIFY(CfgCenter::Open(store.path()));
    FilterSettings settings;
    settings.column = 5;
    settings.Save();
    QVERIFY(CfgCenter::Open(store.path()));
    QCOMPARE(FilterSettings::Load().column, 1);
}

VEXEL_TEST(QTEST_MAIN, TestConnectionFilter)

#include "tst_connectionfilter.moc"
