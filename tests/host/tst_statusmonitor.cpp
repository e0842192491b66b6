#include "host/plugin/statusmonitor.h"
#include "tests/support/fakedialog.h"
#include "tests/support/testmain.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

#include <memory>

class TestStatusMonitor : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void countsWhatIsThere();
    void announcesAChangeWithNameAndTexts();
    void keepsSilentAboutCellsThatStay();
    void keepsSilentAboutOtherColumns();
    void seesAChangeInsideALargerRange();
    void countFollowsInsertedAndRemovedRows();
    void rowsStayTheirOwnAfterARemoval();
    void rereadsAfterAReset();
    void rereadsAfterSorting();

private:
    std::unique_ptr<FakeDialog> m_pFake;
    QStandardItemModel* m_pEntries = nullptr;
};

void TestStatusMonitor::init()
{
    m_pFake = std::make_unique<FakeDialog>();
    m_pEntries = &m_pFake->entries;
    new QAbstractItemModelTester(m_pEntries, QAbstractItemModelTester::FailureReportingMode::QtTest, m_pEntries);
    m_pFake->Add(QStringLiteral("first"), false, 0);
    m_pFake->Add(QStringLiteral("second"), false, 1);
    m_pFake->Add(QStringLiteral("third"), false, 0);
}

void TestStatusMonitor::cleanup()
{
    m_pFake.reset();
}

void TestStatusMonitor::countsWhatIsThere()
{
    const StatusMonitor monitor(m_pEntries);
    QCOMPARE(monitor.CountInUse(), 1);
}

void TestStatusMonitor::announcesAChangeWithNameAndTexts()
{
    const StatusMonitor monitor(m_pEntries);
    QSignalSpy changes(&monitor, &StatusMonitor::StatusChanged);
    QSignalSpy counts(&monitor, &StatusMonitor::InUseChanged);
    m_pFake->SetStatus(2, 1);
    QCOMPARE(changes.count(), 1);
    // A plain item model shows the number itself.
    QCOMPARE(changes.at(0), QVariantList({2, QStringLiteral("third"), QStringLiteral("0"), QStringLiteral("1")}));
    QCOMPARE(counts.count(), 1);
    QCOMPARE(counts.at(0).at(0).toInt(), 2);

    m_pFake->SetStatus(2, 0);
    QCOMPARE(changes.count(), 2);
    QCOMPARE(changes.at(1), QVariantList({2, QStringLiteral("third"), QStringLiteral("1"), QStringLiteral("0")}));
    QCOMPARE(monitor.CountInUse(), 1);
}

void TestStatusMonitor::keepsSilentAboutCellsThatStay()
{
    const StatusMonitor monitor(m_pEntries);
    QSignalSpy changes(&monitor, &StatusMonitor::StatusChanged);
    QSignalSpy counts(&monitor, &StatusMonitor::InUseChanged);
    emit m_pEntries->dataChanged(m_pEntries->index(0, 0), m_pEntries->index(2, 9));
    QCOMPARE(changes.count(), 0);
    QCOMPARE(counts.count(), 0);
}

void TestStatusMonitor::keepsSilentAboutOtherColumns()
{
    const StatusMonitor monitor(m_pEntries);
    QSignalSpy changes(&monitor, &StatusMonitor::StatusChanged);
    m_pEntries->setData(m_pEntries->index(0, 1), QStringLiteral("renamed"), Qt::EditRole);
    m_pEntries->setData(m_pEntries->index(0, 3), 7, Qt::EditRole);
    QCOMPARE(changes.count(), 0);
}

void TestStatusMonitor::seesAChangeInsideALargerRange()
{
    const StatusMonitor monitor(m_pEntries);
    QSignalSpy changes(&monitor, &StatusMonitor::StatusChanged);
    {
        const QSignalBlocker quiet(m_pEntries);
        m_pFake->SetStatus(1, 0);
        m_pFake->SetStatus(2, 1);
    }
    emit m_pEntries->dataChanged(m_pEntries->index(0, 0), m_pEntries->index(2, 9));
    QCOMPARE(changes.count(), 2);
    QCOMPARE(changes.at(0).at(0).toInt(), 1);
    QCOMPARE(changes.at(1).at(0).toInt(), 2);
    QCOMPARE(monitor.CountInUse(), 1);
}

void TestStatusMonitor::countFollowsInsertedAndRemovedRows()
{
    const StatusMonitor monitor(m_pEntries);
    m_pFake->Add(QStringLiteral("fourth"), false, 1);
    QCOMPARE(monitor.CountInUse(), 2);
    m_pEntries->removeRows(0, 2);
    QCOMPARE(monitor.CountInUse(), 1);
    m_pEntries->removeRows(0, 2);
    QCOMPARE(monitor.CountInUse(), 0);
}

void TestStatusMonitor::rowsStayTheirOwnAfterARemoval()
{
    const StatusMonitor monitor(m_pEntries);
    QSignalSpy changes(&monitor, &StatusMonitor::StatusChanged);
    m_pEntries->removeRows(0, 1);
    m_pFake->SetStatus(0, 0);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.at(0).at(1).toString(), QStringLiteral("second"));
    QCOMPARE(monitor.CountInUse(), 0);
}

void TestStatusMonitor::rereadsAfterAReset()
{
    const StatusMonitor monitor(m_pEntries);
    QSignalSpy counts(&monitor, &StatusMonitor::InUseChanged);
    m_pEntries->clear();
    QCOMPARE(monitor.CountInUse(), 0);
    QCOMPARE(counts.count(), 1);
}

void TestStatusMonitor::rereadsAfterSorting()
{
    const StatusMonitor monitor(m_pEntries);
    QSignalSpy changes(&monitor, &StatusMonitor::StatusChanged);
    m_pEntries->sort(1, Qt::DescendingOrder); // third, second, first
    m_pFake->SetStatus(2, 1);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.at(0).at(1).toString(), QStringLiteral("first"));
    QCOMPARE(monitor.CountInUse(), 2);
}

VEXEL_TEST(QTEST_MAIN, TestStatusMonitor)
#include "tst_statusmonitor.moc"
