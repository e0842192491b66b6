// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/desktop/desktop.h"
#include "tests/support/dialogfixture.h"
#include "tests/support/launcherfixture.h"
#include "tests/support/testmain.h"

#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QUrl>
#include <QWindow>

namespace {

/// A window of another program, as far as the dialog can tell: a drag with `urls` starts where it is pressed.
class DragSource : public QWidget
{
public:
    QList<QUrl> urls;
    Qt::DropAction result = Qt::IgnoreAction;
    bool done = false;

protected:
    void mouseMoveEvent(QMouseEvent* event) override
    {
        if (!(event->buttons() & Qt::LeftButton) || done)
            return;
        done = true;
        auto* const dragged = new QMimeData;
        dragged->setUrls(urls);
        dragged->setText(urls.first().toLocalFile());
        auto* const drag = new QDrag(this);
        drag->setMimeData(dragged);
        result = drag->exec(Qt::CopyAction);
    }
};

} // namespace

/// The dialog on a desktop: real clicks, keys and drags.
class TestDesktopDialog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void clickTicks();
    void doubleClickOnTheTickIsTwoClicks();
    void doubleClickBegunElsewhereIsOneClick();
    void doubleClickEdits();
    void doubleClickEditsInTheDetails();
    void altCConnects();
    void enterConnects();
    void contextMenuOpensOnRightClick();
    void fileDroppedOnTheTableIsImported();
    void comesBackWhereItWas_data();
    void comesBackWhereItWas();
    void storedSizeOfALargerScreenIsFitted();
    void calledMinimizedDialogIsShown_data();
    void calledMinimizedDialogIsShown();

private:
    QPoint OnScreen(QTreeView* view, const QString& name, int column)
    {
        const QModelIndex index = m_fixture->ProxyIndex(name, column);
        return view->viewport()->mapToGlobal(view->visualRect(index).center());
    }

    std::unique_ptr<TestChild> m_child;
    std::unique_ptr<DialogFixture> m_fixture;
};

void TestDesktopDialog::init()
{
    m_child = std::make_unique<TestChild>();
    m_child->Behave("stay");
    m_fixture = std::make_unique<DialogFixture>();
    m_fixture->Install({QStringLiteral("Kite1")}, {Connection::KiteEcho}, TestChild::Program());
    m_fixture->Build();
    m_fixture->Add({Entry(QStringLiteral("north")), Entry(QStringLiteral("south"))});
    m_fixture->dialog->resize(1000, 300);
    m_fixture->Show();
    m_fixture->dialog->move(100, 300);
    m_fixture->dialog->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_fixture->dialog));
    QTRY_VERIFY(m_fixture->dialog->pos().y() >= 250);
}

void TestDesktopDialog::cleanup()
{
    m_fixture.reset();
    m_child.reset();
}

void TestDesktopDialog::clickTicks()
{
    Desktop::Click(OnScreen(m_fixture->BasicView(), QStringLiteral("south"), ConnectionsModel::ColumnSelected));
    QTRY_VERIFY(m_fixture->model->GetConnection(1).Selected);
    QVERIFY(!m_fixture->model->GetConnection(0).Selected);
}

void TestDesktopDialog::doubleClickOnTheTickIsTwoClicks()
{
    const QSignalSpy changed(m_fixture->model, &QAbstractItemModel::dataChanged);
    Desktop::Click(OnScreen(m_fixture->BasicView(), QStringLiteral("south"), ConnectionsModel::ColumnSelected), 2);
    QTRY_COMPARE(changed.count(), 2);
    QVERIFY(!m_fixture->model->GetConnection(1).Selected);
}

void TestDesktopDialog::doubleClickBegunElsewhereIsOneClick()
{
    const QSignalSpy changed(m_fixture->model, &QAbstractItemModel::dataChanged);
    QWidget* const viewport = m_fixture->BasicView()->viewport();
    const QPoint place = OnScreen(m_fixture->BasicView(), QStringLiteral("south"), ConnectionsModel::ColumnSelected);
    // As after a first click at this place on a window that has gone.
    for (const auto type : {QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}) {
        const bool isDown = type == QEvent::MouseButtonDblClick;
        QMouseEvent event(type, viewport->mapFromGlobal(place), place, Qt::LeftButton,
                          isDown ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &event);
    }
    QCOMPARE(changed.count(), 1);
    QVERIFY(m_fixture->model->GetConnection(1).Selected);
}

