// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/dialogfixture.h"
#include "tests/support/metaobject.h"
#include "tests/support/testmain.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMenu>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSplitter>

/// The window: its views, mouse, menu and actions.
class TestDialogWindow : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture = std::make_unique<DialogFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void declaresSlotsInOrder();
    void startsHiddenAndAcceptsDrops();
    void viewsShareModelDelegateAndSelection();
    void eachColumnIsInOneView();
    void headersResizeToContentsAndSortByName();
    void sortingOneViewSortsBoth();
    void detailsAndFilterStartHidden();
    void scrollingOneViewScrollsBoth();

    void clickTogglesTick();
    void clickElsewhereTogglesNothing();
    void clickOnTickOfEntryInUseDoesNothing();
    void tickedFreeEntryEnablesConnect();
    void statusEnablesConnect();
    void otherColumnsDoNotChangeConnect();

    void doubleClickOpensEditor();
    void editorBelongsToOneView();
    void leavingEditorCommits();
    void doubleClickOnStatusDoesNothing();
    void doubleClickOnEntryInUseOpensNoEditor();
    void editedEntryCanBeFilteredOut_data();
    void editedEntryCanBeFilteredOut();

    void newAppendsDefaultEntry();
    void newAddsNothingToFullList();
    void editIsNotImplemented();
    void deleteWithoutSelectionIsReported();
    void deleteRemovesSelectedRows_data();
    void deleteRemovesSelectedRows();

    void contextMenuHasActionsInOrder();
    void importAndExportNeedAllEntriesFree();

    void closeHidesOnly();
    void windowHasAHelpButton();
    void showingShowsAMinimizedDialog();
    void onlyTheFirstShowCentersTheDialog();
    void firstShowMakesMainWidgetWithStoredSize();
    void otherMainWidgetIsKept();
    void destructorStoresFilter();

private:
    std::unique_ptr<DialogFixture> m_fixture;
};

void TestDialogWindow::declaresSlotsInOrder()
{
    QCOMPARE(Declaration(VexelConnectDlgGUI::staticMetaObject),
             QString::fromLatin1(
                 "VexelConnectDlgGUI : QDialog\nslot SlotNew()\nslot SlotEdit()\nslot SlotDelete()\n"
                 "slot SlotImport()\nslot SlotExport()\nslot SlotShowDetails(bool bShow)\n"
                 "slot SlotShowFilter(bool bShow)\nslot SlotClicked(QModelIndex index)\n"
                 "slot SlotDoubleClicked(QModelIndex index)\nslot SlotClose()\nslot SlotConnect()\n"
                 "slot SlotUpdateFilter()\n"
                 "slot SlotDataChanged(QModelIndex topLeft, QModelIndex bottomRight)\n"
                 "other ApplicationOf(int row)\nother ConnectEntries(QList<int> rows)\nother StoreFilterSettings()\n"
                 "property entriesBeforeImport")
                 .split(QLatin1Char('\n')));

    m_fixture->Build();
    QCOMPARE(m_fixture->dialog->qt_metacast("Ui::VexelConnectDlg"),
             static_cast<void*>(static_cast<Ui::VexelConnectDlg*>(m_fixture->dialog)));
}

void TestDialogWindow::startsHiddenAndAcceptsDrops()
{
    m_fixture->Build();
    QCOMPARE(m_fixture->dialog->objectName(), QStringLiteral("VexelConnectDlgGUI"));
    QCOMPARE(m_fixture->dialog->windowTitle(), QStringLiteral("Vexel - Connect Dialog"));
    QVERIFY(m_fixture->dialog->acceptDrops());
    QVERIFY(!m_fixture->dialog->isVisible());
    QVERIFY(m_fixture->dialog->isWindow());
    QVERIFY(!GuiBase::Instance().GetMainWidget());
}

