// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"
#include "vexelctl/support/supportreport.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

class TestSupportReport : public QObject
{
    Q_OBJECT

private slots:
    void textOfFacts();
    void textOfTablesAndLists();
    void jsonOfEverything();
    void textsCannotBreakTheReport();
    void longTablesAreCutInTheTextOnly();
    void emptyReport();

private:
    static QJsonObject Read(const SupportReport& report) { return QJsonDocument::fromJson(report.Json()).object(); }
};

void TestSupportReport::textOfFacts()
{
    SupportReport report;
    report.BeginSection(QStringLiteral("One"));
    report.AddFact(QStringLiteral("a"), QStringLiteral("text"));
    report.AddFact(QStringLiteral("longer label"), qint64{1234567890123});
    report.AddFact(QStringLiteral("yes"), true);
    report.AddFact(QStringLiteral("no"), false);
    report.BeginSection(QStringLiteral("Two"));
    report.AddFact(QStringLiteral("unknown"), QJsonValue());
    report.AddFact(QStringLiteral("empty"), QString());
    report.AddFact(QStringLiteral("some"), QJsonArray{QStringLiteral("x"), QStringLiteral("y")});
    QCOMPARE(report.Text(), QStringLiteral("One\n"
                                           "  a             text\n"
                                           "  longer label  1234567890123\n"
                                           "  yes           yes\n"
                                           "  no            no\n"
                                           "\n"
                                           "Two\n"
                                           "  unknown  -\n"
                                           "  empty    \"\"\n"
                                           "  some     x, y\n"));
}

void TestSupportReport::textOfTablesAndLists()
{
    SupportReport report;
    report.BeginSection(QStringLiteral("One"));
    report.AddFact(QStringLiteral("a"), 1);
    report.AddTable(QStringLiteral("table"), {QStringLiteral("Name"), QStringLiteral("N")},
                    {{QStringLiteral("long name"), 1}, {QStringLiteral("b"), QJsonValue()}});
    report.AddList(QStringLiteral("list"), {QStringLiteral("first line"), QStringLiteral("second")});
    report.AddTable(QStringLiteral("no rows"), {QStringLiteral("Name")}, {});
    report.AddList(QStringLiteral("no texts"), {});
    QCOMPARE(report.Text(), QStringLiteral("One\n"
                                           "  a         1\n"
                                           "  table\n"
                                           "    Name       N\n"
                                           "    long name  1\n"
                                           "    b          -\n"
                                           "  list\n"
                                           "    first line\n"
                                           "    second\n"
                                           "  no rows   none\n"
                                           "  no texts  none\n"));
}

void TestSupportReport::jsonOfEverything()
{
    SupportReport report;
    report.BeginSection(QStringLiteral("Starter link"));
    report.AddFact(QStringLiteral("plug-in state"), QStringLiteral("a\nb"));
    report.AddFact(QStringLiteral("Qt built with"), true);
    report.AddFact(QStringLiteral("none"), QJsonValue());
    report.AddTable(QStringLiteral("device types"), {QStringLiteral("Type"), QStringLiteral("Found as")},
                    {{4, QJsonArray{QStringLiteral("x")}}});
    report.AddList(QStringLiteral("dropped"), {QStringLiteral("y")});
    const QJsonObject expected{{QStringLiteral("plugInState"), QStringLiteral("a\nb")},
                               {QStringLiteral("qtBuiltWith"), true},
                               {QStringLiteral("none"), QJsonValue()},
                               {QStringLiteral("deviceTypes"),
                                QJsonArray{QJsonObject{{QStringLiteral("type"), 4},
                                                       {QStringLiteral("foundAs"), QJsonArray{QStringLiteral("x")}}}}},
                               {QStringLiteral("dropped"), QJsonArray{QStringLiteral("y")}}};
    QCOMPARE(Read(report), QJsonObject({{QStringLiteral("starterLink"), expected}}));
}

void TestSupportReport::textsCannotBreakTheReport()
{
    SupportReport report;
    report.BeginSection(QStringLiteral("One"));
    report.AddFact(QStringLiteral("a"), QStringLiteral("two\nlines\x1b[31m"));
    report.AddFact(QStringLiteral("b"), QString(1'000'000, QLatin1Char('x')));
    report.AddList(QStringLiteral("c"), {QStringLiteral("\u202eabc\n")});
    QCOMPARE(report.Text().count(QLatin1Char('\n')), 5);
    QVERIFY(!report.Text().contains(QLatin1Char('\x1b')));
    QVERIFY(report.Text().size() < 1000);
    // A program gets all of it.
    const QJsonObject one = Read(report).value(QLatin1String("one")).toObject();
    QCOMPARE(one.value(QLatin1String("b")).toString().size(), 1'000'000);
    QCOMPARE(one.value(QLatin1String("c")).toArray().at(0).toString(), QStringLiteral("\u202eabc\n"));
}

void TestSupportReport::longTablesAreCutInTheTextOnly()
{
    QStringList texts;
    for (int i = 0; i < 100'000; ++i)
        texts.append(QStringLiteral("text %1").arg(i));
    SupportReport report;
    report.BeginSection(QStringLiteral("One"));
    report.AddList(QStringLiteral("list"), texts);
    const QStringList lines = report.Text().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 203);
    QCOMPARE(lines.constLast(), QStringLiteral("    and 99800 more (--json prints all)"));
    const QJsonObject one = Read(report).value(QLatin1String("one")).toObject();
    QCOMPARE(one.value(QLatin1String("list")).toArray().size(), 100'000);
}

void TestSupportReport::emptyReport()
{
    QCOMPARE(SupportReport().Text(), QString());
    QCOMPARE(Read(SupportReport()), QJsonObject());
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestSupportReport)
#include "tst_supportreport.moc"
