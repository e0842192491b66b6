#include "host/headless/connectionreport.h"
#include "tests/support/fakedialog.h"
#include "tests/support/testmain.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

class TestConnectionReport : public QObject
{
    Q_OBJECT

private slots:
    void emptyListPrintsTheHeadingOnly();
    void columnsAreAligned();
    void namesCannotBreakTheTable();
    void longNamesAreCut();
    void jsonHoldsUnchangedValues();
    void jsonOfAnEmptyListIsAnEmptyArray();
};

namespace {

QStringList Lines(const QString& table)
{
    QStringList lines = table.split(QLatin1Char('\n'));
    // The text ends with a line break.
    return lines.takeLast().isEmpty() ? lines : QStringList();
}

} // namespace

void TestConnectionReport::emptyListPrintsTheHeadingOnly()
{
    const FakeDialog fake;
    QCOMPARE(Lines(ConnectionTable(fake.entries)),
             QStringList(QStringLiteral("Heading 1  Heading 2  Heading 3  Heading 4  Heading 5  Heading 6  Heading 7  "
                                        "Heading 8  Heading 9  Selected")));
}

void TestConnectionReport::columnsAreAligned()
{
    FakeDialog fake;
    fake.Add(QStringLiteral("a mast with a name"), true, 1);
    fake.Add(QStringLiteral("e\u0301"), false, 0);
    const QStringList lines = Lines(ConnectionTable(fake.entries));
    QCOMPARE(lines.size(), 3);
    const qsizetype status = lines.at(0).indexOf(QLatin1String("Heading 2"));
    QCOMPARE(lines.at(1).indexOf(QLatin1String("1          cell 3")), status);
    // The combining accent takes no cell.
    QCOMPARE(lines.at(2).indexOf(QLatin1String("0          cell 3")), status + 1);
    QVERIFY(lines.at(1).endsWith(QLatin1String("  yes")));
    QVERIFY(lines.at(2).endsWith(QLatin1String("  no")));
}

void TestConnectionReport::namesCannotBreakTheTable()
{
    FakeDialog fake;
    fake.Add(QStringLiteral("a\nb\x1b[2J\u202e"));
    const QStringList lines = Lines(ConnectionTable(fake.entries));
    QCOMPARE(lines.size(), 2);
    QVERIFY2(lines.at(1).startsWith(QLatin1String("a\\nb\\u{1b}[2J\\u{202e}  0 ")), qPrintable(lines.at(1)));
}

void TestConnectionReport::longNamesAreCut()
{
    FakeDialog fake;
    fake.Add(QString(1'000'000, QLatin1Char('x')));
    fake.Add(QStringLiteral("short"));
    const QStringList lines = Lines(ConnectionTable(fake.entries));
    QCOMPARE(lines.size(), 3);
    QVERIFY(lines.at(1).startsWith(QString(59, QLatin1Char('x')) + QChar(0x2026) + QLatin1String("  0")));
    for (const QString& line : lines)
        QVERIFY(line.size() < 200);
}

void TestConnectionReport::jsonHoldsUnchangedValues()
{
    const QString name = QStringLiteral("a\nb \"c\" \U0001F4E1");
    FakeDialog fake;
    fake.Add(name, true, 1);
    fake.entries.setData(fake.entries.index(0, 8), 30, Qt::EditRole);
    const QJsonObject root = QJsonDocument::fromJson(ConnectionJson(fake.entries)).object();
    const QJsonArray connections = root.value(QLatin1String("connections")).toArray();
    QCOMPARE(connections.size(), 1);
    const QJsonObject connection = connections.at(0).toObject();
    QCOMPARE(connection.value(QLatin1String("name")).toString(), name);
    QCOMPARE(connection.value(QLatin1String("selected")), QJsonValue(true));
    QCOMPARE(connection.value(QLatin1String("status")), QJsonValue(1));
    QCOMPARE(connection.value(QLatin1String("statusText")), QJsonValue(QStringLiteral("1")));
    QCOMPARE(connection.value(QLatin1String("timeoutSeconds")), QJsonValue(30));
    QCOMPARE(connection.value(QLatin1String("timeoutText")), QJsonValue(QStringLiteral("30")));
    QCOMPARE(connection.value(QLatin1String("deviceAddress")), QJsonValue(QStringLiteral("cell 5")));
    QCOMPARE(connection.value(QLatin1String("driverAddress")), QJsonValue(QStringLiteral("cell 6")));
    QCOMPARE(connection.value(QLatin1String("linkSpeedText")), QJsonValue(QStringLiteral("cell 7")));
    QCOMPARE(connection.value(QLatin1String("subsystem")), QJsonValue(QStringLiteral("cell 9")));
    QCOMPARE(connection.size(), 15);
}

void TestConnectionReport::jsonOfAnEmptyListIsAnEmptyArray()
{
    const FakeDialog fake;
    const QJsonObject root = QJsonDocument::fromJson(ConnectionJson(fake.entries)).object();
    QVERIFY(root.value(QLatin1String("connections")).isArray());
    QVERIFY(root.value(QLatin1String("connections")).toArray().isEmpty());
}

VEXEL_TEST(QTEST_MAIN, TestConnectionReport)
#include "tst_connectionreport.moc"