void TestDialogWindow::viewsShareModelDelegateAndSelection()
{
    m_fixture->Build();
    QTreeView* const basic = m_fixture->BasicView();
    QTreeView* const details = m_fixture->DetailsView();
    QVERIFY(m_fixture->Proxy());
    QCOMPARE(m_fixture->Proxy()->sourceModel(), m_fixture->model);
    QCOMPARE(m_fixture->Proxy()->parent(), m_fixture->dialog);
    QCOMPARE(details->model(), basic->model());
    QCOMPARE(details->itemDelegate(), basic->itemDelegate());
    QCOMPARE(basic->itemDelegate()->metaObject()->className(), "ConnectionsDelegate");
    QCOMPARE(basic->itemDelegate()->parent(), m_fixture->dialog);
    QCOMPARE(details->selectionModel(), basic->selectionModel());

    m_fixture->Add({Entry("a"), Entry("b")});
    m_fixture->Action("m_pDetailsAction")->trigger();
    m_fixture->Show();
    DialogFixture::Click(details, m_fixture->ProxyIndex("b", ConnectionsModel::ColumnLinkSpeed));
    QCOMPARE(basic->selectionModel()->selectedRows().size(), 1);
    QCOMPARE(basic->selectionModel()->selectedRows().first().row(), m_fixture->ProxyRow(QStringLiteral("b")));
}

void TestDialogWindow::eachColumnIsInOneView()
{
    m_fixture->Build();
    for (int column = 0; column < ConnectionsModel::kColumnCount; ++column) {
        QCOMPARE(m_fixture->BasicView()->isColumnHidden(column), column > 3);
        QCOMPARE(m_fixture->DetailsView()->isColumnHidden(column), column <= 3);
    }
}

