// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/cfgcenter.h"
#include "tests/entries/entrysamples.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/filter/connectionfilter.h"

#include <QAbstractItemModelTester>
#include <QTest>

namespace {

constexpr int kPlain = 0;
constexpr int kWildcard = 1;

QStringList Shown(const ConnectionFilterModel& filter)
{
    QStringList names;
    for (int row = 0; row < filter.rowCount(); ++row)
        names += filter.index(row, ConnectionsModel::ColumnName).data().toString();
    return names;
}

} // namespace

class TestConnectionFilter : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        CfgCenter::Close();
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    }
    void cleanup() { CfgCenter::Close(); }

    void keyColumnChoosesWhereToSearch();
    void displayTextIsOneLineAndShortened();
    void displayTextIsFiltered();
    void modelAndPatternChangesAreFollowed();
    void rowsAreSorted();
};

void TestConnectionFilter::keyColumnChoosesWhereToSearch()
{
    ConnectionsModel model(nullptr, QString());
    for (const int number : {1, 2, 3})
        model.AddConnection(SampleEntry(number));
    ConnectionFilterModel filter;
    const QAbstractItemModelTester tester(&filter, QAbstractItemModelTester::FailureReportingMode::QtTest);
    filter.setSourceModel(&model);
    filter.setFilterRegularExpression(FilterExpression(QStringLiteral("10.0.1.2"), kPlain));
    filter.setFilterKeyColumn(ConnectionsModel::ColumnName);
    QCOMPARE(filter.rowCount(), 0);
    filter.setFilterKeyColumn(ConnectionsModel::ColumnDriverAddress);
    QCOMPARE(Shown(filter), QStringList{QStringLiteral("entry 2")});
    // Any column.
    filter.setFilterKeyColumn(-1);
    QCOMPARE(Shown(filter), QStringList{QStringLiteral("entry 2")});
    // A column that does not exist filters nothing.
    filter.setFilterKeyColumn(ConnectionsModel::kColumnCount);
    QCOMPARE(filter.rowCount(), 3);
}

void TestConnectionFilter::displayTextIsOneLineAndShortened()
{
    const QString lines = QStringLiteral(u"a\nb\rc\u2028d\u2029e");
    const QString justFits = QString(500, u'x');
    const QString tooLong = justFits + u'z';
    ConnectionsModel model(nullptr, QString());
    for (const QString& name : {lines, justFits, tooLong})
        model.AddConnection(NamedEntry(name));
    ConnectionFilterModel filter;
    const QAbstractItemModelTester tester(&filter, QAbstractItemModelTester::FailureReportingMode::QtTest);
    filter.setSourceModel(&model);
    filter.setFilterKeyColumn(ConnectionsModel::ColumnName);
    QCOMPARE(Shown(filter), (QStringList{QStringLiteral("a b c d e"), justFits, justFits + QChar(0x2026)}));
    const auto cell = [&filter](int row) {
        return filter.index(row, ConnectionsModel::ColumnName);
    };
    QCOMPARE(cell(0).data(Qt::EditRole).toString(), lines);
    QCOMPARE(cell(2).data(Qt::EditRole).toString(), tooLong);
    QCOMPARE(filter.index(0, ConnectionsModel::ColumnTimeout).data(), QVariant(QStringLiteral("No Timeout")));

    filter.setFilterRegularExpression(FilterExpression(QStringLiteral("xz"), kPlain));
    QCOMPARE(filter.rowCount(), 1);
    QCOMPARE(cell(0).data(Qt::EditRole).toString(), tooLong);
    filter.setFilterRegularExpression(FilterExpression(QStringLiteral("b\rc"), kPlain));
    QCOMPARE(filter.rowCount(), 1);
    filter.setFilterRegularExpression(FilterExpression(QStringLiteral("b c"), kPlain));
    QCOMPARE(filter.rowCount(), 0);
}

void TestConnectionFilter::displayTextIsFiltered()
{
    ConnectionsModel model(nullptr, QString());
    Connection entry = NamedEntry(QStringLiteral("a"));
    model.AddConnection(entry);
    entry = NamedEntry(QStringLiteral("b"));
    entry.ConnectionStatus = 1;
    entry.DeviceType = Connection::Heron;
    entry.TimeoutSeconds = 30;
    model.AddConnection(entry);
    ConnectionFilterModel filter;
    filter.setSourceModel(&model);
    const auto shown = [&filter](int column, const QString& pattern) {
        filter.setFilterKeyColumn(column);
        filter.setFilterRegularExpression(FilterExpression(pattern, kPlain));
        return Shown(filter);
    };
    const QStringList a{QStringLiteral("a")};
    const QStringList b{QStringLiteral("b")};
    QCOMPARE(shown(ConnectionsModel::ColumnStatus, QStringLiteral("free")), a);
    QCOMPARE(shown(ConnectionsModel::ColumnStatus, QStringLiteral("in use")), b);
    QCOMPARE(shown(ConnectionsModel::ColumnDeviceType, QStringLiteral("heron")), b);
    QCOMPARE(shown(ConnectionsModel::ColumnTimeout, QStringLiteral("no timeout")), a);
    QCOMPARE(shown(ConnectionsModel::ColumnTimeout, QStringLiteral("30")), b);
}

void TestConnectionFilter::modelAndPatternChangesAreFollowed()
{
    ConnectionsModel model(nullptr, QString());
    ConnectionFilterModel filter;
    const QAbstractItemModelTester tester(&filter, QAbstractItemModelTester::FailureReportingMode::QtTest);
    filter.setSourceModel(&model);
    filter.setFilterKeyColumn(ConnectionsModel::ColumnName);
    filter.setFilterRegularExpression(FilterExpression(QStringLiteral("mast *"), kWildcard));
    model.AddConnection(NamedEntry(QStringLiteral("Mast 1")));
    model.AddConnection(NamedEntry(QStringLiteral("Post 1")));
    QCOMPARE(Shown(filter), QStringList{QStringLiteral("Mast 1")});
    model.setData(model.index(1, ConnectionsModel::ColumnName), QStringLiteral("Mast 2"));
    QCOMPARE(Shown(filter), (QStringList{QStringLiteral("Mast 1"), QStringLiteral("Mast 2")}));
    filter.setFilterRegularExpression(FilterExpression(QStringLiteral("["), kWildcard));
    QCOMPARE(filter.rowCount(), 0);
    filter.setFilterRegularExpression(FilterExpression(QStringLiteral("[2]"), kWildcard));
    QCOMPARE(Shown(filter), QStringList{QStringLiteral("Mast 2")});
}

void TestConnectionFilter::rowsAreSorted()
{
    ConnectionsModel model(nullptr, QString());
    for (const char* const name : {"b", "c", "a"}) {
        Connection entry = NamedEntry(QString::fromLatin1(name));
        entry.Selected = entry.ConnectionName == u'c';
        model.AddConnection(entry);
    }
    ConnectionFilterModel filter;
    filter.setSourceModel(&model);
    filter.sort(ConnectionsModel::ColumnName);
    QCOMPARE(Shown(filter), (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
    // The blank in the cell sorts the selected rows together.
    filter.sort(ConnectionsModel::ColumnSelected, Qt::DescendingOrder);
    QCOMPARE(Shown(filter).first(), QStringLiteral("c"));
}

VEXEL_TEST(QTEST_MAIN, TestConnectionFilter)

#include "tst_connectionfilter.moc"
