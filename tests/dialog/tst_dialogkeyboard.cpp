// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/dialogfixture.h"
#include "tests/support/testmain.h"

#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSpinBox>

#include <functional>

/// The dialog without a mouse. Keys go to the window, which passes them to the widget that has the focus.
class TestDialogKeyboard : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture = std::make_unique<DialogFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void spaceTogglesTick_data();
    void spaceTogglesTick();
    void heldSpaceTogglesOnce();
    void spaceTicksFilteredEntry();
    void spaceDoesNotTickEntryInUse();
    void spaceWithoutCurrentEntryDoesNothing();
    void spaceWithModifierSelects_data();
    void spaceWithModifierSelects();
    void typedSpaceTicksNothing();

    void f2EditsCurrentCell_data();
    void f2EditsCurrentCell();
    void f2ScrollsToCell();
    void f2DoesNotEditLockedCell_data();
    void f2DoesNotEditLockedCell();
    void f2InEditorOpensNoOther();
    void tabInEditorEditsNextRow();

    void arrowsMoveCurrentCell();
    void arrowsSkipDisabledAndHidden();
    void arrowsReachColumnsMovedToTheEdges();

    void enterPressesConnect_data();
    void enterPressesConnect();
    void wholeJobByKeyboard();

private:
    QTreeView* View(bool details) const { return details ? m_fixture->DetailsView() : m_fixture->BasicView(); }
    QModelIndex Current() const { return m_fixture->BasicView()->currentIndex(); }
    bool IsTicked(int row = 0) const { return m_fixture->model->GetConnection(row).Selected; }

    /// Shows the dialog with details, wide enough for both views.
    void ShowActive()
    {
        m_fixture->dialog->resize(1200, 300);
        m_fixture->Action("m_pDetailsAction")->trigger();
        m_fixture->Show();
        m_fixture->dialog->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_fixture->dialog));
    }

    /// Gives the view the focus, with the cell of this entry as the current one.
    void Enter(bool details, const char* name, int column)
    {
        View(details)->setFocus();
        View(details)->selectionModel()->setCurrentIndex(m_fixture->ProxyIndex(name, column),
                                                         QItemSelectionModel::NoUpdate);
        QVERIFY(View(details)->hasFocus());
    }

    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(m_fixture->dialog->windowHandle(), key, modifiers);
    }
    void Type(const QString& text)
    {
        for (const QChar character : text)
            QTest::keyClick(m_fixture->dialog->windowHandle(), character.toLatin1());
    }

    std::unique_ptr<DialogFixture> m_fixture;
};

void TestDialogKeyboard::spaceTogglesTick_data()
{
    QTest::addColumn<bool>("details");
    QTest::addColumn<int>("column");
    QTest::newRow("tick") << false << int{ConnectionsModel::ColumnSelected};
    QTest::newRow("name") << false << int{ConnectionsModel::ColumnName};
    QTest::newRow("status") << false << int{ConnectionsModel::ColumnStatus};
    QTest::newRow("link speed") << true << int{ConnectionsModel::ColumnLinkSpeed};
    QTest::newRow("locked address") << true << int{ConnectionsModel::ColumnDriverAddress};
    QTest::newRow("column of the other view") << true << int{ConnectionsModel::ColumnName};
}

void TestDialogKeyboard::spaceTogglesTick()
{
    QFETCH(bool, details);
    QFETCH(int, column);
    m_fixture->Build();
    m_fixture->Add({Entry("b"), Entry("a")});
    ShowActive();
    Enter(details, "b", column);
    const QModelIndex current = Current();
    Press(Qt::Key_Space);
    QVERIFY(IsTicked());
    QVERIFY(!IsTicked(1));
    QVERIFY(m_fixture->ConnectButton()->isEnabled());
    // Neither the selection nor the current cell changes.
    QVERIFY(!View(details)->selectionModel()->hasSelection());
    QCOMPARE(Current(), current);
    Press(Qt::Key_Space);
    QVERIFY(!IsTicked());
    QVERIFY(!m_fixture->ConnectButton()->isEnabled());
}

