#include "tests/dialog/dialogfixture.h"

#include <QCheckBox>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMenu>
#include <QMetaMethod>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSplitter>

/// The window itself: what it is made of, how its views hang together, and what mouse and menu do to the entries.
class tst_DialogWindow : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_Fixture = std::make_unique<DialogFixture>(); }
    void cleanup() { m_Fixture.reset(); }

    void metaObjectListsTheSlotsInOrder();
    void isNamedAcceptsDropsAndStartsHidden();
    void viewsShareModelDelegateAndSelection();
    void everyColumnShowsInExactlyOneView();
    void headersResizeToContentsAndSortByName();
    void sortingInEitherViewSortsBoth();
    void connectButtonStartsEnabledWhateverIsTicked();
    void detailsAndFilterStartHidden();
    void scrollingOneViewScrollsTheOther();

    void clickOnTheTickTogglesIt();
    void clickElsewhereTogglesNothing();
    void clickOnTheTickOfAnEntryInUseDoesNothing();
    void tickingAFreeEntryEnablesConnect();
    void connectFollowsTheStatus();
    void changesOfOtherColumnsLeaveConnectAlone();

    void doubleClickEditsInTheViewWithTheFocus();
    void editorsReportToTheirOwnViewOnly();
    void leavingTheCellCommits();
    void doubleClickOnTheTickOpensNoEditor();
    void doubleClickOnTheStatusOpensNoEditorAndSaysNothing();
    void doubleClickOnAnEntryInUseOpensNoEditor();
    void editingUnderAFilterKeepsTheEntry();

    void newAppendsADefaultEntry();
    void editSaysThatItIsNotThere();
    void deleteWithoutSelectionSaysSo();
    void deleteRemovesTheSelectedRows_data();
    void deleteRemovesTheSelectedRows();
    void deleteAsksNothing();

    void contextMenuHoldsTheActionsInOrder();
    void contextMenuOffersImportAndExportOnlyWhileNothingIsInUse();

    void closeHidesAndKeepsEverything();
    void firstShowMakesItTheMainWidgetWithItsStoredSize();
    void anotherMainWidgetStays();
    void destructionStoresTheFilterAndTouchesNothingElse();

private:
    std::unique_ptr<DialogFixture> m_Fixture;
};

void tst_DialogWindow::metaObjectListsTheSlotsInOrder()
{
    QStringList slotNames;
    const QMetaObject& meta = VexelConnectDlgGUI::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
        QCOMPARE(meta.method(i).access(), QMetaMethod::Public);
        slotNames += QString::fromLatin1(meta.method(i).methodSignature());
    }
    QCOMPARE(slotNames, QString::fromLatin1("SlotNew() SlotEdit() SlotDelete() SlotImport() SlotExport() "
                                            "SlotShowDetails(bool) SlotShowFilter(bool) SlotClicked(QModelIndex) "
                                            "SlotDoubleClicked(QModelIndex) SlotClose() SlotConnect() "
                                            "SlotUpdateFilter() SlotDataChanged(QModelIndex,QModelIndex)")
                            .split(QLatin1Char(' ')));
    QCOMPARE(meta.superClass(), &QDialog::staticMetaObject);

    m_Fixture->Build();
    QCOMPARE(m_Fixture->dialog->qt_metacast("Ui::VexelConnectDlg"),
             static_cast<void*>(static_cast<Ui::VexelConnectDlg*>(m_Fixture->dialog)));
}

void tst_DialogWindow::isNamedAcceptsDropsAndStartsHidden()
{
    m_Fixture->Build();
    QCOMPARE(m_Fixture->dialog->objectName(), QStringLiteral("VexelConnectDlgGUI"));
    QCOMPARE(m_Fixture->dialog->windowTitle(), QStringLiteral("Vexel - Connect Dialog"));
    QVERIFY(m_Fixture->dialog->acceptDrops());
    QVERIFY(!m_Fixture->dialog->isVisible());
    QVERIFY(m_Fixture->dialog->isWindow());
    QVERIFY(!GuiBase::Instance().GetMainWidget());
}