void TestDesktopDialog::doubleClickEdits()
{
    Desktop::Click(OnScreen(m_fixture->BasicView(), QStringLiteral("north"), ConnectionsModel::ColumnName), 2);
    QTRY_VERIFY(m_fixture->BasicView()->viewport()->findChild<QLineEdit*>());
    Desktop::Press(QStringLiteral("ctrl+a"));
    Desktop::Type(QStringLiteral("typed"));
    Desktop::Press(QStringLiteral("Return"));
    QTRY_COMPARE(m_fixture->model->GetConnection(0).ConnectionName, QStringLiteral("typed"));
    QVERIFY(m_fixture->dialog->isVisible());
}

void TestDesktopDialog::doubleClickEditsInTheDetails()
{
    m_fixture->Action("m_pDetailsAction")->trigger();
    // Wide enough that the click does not scroll the cell away under the second one.
    m_fixture->dialog->resize(1400, 300);
    QTRY_VERIFY(m_fixture->DetailsView()->width() > 600);
    QTRY_VERIFY(m_fixture->DetailsView()->horizontalScrollBar()->maximum() == 0);
    Desktop::Click(OnScreen(m_fixture->DetailsView(), QStringLiteral("north"), ConnectionsModel::ColumnDeviceAddress),
                   2);
    QTRY_VERIFY(m_fixture->DetailsView()->viewport()->findChild<QLineEdit*>());
    Desktop::Type(QStringLiteral("10.1.2.3"));
    Desktop::Click(OnScreen(m_fixture->BasicView(), QStringLiteral("south"), ConnectionsModel::ColumnName));
    QTRY_COMPARE(m_fixture->model->GetConnection(0).DeviceAddress, QStringLiteral("10.1.2.3"));
}

void TestDesktopDialog::altCConnects()
{
    m_fixture->model->setData(m_fixture->model->index(0, 0), true);
    Desktop::Press(QStringLiteral("alt+c"));
    QTRY_VERIFY(!m_fixture->dialog->isVisible());
    QTRY_COMPARE(m_child->Count(), 1);
    QCOMPARE(m_fixture->model->GetConnection(0).ConnectionStatus, int{Connection::InUse});
}

void TestDesktopDialog::enterConnects()
{
    m_fixture->model->setData(m_fixture->model->index(1, 0), true);
    Desktop::Press(QStringLiteral("Return"));
    QTRY_VERIFY(!m_fixture->dialog->isVisible());
    QTRY_COMPARE(m_child->Count(), 1);
    QCOMPARE(m_fixture->model->GetConnection(1).ConnectionStatus, int{Connection::InUse});
}

void TestDesktopDialog::contextMenuOpensOnRightClick()
{
    Desktop::MoveTo(OnScreen(m_fixture->BasicView(), QStringLiteral("north"), ConnectionsModel::ColumnName));
    Desktop::Do({QStringLiteral("click"), QStringLiteral("3")});
    QTRY_VERIFY(QApplication::activePopupWidget());
    Desktop::Press(QStringLiteral("Down"));
    Desktop::Press(QStringLiteral("Return"));
    QTRY_VERIFY(m_fixture->DetailsView()->isVisible());
}

void TestDesktopDialog::fileDroppedOnTheTableIsImported()
{
    ConnectionsModel other(nullptr, QString());
    other.AddConnection(Entry(QStringLiteral("dropped")));
    DragSource source;
    source.urls = {QUrl::fromLocalFile(m_fixture->WriteFile(QStringLiteral("list.xml"), other.ToByteArray()))};
    source.setGeometry(1200, 100, 200, 200);
    source.show();
    QVERIFY(QTest::qWaitForWindowExposed(&source));
    QTRY_VERIFY(source.pos().x() >= 1100);

    Desktop::MoveTo(source.mapToGlobal(QPoint(100, 100)));
    Desktop::Do({QStringLiteral("mousedown"), QStringLiteral("1")});
    // The drag runs a nested event loop, so another process moves the mouse on.
    const QPoint target = OnScreen(m_fixture->BasicView(), QStringLiteral("south"), ConnectionsModel::ColumnName);
    QProcess rest;
    rest.start(QStringLiteral("xdotool"),
               {QStringLiteral("mousemove_relative"), QStringLiteral("5"), QStringLiteral("5"), QStringLiteral("sleep"),
                QStringLiteral("0.3"), QStringLiteral("mousemove"), QString::number(target.x() + 20),
                QString::number(target.y()), QStringLiteral("sleep"), QStringLiteral("0.3"),
                QStringLiteral("mousemove"), QString::number(target.x()), QString::number(target.y()),
                QStringLiteral("sleep"), QStringLiteral("0.3"), QStringLiteral("mouseup"), QStringLiteral("1")});
    QTRY_VERIFY_WITH_TIMEOUT(source.done, 20000);
    QTRY_COMPARE_WITH_TIMEOUT(m_fixture->Names(), QStringList{QStringLiteral("dropped")}, 20000);
    QCOMPARE(source.result, Qt::CopyAction);
    QTRY_COMPARE(rest.state(), QProcess::NotRunning);
}