void TestDialogWindow::headersResizeToContentsAndSortByName()
{
    m_fixture->Build();
    QHeaderView* const basic = m_fixture->BasicView()->header();
    QCOMPARE(basic->sectionResizeMode(1), QHeaderView::ResizeToContents);
    QCOMPARE(m_fixture->DetailsView()->header()->sectionResizeMode(5), QHeaderView::ResizeToContents);
    QCOMPARE(basic->sortIndicatorSection(), 1);
    QCOMPARE(basic->sortIndicatorOrder(), Qt::AscendingOrder);
    QCOMPARE(basic->iconSize(), QSize(14, 14));

    m_fixture->Add({Entry("c"), Entry("a"), Entry("b")});
    QCOMPARE(m_fixture->ShownNames(), (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
}

void TestDialogWindow::sortingOneViewSortsBoth()
{
    m_fixture->Build();
    Connection fast = Entry("b");
    fast.LinkSpeed = Connection::Gsm;
    Connection slow = Entry("a");
    slow.LinkSpeed = Connection::RadioLink;
    m_fixture->Add({slow, fast});
    m_fixture->Action("m_pDetailsAction")->trigger();
    m_fixture->Show();

    const auto clickHeader = [](QTreeView* view, int column) {
        QHeaderView* const header = view->header();
        view->resize(2000, view->height());
        const QPoint at(header->sectionViewportPosition(column) + 5, header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    };
    clickHeader(m_fixture->DetailsView(), ConnectionsModel::ColumnLinkSpeed);
    QCOMPARE(m_fixture->Proxy()->sortColumn(), int{ConnectionsModel::ColumnLinkSpeed});
    const QStringList order = m_fixture->ShownNames();
    clickHeader(m_fixture->DetailsView(), ConnectionsModel::ColumnLinkSpeed);
    QCOMPARE(m_fixture->ShownNames(), QStringList(order.crbegin(), order.crend()));
    QCOMPARE(m_fixture->BasicView()->header()->sortIndicatorSection(), int{ConnectionsModel::ColumnLinkSpeed});

    clickHeader(m_fixture->BasicView(), ConnectionsModel::ColumnName);
    QCOMPARE(m_fixture->Proxy()->sortColumn(), int{ConnectionsModel::ColumnName});
    QCOMPARE(m_fixture->DetailsView()->header()->sortIndicatorSection(), int{ConnectionsModel::ColumnName});
}

void TestDialogWindow::detailsAndFilterStartHidden()
{
    m_fixture->Build();
    m_fixture->Show();
    QVERIFY(!m_fixture->DetailsView()->isVisible());
    QVERIFY(!m_fixture->Find<QFrame>("m_pFilterFrame")->isVisible());
    QVERIFY(m_fixture->BasicView()->isVisible());

    m_fixture->Action("m_pDetailsAction")->trigger();
    QVERIFY(m_fixture->DetailsView()->isVisible());
    m_fixture->Action("m_pDetailsAction")->trigger();
    QVERIFY(!m_fixture->DetailsView()->isVisible());
}

void TestDialogWindow::scrollingOneViewScrollsBoth()
{
    m_fixture->Build();
    for (int i = 0; i < 200; ++i)
        m_fixture->Add({Entry(QString::number(i))});
    m_fixture->Action("m_pDetailsAction")->trigger();
    m_fixture->Show();
    QScrollBar* const basic = m_fixture->BasicView()->verticalScrollBar();
    QScrollBar* const details = m_fixture->DetailsView()->verticalScrollBar();
    QTRY_VERIFY(basic->maximum() > 100 && details->maximum() > 100);
    basic->setValue(77);
    QCOMPARE(details->value(), 77);
    details->setValue(33);
    QCOMPARE(basic->value(), 33);
}

void TestDialogWindow::clickTogglesTick()
{
    m_fixture->Build();
    m_fixture->Add({Entry("b"), Entry("a")});
    m_fixture->Show();
    const QModelIndex tick = m_fixture->ProxyIndex("b", ConnectionsModel::ColumnSelected);
    DialogFixture::Click(m_fixture->BasicView(), tick);
    QVERIFY(m_fixture->model->GetConnection(0).Selected);
    QVERIFY(!m_fixture->model->GetConnection(1).Selected);
    DialogFixture::Click(m_fixture->BasicView(), tick);
    QVERIFY(!m_fixture->model->GetConnection(0).Selected);
}

void TestDialogWindow::clickElsewhereTogglesNothing()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    m_fixture->Show();
    for (int column = 1; column < 4; ++column) {
        DialogFixture::Click(m_fixture->BasicView(), m_fixture->ProxyIndex("a", column));
        QVERIFY(!m_fixture->model->GetConnection(0).Selected);
    }
}

void TestDialogWindow::clickOnTickOfEntryInUseDoesNothing()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a", Connection::KiteEcho, true)});
    m_fixture->model->SetConnectionStatus(m_fixture->model->GetConnection(0), Connection::InUse);
    m_fixture->Show();
    const QModelIndex tick = m_fixture->ProxyIndex("a", ConnectionsModel::ColumnSelected);
    DialogFixture::Click(m_fixture->BasicView(), tick);
    QVERIFY(m_fixture->model->GetConnection(0).Selected);
    // Nor if the slot is called directly.
    m_fixture->dialog->SlotClicked(tick);
    QVERIFY(m_fixture->model->GetConnection(0).Selected);
}

void TestDialogWindow::tickedFreeEntryEnablesConnect()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a"), Entry("b")});
    m_fixture->Show();
    const auto tick = [this](const QString& name) {
        DialogFixture::Click(m_fixture->BasicView(), m_fixture->ProxyIndex(name, ConnectionsModel::ColumnSelected));
    };
    tick(QStringLiteral("a"));
    QVERIFY(m_fixture->ConnectButton()->isEnabled());
    tick(QStringLiteral("b"));
    QVERIFY(m_fixture->ConnectButton()->isEnabled());
    tick(QStringLiteral("a"));
    QVERIFY(m_fixture->ConnectButton()->isEnabled());
    tick(QStringLiteral("b"));
    QVERIFY(!m_fixture->ConnectButton()->isEnabled());
}