void tst_DialogWindow::viewsShareModelDelegateAndSelection()
{
    m_Fixture->Build();
    QTreeView* const basic = m_Fixture->BasicView();
    QTreeView* const details = m_Fixture->DetailsView();
    QVERIFY(m_Fixture->Proxy());
    QCOMPARE(m_Fixture->Proxy()->sourceModel(), m_Fixture->model);
    QCOMPARE(m_Fixture->Proxy()->parent(), m_Fixture->dialog);
    QCOMPARE(details->model(), basic->model());
    QCOMPARE(details->itemDelegate(), basic->itemDelegate());
    QCOMPARE(basic->itemDelegate()->metaObject()->className(), "ConnectionsDelegate");
    QCOMPARE(details->selectionModel(), basic->selectionModel());

    m_Fixture->Add({Entry(QStringLiteral("a")), Entry(QStringLiteral("b"))});
    m_Fixture->Action("m_pDetailsAction")->trigger();
    m_Fixture->Show();
    DialogFixture::Click(details, m_Fixture->ProxyIndex(QStringLiteral("b"), ConnectionsModel::ColumnLinkSpeed));
    QCOMPARE(basic->selectionModel()->selectedRows().size(), 1);
    QCOMPARE(basic->selectionModel()->selectedRows().first().row(), m_Fixture->ProxyRow(QStringLiteral("b")));
}

void tst_DialogWindow::everyColumnShowsInExactlyOneView()
{
    m_Fixture->Build();
    for (int column = 0; column < ConnectionsModel::ColumnCount; ++column) {
        QCOMPARE(m_Fixture->BasicView()->isColumnHidden(column), column > 3);
        QCOMPARE(m_Fixture->DetailsView()->isColumnHidden(column), column <= 3);
    }
}

void tst_DialogWindow::headersResizeToContentsAndSortByName()
{
    m_Fixture->Build();
    QHeaderView* const basic = m_Fixture->BasicView()->header();
    QCOMPARE(basic->sectionResizeMode(1), QHeaderView::ResizeToContents);
    QCOMPARE(m_Fixture->DetailsView()->header()->sectionResizeMode(5), QHeaderView::ResizeToContents);
    QCOMPARE(basic->sortIndicatorSection(), 1);
    QCOMPARE(basic->sortIndicatorOrder(), Qt::AscendingOrder);
    QCOMPARE(basic->iconSize(), QSize(14, 14));

    m_Fixture->Add({Entry(QStringLiteral("c")), Entry(QStringLiteral("a")), Entry(QStringLiteral("b"))});
    QCOMPARE(m_Fixture->ShownNames(), (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
}

void tst_DialogWindow::sortingInEitherViewSortsBoth()
{
    m_Fixture->Build();
    Connection fast = Entry(QStringLiteral("b"));
    fast.LinkSpeed = Connection::Gsm;
    Connection slow = Entry(QStringLiteral("a"));
    slow.LinkSpeed = Connection::RadioLink;
    m_Fixture->Add({slow, fast});
    m_Fixture->Action("m_pDetailsAction")->trigger();
    m_Fixture->Show();

    const auto clickHeader = [](QTreeView* view, int column) {
        QHeaderView* const header = view->header();
        view->resize(2000, view->height());
        const QPoint at(header->sectionViewportPosition(column) + 5, header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    };
    clickHeader(m_Fixture->DetailsView(), ConnectionsModel::ColumnLinkSpeed);
    QCOMPARE(m_Fixture->Proxy()->sortColumn(), int{ConnectionsModel::ColumnLinkSpeed});
    const QStringList order = m_Fixture->ShownNames();
    clickHeader(m_Fixture->DetailsView(), ConnectionsModel::ColumnLinkSpeed);
    QCOMPARE(m_Fixture->ShownNames(), QStringList(order.crbegin(), order.crend()));
    // The basic view no longer claims to be sorted by one of its own columns.
    QCOMPARE(m_Fixture->BasicView()->header()->sortIndicatorSection(), int{ConnectionsModel::ColumnLinkSpeed});

    clickHeader(m_Fixture->BasicView(), ConnectionsModel::ColumnName);
    QCOMPARE(m_Fixture->Proxy()->sortColumn(), int{ConnectionsModel::ColumnName});
    QCOMPARE(m_Fixture->DetailsView()->header()->sortIndicatorSection(), int{ConnectionsModel::ColumnName});
}

void tst_DialogWindow::connectButtonStartsEnabledWhateverIsTicked()
{
    m_Fixture->Build();
    QVERIFY(m_Fixture->ConnectButton()->isEnabled());
}

void tst_DialogWindow::detailsAndFilterStartHidden()
{
    m_Fixture->Build();
    m_Fixture->Show();
    QVERIFY(!m_Fixture->DetailsView()->isVisible());
    QVERIFY(!m_Fixture->Find<QFrame>("m_pFilterFrame")->isVisible());
    QVERIFY(m_Fixture->BasicView()->isVisible());

    m_Fixture->Action("m_pDetailsAction")->trigger();
    QVERIFY(m_Fixture->DetailsView()->isVisible());
    m_Fixture->Action("m_pDetailsAction")->trigger();
    QVERIFY(!m_Fixture->DetailsView()->isVisible());
}

void tst_DialogWindow::scrollingOneViewScrollsTheOther()
{
    m_Fixture->Build();
    for (int i = 0; i < 200; ++i) {
        m_Fixture->Add({Entry(QString::number(i))});
    }
    m_Fixture->Action("m_pDetailsAction")->trigger();
    m_Fixture->Show();
    QScrollBar* const basic = m_Fixture->BasicView()->verticalScrollBar();
    QScrollBar* const details = m_Fixture->DetailsView()->verticalScrollBar();
    QTRY_VERIFY(basic->maximum() > 100 && details->maximum() > 100);
    basic->setValue(77);
    QCOMPARE(details->value(), 77);
    details->setValue(33);
    QCOMPARE(basic->value(), 33);
}

void tst_DialogWindow::clickOnTheTickTogglesIt()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("b")), Entry(QStringLiteral("a"))});
    m_Fixture->Show();
    const QModelIndex tick = m_Fixture->ProxyIndex(QStringLiteral("b"), ConnectionsModel::ColumnSelected);
    DialogFixture::Click(m_Fixture->BasicView(), tick);
    QVERIFY(m_Fixture->model->GetConnection(0).Selected);
    QVERIFY(!m_Fixture->model->GetConnection(1).Selected);
    DialogFixture::Click(m_Fixture->BasicView(), tick);
    QVERIFY(!m_Fixture->model->GetConnection(0).Selected);
}

