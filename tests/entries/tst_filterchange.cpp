// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/entries/entrysamples.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/filter/connectionfilter.h"

#include <QAbstractItemModelTester>
#include <QItemSelectionModel>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QStringListModel>
#include <QTest>

#include <array>

namespace {

constexpr int kPlain = 0;
constexpr int kWildcard = 1;
constexpr int kRegExp = 2;

/// The shown rows of the source, in the order of the views.
QList<int> Rows(const QSortFilterProxyModel& proxy)
{
    QList<int> rows;
    for (int row = 0; row < proxy.rowCount(); ++row)
        rows += proxy.mapToSource(proxy.index(row, 0)).row();
    return rows;
}

QList<int> SelectedRows(const QItemSelectionModel& selection, const QSortFilterProxyModel& proxy)
{
    QList<int> rows;
    const QModelIndexList selected = selection.selectedRows();
    for (const QModelIndex& index : selected)
        rows += proxy.mapToSource(index).row();
    std::sort(rows.begin(), rows.end());
    return rows;
}

void SelectRow(QItemSelectionModel& selection, const QSortFilterProxyModel& proxy, int sourceRow)
{
    selection.setCurrentIndex(proxy.mapFromSource(proxy.sourceModel()->index(sourceRow, ConnectionsModel::ColumnName)),
                              QItemSelectionModel::Toggle | QItemSelectionModel::Rows);
}

/// A name that is the only one, in a random place of the order.
QString UniqueName(QRandomGenerator& random)
{
    static int next = 0;
    return QStringLiteral("%1 %2").arg(random.bounded(100)).arg(++next);
}

} // namespace

/// The filter's change in one step.
class TestFilterChange : public QObject
{
    Q_OBJECT

private slots:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void literalsMatchLikeExpressions();
    void caseVariantsMatchLikeExpressions();
    void randomChangesGiveRowsOfPlainProxy();
    void changeIsReportedAsOneLayoutChange();
    void sameRowsAreNoChange();
    void rowsReturnInTheirOldOrder_data();
    void rowsReturnInTheirOldOrder();
    void allRowsStaySelected();
    void currentRowMovesToNextShown();
    void noRowsAreShownWhileLoading();
};

// The setters of the base class always use the regular expression engine.
void TestFilterChange::literalsMatchLikeExpressions()
{
    QRandomGenerator random(4711);
    const QStringList symbols{
        QStringLiteral("a"),           QStringLiteral("B"),       QStringLiteral("k"),       QStringLiteral("S"),
        QStringLiteral("i"),           QStringLiteral(" "),       QStringLiteral("7"),       QStringLiteral("*"),
        QStringLiteral("?"),           QStringLiteral("["),       QStringLiteral("]"),       QStringLiteral("."),
        QStringLiteral("\\"),          QStringLiteral("|"),       QStringLiteral("+"),       QStringLiteral("}"),
        QStringLiteral("#"),           QStringLiteral("\n"),      QStringLiteral("\r"),      QString(QChar::Null),
        QStringLiteral(u"\u212A"),     QStringLiteral(u"\u017F"), QStringLiteral(u"\u0130"), QStringLiteral(u"\u0131"),
        QStringLiteral(u"\u00DC"),     QStringLiteral(u"\u00DF"), QStringLiteral(u"\u03C2"), QStringLiteral(u"\u2028"),
        QStringLiteral(u"\U0001F4E1"), QString(QChar(0xD83D)),    QString(QChar(0xDCE1))};
    const auto any = [&](int longest, int kinds) {
        QString text;
        for (int length = random.bounded(longest + 1); length > 0; --length)
            text += symbols.at(random.bounded(kinds));
        return text;
    };
    for (int i = 0; i < 2000; ++i) {
        const int mode = random.bounded(3);
        const int kinds = random.bounded(2) ? 9 : static_cast<int>(symbols.size()); // mostly letters and stars, or all
        const QString pattern = any(4, kinds);
        QStringList texts{pattern};
        for (int text = 0; text < 20; ++text)
            texts += any(12, static_cast<int>(symbols.size()));
        QStringListModel model(texts);
        ConnectionFilterModel changed;
        changed.setSourceModel(&model);
        changed.SetFilter(0, pattern, mode, nullptr);
        ConnectionFilterModel set;
        set.setSourceModel(&model);
        set.setFilterRegularExpression(FilterExpression(pattern, mode));
        QVERIFY2(Rows(changed) == Rows(set), qPrintable(QStringLiteral("mode %1, \"%2\"").arg(mode).arg(pattern)));
    }
}

