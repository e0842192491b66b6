// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/dialogfixture.h"
#include "tests/support/testmain.h"

#include <QScrollBar>

/// Scrolling with hidden details, scrolling to new entries, and clicks on neighbouring rows.
class TestDialogScrolling : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_fixture = std::make_unique<DialogFixture>();
        m_fixture->Build();
    }
    void cleanup() { m_fixture.reset(); }

    void hiddenDetailsDoNotScrollBack_data();
    void hiddenDetailsDoNotScrollBack();
    void hiddenDetailsFollowTheList();

    void newEntryIsScrolledIntoView_data();
    void newEntryIsScrolledIntoView();
    void newEntryHiddenByFilterChangesNothing();

    void horizontalBarDoesNotCoverTheCurrentRow();
    void horizontalBarDoesNotCoverTheLastRow();
    void horizontalBarLeavesTheTopInSight();

    void quickClicksOnNeighbouringTicksToggleEach_data();
    void quickClicksOnNeighbouringTicksToggleEach();

private:
    void Show(int entries, int height)
    {
        for (int i = 0; i < entries; ++i)
            m_fixture->Add({Entry(QStringLiteral("d%1").arg(i, 4, 10, QLatin1Char('0')))});
        m_fixture->dialog->resize(1200, height);
        m_fixture->Show();
    }
    bool IsInSight(const QTreeView* view, int row, int column) const
    {
        const QRect rect = view->visualRect(m_fixture->Proxy()->index(row, column));
        // A view that scrolls to a row can leave out a pixel of it.
        return rect.isValid() && rect.top() >= 0 && rect.bottom() <= view->viewport()->height();
    }

    std::unique_ptr<DialogFixture> m_fixture;
};

void TestDialogScrolling::hiddenDetailsDoNotScrollBack_data()
{
    QTest::addColumn<int>("firstHeight");
    QTest::addColumn<int>("thenHeight");
    QTest::newRow("lower") << 700 << 250;
    QTest::newRow("higher") << 250 << 700;
}

void TestDialogScrolling::hiddenDetailsDoNotScrollBack()
{
    QFETCH(int, firstHeight);
    QFETCH(int, thenHeight);
    QAction* const details = m_fixture->Action("m_pDetailsAction");
    details->trigger();
    Show(100, firstHeight);
    QTRY_VERIFY(m_fixture->DetailsView()->verticalScrollBar()->maximum() > 0);
    details->trigger();
    m_fixture->dialog->resize(600, thenHeight);
    QTreeView* const basic = m_fixture->BasicView();
    QTRY_COMPARE(m_fixture->dialog->height(), thenHeight);
    QTRY_VERIFY((basic->viewport()->height() < firstHeight) == (thenHeight < firstHeight));
    basic->setFocus();
    QTest::keyClick(basic, Qt::Key_End);
    QCOMPARE(basic->currentIndex().row(), 99);
    QVERIFY(IsInSight(basic, 99, ConnectionsModel::ColumnName));
    basic->verticalScrollBar()->setValue(basic->verticalScrollBar()->maximum());
    QCOMPARE(basic->verticalScrollBar()->value(), basic->verticalScrollBar()->maximum());

    // The details are shown at the same rows.
    details->trigger();
    QTRY_COMPARE(m_fixture->DetailsView()->viewport()->height(), basic->viewport()->height());
    QTRY_COMPARE(m_fixture->DetailsView()->verticalScrollBar()->maximum(), basic->verticalScrollBar()->maximum());
    QCOMPARE(m_fixture->DetailsView()->verticalScrollBar()->value(), basic->verticalScrollBar()->value());
    QTRY_VERIFY(IsInSight(basic, 99, ConnectionsModel::ColumnName));
    QVERIFY(IsInSight(m_fixture->DetailsView(), 99, ConnectionsModel::ColumnLinkSpeed));
}

void TestDialogScrolling::hiddenDetailsFollowTheList()
{
    QAction* const details = m_fixture->Action("m_pDetailsAction");
    details->trigger();
    Show(30, 250);
    details->trigger();
    for (int i = 30; i < 200; ++i)
        m_fixture->Add({Entry(QStringLiteral("e%1").arg(i))});
    QTreeView* const basic = m_fixture->BasicView();
    basic->setFocus();
    QTest::keyClick(basic, Qt::Key_End);
    QTRY_VERIFY(IsInSight(basic, 199, ConnectionsModel::ColumnName));
    m_fixture->model->removeRows(20, 150);
    basic->scrollToBottom();
    QTRY_VERIFY(IsInSight(basic, 49, ConnectionsModel::ColumnName));
    details->trigger();
    QTRY_VERIFY(IsInSight(m_fixture->DetailsView(), 49, ConnectionsModel::ColumnLinkSpeed));
    QVERIFY(IsInSight(basic, 49, ConnectionsModel::ColumnName));
}

