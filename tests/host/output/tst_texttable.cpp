// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/output/texttable.h"
#include "tests/support/testmain.h"

#include <QTest>

class TestTextTable : public QObject
{
    Q_OBJECT

private slots:
    void columnsAreAligned();
    void noBlanksAtTheEndOfALine();
    void wideAndCombiningCharacters();
    void emptyTable();
};

void TestTextTable::columnsAreAligned()
{
    QCOMPARE(TextTable({{QStringLiteral("Name"), QStringLiteral("N"), QStringLiteral("Last")},
                        {QStringLiteral("a"), QStringLiteral("1000"), QStringLiteral("x")},
                        {QStringLiteral("longer"), QStringLiteral("2"), QStringLiteral("last and longest")}}),
             QStringLiteral("Name    N     Last\n"
                            "a       1000  x\n"
                            "longer  2     last and longest\n"));
}

void TestTextTable::noBlanksAtTheEndOfALine()
{
    QCOMPARE(TextTable({{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")},
                        {QString(), QString(), QStringLiteral("x")},
                        {QStringLiteral("x"), QString(), QString()},
                        {QString(), QString(), QString()}}),
             QStringLiteral("a  b  c\n"
                            "      x\n"
                            "x\n"
                            "\n"));
}

void TestTextTable::wideAndCombiningCharacters()
{
    // An a with two dots, made of two characters in one cell.
    QCOMPARE(TextTable({{QStringLiteral("a\u0308"), QStringLiteral("b")}, {QStringLiteral("xy"), QStringLiteral("z")}}),
             QStringLiteral("a\u0308   b\nxy  z\n"));
}

void TestTextTable::emptyTable()
{
    QCOMPARE(TextTable({}), QString());
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestTextTable)
#include "tst_texttable.moc"
