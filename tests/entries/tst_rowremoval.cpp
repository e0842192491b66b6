#include "tests/entries/entrysamples.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/rowremoval.h"

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QSortFilterProxyModel>
#include <QTest>

#include <algorithm>

namespace {

void AddNumbered(ConnectionsModel& model, int count)
{
    for (int number = 0; number < count; ++number)
        model.AddConnection(NamedEntry(QString::number(number)));
}

QStringList Names(const ConnectionsModel& model)
{
    QStringList names;
    for (int row = 0; row < model.rowCount(); ++row)
        names += model.GetConnection(row).ConnectionName;
    return names;
}

QModelIndexList Indexes(const QAbstractItemModel& model, const QList<int>& rows)
{
    QModelIndexList indexes;
    for (const int row : rows)
        indexes += model.index(row, 0);
    return indexes;
}

} // namespace

class TestRowRemoval : public QObject
{
    Q_OBJECT

private slots:
    void removesThePickedRows_data();
    void removesThePickedRows();
    void aRowCountsOnceWhateverItsColumns();
    void badIndexesAreNoRows();
    void throughASortedAndFilteredView();
    void sameAsOneByOne();
};

void TestRowRemoval::removesThePickedRows_data()
{
    QTest::addColumn<QList<int>>("rows");
    QTest::addColumn<QStringList>("left");
    QTest::addColumn<int>("steps");
    const auto names = [](std::initializer_list<int> numbers) {
        QStringList list;
        for (const int number : numbers)
            list += QString::number(number);
        return list;
    };
    QTest::newRow("none") << QList<int>{} << names({0, 1, 2, 3, 4, 5}) << 0;
    QTest::newRow("first") << QList<int>{0} << names({1, 2, 3, 4, 5}) << 1;
    QTest::newRow("last") << QList<int>{5} << names({0, 1, 2, 3, 4}) << 1;
    QTest::newRow("all") << QList<int>{0, 1, 2, 3, 4, 5} << names({}) << 1;
    QTest::newRow("all, backwards") << QList<int>{5, 4, 3, 2, 1, 0} << names({}) << 1;
    QTest::newRow("neighbours") << QList<int>{3, 2} << names({0, 1, 4, 5}) << 1;
    QTest::newRow("every other") << QList<int>{0, 2, 4} << names({1, 3, 5}) << 3;
    QTest::newRow("two runs, mixed up") << QList<int>{4, 0, 5, 1} << names({2, 3}) << 2;
    QTest::newRow("repeated") << QList<int>{2, 2, 2} << names({0, 1, 3, 4, 5}) << 1;
}

void TestRowRemoval::removesThePickedRows()
{
    QFETCH(QList<int>, rows);
    QFETCH(QStringList, left);
    QFETCH(int, steps);
    ConnectionsModel model(nullptr, QString());
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    AddNumbered(model, 6);
    const QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    RemoveRows(model, Indexes(model, rows));
    QCOMPARE(Names(model), left);
    QCOMPARE(removed.size(), steps);
}

void TestRowRemoval::aRowCountsOnceWhateverItsColumns()
{
    ConnectionsModel model(nullptr, QString());
    AddNumbered(model, 4);
    RemoveRows(model, {model.index(1, 0), model.index(2, 3), model.index(1, 9), model.index(2, 0)});
    QCOMPARE(Names(model), (QStringList{QStringLiteral("0"), QStringLiteral("3")}));
}

void TestRowRemoval::badIndexesAreNoRows()
{
    ConnectionsModel model(nullptr, QString());
    AddNumbered(model, 3);
    RemoveRows(model, {QModelIndex()});
    QCOMPARE(model.rowCount(), 3);
    RemoveRows(model, {QModelIndex(), model.index(0, 0), QModelIndex()});
    QCOMPARE(Names(model), (QStringList{QStringLiteral("1"), QStringLiteral("2")}));
}

void TestRowRemoval::throughASortedAndFilteredView()
{
    ConnectionsModel model(nullptr, QString());
    for (const char* const name : {"b1", "a2", "x", "b3", "a4", "c5"})
        model.AddConnection(NamedEntry(QString::fromLatin1(name)));
    QSortFilterProxyModel view;
    view.setSourceModel(&model);
    const QAbstractItemModelTester tester(&view, QAbstractItemModelTester::FailureReportingMode::QtTest);
    view.setFilterKeyColumn(ConnectionsModel::ColumnName);
    view.setFilterRegularExpression(QStringLiteral("\\d"));
    view.sort(ConnectionsModel::ColumnName);
    QCOMPARE(view.rowCount(), 5);
    // Shown are a2, a4, b1, b3, c5.
    RemoveRows(view, Indexes(view, {1, 4, 2}));
    QCOMPARE(Names(model), (QStringList{QStringLiteral("a2"), QStringLiteral("x"), QStringLiteral("b3")}));
}

void TestRowRemoval::sameAsOneByOne()
{
    QRandomGenerator random(20240613);
    for (int round = 0; round < 200; ++round) {
        const int count = random.bounded(1, 40);
        ConnectionsModel model(nullptr, QString());
        AddNumbered(model, count);
        QList<int> rows;
        for (int i = random.bounded(count + 1); i > 0; --i)
            rows += random.bounded(count);
        QStringList left;
        for (int number = 0; number < count; ++number) {
            if (!rows.contains(number))
                left += QString::number(number);
        }
        RemoveRows(model, Indexes(model, rows));
        QCOMPARE(Names(model), left);
    }
}

QTEST_MAIN(TestRowRemoval)

#include "tst_rowremoval.moc"
