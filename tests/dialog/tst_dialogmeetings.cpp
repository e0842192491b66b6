// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/dialogfixture.h"
#include "tests/support/markingtranslator.h"
#include "tests/support/system/filesizelimit.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"

#include <QClipboard>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSpinBox>
#include <QUrl>

/// Views, filter, files and editors in combination.
class TestDialogMeetings : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<DialogFixture> m_fixture;

private slots:
    void init() { m_fixture = std::make_unique<DialogFixture>(); }
    void cleanup() { m_fixture.reset(); }

#ifdef Q_OS_UNIX
    void failedExportKeepsOldFile()
    {
        m_fixture->Build();
        m_fixture->Add({Entry(QString(100000, QLatin1Char('n')))});
        const QByteArray old(5000, 'o');
        const QString path = m_fixture->WriteFile(QStringLiteral("list.xml"), old);
        MessageBoxes boxes;
        TraceRecorder traces;
        {
            const FileSizeLimit full(4096);
            m_fixture->dialog->Export(path);
        }
        QCOMPARE(Files::Read(path), old);
        QCOMPARE(traces.Reports().size(), 1);
        QCOMPARE(traces.Reports().first().line, quint16{421});
        QCOMPARE(boxes.Count(), 0);
        QCOMPARE(QDir(m_fixture->DataPath(QString())).entryList(QDir::Files | QDir::Hidden),
                 QStringList{QStringLiteral("list.xml")});
    }
