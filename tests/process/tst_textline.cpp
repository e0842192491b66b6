// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/textline.h"
#include "tests/support/testmain.h"

#include <QTest>

class TestTextLine : public QObject
{
    Q_OBJECT

private slots:
    void controlCharactersAreEscaped_data();
    void controlCharactersAreEscaped();
    void elisionCountsCharacters_data();
    void elisionCountsCharacters();
    void combiningCharactersTakeNoCell();
};

void TestTextLine::controlCharactersAreEscaped_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("line");

    QTest::newRow("plain") << QStringLiteral("Café \\ 42") << QStringLiteral("Café \\ 42");
    QTest::newRow("line feed") << QStringLiteral("a\nb") << QStringLiteral("a\\nb");
    QTest::newRow("carriage return, tab") << QStringLiteral("a\r\tb") << QStringLiteral("a\\r\\tb");
    QTest::newRow("escape") << QStringLiteral("\x1b[31mred") << QStringLiteral("\\u{1b}[31mred");
    QTest::newRow("next line") << QString(QChar(0x85)) << QStringLiteral("\\u{85}");
    QTest::newRow("line separator") << QString(QChar(0x2028)) << QStringLiteral("\\u{2028}");
    QTest::newRow("paragraph separator") << QString(QChar(0x2029)) << QStringLiteral("\\u{2029}");
    QTest::newRow("right-to-left override") << QString(QChar(0x202e)) << QStringLiteral("\\u{202e}");
    QTest::newRow("joiner") << QString(QChar(0x200d)) << QString(QChar(0x200d));
    QTest::newRow("lone surrogate") << QString(QChar(0xd800)) << QStringLiteral("\\u{d800}");
    QTest::newRow("astral") << QStringLiteral("\U0001F4E1") << QStringLiteral("\U0001F4E1");
}

void TestTextLine::controlCharactersAreEscaped()
{
    QFETCH(const QString, text);
    QFETCH(const QString, line);
    QCOMPARE(OneLine(text), line);
}

void TestTextLine::elisionCountsCharacters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("elided");

    QTest::newRow("short") << QStringLiteral("abc") << QStringLiteral("abc");
    QTest::newRow("just fits") << QStringLiteral("abcd") << QStringLiteral("abcd");
    QTest::newRow("too long") << QStringLiteral("abcde") << QStringLiteral("abc\u2026");
    QTest::newRow("no half characters") << QStringLiteral("\U0001F4E1\U0001F4E1\U0001F4E1\U0001F4E1\U0001F4E1")
                                        << QStringLiteral("\U0001F4E1\U0001F4E1\U0001F4E1\u2026");
}

void TestTextLine::elisionCountsCharacters()
{
    QFETCH(const QString, text);
    QFETCH(const QString, elided);
    QCOMPARE(Elided(text, 4), elided);
}

void TestTextLine::combiningCharactersTakeNoCell()
{
    QCOMPARE(CellCount(QString()), 0);
    QCOMPARE(CellCount(QStringLiteral("abc")), 3);
    QCOMPARE(CellCount(QStringLiteral("\U0001F4E1")), 1);
    QCOMPARE(CellCount(QStringLiteral("e\u0301")), 1);
}

VEXEL_TEST(QTEST_APPLESS_MAIN, TestTextLine)
#include "tst_textline.moc"