void TestDialogWindow::statusEnablesConnect()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a", Connection::KiteEcho, true)});
    m_fixture->model->SetConnectionStatus(m_fixture->model->GetConnection(0), Connection::InUse);
    QVERIFY(!m_fixture->ConnectButton()->isEnabled());
    m_fixture->model->SetConnectionStatus(m_fixture->model->GetConnection(0), Connection::Free);
    QVERIFY(m_fixture->ConnectButton()->isEnabled());
}

void TestDialogWindow::otherColumnsDoNotChangeConnect()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    const auto setName = [this](const QString& name) {
        m_fixture->model->setData(m_fixture->model->index(0, ConnectionsModel::ColumnName), name);
    };
    // Nothing is ticked, but neither tick nor status has changed yet.
    QVERIFY(m_fixture->ConnectButton()->isEnabled());
    setName(QStringLiteral("b"));
    QVERIFY(m_fixture->ConnectButton()->isEnabled());
    m_fixture->model->setData(m_fixture->model->index(0, ConnectionsModel::ColumnDeviceType), 1);
    QVERIFY(m_fixture->ConnectButton()->isEnabled());
    // A range that includes the status column.
    emit m_fixture->model->dataChanged(m_fixture->model->index(0, 1), m_fixture->model->index(0, 3));
    QVERIFY(!m_fixture->ConnectButton()->isEnabled());
    // One that includes the tick column.
    m_fixture->ConnectButton()->setEnabled(true);
    emit m_fixture->model->dataChanged(m_fixture->model->index(0, 0), m_fixture->model->index(0, 1));
    QVERIFY(!m_fixture->ConnectButton()->isEnabled());
}

void TestDialogWindow::doubleClickOpensEditor()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    m_fixture->Action("m_pDetailsAction")->trigger();
    m_fixture->dialog->resize(1200, 300);
    m_fixture->Show();

    DialogFixture::DoubleClick(m_fixture->BasicView(), m_fixture->ProxyIndex("a", 1));
    auto* editor = m_fixture->BasicView()->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    QCOMPARE(editor->text(), QStringLiteral("a"));
    editor->selectAll();
    QTest::keyClicks(editor, QStringLiteral("changed"));
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_COMPARE(m_fixture->model->GetConnection(0).ConnectionName, QStringLiteral("changed"));
    QVERIFY2(m_fixture->dialog->isVisible(), "Enter in an editor must not press the default button");

    DialogFixture::DoubleClick(m_fixture->DetailsView(),
                               m_fixture->ProxyIndex("changed", ConnectionsModel::ColumnDeviceAddress));
    editor = m_fixture->DetailsView()->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    QTest::keyClicks(editor, QStringLiteral("10.0.0.5"));
    QTest::keyClick(editor, Qt::Key_Escape);
    QTRY_VERIFY(!m_fixture->DetailsView()->viewport()->findChild<QLineEdit*>());
    QCOMPARE(m_fixture->model->GetConnection(0).DeviceAddress, QString());
    QVERIFY2(m_fixture->dialog->isVisible(), "Escape in an editor must not close the dialog");
}

void TestDialogWindow::editorBelongsToOneView()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a"), Entry("b")});
    m_fixture->Action("m_pDetailsAction")->trigger();
    m_fixture->dialog->resize(1200, 300);
    m_fixture->Show();
    QTest::failOnWarning(QRegularExpression(QStringLiteral("does not belong")));
    DialogFixture::DoubleClick(m_fixture->BasicView(), m_fixture->ProxyIndex("a", 1));
    auto* const editor = m_fixture->BasicView()->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    editor->setText(QStringLiteral("aa"));
    QTest::keyClick(editor, Qt::Key_Tab);
    QTRY_COMPARE(m_fixture->model->GetConnection(0).ConnectionName, QStringLiteral("aa"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!m_fixture->DetailsView()->viewport()->findChild<QLineEdit*>());
    QVERIFY(!m_fixture->DetailsView()->viewport()->findChild<QComboBox*>());
}

