#include "tests/entries/entrysamples.h"
#include "tests/entries/watchedmodel.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QItemSelectionModel>
#include <QPersistentModelIndex>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QSortFilterProxyModel>
#include <QTest>

#include <limits>

namespace {

void AddNumbered(ConnectionsModel& model, int count)
{
    for (int number = 0; number < count; ++number)
        model.AddConnection(NamedEntry(QString::number(number)));
}

QString NameAt(const QModelIndex& index)
{
    return index.siblingAtColumn(ConnectionsModel::ColumnName).data().toString();
}

} // namespace

/// Rows picked anywhere in the list and removed together: what goes, what stays, and what everybody is told.
class TestConnectionsModelRemoval : public QObject
{
    Q_OBJECT

private slots:
    void removesThePickedRows_data();
    void removesThePickedRows();
    void oneRangeMovesNothing();
    void rowsOutsideTheListArePassedOver();
    void nothingToRemoveIsNotAnnounced();
    void countsAndContentStayRight();
    void indexesFollowTheirEntries();
    void aSelectionKeepsWhatStays();
    void throughASortedAndFilteredView();
    void keepsTheRestAsItWas();
};

void TestConnectionsModelRemoval::removesThePickedRows_data()
{
    QTest::addColumn<QList<int>>("rows");
    QTest::addColumn<QStringList>("left");
    QTest::newRow("first") << QList<int>{0} << Texts({"1", "2", "3", "4", "5"});
    QTest::newRow("last") << QList<int>{5} << Texts({"0", "1", "2", "3", "4"});
    QTest::newRow("all") << QList<int>{0, 1, 2, 3, 4, 5} << Texts({});
    QTest::newRow("all, backwards") << QList<int>{5, 4, 3, 2, 1, 0} << Texts({});
    QTest::newRow("neighbours") << QList<int>{3, 2} << Texts({"0", "1", "4", "5"});
    QTest::newRow("every other") << QList<int>{0, 2, 4} << Texts({"1", "3", "5"});
    QTest::newRow("first and last") << QList<int>{5, 0} << Texts({"1", "2", "3", "4"});
    QTest::newRow("two runs, mixed up") << QList<int>{4, 0, 5, 1} << Texts({"2", "3"});
    QTest::newRow("repeated") << QList<int>{2, 2, 2} << Texts({"0", "1", "3", "4", "5"});
    QTest::newRow("repeated, in two places") << QList<int>{4, 2, 4, 2} << Texts({"0", "1", "3", "5"});
}

void TestConnectionsModelRemoval::removesThePickedRows()
{
    QFETCH(QList<int>, rows);
    QFETCH(QStringList, left);
    WatchedModel model;
    AddNumbered(model, 6);
    const QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    model.RemoveEntries(rows);
    QCOMPARE(model.Names(), left);
    // One step, however many places: whoever listens works through the whole list at each.
    QCOMPARE(removed.size(), 1);
    QCOMPARE(removed.at(0).at(2).toInt() - removed.at(0).at(1).toInt() + 1, 6 - static_cast<int>(left.size()));
}

void TestConnectionsModelRemoval::oneRangeMovesNothing()
{
    WatchedModel model;
    AddNumbered(model, 5);
    const QSignalSpy layout(&model, &QAbstractItemModel::layoutAboutToBeChanged);
    const QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    model.RemoveEntries({3, 1, 2});
    QCOMPARE(model.Names(), Texts({"0", "4"}));
    QCOMPARE(layout.size(), 0);
    QCOMPARE(removed.at(0).at(1).toInt(), 1);
    QCOMPARE(removed.at(0).at(2).toInt(), 3);
}

void TestConnectionsModelRemoval::rowsOutsideTheListArePassedOver()
{
    WatchedModel model;
    AddNumbered(model, 4);
    model.RemoveEntries({-1, 4, 0, std::numeric_limits<int>::max(), 3, std::numeric_limits<int>::min(), 1000});
    QCOMPARE(model.Names(), Texts({"1", "2"}));
}

void TestConnectionsModelRemoval::nothingToRemoveIsNotAnnounced()
{
    WatchedModel model;
    model.RemoveEntries({0});
    AddNumbered(model, 3);
    const QSignalSpy about(&model, &QAbstractItemModel::rowsAboutToBeRemoved);
    const QSignalSpy layout(&model, &QAbstractItemModel::layoutChanged);
    model.RemoveEntries({});
    model.RemoveEntries({-1, 3});
    QCOMPARE(about.size(), 0);
    QCOMPARE(layout.size(), 0);
    QCOMPARE(model.rowCount(), 3);
}

