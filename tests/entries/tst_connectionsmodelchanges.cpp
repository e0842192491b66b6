// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/entries/entrysamples.h"
#include "tests/entries/listreading.h"
#include "tests/entries/watchedmodel.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

#include <limits>
#include <vector>

/// Changes of the model and the signals that announce them.
class TestConnectionsModelChanges : public QObject
{
    Q_OBJECT

private slots:
    void addAppendsCopyAndAnnouncesOneRow();
    void getConnectionReturnsCopy();
    void removeRowsAnnouncesAndRemoves_data();
    void removeRowsAnnouncesAndRemoves();
    void removeRowsRefusesInvalidRange_data();
    void removeRowsRefusesInvalidRange();
    void removeRowsOfEmptyRangeIsTrue();
    void removeRowsStopsAtTheEnd();
    void setDataAssignsField_data();
    void setDataAssignsField();
    void setDataAcceptsAnyNumber();
    void setDataWithOtherRoleOnlyAnnounces();
    void setDataOnInvalidIndexOnlyAnnounces();
    void setStatusChangesAllEqualEntries();
    void setStatusOfUnknownEntryChangesNothing();
    void setStatusAnnouncesUnchangedStatus();
    void resetStatusAnnouncesEachStatusCell();
    void countsStayCorrectAfterRandomChanges();
};

void TestConnectionsModelChanges::addAppendsCopyAndAnnouncesOneRow()
{
    WatchedModel model;
    model.AddNamed({"first"});
    const QSignalSpy about(&model, &QAbstractItemModel::rowsAboutToBeInserted);
    const QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    const QSignalSpy reset(&model, &QAbstractItemModel::modelReset);

    QVERIFY(model.AddConnection(SampleEntry(1)));

    for (const QSignalSpy* const spy : {&about, &inserted}) {
        QCOMPARE(spy->size(), 1);
        QVERIFY(!spy->at(0).at(0).toModelIndex().isValid());
        QCOMPARE(spy->at(0).at(1).toInt(), 1);
        QCOMPARE(spy->at(0).at(2).toInt(), 1);
    }
    QCOMPARE(changed.size(), 0);
    QCOMPARE(reset.size(), 0);
    QCOMPARE(model.rowCount(), 2);
    QCOMPARE(Fields(model.GetConnection(1)), Fields(SampleEntry(1)));
}

void TestConnectionsModelChanges::getConnectionReturnsCopy()
{
    WatchedModel model;
    Connection given = SampleEntry(1);
    model.AddConnection(given);
    given.ConnectionName = QStringLiteral("changed later");
    Connection taken = model.GetConnection(0);
    QCOMPARE(taken.parent(), nullptr);
    taken.ConnectionName = QStringLiteral("changed, too");
    QCOMPARE(Fields(model.GetConnection(0)), Fields(SampleEntry(1)));
}

void TestConnectionsModelChanges::removeRowsAnnouncesAndRemoves_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("count");
    QTest::addColumn<QStringList>("left");
    QTest::newRow("first") << 0 << 1 << Texts({"b", "c", "d", "e"});
    QTest::newRow("middle") << 1 << 3 << Texts({"a", "e"});
    QTest::newRow("last") << 4 << 1 << Texts({"a", "b", "c", "d"});
    QTest::newRow("last two") << 3 << 2 << Texts({"a", "b", "c"});
    QTest::newRow("all") << 0 << 5 << Texts({});
}

void TestConnectionsModelChanges::removeRowsAnnouncesAndRemoves()
{
    QFETCH(int, row);
    QFETCH(int, count);
    QFETCH(QStringList, left);
    WatchedModel model;
    model.AddNamed({"a", "b", "c", "d", "e"});
    const QSignalSpy about(&model, &QAbstractItemModel::rowsAboutToBeRemoved);
    const QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);

    QVERIFY(model.removeRows(row, count));

    for (const QSignalSpy* const spy : {&about, &removed}) {
        QCOMPARE(spy->size(), 1);
        QVERIFY(!spy->at(0).at(0).toModelIndex().isValid());
        QCOMPARE(spy->at(0).at(1).toInt(), row);
        QCOMPARE(spy->at(0).at(2).toInt(), row + count - 1);
    }
    QCOMPARE(model.Names(), left);
}