void TestDialogWindow::leavingEditorCommits()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    m_fixture->Show();
    m_fixture->dialog->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_fixture->dialog));
    DialogFixture::DoubleClick(m_fixture->BasicView(), m_fixture->ProxyIndex("a", 1));
    auto* const editor = m_fixture->BasicView()->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    editor->setText(QStringLiteral("left"));
    m_fixture->ConnectButton()->setFocus();
    QTRY_COMPARE(m_fixture->model->GetConnection(0).ConnectionName, QStringLiteral("left"));
}

void TestDialogWindow::doubleClickOnStatusDoesNothing()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    m_fixture->Show();
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    DialogFixture::DoubleClick(m_fixture->BasicView(), m_fixture->ProxyIndex("a", 2));
    QVERIFY(!m_fixture->BasicView()->viewport()->findChild<QComboBox*>());
}

void TestDialogWindow::doubleClickOnEntryInUseOpensNoEditor()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    m_fixture->model->SetConnectionStatus(m_fixture->model->GetConnection(0), Connection::InUse);
    m_fixture->Show();
    DialogFixture::DoubleClick(m_fixture->BasicView(), m_fixture->ProxyIndex("a", 1));
    QVERIFY(!m_fixture->BasicView()->viewport()->findChild<QLineEdit*>());
}

void TestDialogWindow::editedEntryCanBeFilteredOut_data()
{
    QTest::addColumn<bool>("leaves");
    QTest::newRow("Return") << false;
    QTest::newRow("another widget gets the focus") << true;
}

void TestDialogWindow::editedEntryCanBeFilteredOut()
{
    QFETCH(bool, leaves);
    m_fixture->Build();
    m_fixture->Add({Entry("north", Connection::KiteEcho, true), Entry("south"), Entry("north 2")});
    m_fixture->Show();
    m_fixture->dialog->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_fixture->dialog));
    m_fixture->Find<QLineEdit>("m_pFilterPatternLineEdit")->setText(QStringLiteral("nor"));
    QTest::failOnWarning(QRegularExpression(QStringLiteral("does not belong|editing failed")));
    DialogFixture::DoubleClick(m_fixture->BasicView(), m_fixture->ProxyIndex("north", 1));
    auto* const editor = m_fixture->BasicView()->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    editor->setText(QStringLiteral("west"));
    if (leaves)
        m_fixture->ConnectButton()->setFocus();
    else
        QTest::keyClick(editor, Qt::Key_Return);
    QTRY_COMPARE(m_fixture->ShownNames(), QStringList{QStringLiteral("north 2")});
    QCOMPARE(m_fixture->model->GetConnection(0).ConnectionName, QStringLiteral("west"));
    QTRY_VERIFY(!m_fixture->BasicView()->viewport()->findChild<QLineEdit*>());
    QCOMPARE(QApplication::focusWidget(),
             leaves ? static_cast<QWidget*>(m_fixture->ConnectButton()) : m_fixture->BasicView());

    // The view can open the next editor.
    DialogFixture::DoubleClick(m_fixture->BasicView(), m_fixture->ProxyIndex("north 2", 1));
    QVERIFY(m_fixture->BasicView()->viewport()->findChild<QLineEdit*>());
}

void TestDialogWindow::newAppendsDefaultEntry()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    m_fixture->Action("m_pNewAction")->trigger();
    QCOMPARE(m_fixture->model->rowCount(), 2);
    QVERIFY(m_fixture->model->GetConnection(1) == Connection());
    QCOMPARE(m_fixture->model->GetConnection(1).ConnectionName, QStringLiteral("enter connection name here"));
}