void TestDesktopDialog::comesBackWhereItWas_data()
{
    QTest::addColumn<bool>("isMainWidget");
    QTest::newRow("the main widget") << true;
    QTest::newRow("another window is the main widget") << false;
}

void TestDesktopDialog::comesBackWhereItWas()
{
    QFETCH(bool, isMainWidget);
    QWidget other;
    m_fixture->TearDown();
    if (!isMainWidget)
        GuiBase::Instance().SetMainWidget(&other);
    m_fixture->Build();
    m_fixture->Show();
    QDialog* const dialog = m_fixture->dialog;
    QCOMPARE(GuiBase::Instance().GetMainWidget() == dialog, isMainWidget);
    // As the user moves it.
    Desktop::Do(
        {QStringLiteral("windowmove"), QString::number(dialog->winId()), QStringLiteral("311"), QStringLiteral("477")});
    QTRY_COMPARE(dialog->geometry().topLeft(), QPoint(311, 477));
    for (int run = 0; run < 3; ++run) {
        m_fixture->ConnectButton()->click();
        QVERIFY(!dialog->isVisible());
        m_fixture->Show();
        // After the events that the window manager sends.
        dialog->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(dialog));
        QTRY_COMPARE(dialog->geometry().topLeft(), QPoint(311, 477));
    }
}

void TestDesktopDialog::storedSizeOfALargerScreenIsFitted()
{
    QDialog* const dialog = m_fixture->dialog;
    const QRect screen = dialog->screen()->availableGeometry();
    dialog->hide();
    dialog->setGeometry(screen.translated(30, 40));
    GuiBase::Instance().StoreWidgetSize(dialog);

    m_fixture->TearDown();
    m_fixture->Build();
    m_fixture->Show();
    // With its frame, which is known only when the window manager has made it.
    QTRY_VERIFY(m_fixture->dialog->frameGeometry().height() > m_fixture->dialog->height());
    QTRY_VERIFY(screen.contains(m_fixture->dialog->frameGeometry()));
    QVERIFY(m_fixture->dialog->height() > screen.height() / 2);
}

void TestDesktopDialog::calledMinimizedDialogIsShown_data()
{
    QTest::addColumn<bool>("byUser");
    QTest::addColumn<bool>("isMaximized");
    QTest::newRow("by the program") << false << false;
    QTest::newRow("by the user") << true << false;
    QTest::newRow("by the user, maximised") << true << true;
}

void TestDesktopDialog::calledMinimizedDialogIsShown()
{
    QFETCH(bool, byUser);
    QFETCH(bool, isMaximized);
    QDialog* const dialog = m_fixture->dialog;
    QWidget other; // gets the keyboard
    other.show();
    QVERIFY(QTest::qWaitForWindowExposed(&other));
    if (isMaximized)
        dialog->showMaximized();
    QTRY_COMPARE(dialog->isMaximized(), isMaximized);
    for (int call = 0; call < 2; ++call) {
        if (byUser)
            Desktop::Do({QStringLiteral("windowminimize"), QString::number(dialog->winId())});
        else
            dialog->showMinimized();
        QTRY_VERIFY(dialog->isMinimized());
        QTRY_VERIFY(!dialog->windowHandle()->isExposed());
        other.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&other));

        // As the starter calls it.
        dialog->show();
        dialog->activateWindow();
        QTRY_VERIFY(dialog->windowHandle()->isExposed());
        QTRY_VERIFY(dialog->isActiveWindow());
        // The window manager tells the states one by one.
        QTRY_VERIFY(!dialog->isMinimized());
        QTRY_COMPARE(dialog->isMaximized(), isMaximized);
    }
}

VEXEL_TEST(QTEST_MAIN, TestDesktopDialog)
#include "tst_desktopdialog.moc"