void TestFilterChange::caseVariantsMatchLikeExpressions()
{
    QStringList texts;
    for (char32_t c = 0; c < 0x20000; ++c)
        if (c < 0x100 || (!QChar::isSurrogate(c) && (QChar::toCaseFolded(c) != c || QChar::toUpper(c) != c)))
            texts += QString::fromUcs4(&c, 1);
    QStringListModel model(texts);
    ConnectionFilterModel changed;
    changed.setSourceModel(&model);
    ConnectionFilterModel set;
    set.setSourceModel(&model);
    for (char16_t c = 0; c < 0x80; ++c) {
        const QString pattern(1, QChar(c));
        changed.SetFilter(0, pattern, kPlain, nullptr);
        set.setFilterRegularExpression(FilterExpression(pattern, kPlain));
        QCOMPARE(Rows(changed), Rows(set));
    }
    changed.SetFilter(0, QStringLiteral("k"), kPlain, nullptr);
    QCOMPARE(changed.rowCount(), 3); // with the Kelvin sign
}

void TestFilterChange::randomChangesGiveRowsOfPlainProxy()
{
    QRandomGenerator random(20260101);
    const auto any = [&random](int below) {
        return random.bounded(below);
    };
    const auto entry = [&random] {
        Connection unique = NamedEntry(UniqueName(random));
        unique.Subsystem = UniqueName(random);
        return unique;
    };
    ConnectionsModel model(nullptr, QString());
    ConnectionFilterModel filter;
    const QAbstractItemModelTester tester(&filter, QAbstractItemModelTester::FailureReportingMode::QtTest);
    filter.setSourceModel(&model);
    QItemSelectionModel selection(&filter);
    QSortFilterProxyModel plain;
    plain.setSourceModel(&model);
    plain.setFilterCaseSensitivity(Qt::CaseInsensitive);
    QItemSelectionModel plainSelection(&plain);

    const std::array columns{ConnectionsModel::ColumnName, ConnectionsModel::ColumnSubsystem};
    const QStringList patterns{QString(),           QStringLiteral("7"),      QStringLiteral("71"),
                               QStringLiteral("1"), QStringLiteral("[0-4] "), QStringLiteral("^9|2$"),
                               QStringLiteral("zz")};
    int column = 0;
    QString pattern;
    for (int step = 0; step < 1500; ++step) {
        const int rows = model.rowCount();
        switch (rows == 0 ? 0 : any(10)) {
        case 0:
            model.AddConnection(entry());
            break;
        case 1:
            model.setData(model.index(any(rows), columns.at(static_cast<std::size_t>(any(2)))), UniqueName(random));
            break;
        case 2:
            if (rows > 150)
                model.RemoveEntries({any(rows), any(rows), any(rows)});
            else
                for (int i = 0; i < 10; ++i)
                    model.AddConnection(entry());
            break;
        case 3: {
            const int sorted = columns.at(static_cast<std::size_t>(any(2)));
            const Qt::SortOrder order = any(2) ? Qt::AscendingOrder : Qt::DescendingOrder;
            filter.sort(sorted, order);
            plain.sort(sorted, order);
            break;
        }
        case 4:
        case 5:
            if (filter.rowCount() > 0) {
                const int row = filter.mapToSource(filter.index(any(filter.rowCount()), 0)).row();
                SelectRow(selection, filter, row);
                SelectRow(plainSelection, plain, row);
            }
            break;
        case 6:
            column = columns.at(static_cast<std::size_t>(any(2)));
            filter.SetFilter(column, pattern, kRegExp, &selection);
            plain.setFilterKeyColumn(column);
            break;
        default:
            pattern = patterns.at(any(static_cast<int>(patterns.size())));
            filter.SetFilter(column, pattern, kRegExp, &selection);
            plain.setFilterRegularExpression(pattern);
            break;
        }
        // Unsorted, Qt inserts rows that come back at other places than a new proxy has them.
        if (filter.sortColumn() < 0) {
            filter.sort(ConnectionsModel::ColumnName);
            plain.sort(ConnectionsModel::ColumnName);
        }
        QCOMPARE(Rows(filter), Rows(plain));
        QCOMPARE(SelectedRows(selection, filter), SelectedRows(plainSelection, plain));
        QCOMPARE(filter.mapToSource(selection.currentIndex()), plain.mapToSource(plainSelection.currentIndex()));
    }
}