void TestConnectionsModelChanges::removeRowsRefusesInvalidRange_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("validParent");
    QTest::newRow("row 5 of 5") << 5 << 1 << false;
    QTest::newRow("row 5 of 5, nothing") << 5 << 0 << false;
    QTest::newRow("row -1") << -1 << 1 << false;
    QTest::newRow("valid parent") << 0 << 1 << true;
}

void TestConnectionsModelChanges::removeRowsRefusesInvalidRange()
{
    QFETCH(int, row);
    QFETCH(int, count);
    QFETCH(bool, validParent);
    WatchedModel model;
    model.AddNamed({"a", "b", "c", "d", "e"});
    const QSignalSpy about(&model, &QAbstractItemModel::rowsAboutToBeRemoved);
    QVERIFY(!model.removeRows(row, count, validParent ? model.index(1, 0) : QModelIndex()));
    QCOMPARE(about.size(), 0);
    QCOMPARE(model.rowCount(), 5);
}

void TestConnectionsModelChanges::removeRowsOfEmptyRangeIsTrue()
{
    WatchedModel model;
    QVERIFY(!model.removeRows(0, 0));
    model.AddNamed({"a", "b"});
    for (const int count : {0, -1, std::numeric_limits<int>::min()}) {
        QVERIFY(model.removeRows(0, count));
        QVERIFY(model.removeRows(1, count));
    }
    QCOMPARE(model.Names(), Texts({"a", "b"}));
}

void TestConnectionsModelChanges::removeRowsStopsAtTheEnd()
{
    WatchedModel model;
    model.AddNamed({"a", "b", "c"});
    const QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    QVERIFY(model.removeRows(1, std::numeric_limits<int>::max()));
    QCOMPARE(removed.at(0).at(2).toInt(), 2);
    QCOMPARE(model.Names(), Texts({"a"}));
}

void TestConnectionsModelChanges::setDataAssignsField_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QStringList>("expected");
    const auto add = [](const char* name, int column, const QVariant& value, auto change) {
        Connection entry = SampleEntry(1);
        change(entry);
        QTest::newRow(name) << column << value << Fields(entry);
    };
    add(
        "Selected", 0, false, [](Connection& entry) { entry.Selected = false; });
    add(
        "ConnectionName", 1, QStringLiteral("x"),
        [](Connection& entry) { entry.ConnectionName = QStringLiteral("x"); });
    add(
        "ConnectionStatus", 2, 0, [](Connection& entry) { entry.ConnectionStatus = 0; });
    add(
        "DeviceType", 3, 14, [](Connection& entry) { entry.DeviceType = 14; });
    add(
        "ConnectionType", 4, 0, [](Connection& entry) { entry.ConnectionType = 0; });
    add(
        "DeviceAddress", 5, QStringLiteral("x"), [](Connection& entry) { entry.DeviceAddress = QStringLiteral("x"); });
    add(
        "DriverAddress", 6, QStringLiteral("x"), [](Connection& entry) { entry.DriverAddress = QStringLiteral("x"); });
    add(
        "LinkSpeed", 7, 0, [](Connection& entry) { entry.LinkSpeed = 0; });
    add(
        "TimeoutSeconds", 8, 0, [](Connection& entry) { entry.TimeoutSeconds = 0; });
    add(
        "Subsystem", 9, QStringLiteral("x"), [](Connection& entry) { entry.Subsystem = QStringLiteral("x"); });
    add(
        "number as text", 3, QStringLiteral("7"), [](Connection& entry) { entry.DeviceType = 7; });
    add(
        "invalid value as text", 1, QVariant(), [](Connection& entry) { entry.ConnectionName = QString(); });
    add("invalid value as number", 3, QVariant(), [](Connection& entry) { entry.DeviceType = 0; });
    add("same value", 1, SampleEntry(1).ConnectionName, [](Connection&) {});
}

void TestConnectionsModelChanges::setDataAssignsField()
{
    QFETCH(int, column);
    QFETCH(QVariant, value);
    QFETCH(QStringList, expected);
    WatchedModel model;
    model.AddConnection(SampleEntry(0));
    model.AddConnection(SampleEntry(1));
    model.AddConnection(SampleEntry(2));
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QVERIFY(model.setData(model.index(1, column), value));
    QCOMPARE(ChangedCells(changed), (QList<std::pair<int, int>>{{1, column}}));
    QCOMPARE(Fields(model.GetConnection(0)), Fields(SampleEntry(0)));
    QCOMPARE(Fields(model.GetConnection(1)), expected);
    QCOMPARE(Fields(model.GetConnection(2)), Fields(SampleEntry(2)));
}