#endif

    void importedEntriesAreFilteredByNewStatus()
    {
        m_fixture->Build();
        ConnectionsModel other(nullptr, QString());
        Connection used = Entry("used");
        used.ConnectionStatus = Connection::InUse;
        other.AddConnection(used);
        other.AddConnection(Entry("free"));
        m_fixture->Find<QComboBox>("m_pFilterColumnComboBox")->setCurrentIndex(ConnectionsModel::ColumnStatus);
        auto* const pattern = m_fixture->Find<QLineEdit>("m_pFilterPatternLineEdit");
        const QString path = m_fixture->WriteFile(QStringLiteral("list.xml"), other.ToByteArray());
        pattern->setText(Connection::StatusName(Connection::Free));
        QVERIFY(m_fixture->dialog->Import(path));
        QCOMPARE(m_fixture->ShownNames(), (QStringList{QStringLiteral("free"), QStringLiteral("used")}));
        pattern->setText(Connection::StatusName(Connection::InUse));
        QVERIFY(m_fixture->dialog->Import(path));
        QCOMPARE(m_fixture->ShownNames(), QStringList());
    }

    void viewsScrollToLastRowTogether_data()
    {
        QTest::addColumn<int>("width");
        for (const int width : {420, 600, 900, 1200, 1600})
            QTest::addRow("%d", width) << width;
    }

    void viewsScrollToLastRowTogether()
    {
        QFETCH(int, width);
        m_fixture->Build();
        for (int i = 0; i < 60; ++i)
            m_fixture->Add({Entry(QString::number(1000 + i))});
        m_fixture->Action("m_pDetailsAction")->trigger();
        m_fixture->dialog->resize(width, 300);
        m_fixture->Show();
        QTreeView* const basic = m_fixture->BasicView();
        QTreeView* const details = m_fixture->DetailsView();
        QTRY_COMPARE(details->viewport()->height(), basic->viewport()->height());
        QTRY_COMPARE(details->verticalScrollBar()->maximum(), basic->verticalScrollBar()->maximum());
        for (QTreeView* view : {basic, details}) {
            basic->verticalScrollBar()->setValue(0);
            view->verticalScrollBar()->setValue(view->verticalScrollBar()->maximum());
            QCOMPARE(details->verticalScrollBar()->value(), basic->verticalScrollBar()->value());
            const QRect last = details->visualRect(m_fixture->Proxy()->index(59, ConnectionsModel::ColumnLinkSpeed));
            QVERIFY(last.bottom() < details->viewport()->height());
            QCOMPARE(basic->visualRect(m_fixture->Proxy()->index(59, ConnectionsModel::ColumnName)).top(), last.top());
        }
    }

    void doubleClickOnTickTogglesTwice()
    {
        m_fixture->Build();
        m_fixture->Add({Entry("a")});
        m_fixture->Show();
        QTreeView* const view = m_fixture->BasicView();
        const QModelIndex tick = m_fixture->ProxyIndex("a", ConnectionsModel::ColumnSelected);
        QSignalSpy changed(m_fixture->model, &QAbstractItemModel::dataChanged);
        DialogFixture::DoubleClick(view, tick);
        QCOMPARE(changed.count(), 2);
        QVERIFY(!view->isPersistentEditorOpen(tick));
        QVERIFY(!view->indexWidget(tick));
        QVERIFY(!m_fixture->model->GetConnection(0).Selected);
        DialogFixture::Click(view, tick);
        QVERIFY(m_fixture->model->GetConnection(0).Selected);
    }

    void rightDoubleClickTicksNothing()
    {
        m_fixture->Build();
        m_fixture->Add({Entry("a")});
        m_fixture->Show();
        QWidget* const viewport = m_fixture->BasicView()->viewport();
        const QModelIndex tick = m_fixture->ProxyIndex("a", ConnectionsModel::ColumnSelected);
        const QPoint at = m_fixture->BasicView()->visualRect(tick).center();
        QSignalSpy changed(m_fixture->model, &QAbstractItemModel::dataChanged);
        QTest::mouseClick(viewport, Qt::RightButton, Qt::NoModifier, at);
        QTest::mouseDClick(viewport, Qt::RightButton, Qt::NoModifier, at);
        QTest::mouseRelease(viewport, Qt::RightButton, Qt::NoModifier, at);
        QCOMPARE(changed.count(), 0);
        QVERIFY(!m_fixture->model->GetConnection(0).Selected);
    }

    void destructorCommitsOpenEditor()
    {
        m_fixture->Build();
        m_fixture->Add({Entry("a")});
        m_fixture->Show();
        m_fixture->dialog->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_fixture->dialog));
        DialogFixture::DoubleClick(m_fixture->BasicView(), m_fixture->ProxyIndex("a", 1));
        auto* const editor = m_fixture->BasicView()->viewport()->findChild<QLineEdit*>();
        QVERIFY(editor);
        editor->setText(QStringLiteral("typed"));
        delete std::exchange(m_fixture->dialog, nullptr);
        QCOMPARE(m_fixture->model->GetConnection(0).ConnectionName, QStringLiteral("typed"));
    }

    void dropDuringMessageBoxIsIgnored()
    {
        m_fixture->Build();
        m_fixture->Add({Entry("a", Connection::KiteEcho, true)});
        m_fixture->Show();
        ConnectionsModel other(nullptr, QString());
        other.AddConnection(Entry("dropped"));
        QMimeData good;
        good.setUrls({QUrl::fromLocalFile(m_fixture->WriteFile(QStringLiteral("list.xml"), other.ToByteArray()))});
        for (const auto& opensABox : {std::function<void()>([this] { m_fixture->Action("m_pEditAction")->trigger(); }),
                                      std::function<void()>([this] { m_fixture->dialog->Import(QString()); })}) {
            bool dropped = false;
            QTimer timer;
            connect(&timer, &QTimer::timeout, this, [&] {
                auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                if (!box || dropped)
                    return;
                dropped = true;
                MessageBoxes further; // answers the box that a wrong import would open
                DialogFixture::Drop(m_fixture->dialog, good);
                box->button(QMessageBox::Ok)->click();
            });
            timer.start(1);
            opensABox();
            QVERIFY(dropped);
            QCOMPARE(m_fixture->Names(), QStringList{QStringLiteral("a")});
            QVERIFY(m_fixture->model->GetConnection(0).Selected);
        }
    }

    void restoredFilterShowsActiveLabel()
    {
        ConfigNodes::Filter()->SetString(QStringLiteral("FilterPattern"), QStringLiteral("x"), 0);
        m_fixture->Build();
        m_fixture->Show();
        QVERIFY(m_fixture->Find<QLabel>("m_pFilterActiveLabel")->isVisible());
        QVERIFY(!m_fixture->Find<QFrame>("m_pFilterFrame")->isVisible());
    }

    void editorsAreCenteredOnCell_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<int>("row");
        for (const int column : {ConnectionsModel::ColumnName, ConnectionsModel::ColumnDeviceType,
                                 ConnectionsModel::ColumnConnectionType, ConnectionsModel::ColumnDeviceAddress,
                                 ConnectionsModel::ColumnTimeout, ConnectionsModel::ColumnSubsystem})
            for (const int row : {0, 39})
                QTest::addRow("column %d, row %d", column, row) << column << row;
    }

    void editorsAreCenteredOnCell()
    {
        QFETCH(int, column);
        QFETCH(int, row);
        m_fixture->Build();
        for (int i = 0; i < 40; ++i)
            m_fixture->Add({Entry(QString::number(1000 + i))});
        m_fixture->Action("m_pDetailsAction")->trigger();
        m_fixture->dialog->resize(700, 300); // too narrow for the last columns of the details
        m_fixture->Show();
        QTreeView* const view =
            column <= ConnectionsModel::ColumnDeviceType ? m_fixture->BasicView() : m_fixture->DetailsView();
        const QModelIndex cell = m_fixture->Proxy()->index(row, column);
        view->setFocus();
        DialogFixture::DoubleClick(view, cell);
        const QWidget* const editor = view->indexWidget(cell);
        QVERIFY(editor);
        const auto expected = [&] {
            const QRect rect = view->visualRect(cell);
            QRect geometry(QPoint(), rect.size().expandedTo(editor->sizeHint()));
            geometry.moveCenter(rect.center());
            return geometry;
        };
        QCOMPARE(editor->geometry(), expected());
        // The editor follows its cell.
        view->horizontalScrollBar()->setValue(view->horizontalScrollBar()->value() / 2);
        view->verticalScrollBar()->setValue(view->verticalScrollBar()->value() - 3);
        QTRY_COMPARE(editor->geometry(), expected());
    }

    void timeoutEditorAcceptsNumbersOnly_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("seconds");
        QTest::newRow("number") << QStringLiteral("45") << 45;
        QTest::newRow("a megabyte of digits") << QString(1024 * 1024, QLatin1Char('7')) << 60;
        QTest::newRow("line breaks") << QStringLiteral("12\n30") << 60;
        QTest::newRow("outside the BMP") << QString::fromUcs4(U"\U0001F4E1") << 60;
    }

    void timeoutEditorAcceptsNumbersOnly()
    {
        QFETCH(QString, text);
        QFETCH(int, seconds);
        m_fixture->Build();
        Connection entry = Entry("a");
        entry.TimeoutSeconds = 60;
        m_fixture->Add({entry});
        m_fixture->dialog->resize(1200, 300);
        m_fixture->Action("m_pDetailsAction")->trigger();
        m_fixture->Show();
        DialogFixture::DoubleClick(m_fixture->DetailsView(),
                                   m_fixture->ProxyIndex("a", ConnectionsModel::ColumnTimeout));
        auto* const editor = m_fixture->DetailsView()->viewport()->findChild<QSpinBox*>();
        QVERIFY(editor);
        QGuiApplication::clipboard()->setText(text);
        editor->selectAll();
        editor->findChild<QLineEdit*>()->paste();
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_VERIFY(!m_fixture->DetailsView()->viewport()->findChild<QSpinBox*>());
        QCOMPARE(m_fixture->model->GetConnection(0).TimeoutSeconds, seconds);
    }

    void messagesAreTranslated()
    {
        m_fixture->Build();
        m_fixture->Show();
        const MarkingTranslator translator(QStringLiteral("VexelConnectDlgGUI"));
        MessageBoxes boxes;
        m_fixture->Action("m_pEditAction")->trigger();
        m_fixture->Action("m_pDeleteAction")->trigger();
        m_fixture->dialog->Import(QStringLiteral("missing"));
        QMimeData two;
        two.setUrls({QUrl(QStringLiteral("file:///a")), QUrl(QStringLiteral("file:///b"))});
        DialogFixture::Drop(m_fixture->dialog, two);
        QMimeData none;
        none.setData(QStringLiteral("text/uri-list"), QByteArray());
        DialogFixture::Drop(m_fixture->dialog, none);
        QCOMPARE(boxes.Count(), 5);
        for (const MessageBoxes::Box& box : boxes.Boxes()) {
            QCOMPARE(box.title, QStringLiteral("[Info]"));
            QVERIFY2(box.text.startsWith(u'[') && box.text.endsWith(u']'), qPrintable(box.text));
        }
        QCOMPARE(boxes.Boxes().at(3).text,
                 QStringLiteral("[Too much files dropped (2 files).\n\nPlease drop at most one file.]"));
    }

    void entriesRemovedDuringConnectAreSkipped()
    {
        m_fixture->Build();
        m_fixture->Add({Entry("unserved", Connection::Heron, true), Entry("gone", Connection::KiteEcho, true)});
        bool removed = false;
        QTimer timer;
        connect(&timer, &QTimer::timeout, this, [&] {
            auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box || removed)
                return;
            removed = true;
            m_fixture->model->removeRows(1, 1);
            box->button(QMessageBox::Ok)->click();
        });
        timer.start(1);
        m_fixture->ConnectButton()->click();
        QVERIFY(removed);
        QCOMPARE(m_fixture->Names(), QStringList{QStringLiteral("unserved")});
        QCOMPARE(m_fixture->appCounter->RunningApplications(Connection::KiteEcho).size(), 0);
    }

    void detailsViewHasNoOwnSelectionModel()
    {
        m_fixture->Build();
        QVERIFY(m_fixture->DetailsView()
                    ->findChildren<QItemSelectionModel*>(QString(), Qt::FindDirectChildrenOnly)
                    .isEmpty());
    }
};

VEXEL_TEST(QTEST_MAIN, TestDialogMeetings)
#include "tst_dialogmeetings.moc"