void TestDialogScrolling::newEntryIsScrolledIntoView_data()
{
    QTest::addColumn<bool>("details");
    QTest::addColumn<int>("width");
    QTest::addColumn<bool>("descending");
    QTest::addColumn<QString>("others");
    QTest::newRow("at the end") << false << 1200 << false << QStringLiteral("a");
    QTest::newRow("at the end, with details") << true << 1200 << false << QStringLiteral("a");
    QTest::newRow("at the top") << true << 1200 << true << QStringLiteral("a");
    QTest::newRow("in the middle") << false << 1200 << false << QStringLiteral("z");
    // The new name needs a horizontal scroll bar, which must not cover the entry.
    QTest::newRow("at the end, narrow") << false << 280 << false << QStringLiteral("a");
    QTest::newRow("in the middle, narrow") << false << 280 << false << QStringLiteral("z");
    QTest::newRow("at the end, details, narrow") << true << 1350 << false << QStringLiteral("a");
}

void TestDialogScrolling::newEntryIsScrolledIntoView()
{
    QFETCH(bool, details);
    QFETCH(int, width);
    QFETCH(bool, descending);
    QFETCH(QString, others);
    if (details)
        m_fixture->Action("m_pDetailsAction")->trigger();
    for (int i = 0; i < 50; ++i)
        m_fixture->Add({Entry(others + QString::number(i))});
    Show(50, 250);
    m_fixture->dialog->resize(width, 250);
    QTreeView* const basic = m_fixture->BasicView();
    if (descending)
        basic->sortByColumn(ConnectionsModel::ColumnName, Qt::DescendingOrder);
    const QString selected = others + QStringLiteral("7");
    const int place = m_fixture->ProxyRow(selected);
    basic->scrollTo(m_fixture->Proxy()->index(place, ConnectionsModel::ColumnName));
    basic->selectionModel()->select(m_fixture->Proxy()->index(place, 0),
                                    QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    QTRY_COMPARE(m_fixture->dialog->width(), width);
    MessageBoxes boxes;
    m_fixture->Action("m_pNewAction")->trigger();
    const QString name = Connection().ConnectionName;
    const int row = m_fixture->ProxyRow(name);
    QVERIFY(row >= 0);
    QCOMPARE(basic->currentIndex().row(), row);
    QTRY_VERIFY(basic->columnWidth(ConnectionsModel::ColumnName) > 100);
    // The width that the columns need depends on the fonts, so only the narrow window is sure to get a scroll bar.
    if (width < 1000)
        QTRY_COMPARE(basic->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
    QTRY_VERIFY(IsInSight(basic, row, ConnectionsModel::ColumnStatus));
    if (details)
        QTRY_VERIFY(IsInSight(m_fixture->DetailsView(), row, ConnectionsModel::ColumnLinkSpeed));
    // The selection is what it was.
    const QModelIndexList rows = basic->selectionModel()->selectedRows(ConnectionsModel::ColumnName);
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.first().data().toString(), selected);
    QCOMPARE(boxes.Count(), 0);
}

void TestDialogScrolling::newEntryHiddenByFilterChangesNothing()
{
    Show(50, 250);
    m_fixture->Find<QLineEdit>("m_pFilterPatternLineEdit")->setText(QStringLiteral("d0"));
    QTreeView* const basic = m_fixture->BasicView();
    basic->setCurrentIndex(m_fixture->Proxy()->index(5, ConnectionsModel::ColumnStatus));
    const QPersistentModelIndex current = basic->currentIndex();
    const int scrolled = basic->verticalScrollBar()->value();
    MessageBoxes boxes;
    m_fixture->Action("m_pNewAction")->trigger();
    QCOMPARE(m_fixture->model->rowCount(), 51);
    QCOMPARE(m_fixture->ProxyRow(Connection().ConnectionName), -1);
    QVERIFY(basic->currentIndex() == current);
    QCOMPARE(basic->verticalScrollBar()->value(), scrolled);
    QCOMPARE(basic->selectionModel()->selectedRows().size(), 1);
    QCOMPARE(boxes.Count(), 0);
}

void TestDialogScrolling::horizontalBarDoesNotCoverTheCurrentRow()
{
    Show(100, 250);
    QTreeView* const basic = m_fixture->BasicView();
    const int height = basic->visualRect(basic->model()->index(0, ConnectionsModel::ColumnName)).height();
    // The last row in sight ends just above the place of the bar.
    m_fixture->dialog->resize(1200, 251 - basic->viewport()->height() % height);
    QTRY_COMPARE(basic->viewport()->height() % height, 1);
    QCOMPARE(basic->horizontalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    const int last = basic->viewport()->height() / height - 1;
    basic->selectionModel()->setCurrentIndex(basic->model()->index(last, ConnectionsModel::ColumnName),
                                             QItemSelectionModel::NoUpdate);
    QCOMPARE(basic->verticalScrollBar()->value(), 0);
    m_fixture->model->setData(m_fixture->model->index(0, ConnectionsModel::ColumnName),
                              QStringLiteral("d0000") + QString(300, QLatin1Char('x')));
    QTRY_COMPARE(basic->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
    const int row = basic->currentIndex().row();
    QTRY_VERIFY(IsInSight(basic, row, ConnectionsModel::ColumnName));
}

void TestDialogScrolling::horizontalBarDoesNotCoverTheLastRow()
{
    Show(100, 250);
    QTreeView* const basic = m_fixture->BasicView();
    basic->scrollToBottom();
    QTRY_VERIFY(IsInSight(basic, 99, ConnectionsModel::ColumnName));
    QCOMPARE(basic->horizontalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    m_fixture->model->setData(m_fixture->model->index(99, ConnectionsModel::ColumnName),
                              QString(300, QLatin1Char('d')));
    QTRY_COMPARE(basic->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
    QTRY_VERIFY(IsInSight(basic, 99, ConnectionsModel::ColumnName));
}

void TestDialogScrolling::horizontalBarLeavesTheTopInSight()
{
    Show(20, 250);
    QTreeView* const basic = m_fixture->BasicView();
    const int height = basic->visualRect(basic->model()->index(0, ConnectionsModel::ColumnName)).height();
    // One pixel is out of sight.
    m_fixture->dialog->resize(1200, m_fixture->dialog->height() + 20 * height - basic->viewport()->height() - 1);
    QTRY_COMPARE(basic->verticalScrollBar()->maximum(), 1);
    QCOMPARE(basic->horizontalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    m_fixture->model->setData(m_fixture->model->index(0, ConnectionsModel::ColumnName),
                              QStringLiteral("d0000") + QString(300, QLatin1Char('x')));
    QTRY_COMPARE(basic->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
    QTRY_VERIFY(basic->verticalScrollBar()->maximum() > 1);
    QCOMPARE(basic->verticalScrollBar()->value(), 0);
}

void TestDialogScrolling::quickClicksOnNeighbouringTicksToggleEach_data()
{
    QTest::addColumn<bool>("details");
    QTest::newRow("basic view alone") << false;
    QTest::newRow("with details") << true;
}

void TestDialogScrolling::quickClicksOnNeighbouringTicksToggleEach()
{
    QFETCH(bool, details);
    if (details)
        m_fixture->Action("m_pDetailsAction")->trigger();
    Show(4, 300);
    QTreeView* const view = m_fixture->BasicView();
    const auto at = [&](int row) {
        return view->visualRect(m_fixture->Proxy()->index(row, ConnectionsModel::ColumnSelected)).center();
    };
    const auto ticks = [this] {
        QList<bool> result;
        for (int row = 0; row < m_fixture->model->rowCount(); ++row)
            result += m_fixture->model->GetConnection(row).Selected;
        return result;
    };
    // Within the double-click time the system reports the second press as a double click, and the fourth.
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, at(0));
    for (const int row : {1, 2, 3}) {
        if (row == 2) {
            QTest::mousePress(view->viewport(), Qt::LeftButton, {}, at(row));
        } else {
            QMouseEvent press(QEvent::MouseButtonDblClick, at(row), view->viewport()->mapToGlobal(at(row)),
                              Qt::LeftButton, Qt::LeftButton, {});
            QCoreApplication::sendEvent(view->viewport(), &press);
        }
        QTest::mouseRelease(view->viewport(), Qt::LeftButton, {}, at(row));
    }
    QCOMPARE(ticks(), (QList<bool>{true, true, true, true}));
}

VEXEL_TEST(QTEST_MAIN, TestDialogScrolling)
#include "tst_dialogscrolling.moc"