void TestDialogKeyboard::heldSpaceTogglesOnce()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    ShowActive();
    Enter(false, "a", ConnectionsModel::ColumnName);
    QSignalSpy changed(m_fixture->model, &QAbstractItemModel::dataChanged);
    const auto send = [this](QEvent::Type type, bool isRepeat) {
        QKeyEvent event(type, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "), isRepeat);
        QCoreApplication::sendEvent(m_fixture->BasicView(), &event);
    };
    send(QEvent::KeyPress, false);
    for (int repeat = 0; repeat < 5; ++repeat) {
        send(QEvent::KeyRelease, true);
        send(QEvent::KeyPress, true);
    }
    send(QEvent::KeyRelease, false);
    QVERIFY(IsTicked());
    QCOMPARE(changed.count(), 1);
}

void TestDialogKeyboard::spaceTicksFilteredEntry()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a"), Entry("b 1"), Entry("b 2")});
    ShowActive();
    m_fixture->Find<QLineEdit>("m_pFilterPatternLineEdit")->setText(QStringLiteral("b"));
    Enter(false, "b 1", ConnectionsModel::ColumnSelected);
    Press(Qt::Key_Down);
    Press(Qt::Key_Space);
    QVERIFY(!IsTicked(0));
    QVERIFY(!IsTicked(1));
    QVERIFY(IsTicked(2));
}

void TestDialogKeyboard::spaceDoesNotTickEntryInUse()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a", Connection::KiteEcho, true)});
    ShowActive();
    m_fixture->model->SetConnectionStatus(m_fixture->model->GetConnection(0), Connection::InUse);
    for (const bool details : {false, true}) {
        Enter(details, "a", ConnectionsModel::ColumnSelected);
        Press(Qt::Key_Space);
        QVERIFY(IsTicked());
    }
}

void TestDialogKeyboard::spaceWithoutCurrentEntryDoesNothing()
{
    m_fixture->Build();
    ShowActive();
    m_fixture->BasicView()->setFocus();
    Press(Qt::Key_Space);
    Press(Qt::Key_F2);
    m_fixture->Add({Entry("a")});
    m_fixture->BasicView()->setCurrentIndex(QModelIndex());
    QVERIFY(m_fixture->BasicView()->hasFocus());
    Press(Qt::Key_Space);
    Press(Qt::Key_F2);
    QVERIFY(!IsTicked());
    QVERIFY(!m_fixture->dialog->findChild<QSpinBox*>());
}

void TestDialogKeyboard::spaceWithModifierSelects_data()
{
    QTest::addColumn<bool>("details");
    QTest::addColumn<Qt::KeyboardModifier>("modifier");
    for (const bool details : {false, true}) {
        QTest::addRow("Ctrl, %s", details ? "details" : "basic") << details << Qt::ControlModifier;
        QTest::addRow("Shift, %s", details ? "details" : "basic") << details << Qt::ShiftModifier;
    }
}

void TestDialogKeyboard::spaceWithModifierSelects()
{
    QFETCH(bool, details);
    QFETCH(Qt::KeyboardModifier, modifier);
    m_fixture->Build();
    m_fixture->Add({Entry("a"), Entry("b")});
    ShowActive();
    Enter(details, "b", details ? ConnectionsModel::ColumnLinkSpeed : ConnectionsModel::ColumnName);
    Press(Qt::Key_Space, modifier);
    QVERIFY(View(details)->selectionModel()->isSelected(Current()));
    QVERIFY(!IsTicked(0));
    QVERIFY(!IsTicked(1));
    if (modifier == Qt::ControlModifier) {
        Press(Qt::Key_Space, modifier);
        QVERIFY(!View(details)->selectionModel()->hasSelection());
    }
}

void TestDialogKeyboard::typedSpaceTicksNothing()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    ShowActive();
    // An editor of each kind: a line edit, a combo box, whose list opens, and a spin box.
    for (const int column :
         {ConnectionsModel::ColumnName, ConnectionsModel::ColumnDeviceType, ConnectionsModel::ColumnTimeout}) {
        const bool details = column == ConnectionsModel::ColumnTimeout;
        Enter(details, "a", column);
        Press(Qt::Key_F2);
        QWidget* const editor = View(details)->indexWidget(Current());
        QVERIFY(editor);
        QVERIFY(editor->hasFocus());
        Press(Qt::Key_Space);
        if (auto* const comboBox = qobject_cast<QComboBox*>(editor))
            comboBox->hidePopup();
        QVERIFY(!IsTicked());
        QTest::keyClick(editor, Qt::Key_Escape);
        QTRY_VERIFY(!View(details)->indexWidget(Current()));
    }

    m_fixture->Action("m_pFilterAction")->trigger();
    auto* const pattern = m_fixture->Find<QLineEdit>("m_pFilterPatternLineEdit");
    QVERIFY(pattern->hasFocus());
    Press(Qt::Key_Space);
    QCOMPARE(pattern->text(), QStringLiteral(" "));
    Press(Qt::Key_F2);
    QVERIFY(!IsTicked());
    QVERIFY(pattern->hasFocus());
}

