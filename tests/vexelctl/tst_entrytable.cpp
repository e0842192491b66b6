// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "control/entryjson.h"
#include "tests/support/testmain.h"
#include "vexelctl/entrytable.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

class TestEntryTable : public QObject
{
    Q_OBJECT

private slots:
    void emptyListPrintsTheHeadingOnly();
    void columnsAreAligned();
    void entriesInUseAddColumns();
    void namesCannotBreakTheTable();
    void longNamesAreCut();
    void jsonHoldsEveryEntry();
    void jsonOfAnEmptyListIsAnEmptyArray();
    void programNameIsThatOfTheFile();
};

namespace {

QStringList Lines(const QString& table)
{
    QStringList lines = table.split(QLatin1Char('\n'));
    // The text ends with a line break.
    return lines.takeLast().isEmpty() ? lines : QStringList();
}

ListedEntry Entry(const QString& name, bool isTicked = false, int status = 0)
{
    ListedEntry listed;
    listed.entry.ConnectionName = name;
    listed.entry.Selected = isTicked;
    listed.entry.ConnectionStatus = status;
    return listed;
}

} // namespace

void TestEntryTable::emptyListPrintsTheHeadingOnly()
{
    QCOMPARE(Lines(EntryTable({})),
             QStringList(QStringLiteral("Name  Status  Device Type  Connection Type  Device Address  Driver Address  "
                                        "Link Speed  Timeout Time  Subsystem  Selected")));
}

void TestEntryTable::columnsAreAligned()
{
    const QStringList lines =
        Lines(EntryTable({Entry(QStringLiteral("a mast with a name"), true, 1), Entry(QStringLiteral("e\u0301"))}));
    QCOMPARE(lines.size(), 3);
    const qsizetype status = lines.at(0).indexOf(QLatin1String("Status"));
    QCOMPARE(lines.at(1).indexOf(QLatin1String("In Use")), status);
    // The combining accent takes no cell.
    QCOMPARE(lines.at(2).indexOf(QLatin1String("Free")), status + 1);
    QVERIFY(lines.at(1).endsWith(QLatin1String("  yes")));
    QVERIFY(lines.at(2).endsWith(QLatin1String("  no")));
}

void TestEntryTable::entriesInUseAddColumns()
{
    ListedEntry used = Entry(QStringLiteral("mast"), false, 1);
    used.application = {
        QStringLiteral("/opt/bin/kitecontrol"), 4712, QDateTime(QDate(2026, 3, 4), QTime(10, 11, 12)), {}, {}, false};
    const QStringList lines = Lines(EntryTable({Entry(QStringLiteral("pier")), used}));
    QVERIFY2(lines.at(0).contains(QLatin1String("  Selected  Since ")), qPrintable(lines.at(0)));
    QVERIFY2(lines.at(0).endsWith(QLatin1String("  Program      Process")), qPrintable(lines.at(0)));
    QVERIFY2(lines.at(1).endsWith(QLatin1String("  no")), qPrintable(lines.at(1)));
    QVERIFY2(lines.at(2).endsWith(QLatin1String("  no        2026-03-04 10:11:12  kitecontrol  4712")),
             qPrintable(lines.at(2)));
}

void TestEntryTable::namesCannotBreakTheTable()
{
    const QStringList lines = Lines(EntryTable({Entry(QStringLiteral("a\nb\x1b[2J\u202e"))}));
    QCOMPARE(lines.size(), 2);
    QVERIFY2(lines.at(1).startsWith(QLatin1String("a\\nb\\u{1b}[2J\\u{202e}  Free ")), qPrintable(lines.at(1)));
}

void TestEntryTable::longNamesAreCut()
{
    const QStringList lines =
        Lines(EntryTable({Entry(QString(1'000'000, QLatin1Char('x'))), Entry(QStringLiteral("short"))}));
    QCOMPARE(lines.size(), 3);
    QVERIFY(lines.at(1).startsWith(QString(59, QLatin1Char('x')) + QChar(0x2026) + QLatin1String("  Free")));
    for (const QString& line : lines)
        QVERIFY(line.size() < 250);
}

void TestEntryTable::jsonHoldsEveryEntry()
{
    ListedEntry used = Entry(QStringLiteral("mast"), true, 1);
    used.application = {QStringLiteral("/opt/bin/kitecontrol"), 4712, QDateTime::currentDateTime(), {}, {}, false};
    const QJsonArray connections = QJsonDocument::fromJson(EntryJson({Entry(QStringLiteral("pier")), used}))
                                       .object()
                                       .value(QLatin1String("connections"))
                                       .toArray();
    QCOMPARE(connections.size(), 2);
    QCOMPARE(connections.at(0).toObject(), EntryToJson(Entry(QStringLiteral("pier")).entry));
    QCOMPARE(connections.at(1).toObject(), EntryToJson(used.entry, used.application));
}

void TestEntryTable::jsonOfAnEmptyListIsAnEmptyArray()
{
    const QJsonValue connections = QJsonDocument::fromJson(EntryJson({})).object().value(QLatin1String("connections"));
    QVERIFY(connections.isArray());
    QVERIFY(connections.toArray().isEmpty());
}

void TestEntryTable::programNameIsThatOfTheFile()
{
    QCOMPARE(ProgramName(QStringLiteral("/opt/bin/kite.control")), QStringLiteral("kite.control"));
    QCOMPARE(ProgramName(QStringLiteral("C:/Program Files/kitecontrol.EXE")), QStringLiteral("kitecontrol"));
    QCOMPARE(ProgramName(QStringLiteral("kitecontrol")), QStringLiteral("kitecontrol"));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestEntryTable)
#include "tst_entrytable.moc"
