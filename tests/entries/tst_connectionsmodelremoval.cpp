// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

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

/// `RemoveEntries`: the entries that remain, and the signals.
class TestConnectionsModelRemoval : public QObject
{
    Q_OBJECT

private slots:
    void removesGivenRows_data();
    void removesGivenRows();
    void contiguousRowsNeedNoLayoutChange();
    void invalidRowsAreIgnored();
    void emptyRemovalIsNotAnnounced();
    void selectionKeepsRemainingRows();
    void sortedAndFilteredViewFollows();
    void remainingEntriesAreUnchanged();
};

void TestConnectionsModelRemoval::removesGivenRows_data()
{
    QTest::addColumn<QList<int>>("rows");
    QTest::addColumn<QStringList>("left");
    QTest::newRow("first") << QList<int>{0} << Texts({"1", "2", "3", "4", "5"});
    QTest::newRow("all") << QList<int>{0, 1, 2, 3, 4, 5} << Texts({});
    QTest::newRow("two neighbours") << QList<int>{3, 2} << Texts({"0", "1", "4", "5"});
    QTest::newRow("every other") << QList<int>{0, 2, 4} << Texts({"1", "3", "5"});
    QTest::newRow("first and last") << QList<int>{5, 0} << Texts({"1", "2", "3", "4"});
    QTest::newRow("two ranges, unsorted") << QList<int>{4, 0, 5, 1} << Texts({"2", "3"});
    QTest::newRow("repeated") << QList<int>{4, 2, 4, 2} << Texts({"0", "1", "3", "5"});
}

void TestConnectionsModelRemoval::removesGivenRows()
{
    QFETCH(QList<int>, rows);
    QFETCH(QStringList, left);
    WatchedModel model;
    AddNumbered(model, 6);
    const QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    model.RemoveEntries(rows);
    QCOMPARE(model.Names(), left);
    // One signal for all rows: views process the whole list for each signal.
    QCOMPARE(removed.size(), 1);
    QCOMPARE(removed.at(0).at(2).toInt() - removed.at(0).at(1).toInt() + 1, 6 - static_cast<int>(left.size()));
}

void TestConnectionsModelRemoval::contiguousRowsNeedNoLayoutChange()
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

void TestConnectionsModelRemoval::invalidRowsAreIgnored()
{
    WatchedModel model;
    AddNumbered(model, 4);
    model.RemoveEntries({-1, 4, 0, std::numeric_limits<int>::max(), 3, std::numeric_limits<int>::min(), 1000});
    QCOMPARE(model.Names(), Texts({"1", "2"}));
}

void TestConnectionsModelRemoval::emptyRemovalIsNotAnnounced()
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

void TestConnectionsModelRemoval::selectionKeepsRemainingRows()
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

void TestConnectionsModelRemoval::sortedAndFilteredViewFollows()
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

void TestConnectionsModelRemoval::remainingEntriesAreUnchanged()
{
    QRandomGenerator random(4711);
    for (int round = 0; round < 50; ++round) {
        WatchedModel model;
        QStringList expected;
        QList<QStringList> fields;
        QList<QPersistentModelIndex> handles;
        const int count = random.bounded(1, 40);
        for (int i = 0; i < count; ++i) {
            Connection entry = SampleEntry(i);
            entry.ConnectionName = QString::number(i);
            model.AddConnection(entry);
            expected += entry.ConnectionName;
            fields += Fields(entry);
            handles += QPersistentModelIndex(model.index(i, i % ConnectionsModel::kColumnCount));
        }
        QList<int> doomed;
        for (int i = random.bounded(count + 1); i > 0; --i)
            doomed += random.bounded(count);
        for (const int row : doomed)
            expected.removeAll(QString::number(row));
        model.RemoveEntries(doomed);

        QCOMPARE(model.Names(), expected);
        for (int row = 0; row < model.rowCount(); ++row)
            QCOMPARE(Fields(model.GetConnection(row)), fields.at(expected.at(row).toInt()));
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