void TestConnectionsModelChanges::setDataAcceptsAnyNumber()
{
    WatchedModel model;
    model.AddNamed({"a"});
    for (const int column : {2, 3, 4, 7, 8}) {
        for (const int value : {std::numeric_limits<int>::min(), -1, 99, std::numeric_limits<int>::max()}) {
            QVERIFY(model.setData(model.index(0, column), value));
            QCOMPARE(model.index(0, column).data(Qt::EditRole), QVariant(value));
        }
    }
}

void TestConnectionsModelChanges::setDataWithOtherRoleOnlyAnnounces()
{
    WatchedModel model;
    model.AddConnection(SampleEntry(1));
    for (const int role : {Qt::DisplayRole, Qt::CheckStateRole, Qt::UserRole}) {
        for (int column = 0; column < model.columnCount(); ++column) {
            const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
            QVERIFY(!model.setData(model.index(0, column), 1, role));
            QCOMPARE(ChangedCells(changed), (QList<std::pair<int, int>>{{0, column}}));
        }
    }
    QCOMPARE(Fields(model.GetConnection(0)), Fields(SampleEntry(1)));
}

// Without a model tester, which would report the announcement for an invalid index.
void TestConnectionsModelChanges::setDataOnInvalidIndexOnlyAnnounces()
{
    class OpenModel : public ConnectionsModel
    {
    public:
        using ConnectionsModel::ConnectionsModel;
        using ConnectionsModel::createIndex;
    };
    OpenModel model(nullptr, QString());
    model.AddConnection(SampleEntry(1));
    ConnectionsModel other(nullptr, QString());
    other.AddConnection(SampleEntry(2));
    for (const QModelIndex& bad :
         {QModelIndex(), model.createIndex(1, 1), model.createIndex(0, 10), other.index(0, 1)}) {
        const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        QVERIFY(!model.setData(bad, QStringLiteral("x")));
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed.at(0).at(0).toModelIndex(), bad);
        QCOMPARE(changed.at(0).at(1).toModelIndex(), bad);
    }
    QCOMPARE(Fields(model.GetConnection(0)), Fields(SampleEntry(1)));
    QCOMPARE(Fields(other.GetConnection(0)), Fields(SampleEntry(2)));
}

void TestConnectionsModelChanges::setStatusChangesAllEqualEntries()
{
    WatchedModel model;
    Connection entry = NamedEntry(QStringLiteral("x"));
    model.AddConnection(entry);
    model.AddNamed({"X"});
    entry.Selected = true;
    model.AddConnection(entry);
    entry.ConnectionStatus = 2;
    model.AddConnection(entry);
    model.AddNamed({"y"});
    entry.Selected = false;
    entry.ConnectionStatus = 7;

    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QCOMPARE(model.SetConnectionStatus(entry, 1), false);
    QCOMPARE(ChangedCells(changed), (QList<std::pair<int, int>>{{0, 2}, {2, 2}, {3, 2}}));
    QList<int> statuses;
    for (int row = 0; row < model.rowCount(); ++row)
        statuses += model.GetConnection(row).ConnectionStatus;
    QCOMPARE(statuses, (QList<int>{1, 0, 1, 1, 0}));
    QCOMPARE(model.GetConnection(0).Selected, false);
    QCOMPARE(model.GetConnection(2).Selected, true);
}

void TestConnectionsModelChanges::setStatusOfUnknownEntryChangesNothing()
{
    WatchedModel model;
    model.AddNamed({"a", "b"});
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QCOMPARE(model.SetConnectionStatus(NamedEntry(QStringLiteral("c")), 1), false);
    QCOMPARE(changed.size(), 0);
    QCOMPARE(model.CountInUse(), 0);
}

void TestConnectionsModelChanges::setStatusAnnouncesUnchangedStatus()
{
    WatchedModel model;
    model.AddNamed({"a"});
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QCOMPARE(model.SetConnectionStatus(NamedEntry(QStringLiteral("a")), 0), false);
    QCOMPARE(ChangedCells(changed), (QList<std::pair<int, int>>{{0, 2}}));
}