void TestDialogWindow::newAddsNothingToFullList()
{
    // Without the fixture, whose model testers take long for so many rows.
    ConnectionsModel model(nullptr, QString());
    AppCounter counter(&model, QString());
    VexelConnectDlgGUI dialog(nullptr, &model, &counter);
    QVERIFY(model.FromByteArray("<a>" + QByteArray("<Connection/>").repeated(ConnectionList::kMaximumEntries - 1) +
                                "</a>"));
    const MessageBoxes boxes;
    dialog.m_pNewAction->trigger();
    QCOMPARE(boxes.Count(), 0);
    QCOMPARE(model.rowCount(), ConnectionList::kMaximumEntries);
    dialog.m_pNewAction->trigger();
    QCOMPARE(boxes.Count(), 1);
    QCOMPARE(boxes.Boxes().first().title, QStringLiteral("Info"));
    QCOMPARE(boxes.Boxes().first().text,
             QStringLiteral("The list is full.\n\nPlease delete entries before you add a new one."));
    QCOMPARE(boxes.Boxes().first().icon, QMessageBox::Information);
    QCOMPARE(boxes.Boxes().first().buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(model.rowCount(), ConnectionList::kMaximumEntries);
}

void TestDialogWindow::editIsNotImplemented()
{
    m_fixture->Build();
    m_fixture->Show();
    MessageBoxes boxes;
    m_fixture->Action("m_pEditAction")->trigger();
    QCOMPARE(boxes.Count(), 1);
    QCOMPARE(boxes.Boxes().first().title, QStringLiteral("Info"));
    QCOMPARE(boxes.Boxes().first().text, QStringLiteral("Not yet implemented."));
    QCOMPARE(boxes.Boxes().first().icon, QMessageBox::Information);
    QCOMPARE(boxes.Boxes().first().buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QVERIFY(boxes.Boxes().first().hasParent);
}

void TestDialogWindow::deleteWithoutSelectionIsReported()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    m_fixture->Show();
    MessageBoxes boxes;
    m_fixture->Action("m_pDeleteAction")->trigger();
    QCOMPARE(boxes.Count(), 1);
    QCOMPARE(boxes.Boxes().first().title, QStringLiteral("Info"));
    QCOMPARE(boxes.Boxes().first().text,
             QStringLiteral("No entry selected!\n\nPlease select the entries you want to delete."));
    QCOMPARE(boxes.Boxes().first().buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(m_fixture->model->rowCount(), 1);
}

void TestDialogWindow::deleteRemovesSelectedRows_data()
{
    QTest::addColumn<bool>("inDetails");
    QTest::addColumn<int>("sortColumn");
    QTest::addColumn<QString>("pattern");
    QTest::newRow("basic view") << false << int{ConnectionsModel::ColumnName} << QString();
    QTest::newRow("details view") << true << int{ConnectionsModel::ColumnName} << QString();
    QTest::newRow("sorted by status") << false << int{ConnectionsModel::ColumnStatus} << QString();
    QTest::newRow("filtered") << true << int{ConnectionsModel::ColumnName} << QStringLiteral("7");
}

void TestDialogWindow::deleteRemovesSelectedRows()
{
    QFETCH(bool, inDetails);
    QFETCH(int, sortColumn);
    QFETCH(QString, pattern);
    m_fixture->Build();
    for (int i = 0; i < 40; ++i)
        m_fixture->Add({Entry(QStringLiteral("entry %1").arg((i * 7) % 40))});
    m_fixture->Action("m_pDetailsAction")->trigger();
    m_fixture->dialog->resize(1200, 900);
    m_fixture->Show();
    m_fixture->BasicView()->sortByColumn(sortColumn, Qt::AscendingOrder);
    m_fixture->Find<QLineEdit>("m_pFilterPatternLineEdit")->setText(pattern);
    const QStringList chosen{QStringLiteral("entry 7"), QStringLiteral("entry 17"), QStringLiteral("entry 27")};

    QTreeView* const view = inDetails ? m_fixture->DetailsView() : m_fixture->BasicView();
    const int column = inDetails ? ConnectionsModel::ColumnLinkSpeed : ConnectionsModel::ColumnName;
    for (const QString& name : chosen) {
        const QModelIndex cell = m_fixture->ProxyIndex(name, column);
        view->scrollTo(cell);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::ControlModifier, view->visualRect(cell).center());
    }
    QStringList expected = m_fixture->Names();
    for (const QString& name : chosen)
        expected.removeAll(name);
    MessageBoxes boxes;
    m_fixture->Action("m_pDeleteAction")->trigger();
    QCOMPARE(boxes.Count(), 0);
    QCOMPARE(m_fixture->Names(), expected);
    QVERIFY(!view->selectionModel()->hasSelection());
}

void TestDialogWindow::contextMenuHasActionsInOrder()
{
    m_fixture->Build();
    m_fixture->Show();
    QMenu* menu = nullptr;
    for (QMenu* child : m_fixture->dialog->findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly))
        menu = child;
    QVERIFY(menu);
    QStringList names;
    for (const QAction* action : menu->actions())
        names += action->isSeparator() ? QStringLiteral("-") : action->objectName();
    QCOMPARE(names, QString::fromLatin1("m_pDetailsAction m_pFilterAction - m_pNewAction m_pDeleteAction - "
                                        "m_pImportAction m_pExportAction")
                        .split(QLatin1Char(' ')));

    const QPoint at = m_fixture->dialog->mapToGlobal(QPoint(20, 20));
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(20, 20), at);
    QCoreApplication::sendEvent(m_fixture->BasicView()->viewport(), &event);
    QVERIFY(menu->isVisible());
    QCOMPARE(menu->pos(), at);
    menu->hide();
}