void tst_DialogWindow::clickElsewhereTogglesNothing()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a"))});
    m_Fixture->Show();
    for (int column = 1; column < 4; ++column) {
        DialogFixture::Click(m_Fixture->BasicView(), m_Fixture->ProxyIndex(QStringLiteral("a"), column));
        QVERIFY(!m_Fixture->model->GetConnection(0).Selected);
    }
}

void tst_DialogWindow::clickOnTheTickOfAnEntryInUseDoesNothing()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a"), Connection::KiteEcho, true)});
    m_Fixture->model->SetConnectionStatus(m_Fixture->model->GetConnection(0), Connection::InUse);
    m_Fixture->Show();
    const QModelIndex tick = m_Fixture->ProxyIndex(QStringLiteral("a"), ConnectionsModel::ColumnSelected);
    DialogFixture::Click(m_Fixture->BasicView(), tick);
    QVERIFY(m_Fixture->model->GetConnection(0).Selected);
    // Also when the signal comes from elsewhere.
    m_Fixture->dialog->SlotClicked(tick);
    QVERIFY(m_Fixture->model->GetConnection(0).Selected);
}

void tst_DialogWindow::tickingAFreeEntryEnablesConnect()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a")), Entry(QStringLiteral("b"))});
    m_Fixture->Show();
    const auto tick = [this](const QString& name) {
        DialogFixture::Click(m_Fixture->BasicView(), m_Fixture->ProxyIndex(name, ConnectionsModel::ColumnSelected));
    };
    tick(QStringLiteral("a"));
    QVERIFY(m_Fixture->ConnectButton()->isEnabled());
    tick(QStringLiteral("b"));
    QVERIFY(m_Fixture->ConnectButton()->isEnabled());
    tick(QStringLiteral("a"));
    QVERIFY(m_Fixture->ConnectButton()->isEnabled());
    tick(QStringLiteral("b"));
    QVERIFY(!m_Fixture->ConnectButton()->isEnabled());
}

void tst_DialogWindow::connectFollowsTheStatus()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a"), Connection::KiteEcho, true)});
    m_Fixture->model->SetConnectionStatus(m_Fixture->model->GetConnection(0), Connection::InUse);
    QVERIFY(!m_Fixture->ConnectButton()->isEnabled());
    m_Fixture->model->SetConnectionStatus(m_Fixture->model->GetConnection(0), Connection::Free);
    QVERIFY(m_Fixture->ConnectButton()->isEnabled());
}