void TestFilterChange::changeIsReportedAsOneLayoutChange()
{
    ConnectionsModel model(nullptr, QString());
    for (int i = 0; i < 20; ++i)
        model.AddConnection(NamedEntry(QString::number(i)));
    ConnectionFilterModel filter;
    filter.setSourceModel(&model);
    filter.sort(ConnectionsModel::ColumnName);
    const QSignalSpy changed(&filter, &QAbstractItemModel::layoutChanged);
    const QSignalSpy removed(&filter, &QAbstractItemModel::rowsRemoved);
    const QSignalSpy inserted(&filter, &QAbstractItemModel::rowsInserted);
    filter.SetFilter(ConnectionsModel::ColumnName, QStringLiteral("5"), kPlain, nullptr);
    QCOMPARE(filter.rowCount(), 2);
    QCOMPARE(changed.count(), 1);
    filter.SetFilter(ConnectionsModel::ColumnName, QString(), kPlain, nullptr);
    QCOMPARE(filter.rowCount(), 20);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(removed.count() + inserted.count(), 0);
}

void TestFilterChange::sameRowsAreNoChange()
{
    ConnectionsModel model(nullptr, QString());
    model.AddConnection(NamedEntry(QStringLiteral("Mast 1")));
    ConnectionFilterModel filter;
    filter.setSourceModel(&model);
    const QSignalSpy changed(&filter, &QAbstractItemModel::layoutChanged);
    filter.SetFilter(ConnectionsModel::ColumnName, QStringLiteral("m*1"), kWildcard, nullptr);
    QCOMPARE(filter.rowCount(), 1);
    QCOMPARE(changed.count(), 0);
    // The base class knows the new filter, too.
    QCOMPARE(filter.filterKeyColumn(), int{ConnectionsModel::ColumnName});
    QCOMPARE(filter.filterRegularExpression(), FilterExpression(QStringLiteral("m*1"), kWildcard));
    model.setData(model.index(0, ConnectionsModel::ColumnName), QStringLiteral("Mast 2"));
    QCOMPARE(filter.rowCount(), 0);
}

void TestFilterChange::rowsReturnInTheirOldOrder_data()
{
    QTest::addColumn<Qt::SortOrder>("order");
    QTest::newRow("ascending") << Qt::AscendingOrder;
    QTest::newRow("descending") << Qt::DescendingOrder;
}