void TestDialogKeyboard::f2EditsCurrentCell_data()
{
    QTest::addColumn<bool>("details");
    QTest::addColumn<int>("current");
    QTest::addColumn<int>("edited");
    const auto row = [](const char* name, bool details, int current, int edited) {
        QTest::newRow(name) << details << current << edited;
    };
    row("name", false, ConnectionsModel::ColumnName, ConnectionsModel::ColumnName);
    row("device type", false, ConnectionsModel::ColumnDeviceType, ConnectionsModel::ColumnDeviceType);
    row("timeout", true, ConnectionsModel::ColumnTimeout, ConnectionsModel::ColumnTimeout);
    row("subsystem", true, ConnectionsModel::ColumnSubsystem, ConnectionsModel::ColumnSubsystem);
    row("tick", false, ConnectionsModel::ColumnSelected, ConnectionsModel::ColumnName);
    row("tick, in the details", true, ConnectionsModel::ColumnSelected, ConnectionsModel::ColumnConnectionType);
    row("hidden in the details", true, ConnectionsModel::ColumnStatus, ConnectionsModel::ColumnConnectionType);
    row("hidden in the basic view", false, ConnectionsModel::ColumnSubsystem, ConnectionsModel::ColumnName);
}

void TestDialogKeyboard::f2EditsCurrentCell()
{
    QFETCH(bool, details);
    QFETCH(int, current);
    QFETCH(int, edited);
    m_fixture->Build();
    m_fixture->Add({Entry("a"), Entry("b")});
    ShowActive();
    Enter(details, "b", current);
    Press(Qt::Key_F2);
    const QModelIndex cell = m_fixture->ProxyIndex("b", edited);
    QVERIFY(View(details)->indexWidget(cell));
    QVERIFY(View(details)->indexWidget(cell)->hasFocus());
    QVERIFY(!View(!details)->indexWidget(cell));
    QVERIFY(!View(details)->selectionModel()->hasSelection());
    // Escape closes the editor only, and the view has the focus again.
    Press(Qt::Key_Escape);
    QTRY_VERIFY(!View(details)->indexWidget(cell));
    QVERIFY(View(details)->hasFocus());
    QVERIFY(m_fixture->dialog->isVisible());
}

void TestDialogKeyboard::f2ScrollsToCell()
{
    m_fixture->Build();
    for (int i = 0; i < 100; ++i)
        m_fixture->Add({Entry(QString::number(1000 + i))});
    ShowActive();
    Enter(false, "1099", ConnectionsModel::ColumnName);
    m_fixture->BasicView()->scrollToTop();
    Press(Qt::Key_F2);
    const QWidget* const editor = m_fixture->BasicView()->indexWidget(Current());
    QVERIFY(editor);
    QTRY_VERIFY(m_fixture->BasicView()->viewport()->rect().contains(editor->geometry().center()));
}

void TestDialogKeyboard::f2DoesNotEditLockedCell_data()
{
    QTest::addColumn<bool>("details");
    QTest::addColumn<int>("column");
    QTest::addColumn<bool>("inUse");
    QTest::newRow("status") << false << int{ConnectionsModel::ColumnStatus} << false;
    QTest::newRow("address that is not used") << true << int{ConnectionsModel::ColumnDriverAddress} << false;
    QTest::newRow("name in use") << false << int{ConnectionsModel::ColumnName} << true;
    QTest::newRow("tick in use") << false << int{ConnectionsModel::ColumnSelected} << true;
    QTest::newRow("subsystem in use") << true << int{ConnectionsModel::ColumnSubsystem} << true;
}