void TestConnectionsModelRemoval::countsAndContentStayRight()
{
    WatchedModel model;
    for (int number = 0; number < 6; ++number) {
        Connection entry = SampleEntry(number);
        entry.Selected = number != 1;
        entry.ConnectionStatus = number % 3 == 0 ? 0 : 1;
        model.AddConnection(entry);
    }
    const Connection second = model.GetConnection(1);
    const Connection fourth = model.GetConnection(3);
    const Connection last = model.GetConnection(5);
    model.RemoveEntries({4, 0, 2});
    QCOMPARE(model.rowCount(), 3);
    QCOMPARE(Fields(model.GetConnection(0)), Fields(second));
    QCOMPARE(Fields(model.GetConnection(1)), Fields(fourth));
    QCOMPARE(Fields(model.GetConnection(2)), Fields(last));
    QCOMPARE(model.CountSelected(), 2);
    QCOMPARE(model.CountInUse(), 2);
    QCOMPARE(model.CountSelectedFree(), 1);
}

void TestConnectionsModelRemoval::indexesFollowTheirEntries()
{
    WatchedModel model;
    AddNumbered(model, 7);
    QList<QPersistentModelIndex> indexes;
    for (int row = 0; row < 7; ++row)
        indexes.append(QPersistentModelIndex(model.index(row, row)));
    model.RemoveEntries({0, 3, 4, 6});
    for (const int gone : {0, 3, 4, 6})
        QVERIFY(!indexes.at(gone).isValid());
    for (const int left : {1, 2, 5}) {
        QCOMPARE(NameAt(indexes.at(left)), QString::number(left));
        QCOMPARE(indexes.at(left).column(), left);
    }
}

void TestConnectionsModelRemoval::aSelectionKeepsWhatStays()
{
    WatchedModel model;
    AddNumbered(model, 6);
    QItemSelectionModel selection(&model);
    for (const int row : {1, 2, 4})
        selection.select(model.index(row, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    model.RemoveEntries({0, 2, 5});
    QStringList names;
    for (const QModelIndex& index : selection.selectedRows())
        names += NameAt(index);
    names.sort();
    QCOMPARE(names, Texts({"1", "4"}));
}

void TestConnectionsModelRemoval::throughASortedAndFilteredView()
{
    WatchedModel model;
    model.AddNamed({"b1", "a2", "x", "b3", "a4", "c5"});
    QSortFilterProxyModel view;
    view.setSourceModel(&model);
    const QAbstractItemModelTester tester(&view, QAbstractItemModelTester::FailureReportingMode::QtTest);
    view.setFilterKeyColumn(ConnectionsModel::ColumnName);
    view.setFilterRegularExpression(QStringLiteral("\\d"));
    view.sort(ConnectionsModel::ColumnName);
    QStringList shown;
    for (int row = 0; row < view.rowCount(); ++row)
        shown += NameAt(view.index(row, 0));
    QCOMPARE(shown, Texts({"a2", "a4", "b1", "b3", "c5"}));

    model.RemoveEntries({0, 4, 5});

    QCOMPARE(model.Names(), Texts({"a2", "x", "b3"}));
    shown.clear();
    for (int row = 0; row < view.rowCount(); ++row)
        shown += NameAt(view.index(row, 0));
    QCOMPARE(shown, Texts({"a2", "b3"}));
}

void TestConnectionsModelRemoval::keepsTheRestAsItWas()
{
    QRandomGenerator random(4711);
    for (int round = 0; round < 50; ++round) {
        WatchedModel model;
        QStringList expected;
        QList<QPersistentModelIndex> handles;
        const int count = random.bounded(1, 40);
        for (int i = 0; i < count; ++i) {
            Connection entry = SampleEntry(i);
            entry.ConnectionName = QString::number(i);
            model.AddConnection(entry);
            expected += entry.ConnectionName;
            handles += QPersistentModelIndex(model.index(i, i % ConnectionsModel::kColumnCount));
        }
        QList<int> doomed;
        for (int i = random.bounded(count + 1); i > 0; --i)
            doomed += random.bounded(count);
        for (const int row : doomed)
            expected.removeAll(QString::number(row));
        model.RemoveEntries(doomed);

        QStringList left;
        for (int row = 0; row < model.rowCount(); ++row)
            left += model.GetConnection(row).ConnectionName;
        QCOMPARE(left, expected);
        QVERIFY(CountedByHand(model).Agrees(model));
        for (int i = 0; i < count; ++i) {
            const QPersistentModelIndex& handle = handles.at(i);
            QCOMPARE(handle.isValid(), expected.contains(QString::number(i)));
            if (handle.isValid()) {
                QCOMPARE(handle.row(), static_cast<int>(expected.indexOf(QString::number(i))));
                QCOMPARE(handle.column(), i % ConnectionsModel::kColumnCount);
            }
        }
    }
}

VEXEL_TEST(QTEST_MAIN, TestConnectionsModelRemoval)

#include "tst_connectionsmodelremoval.moc"
