// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/config/documenttext.h"
#include "tests/support/testmain.h"

#include <QRandomGenerator>
#include <QTest>

#include <iterator>

using DocumentText::Parse;
using DocumentText::Values;
using DocumentText::Write;

namespace {

/// Random texts, with many characters that encodings, JSON and Qt's reader treat specially.
QString RandomText(QRandomGenerator& random)
{
    constexpr char16_t kSpecial[] = {0,      1,      u'\n',  u'"',   u'%',   u'/',   u'\\',  u'u',   0x7f,   0x80,
                                     0x2028, 0xd800, 0xdbff, 0xdc00, 0xdfff, 0xfeff, 0xfffe, 0xffff, 0x65e5, u' '};
    constexpr int kLongest = 12;
    QString text;
    for (int i = random.bounded(kLongest); i > 0; --i) {
        const bool isSpecial = random.bounded(2) == 0;
        text += isSpecial ? QChar(kSpecial[random.bounded(static_cast<int>(std::size(kSpecial)))])
                          : QChar(static_cast<char16_t>(random.bounded(0x10000)));
    }
    return text;
}

} // namespace

class TestDocumentText : public QObject
{
    Q_OBJECT

private slots:
    void oneLinePerValueSortedByPath()
    {
        const Values values{{QStringLiteral("Node/Second"), QStringLiteral("2")},
                            {QStringLiteral("Node/First"), QStringLiteral("caf\u00e9")},
                            {QStringLiteral("Key"), QStringLiteral("two\nlines")}};
        QCOMPARE(Write(values), QByteArray("{\n"
                                           "    \"digest\": \"44668cc748b8241e224bac34d7a10d33"
                                           "07042a1199a21c6f24350cd5a4c4d119\",\n"
                                           "    \"values\": {\n"
                                           "        \"Key\": \"two\\nlines\",\n"
                                           "        \"Node/First\": \"caf\u00e9\",\n"
                                           "        \"Node/Second\": \"2\"\n"
                                           "    }\n"
                                           "}"));
    }

    void anyTextComesBack()
    {
        QRandomGenerator random(1);
        for (int i = 0; i < 20'000; ++i) {
            Values values;
            for (int j = random.bounded(4); j > 0; --j)
                values.insert(RandomText(random), RandomText(random));
            const QByteArray text = Write(values);
            const auto parsed = Parse(text);
            QVERIFY2(parsed.values, qPrintable(parsed.error));
            QVERIFY2(*parsed.values == values, text.constData());
        }
    }

    void longTextComesBack()
    {
        const Values values{{QStringLiteral("Key"), QString(200 * 1024 * 1024, u'a')}};
        QVERIFY(Parse(Write(values)).values == values);
    }

    void truncatedTextIsMalformed()
    {
        const QByteArray text = Write({{QStringLiteral("Key"), QStringLiteral("\ufeff{}\"")}, {QString(), QString()}});
        QVERIFY(Parse(text).values);
        for (qsizetype length = 0; length < text.size(); ++length)
            QVERIFY2(!Parse(text.first(length)).values, text.first(length).constData());
    }

    void typedIntegersAndBooleansAreTexts()
    {
        const auto parsed = Parse(R"({"values": {"a": 5, "b": -1, "c": true, "d": 1000000000000}})");
        QCOMPARE(parsed.values, Values({{QStringLiteral("a"), QStringLiteral("5")},
                                        {QStringLiteral("b"), QStringLiteral("-1")},
                                        {QStringLiteral("c"), QStringLiteral("true")},
                                        {QStringLiteral("d"), QStringLiteral("1000000000000")}}));
    }

    void largestExactNumberIsAText()
    {
        QCOMPARE(Parse(R"({"values": {"a": 9007199254740992}})").values,
                 Values({{QStringLiteral("a"), QStringLiteral("9007199254740992")}}));
    }

    void typedLayoutIsAccepted()
    {
        const Values values{{QStringLiteral("a"), QStringLiteral("\u00e9")}};
        QCOMPARE(Parse("\xef\xbb\xbf{\r\n\t\"values\" : {\"a\":\"\\u00e9\"}\r\n}\r\n").values, values);
    }

    void errorNamesTheLine_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("beginning");
        QTest::newRow("nothing") << QByteArray() << QStringLiteral("line 1: ");
        QTest::newRow("comment") << QByteArray("{\n  \"values\": {\n    // mast\n    \"a\": \"1\"\n  }\n}")
                                 << QStringLiteral("line 3: ");
        QTest::newRow("trailing comma") << QByteArray("{\n  \"values\": {\n    \"a\": \"1\",\n  }\n}")
                                        << QStringLiteral("line 4: ");
        QTest::newRow("missing comma") << QByteArray("{\n  \"values\": {\n    \"a\": \"1\"\n    \"b\": \"2\"\n  }\n}")
                                       << QStringLiteral("line 4: ");
        QTest::newRow("text after the end") << QByteArray("{\n  \"values\": {}\n}\n}") << QStringLiteral("line 4: ");
        QTest::newRow("not UTF-8") << QByteArray("{\"values\": {\n\"a\": \"\xff\"}}") << QStringLiteral("line 2: ");
        QTest::newRow("null bytes in a string")
            << QByteArray("{\"values\": {\n\"a\": \"b\0\0\"}}", 25) << QStringLiteral("line 2: ");
        QTest::newRow("array") << QByteArray("[]") << QStringLiteral("it is not an object with ");
        QTest::newRow("no values") << QByteArray("{}") << QStringLiteral("it is not an object with ");
        QTest::newRow("values is a string")
            << QByteArray(R"({"values": "a"})") << QStringLiteral("it is not an object with ");
        QTest::newRow("another member with a digest")
            << QByteArray(R"({"digest": "", "note": "", "values": {}})") << QStringLiteral("it is not an object with ");
        QTest::newRow("another member") << QByteArray(R"({"note": "", "values": {}})")
                                        << QStringLiteral("it is not an object with ");
        QTest::newRow("fraction") << QByteArray(R"({"values": {"a": 1.10}})") << QStringLiteral("write the value of ");
        QTest::newRow("too many digits") << QByteArray(R"({"values": {"a": 12345678901234567890}})")
                                         << QStringLiteral("write the value of ");
        QTest::newRow("null") << QByteArray(R"({"values": {"a": null}})")
                              << QStringLiteral("write the value of \"a\" as a text");
        QTest::newRow("object") << QByteArray(R"({"values": {"a": {}}})")
                                << QStringLiteral("write the value of \"a\" as a text");
    }
    void errorNamesTheLine()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, beginning);
        const auto parsed = Parse(text);
        QVERIFY(!parsed.values);
        QVERIFY2(parsed.error.startsWith(beginning), qPrintable(parsed.error));
    }
};

VEXEL_TEST(QTEST_APPLESS_MAIN, TestDocumentText)
#include "tst_documenttext.moc"