void tst_DialogWindow::changesOfOtherColumnsLeaveConnectAlone()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a"))});
    const auto setName = [this](const QString& name) {
        m_Fixture->model->setData(m_Fixture->model->index(0, ConnectionsModel::ColumnName), name);
    };
    // Nothing is ticked, but no change has touched tick or status yet.
    setName(QStringLiteral("b"));
    QVERIFY(m_Fixture->ConnectButton()->isEnabled());
    m_Fixture->model->setData(m_Fixture->model->index(0, ConnectionsModel::ColumnDeviceType), 1);
    QVERIFY(m_Fixture->ConnectButton()->isEnabled());
    // A range that reaches over the status column counts.
    emit m_Fixture->model->dataChanged(m_Fixture->model->index(0, 1), m_Fixture->model->index(0, 3));
    QVERIFY(!m_Fixture->ConnectButton()->isEnabled());
}

void tst_DialogWindow::doubleClickEditsInTheViewWithTheFocus()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a"))});
    m_Fixture->Action("m_pDetailsAction")->trigger();
    m_Fixture->dialog->resize(1200, 300);
    m_Fixture->Show();

    DialogFixture::DoubleClick(m_Fixture->BasicView(), m_Fixture->ProxyIndex(QStringLiteral("a"), 1));
    auto* editor = m_Fixture->BasicView()->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    QCOMPARE(editor->text(), QStringLiteral("a"));
    editor->selectAll();
    QTest::keyClicks(editor, QStringLiteral("changed"));
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_COMPARE(m_Fixture->model->GetConnection(0).ConnectionName, QStringLiteral("changed"));
    QVERIFY2(m_Fixture->dialog->isVisible(), "Enter in an editor must not press the default button");

    DialogFixture::DoubleClick(m_Fixture->DetailsView(),
                               m_Fixture->ProxyIndex(QStringLiteral("changed"), ConnectionsModel::ColumnDeviceAddress));
    editor = m_Fixture->DetailsView()->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    QTest::keyClicks(editor, QStringLiteral("10.0.0.5"));
    QTest::keyClick(editor, Qt::Key_Escape);
    QTRY_VERIFY(!m_Fixture->DetailsView()->viewport()->findChild<QLineEdit*>());
    QCOMPARE(m_Fixture->model->GetConnection(0).DeviceAddress, QString());
    QVERIFY2(m_Fixture->dialog->isVisible(), "Escape in an editor must not close the dialog");
}

void tst_DialogWindow::editorsReportToTheirOwnViewOnly()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a")), Entry(QStringLiteral("b"))});
    m_Fixture->Action("m_pDetailsAction")->trigger();
    m_Fixture->dialog->resize(1200, 300);
    m_Fixture->Show();
    QTest::failOnWarning(QRegularExpression(QStringLiteral("does not belong")));
    DialogFixture::DoubleClick(m_Fixture->BasicView(), m_Fixture->ProxyIndex(QStringLiteral("a"), 1));
    auto* const editor = m_Fixture->BasicView()->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    editor->setText(QStringLiteral("aa"));
    QTest::keyClick(editor, Qt::Key_Tab);
    QTRY_COMPARE(m_Fixture->model->GetConnection(0).ConnectionName, QStringLiteral("aa"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!m_Fixture->DetailsView()->viewport()->findChild<QLineEdit*>());
    QVERIFY(!m_Fixture->DetailsView()->viewport()->findChild<QComboBox*>());
}

void tst_DialogWindow::leavingTheCellCommits()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a"))});
    m_Fixture->Show();
    m_Fixture->dialog->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_Fixture->dialog));
    DialogFixture::DoubleClick(m_Fixture->BasicView(), m_Fixture->ProxyIndex(QStringLiteral("a"), 1));
    auto* const editor = m_Fixture->BasicView()->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    editor->setText(QStringLiteral("left"));
    m_Fixture->ConnectButton()->setFocus();
    QTRY_COMPARE(m_Fixture->model->GetConnection(0).ConnectionName, QStringLiteral("left"));
}