void TestDialogKeyboard::f2DoesNotEditLockedCell()
{
    QFETCH(bool, details);
    QFETCH(int, column);
    QFETCH(bool, inUse);
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    ShowActive();
    Enter(details, "a", column);
    if (inUse)
        m_fixture->model->SetConnectionStatus(m_fixture->model->GetConnection(0), Connection::InUse);
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    Press(Qt::Key_F2);
    for (int cell = 0; cell < ConnectionsModel::kColumnCount; ++cell)
        QVERIFY(!View(details)->indexWidget(m_fixture->ProxyIndex("a", cell)));
    QVERIFY(View(details)->hasFocus());
    QCOMPARE(Current().column(), column);
}

void TestDialogKeyboard::f2InEditorOpensNoOther()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    ShowActive();
    Enter(false, "a", ConnectionsModel::ColumnDeviceType);
    Press(Qt::Key_F2);
    auto* const editor = qobject_cast<QComboBox*>(m_fixture->BasicView()->indexWidget(Current()));
    QVERIFY(editor);
    editor->setCurrentIndex(Connection::KiteBravo);
    // A combo box does not use the key and passes it on to the view.
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    Press(Qt::Key_F2);
    QCOMPARE(m_fixture->BasicView()->indexWidget(Current()), editor);
    Press(Qt::Key_Return);
    QTRY_COMPARE(m_fixture->model->GetConnection(0).DeviceType, int{Connection::KiteBravo});
    QVERIFY(m_fixture->dialog->isVisible());
}

void TestDialogKeyboard::tabInEditorEditsNextRow()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a"), Entry("b")});
    ShowActive();
    // Also from the tick.
    Enter(false, "a", ConnectionsModel::ColumnSelected);
    Press(Qt::Key_F2);
    Type(QStringLiteral("A"));
    Press(Qt::Key_Tab);
    QTRY_COMPARE(m_fixture->model->GetConnection(0).ConnectionName, QStringLiteral("A"));
    QTRY_VERIFY(m_fixture->BasicView()->indexWidget(m_fixture->ProxyIndex("b", ConnectionsModel::ColumnName)));
}

void TestDialogKeyboard::arrowsMoveCurrentCell()
{
    m_fixture->Build();
    Connection entry = Entry("b");
    entry.ConnectionType = Connection::RemoteConnection; // no disabled cell
    m_fixture->Add({Entry("a"), entry});
    ShowActive();
    Enter(false, "b", ConnectionsModel::ColumnSelected);
    for (int column = 1; column < ConnectionsModel::kColumnCount; ++column) {
        Press(Qt::Key_Right);
        QCOMPARE(Current(), m_fixture->ProxyIndex("b", column));
        QVERIFY(View(column > ConnectionsModel::ColumnDeviceType)->hasFocus());
    }
    Press(Qt::Key_Right);
    QCOMPARE(Current().column(), int{ConnectionsModel::ColumnSubsystem});
    for (int column = ConnectionsModel::ColumnTimeout; column >= 0; --column) {
        Press(Qt::Key_Left);
        QCOMPARE(Current(), m_fixture->ProxyIndex("b", column));
        QVERIFY(View(column > ConnectionsModel::ColumnDeviceType)->hasFocus());
    }
    Press(Qt::Key_Left);
    QCOMPARE(Current().column(), int{ConnectionsModel::ColumnSelected});
    QVERIFY(!View(false)->selectionModel()->hasSelection());
}

void TestDialogKeyboard::arrowsSkipDisabledAndHidden()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    ShowActive();
    Enter(true, "a", ConnectionsModel::ColumnDeviceAddress);
    // The driver address of a direct connection is disabled.
    Press(Qt::Key_Right);
    QCOMPARE(Current().column(), int{ConnectionsModel::ColumnLinkSpeed});
    Press(Qt::Key_Left);
    QCOMPARE(Current().column(), int{ConnectionsModel::ColumnDeviceAddress});

    // The header's order counts.
    m_fixture->BasicView()->header()->moveSection(ConnectionsModel::ColumnDeviceType, 1);
    Enter(false, "a", ConnectionsModel::ColumnSelected);
    Press(Qt::Key_Right);
    QCOMPARE(Current().column(), int{ConnectionsModel::ColumnDeviceType});

    m_fixture->Action("m_pDetailsAction")->trigger();
    Enter(false, "a", ConnectionsModel::ColumnStatus);
    Press(Qt::Key_Right);
    QCOMPARE(Current().column(), int{ConnectionsModel::ColumnStatus});
    QVERIFY(m_fixture->BasicView()->hasFocus());
}