void TestConnectionsModelChanges::resetStatusAnnouncesEachStatusCell()
{
    WatchedModel model;
    model.ResetConnectionStatus();
    for (const int number : {0, 1, 2})
        model.AddConnection(SampleEntry(number));
    model.AddNamed({"free already"});
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    model.ResetConnectionStatus();
    QCOMPARE(ChangedCells(changed), (QList<std::pair<int, int>>{{0, 2}, {1, 2}, {2, 2}, {3, 2}}));
    for (const int number : {0, 1, 2})
        QCOMPARE(Fields(model.GetConnection(number)), FreeFields(SampleEntry(number)));
}

void TestConnectionsModelChanges::countsStayCorrectAfterRandomChanges()
{
    WatchedModel model;
    // The counts must be correct in the slots, too.
    bool agreed = true;
    const auto check = [&] {
        agreed = agreed && CountedByHand(model).Agrees(model);
    };
    connect(&model, &QAbstractItemModel::dataChanged, this, check);
    connect(&model, &QAbstractItemModel::rowsInserted, this, check);
    connect(&model, &QAbstractItemModel::rowsRemoved, this, check);

    QRandomGenerator random(20240612);
    const auto anyEntry = [&random] {
        Connection entry = NamedEntry(QString::number(random.bounded(4)));
        entry.Selected = random.bounded(2) == 0;
        entry.ConnectionStatus = random.bounded(-1, 3);
        return entry;
    };
    std::vector<Connection> reference;
    for (int round = 0; round < 3000; ++round) {
        const int rows = static_cast<int>(reference.size());
        const int row = rows > 0 ? random.bounded(rows) : 0;
        switch (rows > 12 ? 1 : random.bounded(7)) {
        case 0:
        case 5: {
            reference.push_back(anyEntry());
            model.AddConnection(reference.back());
            break;
        }
        case 1: {
            const int count = rows > 0 ? random.bounded(rows - row + 1) : 0;
            QCOMPARE(model.removeRows(row, count), rows > 0);
            std::vector<Connection> left;
            for (int i = 0; i < rows; ++i)
                if (i < row || i >= row + count)
                    left.push_back(reference[static_cast<std::size_t>(i)]);
            reference.swap(left);
            break;
        }
        case 2: {
            if (rows == 0)
                break;
            const int status = random.bounded(-1, 3);
            const bool selected = random.bounded(2) == 0;
            Connection& entry = reference[static_cast<std::size_t>(row)];
            if (random.bounded(2) == 0) {
                entry.ConnectionStatus = status;
                model.setData(model.index(row, 2), status);
            } else {
                entry.Selected = selected;
                model.setData(model.index(row, 0), selected);
            }
            break;
        }
        case 3: {
            const Connection entry = anyEntry();
            const int status = random.bounded(-1, 3);
            model.SetConnectionStatus(entry, status);
            for (Connection& candidate : reference)
                if (candidate == entry)
                    candidate.ConnectionStatus = status;
            break;
        }
        case 4: {
            if (random.bounded(4) != 0)
                break;
            model.ResetConnectionStatus();
            for (Connection& entry : reference)
                entry.ConnectionStatus = 0;
            break;
        }
        default: {
            const std::deque<Connection> entries{anyEntry(), anyEntry(), anyEntry()};
            const bool replace = random.bounded(4) == 0;
            QVERIFY(replace ? model.FromByteArray(WriteList(entries))
                            : Drop(model, PlainText(WriteList(entries)).get()));
            if (replace)
                reference.clear();
            for (Connection entry : entries) {
                if (replace)
                    entry.ConnectionStatus = 0;
                reference.push_back(entry);
            }
            break;
        }
        }
        QCOMPARE(model.rowCount(), static_cast<int>(reference.size()));
        for (int i = 0; i < model.rowCount(); ++i)
            QCOMPARE(Fields(model.GetConnection(i)), Fields(reference[static_cast<std::size_t>(i)]));
        QVERIFY(CountedByHand(model).Agrees(model));
        QVERIFY(agreed);
    }
}

VEXEL_TEST(QTEST_MAIN, TestConnectionsModelChanges)

#include "tst_connectionsmodelchanges.moc"