void TestDialogWindow::importAndExportNeedAllEntriesFree()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    m_fixture->Show();
    const auto openMenu = [this] {
        QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), m_fixture->dialog->mapToGlobal(QPoint(5, 5)));
        QCoreApplication::sendEvent(m_fixture->dialog, &event);
        QVERIFY(QApplication::activePopupWidget());
        QApplication::activePopupWidget()->hide();
    };
    openMenu();
    QVERIFY(m_fixture->Action("m_pImportAction")->isEnabled());
    QVERIFY(m_fixture->Action("m_pExportAction")->isEnabled());
    m_fixture->model->SetConnectionStatus(m_fixture->model->GetConnection(0), Connection::InUse);
    openMenu();
    QVERIFY(!m_fixture->Action("m_pImportAction")->isEnabled());
    QVERIFY(!m_fixture->Action("m_pExportAction")->isEnabled());
    m_fixture->model->ResetConnectionStatus();
    openMenu();
    QVERIFY(m_fixture->Action("m_pImportAction")->isEnabled());
    QVERIFY(m_fixture->Action("m_pExportAction")->isEnabled());
}

void TestDialogWindow::windowHasAHelpButton()
{
    m_fixture->Build();
    QVERIFY(m_fixture->dialog->windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
}

void TestDialogWindow::showingShowsAMinimizedDialog()
{
    m_fixture->Build();
    // Shown as minimised, it stays so.
    m_fixture->dialog->showMinimized();
    QVERIFY(m_fixture->dialog->isVisible());
    QVERIFY(m_fixture->dialog->isMinimized());
    m_fixture->dialog->show();
    QVERIFY(!m_fixture->dialog->isMinimized());

    m_fixture->dialog->showMinimized();
    QVERIFY(m_fixture->dialog->isMinimized());
    m_fixture->dialog->hide();
    m_fixture->dialog->show();
    QVERIFY(!m_fixture->dialog->isMinimized());

    m_fixture->dialog->setWindowState(Qt::WindowMinimized);
    QCoreApplication::processEvents();
    m_fixture->dialog->show();
    QVERIFY(!m_fixture->dialog->isMinimized());
}

void TestDialogWindow::closeHidesOnly()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a", Connection::KiteEcho, true)});
    m_fixture->Action("m_pDetailsAction")->trigger();
    m_fixture->Show();
    m_fixture->BasicView()->selectAll();
    QTest::mouseClick(m_fixture->Find<QPushButton>("m_pCloseButton"), Qt::LeftButton);
    QVERIFY(!m_fixture->dialog->isVisible());
    QCOMPARE(m_fixture->model->CountSelected(), 1);
    QCOMPARE(m_fixture->BasicView()->selectionModel()->selectedRows().size(), 1);
    m_fixture->Show();
    QVERIFY(m_fixture->DetailsView()->isVisible());
    // Neither the filter nor the entries were stored.
    const QString none = QStringLiteral("none");
    QCOMPARE(ConfigNodes::StoredSet(none), none);
    QCOMPARE(ConfigNodes::Filter()->GetString(QStringLiteral("FilterPattern"), none, 0), none);
}

