// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/plugin/statusmonitor.h"
#include "tests/host/plugin/tellingdialog.h"
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
    void existingEntriesAreCounted();
    void changeIsAnnouncedWithNameAndTexts();
    void changeNamesTheApplication();
    void unchangedCellsAreNotAnnounced();
    void otherColumnsAreNotAnnounced();
    void changeInsideALargerRangeIsSeen();
    void countFollowsInsertedAndRemovedRows();
    void rowsAreTrackedAfterARemoval();
    void modelIsRereadAfterAReset();
    void modelIsRereadAfterSorting();

private:
    StatusChange Change(int index) const { return m_changes->at(index).at(0).value<StatusChange>(); }

    std::unique_ptr<TellingDialog> m_pFake;
    QStandardItemModel* m_pEntries = nullptr;
    std::unique_ptr<StatusMonitor> m_monitor;
    std::unique_ptr<QSignalSpy> m_changes;
    std::unique_ptr<QSignalSpy> m_counts;
};

void TestStatusMonitor::init()
{
    m_pFake = std::make_unique<TellingDialog>();
    m_pEntries = &m_pFake->entries;
    new QAbstractItemModelTester(m_pEntries, QAbstractItemModelTester::FailureReportingMode::QtTest, m_pEntries);
    m_pFake->Add(QStringLiteral("first"), false, 0);
    m_pFake->Add(QStringLiteral("second"), false, 1);
    m_pFake->Add(QStringLiteral("third"), false, 0);
    m_monitor = std::make_unique<StatusMonitor>(FindDialog());
    m_changes = std::make_unique<QSignalSpy>(m_monitor.get(), &StatusMonitor::StatusChanged);
    m_counts = std::make_unique<QSignalSpy>(m_monitor.get(), &StatusMonitor::InUseChanged);
}

void TestStatusMonitor::cleanup()
{
    m_monitor.reset();
    m_pFake.reset();
}

void TestStatusMonitor::existingEntriesAreCounted()
{
    QCOMPARE(m_monitor->CountInUse(), 1);
}

void TestStatusMonitor::changeIsAnnouncedWithNameAndTexts()
{
    m_pFake->SetStatus(2, 1);
    QCOMPARE(m_changes->count(), 1);
    QCOMPARE(Change(0).row, 2);
    QCOMPARE(Change(0).name, QStringLiteral("third"));
    QCOMPARE(Change(0).from, 0);
    QCOMPARE(Change(0).to, 1);
    // A plain item model shows the number itself.
    QCOMPARE(Change(0).fromText, QStringLiteral("0"));
    QCOMPARE(Change(0).toText, QStringLiteral("1"));
    QVERIFY(!Change(0).application);
    QCOMPARE(m_counts->count(), 1);
    QCOMPARE(m_counts->at(0).at(0).toInt(), 2);

    m_pFake->SetStatus(2, 0);
    QCOMPARE(m_changes->count(), 2);
    QCOMPARE(Change(1).name, QStringLiteral("third"));
    QCOMPARE(Change(1).from, 1);
    QCOMPARE(Change(1).to, 0);
    QCOMPARE(Change(1).fromText, QStringLiteral("1"));
    QCOMPARE(Change(1).toText, QStringLiteral("0"));
    QCOMPARE(m_monitor->CountInUse(), 1);
}

void TestStatusMonitor::changeNamesTheApplication()
{
    const QVariantMap running{{QStringLiteral("program"), QStringLiteral("/opt/kite")},
                              {QStringLiteral("process"), qint64{4711}}};
    m_pFake->applications = {{}, {}, running};
    m_pFake->SetStatus(2, 1);
    QVERIFY(Change(0).application);
    QCOMPARE(Change(0).application->program, QStringLiteral("/opt/kite"));
    QCOMPARE(Change(0).application->process, 4711);
    QVERIFY(!Change(0).application->exitCode);
    m_pFake->applications[2].insert(QStringLiteral("exitCode"), 3);
    m_pFake->SetStatus(2, 0);
    QVERIFY(Change(1).application);
    QCOMPARE(Change(1).application->exitCode, std::optional(3));
}

void TestStatusMonitor::unchangedCellsAreNotAnnounced()
{
    emit m_pEntries->dataChanged(m_pEntries->index(0, 0), m_pEntries->index(2, 9));
    QCOMPARE(m_changes->count(), 0);
    QCOMPARE(m_counts->count(), 0);
}

void TestStatusMonitor::otherColumnsAreNotAnnounced()
{
    m_pEntries->setData(m_pEntries->index(0, 1), QStringLiteral("renamed"), Qt::EditRole);
    m_pEntries->setData(m_pEntries->index(0, 3), 7, Qt::EditRole);
    QCOMPARE(m_changes->count(), 0);
}

void TestStatusMonitor::changeInsideALargerRangeIsSeen()
{
    {
        const QSignalBlocker quiet(m_pEntries);
        m_pFake->SetStatus(1, 0);
        m_pFake->SetStatus(2, 1);
    }
    emit m_pEntries->dataChanged(m_pEntries->index(0, 0), m_pEntries->index(2, 9));
    QCOMPARE(m_changes->count(), 2);
    QCOMPARE(Change(0).row, 1);
    QCOMPARE(Change(1).row, 2);
    QCOMPARE(m_monitor->CountInUse(), 1);
}

void TestStatusMonitor::countFollowsInsertedAndRemovedRows()
{
    m_pFake->Add(QStringLiteral("fourth"), false, 1);
    QCOMPARE(m_monitor->CountInUse(), 2);
    m_pEntries->removeRows(0, 2);
    QCOMPARE(m_monitor->CountInUse(), 1);
    m_pEntries->removeRows(0, 2);
    QCOMPARE(m_monitor->CountInUse(), 0);
}

void TestStatusMonitor::rowsAreTrackedAfterARemoval()
{
    m_pEntries->removeRows(0, 1);
    m_pFake->SetStatus(0, 0);
    QCOMPARE(m_changes->count(), 1);
    QCOMPARE(Change(0).name, QStringLiteral("second"));
    QCOMPARE(m_monitor->CountInUse(), 0);
}

void TestStatusMonitor::modelIsRereadAfterAReset()
{
    m_pEntries->clear();
    QCOMPARE(m_monitor->CountInUse(), 0);
    QCOMPARE(m_counts->count(), 1);
}

void TestStatusMonitor::modelIsRereadAfterSorting()
{
    m_pEntries->sort(1, Qt::DescendingOrder); // third, second, first
    m_pFake->SetStatus(2, 1);
    QCOMPARE(m_changes->count(), 1);
    QCOMPARE(Change(0).name, QStringLiteral("first"));
    QCOMPARE(m_monitor->CountInUse(), 2);
}

VEXEL_TEST(QTEST_MAIN, TestStatusMonitor)
#include "tst_statusmonitor.moc"
