// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/store/listdifference.h"
#include "tests/support/testmain.h"

#include <QTest>

namespace {

Connection Entry(const QString& name, const QString& address = QString())
{
    Connection entry;
    entry.ConnectionName = name;
    entry.DeviceAddress = address;
    return entry;
}

/// A list in short form: "name:address name:address".
std::vector<Connection> List(const char* text)
{
    std::vector<Connection> entries;
    const QStringList words = QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
    for (const QString& word : words)
        entries.push_back(Entry(word.section(u':', 0, 0), word.section(u':', 1)));
    return entries;
}

QString Text(const ListDifference& difference)
{
    return QStringLiteral("+%1 -%2 *%3")
        .arg(difference.added.join(u','), difference.removed.join(u','), difference.changed.join(u','));
}

} // namespace

class TestListDifference : public QObject
{
    Q_OBJECT

private slots:
    void entriesAreMatched_data();
    void entriesAreMatched();
    void everyFieldButTheStatusCounts_data();
    void everyFieldButTheStatusCounts();
    void longLists_data();
    void longLists();
};

void TestListDifference::entriesAreMatched_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QString>("difference");
    const auto row = [](const char* name, const char* before, const char* after, const char* difference) {
        QTest::newRow(name) << QByteArray(before) << QByteArray(after) << QString::fromLatin1(difference);
    };
    row("empty", "", "", "+ - *");
    row("equal", "a:1 b:2", "a:1 b:2", "+ - *");
    row("another order", "a:1 b:2 c:3", "c:3 a:1 b:2", "+ - *");
    row("first list", "", "b a", "+b,a - *");
    row("emptied", "b a", "", "+ -b,a *");
    row("added", "a:1", "z:1 a:1 b:1", "+z,b - *");
    row("removed", "z:1 a:1 b:1", "a:1", "+ -z,b *");
    row("changed", "a:1 b:2", "a:1 b:3", "+ - *b");
    row("all at once", "a:1 b:2 c:3", "d:4 c:9 a:1", "+d -b *c");
    row("names differ in case", "a:1", "A:1", "+A -a *");
    row("renamed", "a:1", "b:1", "+b -a *");
    row("changed entries in the order of the new list", "a:1 b:2", "b:3 a:4", "+ - *b,a");
    row("one of the same name changed", "a:1 a:2 a:3", "a:1 a:9 a:3", "+ - *a");
    row("equal ones first", "a:1 a:2", "a:2", "+ -a *");
    row("equal ones first, where more are added", "a:2", "a:1 a:2 a:3", "+a,a - *");
    row("the others in order", "a:1 a:2 a:3", "a:4 a:3", "+ -a *a");
    row("copies added", "a:1 b:1", "a:1 b:1 a:1 a:1", "+a,a - *");
    row("copies removed", "a:1 a:1 a:1 b:1", "b:1 a:1", "+ -a,a *");
    row("copies changed", "a:1 a:1", "a:2 a:2 a:2", "+a - *a,a");
}

void TestListDifference::entriesAreMatched()
{
    QFETCH(const QByteArray, before);
    QFETCH(const QByteArray, after);
    QFETCH(const QString, difference);
    QCOMPARE(Text(Compare(List(before.constData()), List(after.constData()))), difference);
}

void TestListDifference::everyFieldButTheStatusCounts_data()
{
    QTest::addColumn<Connection>("changed");
    QTest::addColumn<bool>("counts");
    const auto row = [](const char* name, bool counts, const auto& change) {
        Connection entry = Entry(QStringLiteral("a"));
        change(entry);
        QTest::newRow(name) << entry << counts;
    };
    row(
        "status", false, [](Connection& entry) { entry.ConnectionStatus = Connection::InUse; });
    row(
        "tick", true, [](Connection& entry) { entry.Selected = true; });
    row(
        "device type", true, [](Connection& entry) { entry.DeviceType = 1; });
    row(
        "connection type", true, [](Connection& entry) { entry.ConnectionType = 1; });
    row(
        "device address", true, [](Connection& entry) { entry.DeviceAddress = QStringLiteral("x"); });
    row(
        "driver address", true, [](Connection& entry) { entry.DriverAddress = QStringLiteral("x"); });
    row(
        "link speed", true, [](Connection& entry) { entry.LinkSpeed = 1; });
    row(
        "time-out", true, [](Connection& entry) { entry.TimeoutSeconds = 1; });
    row("subsystem", true, [](Connection& entry) { entry.Subsystem = QStringLiteral("x"); });
}

void TestListDifference::everyFieldButTheStatusCounts()
{
    QFETCH(const Connection, changed);
    QFETCH(const bool, counts);
    QCOMPARE(Text(Compare(List("a"), {changed})), counts ? QStringLiteral("+ - *a") : QStringLiteral("+ - *"));
}

void TestListDifference::longLists_data()
{
    QTest::addColumn<bool>("sameName");
    QTest::addColumn<bool>("sameAddress");
    QTest::newRow("all different") << false << false;
    QTest::newRow("all of one name") << true << false;
    QTest::newRow("copies of one entry") << true << true;
}

// Ends at once, where quadratic time would take minutes.
void TestListDifference::longLists()
{
    QFETCH(const bool, sameName);
    QFETCH(const bool, sameAddress);
    constexpr int kEntries = 100'000;
    const auto entry = [&](int number) {
        const QString text = QString::number(number);
        return Entry(sameName ? QStringLiteral("name") : text, sameAddress ? QStringLiteral("address") : text);
    };
    std::vector<Connection> before;
    std::vector<Connection> after;
    for (int i = 0; i < kEntries; ++i) {
        before.push_back(entry(i));
        after.push_back(entry(kEntries - i)); // without 0, with one more
    }
    for (std::size_t i = 1; i <= 1000; ++i)
        after[i].LinkSpeed = Connection::Gsm;
    const ListDifference difference = Compare(before, after);
    const bool isReplaced = sameName && !sameAddress; // the entry that went and the one that came have the same name
    QCOMPARE(difference.changed.size(), isReplaced ? 1001 : 1000);
    QCOMPARE(difference.added.size(), sameName ? 0 : 1);
    QCOMPARE(difference.removed.size(), sameName ? 0 : 1);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestListDifference)
#include "tst_listdifference.moc"