void tst_DialogWindow::doubleClickOnTheTickOpensNoEditor()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a"))});
    m_Fixture->Show();
    const QModelIndex tick = m_Fixture->ProxyIndex(QStringLiteral("a"), ConnectionsModel::ColumnSelected);
    DialogFixture::DoubleClick(m_Fixture->BasicView(), tick);
    QVERIFY(!m_Fixture->BasicView()->isPersistentEditorOpen(tick));
    QVERIFY(!m_Fixture->BasicView()->viewport()->findChild<QCheckBox*>());
}

void tst_DialogWindow::doubleClickOnTheStatusOpensNoEditorAndSaysNothing()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a"))});
    m_Fixture->Show();
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    DialogFixture::DoubleClick(m_Fixture->BasicView(), m_Fixture->ProxyIndex(QStringLiteral("a"), 2));
    QVERIFY(!m_Fixture->BasicView()->viewport()->findChild<QComboBox*>());
}

void tst_DialogWindow::doubleClickOnAnEntryInUseOpensNoEditor()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a"))});
    m_Fixture->model->SetConnectionStatus(m_Fixture->model->GetConnection(0), Connection::InUse);
    m_Fixture->Show();
    DialogFixture::DoubleClick(m_Fixture->BasicView(), m_Fixture->ProxyIndex(QStringLiteral("a"), 1));
    QVERIFY(!m_Fixture->BasicView()->viewport()->findChild<QLineEdit*>());
}

void tst_DialogWindow::editingUnderAFilterKeepsTheEntry()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("north")), Entry(QStringLiteral("south")), Entry(QStringLiteral("north 2"))});
    m_Fixture->Show();
    m_Fixture->Find<QLineEdit>("m_pFilterPatternLineEdit")->setText(QStringLiteral("nor"));
    QTest::failOnWarning(QRegularExpression(QStringLiteral("does not belong|editing failed")));
    DialogFixture::DoubleClick(m_Fixture->BasicView(), m_Fixture->ProxyIndex(QStringLiteral("north"), 1));
    auto* const editor = m_Fixture->BasicView()->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    editor->setText(QStringLiteral("west"));
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_COMPARE(m_Fixture->ShownNames(), QStringList{QStringLiteral("north 2")});
    QCOMPARE(m_Fixture->model->GetConnection(0).ConnectionName, QStringLiteral("west"));
    QTRY_VERIFY(!m_Fixture->BasicView()->viewport()->findChild<QLineEdit*>());

    // The view is ready for the next one.
    DialogFixture::DoubleClick(m_Fixture->BasicView(), m_Fixture->ProxyIndex(QStringLiteral("north 2"), 1));
    QVERIFY(m_Fixture->BasicView()->viewport()->findChild<QLineEdit*>());
}

void tst_DialogWindow::newAppendsADefaultEntry()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a"))});
    m_Fixture->Action("m_pNewAction")->trigger();
    QCOMPARE(m_Fixture->model->rowCount(), 2);
    QVERIFY(m_Fixture->model->GetConnection(1) == Connection());
    QCOMPARE(m_Fixture->model->GetConnection(1).ConnectionName, QStringLiteral("enter connection name here"));
}