void TestDialogKeyboard::arrowsReachColumnsMovedToTheEdges()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    ShowActive();
    QHeaderView* const basic = m_fixture->BasicView()->header();
    basic->moveSection(basic->visualIndex(ConnectionsModel::ColumnName), basic->count() - 1);
    QHeaderView* const details = m_fixture->DetailsView()->header();
    details->moveSection(details->visualIndex(ConnectionsModel::ColumnSubsystem), 0);
    Enter(false, "a", ConnectionsModel::ColumnName);
    Press(Qt::Key_Right);
    QCOMPARE(Current().column(), int{ConnectionsModel::ColumnSubsystem});
    QVERIFY(m_fixture->DetailsView()->hasFocus());
    Press(Qt::Key_Left);
    QCOMPARE(Current().column(), int{ConnectionsModel::ColumnName});
    QVERIFY(m_fixture->BasicView()->hasFocus());
}

void TestDialogKeyboard::enterPressesConnect_data()
{
    QTest::addColumn<bool>("details");
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Return, basic") << false << Qt::Key_Return;
    QTest::newRow("Enter, basic") << false << Qt::Key_Enter;
    QTest::newRow("Return, details") << true << Qt::Key_Return;
}

void TestDialogKeyboard::enterPressesConnect()
{
    QFETCH(bool, details);
    QFETCH(Qt::Key, key);
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    ShowActive();
    // While a button has the focus it is the default one.
    m_fixture->Find<QPushButton>("m_pCloseButton")->setFocus();
    Enter(details, "a", details ? ConnectionsModel::ColumnLinkSpeed : ConnectionsModel::ColumnName);
    QSignalSpy clicked(m_fixture->ConnectButton(), &QPushButton::clicked);
    Press(key);
    QCOMPARE(clicked.count(), 1);
    QVERIFY(!m_fixture->dialog->isVisible());
}

void TestDialogKeyboard::wholeJobByKeyboard()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a"), Entry("b")});
    ShowActive();
    MessageBoxes boxes; // there is no application to start
    m_fixture->BasicView()->setFocus(Qt::TabFocusReason);

    // Edits the current cell with these keys.
    const auto edit = [this](const std::function<void()>& keys) {
        Press(Qt::Key_F2);
        keys();
        Press(Qt::Key_Return);
        QTRY_VERIFY(m_fixture->BasicView()->hasFocus() || m_fixture->DetailsView()->hasFocus());
        QVERIFY(m_fixture->dialog->isVisible());
    };
    // The second entry: tick, name, device type, connection type and driver address.
    Press(Qt::Key_Down);
    Press(Qt::Key_Space);
    edit([this] { Type(QStringLiteral("mast 7")); });
    Press(Qt::Key_Right);
    Press(Qt::Key_Right);
    edit([this] { Press(Qt::Key_Home); });
    Press(Qt::Key_Right);
    edit([this] { Press(Qt::Key_Down); });
    Press(Qt::Key_Right);
    Press(Qt::Key_Right);
    edit([this] { Type(QStringLiteral("10.0.0.7")); });

    const Connection edited = m_fixture->model->GetConnection(1);
    QCOMPARE(edited.ConnectionName, QStringLiteral("mast 7"));
    QCOMPARE(edited.DeviceType, 0);
    QCOMPARE(edited.ConnectionType, int{Connection::RemoteConnection});
    QCOMPARE(edited.DriverAddress, QStringLiteral("10.0.0.7"));
    QVERIFY(edited.Selected);
    QVERIFY(m_fixture->model->GetConnection(0) == Entry("a"));
    QVERIFY(!IsTicked(0));
    Press(Qt::Key_Return);
    QVERIFY(!m_fixture->dialog->isVisible());
    QCOMPARE(boxes.Count(), 1);
    QVERIFY(boxes.Boxes().constFirst().text.contains(QStringLiteral("mast 7")));
}

VEXEL_TEST(QTEST_MAIN, TestDialogKeyboard)
#include "tst_dialogkeyboard.moc"