void TestDialogWindow::onlyTheFirstShowCentersTheDialog()
{
    QWidget other;
    GuiBase::Instance().SetMainWidget(&other);
    m_fixture->Build();
    VexelConnectDlgGUI* const dialog = m_fixture->dialog;
    dialog->resize(400, 300);
    m_fixture->Show();
    const QPoint position = dialog->geometry().topLeft();
    // Qt leaves room for a frame of the usual size.
    const QPoint offset = dialog->geometry().center() - dialog->screen()->availableGeometry().center();
    QVERIFY2(offset.manhattanLength() < 100, qPrintable(QStringLiteral("%1, %2").arg(offset.x()).arg(offset.y())));
    dialog->resize(500, 350);
    dialog->hide();
    m_fixture->Show();
    QCOMPARE(dialog->geometry().topLeft(), position);
}

void TestDialogWindow::firstShowMakesMainWidgetWithStoredSize()
{
    m_fixture->Build();
    m_fixture->dialog->resize(640, 321);
    GuiBase::Instance().StoreWidgetSize(m_fixture->dialog);
    m_fixture->dialog->resize(500, 200);
    m_fixture->Show();
    QCOMPARE(GuiBase::Instance().GetMainWidget(), m_fixture->dialog);
    QCOMPARE(m_fixture->dialog->size(), QSize(640, 321));

    m_fixture->dialog->hide();
    m_fixture->dialog->resize(700, 400);
    m_fixture->Show();
    QCOMPARE(m_fixture->dialog->size(), QSize(700, 400));
}

void TestDialogWindow::otherMainWidgetIsKept()
{
    m_fixture->Build();
    QWidget other;
    GuiBase::Instance().SetMainWidget(&other);
    m_fixture->dialog->resize(640, 321);
    GuiBase::Instance().StoreWidgetSize(m_fixture->dialog);
    m_fixture->dialog->resize(500, 200);
    m_fixture->Show();
    QCOMPARE(GuiBase::Instance().GetMainWidget(), &other);
    QCOMPARE(m_fixture->dialog->size(), QSize(500, 200));
}

void TestDialogWindow::destructorStoresFilter()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    m_fixture->Find<QLineEdit>("m_pFilterPatternLineEdit")->setText(QStringLiteral("x"));
    const QPointer<QAbstractItemModel> proxy = m_fixture->Proxy();
    QSignalSpy changed(m_fixture->model, &QAbstractItemModel::dataChanged);
    delete std::exchange(m_fixture->dialog, nullptr);
    QVERIFY(!proxy);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(m_fixture->model->rowCount(), 1);
    const auto stored = ConfigNodes::Filter();
    QCOMPARE(stored->GetString(QStringLiteral("FilterPattern"), QString(), 0), QStringLiteral("x"));
    QCOMPARE(stored->GetInt(QStringLiteral("Column"), -7, 0), 1);
    QCOMPARE(stored->GetInt(QStringLiteral("SearchMode"), -7, 0), 0);
}

VEXEL_TEST(QTEST_MAIN, TestDialogWindow)
#include "tst_dialogwindow.moc"