void TestFilterChange::rowsReturnInTheirOldOrder()
{
    QFETCH(Qt::SortOrder, order);
    ConnectionsModel model(nullptr, QString());
    for (int i = 0; i < 20; ++i) {
        Connection entry = NamedEntry(QString::number(i));
        entry.DeviceType = i % 3;
        model.AddConnection(entry);
    }
    ConnectionFilterModel filter;
    filter.setSourceModel(&model);
    filter.sort(ConnectionsModel::ColumnName, order);
    filter.sort(ConnectionsModel::ColumnDeviceType, order); // equal types stay sorted by name
    const QList<int> before = Rows(filter);
    filter.SetFilter(ConnectionsModel::ColumnName, QStringLiteral("1"), kPlain, nullptr);
    QCOMPARE(filter.rowCount(), 11);
    filter.SetFilter(ConnectionsModel::ColumnName, QStringLiteral("15"), kPlain, nullptr);
    QCOMPARE(filter.rowCount(), 1);
    filter.SetFilter(ConnectionsModel::ColumnName, QString(), kPlain, nullptr);
    QCOMPARE(Rows(filter), before);
}

void TestFilterChange::allRowsStaySelected()
{
    constexpr int kRows = 200; // with fewer cells than a thousand, Qt saves the selection differently
    ConnectionsModel model(nullptr, QString());
    for (int i = 0; i < kRows; ++i)
        model.AddConnection(NamedEntry(QString::number(i)));
    ConnectionFilterModel filter;
    filter.setSourceModel(&model);
    QItemSelectionModel selection(&filter);
    selection.select(QItemSelection(filter.index(0, 0), filter.index(kRows - 1, ConnectionsModel::kColumnCount - 1)),
                     QItemSelectionModel::ClearAndSelect);
    filter.SetFilter(ConnectionsModel::ColumnName, QStringLiteral("15"), kPlain, &selection);
    QCOMPARE(SelectedRows(selection, filter), (QList<int>{15, 115, 150, 151, 152, 153, 154, 155, 156, 157, 158, 159}));
    filter.SetFilter(ConnectionsModel::ColumnName, QString(), kPlain, &selection);
    QCOMPARE(SelectedRows(selection, filter).size(), 12);
}

void TestFilterChange::currentRowMovesToNextShown()
{
    ConnectionsModel model(nullptr, QString());
    for (const char* const name : {"a 1", "b 2", "c 1", "d 3", "e 2"})
        model.AddConnection(NamedEntry(QString::fromLatin1(name)));
    ConnectionFilterModel filter;
    filter.setSourceModel(&model);
    filter.sort(ConnectionsModel::ColumnName);
    QItemSelectionModel selection(&filter);
    const auto current = [&](const char* pattern) {
        filter.SetFilter(ConnectionsModel::ColumnName, QString(), kPlain, &selection);
        selection.setCurrentIndex(filter.index(3, ConnectionsModel::ColumnStatus), QItemSelectionModel::NoUpdate);
        filter.SetFilter(ConnectionsModel::ColumnName, QString::fromLatin1(pattern), kPlain, &selection);
        const QModelIndex index = selection.currentIndex();
        return index.column() == ConnectionsModel::ColumnStatus
                   ? index.siblingAtColumn(ConnectionsModel::ColumnName).data().toString()
                   : QString();
    };
    QCOMPARE(current("3"), QStringLiteral("d 3"));
    QCOMPARE(current("1"), QStringLiteral("c 1")); // the nearest above
    QCOMPARE(current("2"), QStringLiteral("b 2")); // though the one below is nearer
    QCOMPARE(current("e"), QStringLiteral("e 2")); // nothing above
    QCOMPARE(current("z"), QString());
    QVERIFY(!selection.currentIndex().isValid());
}

void TestFilterChange::noRowsAreShownWhileLoading()
{
    ConnectionsModel model(nullptr, QString());
    model.AddConnection(NamedEntry(QStringLiteral("Mast 1")));
    ConnectionFilterModel filter;
    filter.setSourceModel(&model);
    QCOMPARE(filter.rowCount(), 1);
    filter.BeginLoading();
    QCOMPARE(filter.rowCount(), 0);
    model.AddConnection(NamedEntry(QStringLiteral("Mast 2")));
    QCOMPARE(filter.rowCount(), 0);
    filter.EndLoading();
    QCOMPARE(filter.rowCount(), 2);
}

VEXEL_TEST(QTEST_MAIN, TestFilterChange)
#include "tst_filterchange.moc"