void tst_DialogWindow::editSaysThatItIsNotThere()
{
    m_Fixture->Build();
    m_Fixture->Show();
    MessageBoxes boxes;
    m_Fixture->Action("m_pEditAction")->trigger();
    QCOMPARE(boxes.Count(), 1);
    QCOMPARE(boxes.Boxes().first().title, QStringLiteral("Info"));
    QCOMPARE(boxes.Boxes().first().text, QStringLiteral("Not yet implemented."));
    QCOMPARE(boxes.Boxes().first().icon, QMessageBox::Information);
    QCOMPARE(boxes.Boxes().first().buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QVERIFY(boxes.Boxes().first().hasParent);
}

void tst_DialogWindow::deleteWithoutSelectionSaysSo()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a"))});
    m_Fixture->Show();
    MessageBoxes boxes;
    m_Fixture->Action("m_pDeleteAction")->trigger();
    QCOMPARE(boxes.Count(), 1);
    QCOMPARE(boxes.Boxes().first().title, QStringLiteral("Info"));
    QCOMPARE(boxes.Boxes().first().text,
             QStringLiteral("No entry selected!\n\nPlease select the entries you want to delete."));
    QCOMPARE(boxes.Boxes().first().buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(m_Fixture->model->rowCount(), 1);
}

void tst_DialogWindow::deleteRemovesTheSelectedRows_data()
{
    QTest::addColumn<bool>("inDetails");
    QTest::addColumn<int>("sortColumn");
    QTest::addColumn<QString>("pattern");
    QTest::newRow("basic view") << false << int{ConnectionsModel::ColumnName} << QString();
    QTest::newRow("details view") << true << int{ConnectionsModel::ColumnName} << QString();
    QTest::newRow("sorted by status") << false << int{ConnectionsModel::ColumnStatus} << QString();
    QTest::newRow("filtered") << true << int{ConnectionsModel::ColumnName} << QStringLiteral("7");
}

void tst_DialogWindow::deleteRemovesTheSelectedRows()
{
    QFETCH(bool, inDetails);
    QFETCH(int, sortColumn);
    QFETCH(QString, pattern);
    m_Fixture->Build();
    for (int i = 0; i < 40; ++i) {
        m_Fixture->Add({Entry(QStringLiteral("entry %1").arg((i * 7) % 40))});
    }
    m_Fixture->Action("m_pDetailsAction")->trigger();
    m_Fixture->dialog->resize(1200, 900);
    m_Fixture->Show();
    m_Fixture->BasicView()->sortByColumn(sortColumn, Qt::AscendingOrder);
    m_Fixture->Find<QLineEdit>("m_pFilterPatternLineEdit")->setText(pattern);
    const QStringList chosen{QStringLiteral("entry 7"), QStringLiteral("entry 17"), QStringLiteral("entry 27")};

    QTreeView* const view = inDetails ? m_Fixture->DetailsView() : m_Fixture->BasicView();
    const int column = inDetails ? ConnectionsModel::ColumnLinkSpeed : ConnectionsModel::ColumnName;
    for (const QString& name : chosen) {
        const QModelIndex cell = m_Fixture->ProxyIndex(name, column);
        view->scrollTo(cell);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::ControlModifier, view->visualRect(cell).center());
    }
    QStringList expected = m_Fixture->Names();
    for (const QString& name : chosen) {
        expected.removeAll(name);
    }
    m_Fixture->Action("m_pDeleteAction")->trigger();
    QCOMPARE(m_Fixture->Names(), expected);
    QVERIFY(!view->selectionModel()->hasSelection());
}

void tst_DialogWindow::deleteAsksNothing()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a")), Entry(QStringLiteral("b"))});
    m_Fixture->Show();
    m_Fixture->BasicView()->selectAll();
    MessageBoxes boxes;
    m_Fixture->Action("m_pDeleteAction")->trigger();
    QCOMPARE(boxes.Count(), 0);
    QCOMPARE(m_Fixture->model->rowCount(), 0);
}

void tst_DialogWindow::contextMenuHoldsTheActionsInOrder()
{
    m_Fixture->Build();
    m_Fixture->Show();
    QMenu* menu = nullptr;
    for (QMenu* child : m_Fixture->dialog->findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly)) {
        menu = child;
    }
    QVERIFY(menu);
    QStringList names;
    for (const QAction* action : menu->actions()) {
        names += action->isSeparator() ? QStringLiteral("-") : action->objectName();
    }
    QCOMPARE(names, QString::fromLatin1("m_pDetailsAction m_pFilterAction - m_pNewAction m_pDeleteAction - "
                                        "m_pImportAction m_pExportAction")
                        .split(QLatin1Char(' ')));

    const QPoint at = m_Fixture->dialog->mapToGlobal(QPoint(20, 20));
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(20, 20), at);
    QCoreApplication::sendEvent(m_Fixture->BasicView()->viewport(), &event);
    QVERIFY(menu->isVisible());
    QCOMPARE(menu->pos(), at);
    menu->hide();
}

void tst_DialogWindow::contextMenuOffersImportAndExportOnlyWhileNothingIsInUse()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a"))});
    m_Fixture->Show();
    const auto openMenu = [this] {
        QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), m_Fixture->dialog->mapToGlobal(QPoint(5, 5)));
        QCoreApplication::sendEvent(m_Fixture->dialog, &event);
        QVERIFY(QApplication::activePopupWidget());
        QApplication::activePopupWidget()->hide();
    };
    openMenu();
    QVERIFY(m_Fixture->Action("m_pImportAction")->isEnabled());
    QVERIFY(m_Fixture->Action("m_pExportAction")->isEnabled());
    m_Fixture->model->SetConnectionStatus(m_Fixture->model->GetConnection(0), Connection::InUse);
    openMenu();
    QVERIFY(!m_Fixture->Action("m_pImportAction")->isEnabled());
    QVERIFY(!m_Fixture->Action("m_pExportAction")->isEnabled());
    m_Fixture->model->ResetConnectionStatus();
    openMenu();
    QVERIFY(m_Fixture->Action("m_pImportAction")->isEnabled());
    QVERIFY(m_Fixture->Action("m_pExportAction")->isEnabled());
}

void tst_DialogWindow::closeHidesAndKeepsEverything()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a"), Connection::KiteEcho, true)});
    m_Fixture->Action("m_pDetailsAction")->trigger();
    m_Fixture->Show();
    m_Fixture->BasicView()->selectAll();
    QTest::mouseClick(m_Fixture->Find<QPushButton>("m_pCloseButton"), Qt::LeftButton);
    QVERIFY(!m_Fixture->dialog->isVisible());
    QCOMPARE(m_Fixture->model->CountSelected(), 1);
    QCOMPARE(m_Fixture->BasicView()->selectionModel()->selectedRows().size(), 1);
    m_Fixture->Show();
    QVERIFY(m_Fixture->DetailsView()->isVisible());
    // Nothing was stored: neither the filter's node nor the entries.
    const std::unique_ptr<ICfg> stored(
        CfgCenter::GetAppCfg(View::Application)->OpenChild(QStringLiteral("ConnectionsModel"), 0));
    QCOMPARE(stored->GetString(QStringLiteral("ModelMimeData"), QStringLiteral("none"), 0), QStringLiteral("none"));
    const std::unique_ptr<ICfg> filter(
        CfgCenter::GetAppCfg(View::User)->OpenChild(QStringLiteral("FilterSettings"), 0));
    QCOMPARE(filter->GetString(QStringLiteral("FilterPattern"), QStringLiteral("none"), 0), QStringLiteral("none"));
}

void tst_DialogWindow::firstShowMakesItTheMainWidgetWithItsStoredSize()
{
    m_Fixture->Build();
    m_Fixture->dialog->resize(640, 321);
    GuiBase::Instance().StoreWidgetSize(m_Fixture->dialog);
    m_Fixture->dialog->resize(500, 200);
    m_Fixture->Show();
    QCOMPARE(GuiBase::Instance().GetMainWidget(), m_Fixture->dialog);
    QCOMPARE(m_Fixture->dialog->size(), QSize(640, 321));

    m_Fixture->dialog->hide();
    m_Fixture->dialog->resize(700, 400);
    m_Fixture->Show();
    QCOMPARE(m_Fixture->dialog->size(), QSize(700, 400));
}

void tst_DialogWindow::anotherMainWidgetStays()
{
    m_Fixture->Build();
    QWidget other;
    GuiBase::Instance().SetMainWidget(&other);
    m_Fixture->dialog->resize(640, 321);
    GuiBase::Instance().StoreWidgetSize(m_Fixture->dialog);
    m_Fixture->dialog->resize(500, 200);
    m_Fixture->Show();
    QCOMPARE(GuiBase::Instance().GetMainWidget(), &other);
    QCOMPARE(m_Fixture->dialog->size(), QSize(500, 200));
}

void tst_DialogWindow::destructionStoresTheFilterAndTouchesNothingElse()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a"))});
    m_Fixture->Find<QLineEdit>("m_pFilterPatternLineEdit")->setText(QStringLiteral("x"));
    const QPointer<QAbstractItemModel> proxy = m_Fixture->Proxy();
    QSignalSpy changed(m_Fixture->model, &QAbstractItemModel::dataChanged);
    delete std::exchange(m_Fixture->dialog, nullptr);
    QVERIFY(!proxy);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(m_Fixture->model->rowCount(), 1);
    const std::unique_ptr<ICfg> stored(
        CfgCenter::GetAppCfg(View::User)->OpenChild(QStringLiteral("FilterSettings"), 0));
    QCOMPARE(stored->GetString(QStringLiteral("FilterPattern"), QString(), 0), QStringLiteral("x"));
    QCOMPARE(stored->GetInt(QStringLiteral("Column"), -7, 0), 1);
    QCOMPARE(stored->GetInt(QStringLiteral("SearchMode"), -7, 0), 0);
}

QTEST_MAIN(tst_DialogWindow)
#include "tst_dialogwindow.moc"
