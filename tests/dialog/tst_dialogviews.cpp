// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/dialogfixture.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/views/selectedrows.h"

#include <QClipboard>
#include <QHeaderView>
#include <QMimeData>
#include <QRandomGenerator>
#include <QScrollBar>

/// The two views show the same rows after any action; texts of all kinds in the editors.
class TestDialogViews : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture = std::make_unique<DialogFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void randomActionsKeepViewsInStep();
    void selectedRowsAgreeWithQt();
    void longTextsKeepRowHeights();
    void anyNameIsOneLineHigh_data();
    void anyNameIsOneLineHigh();
    void lineEditorsTakeAnyText_data();
    void lineEditorsTakeAnyText();

private:
    void CompareViews();

    std::unique_ptr<DialogFixture> m_fixture;
};

void TestDialogViews::CompareViews()
{
    const QTreeView* const basic = m_fixture->BasicView();
    const QTreeView* const details = m_fixture->DetailsView();
    QCOMPARE(details->model(), basic->model());
    QCOMPARE(details->selectionModel(), basic->selectionModel());
    QCOMPARE(details->verticalScrollBar()->value(), basic->verticalScrollBar()->value());
    QTRY_COMPARE(details->verticalScrollBar()->maximum(), basic->verticalScrollBar()->maximum());
    QCOMPARE(details->header()->sortIndicatorSection(), basic->header()->sortIndicatorSection());
    QCOMPARE(details->header()->sortIndicatorOrder(), basic->header()->sortIndicatorOrder());

    // The same rows at the same heights, in both views.
    const int first = basic->indexAt(QPoint(1, 1)).row();
    for (int row = std::max(first, 0); row < std::min(first + 5, m_fixture->Proxy()->rowCount()); ++row) {
        const QRect left = basic->visualRect(m_fixture->Proxy()->index(row, ConnectionsModel::ColumnName));
        const QRect right = details->visualRect(m_fixture->Proxy()->index(row, ConnectionsModel::ColumnLinkSpeed));
        QCOMPARE(right.top(), left.top());
        QCOMPARE(right.height(), left.height());
    }

    // Every entry that matches is shown once, and nothing else.
    const auto expression = m_fixture->Proxy()->filterRegularExpression();
    QStringList matching;
    for (const QString& name : m_fixture->Names())
        if (name.contains(expression))
            matching += name;
    QStringList shown = m_fixture->ShownNames();
    matching.sort();
    shown.sort();
    QCOMPARE(shown, matching);

    int selectedFree = 0;
    for (int row = 0; row < m_fixture->model->rowCount(); ++row) {
        const Connection entry = m_fixture->model->GetConnection(row);
        selectedFree += entry.Selected && entry.ConnectionStatus == 0 ? 1 : 0;
    }
    QCOMPARE(m_fixture->model->CountSelectedFree(), selectedFree);
}

void TestDialogViews::randomActionsKeepViewsInStep()
{
    m_fixture->Build();
    m_fixture->dialog->resize(1200, 400);
    m_fixture->Action("m_pDetailsAction")->trigger();
    m_fixture->Show();
    MessageBoxes boxes;
    QRandomGenerator random(20240607);
    const auto any = [&random](int below) {
        return below > 0 ? random.bounded(below) : 0;
    };
    QTreeView* const views[] = {m_fixture->BasicView(), m_fixture->DetailsView()};
    QByteArray saved = m_fixture->model->ToByteArray();

    for (int step = 0; step < 1000; ++step) {
        QTreeView* const view = views[any(2)];
        const int rows = m_fixture->Proxy()->rowCount();
        switch (any(12)) {
        case 0:
        case 1:
            m_fixture->Action("m_pNewAction")->trigger();
            m_fixture->model->setData(m_fixture->model->index(m_fixture->model->rowCount() - 1, 1),
                                      QStringLiteral("station %1").arg(any(500)));
            break;
        case 2:
            if (rows > 0)
                DialogFixture::Click(m_fixture->BasicView(), m_fixture->Proxy()->index(any(rows), 0));
            break;
        case 3:
            view->sortByColumn(any(10), any(2) ? Qt::AscendingOrder : Qt::DescendingOrder);
            break;
        case 4:
            m_fixture->Find<QLineEdit>("m_pFilterPatternLineEdit")
                ->setText(any(3) ? QString() : QString::number(any(10)));
            break;
        case 5:
            m_fixture->Find<QComboBox>("m_pRegExpComboBox")->setCurrentIndex(any(3));
            break;
        case 6:
            if (rows > 0) {
                DialogFixture::DoubleClick(m_fixture->BasicView(), m_fixture->Proxy()->index(any(rows), 1));
                if (auto* const editor = m_fixture->BasicView()->viewport()->findChild<QLineEdit*>()) {
                    editor->setText(QStringLiteral("edited %1").arg(any(500)));
                    QTest::keyClick(editor, Qt::Key_Return);
                    QTRY_VERIFY(!m_fixture->BasicView()->viewport()->findChild<QLineEdit*>());
                }
            }
            break;
        case 7:
            for (int i = any(4); i > 0 && rows > 0; --i) {
                view->selectionModel()->select(m_fixture->Proxy()->index(any(rows), 0),
                                               QItemSelectionModel::Toggle | QItemSelectionModel::Rows);
            }
            break;
        case 8:
            if (any(3) == 0) {
                m_fixture->Action("m_pDeleteAction")->trigger();
            } else if (rows > 0) {
                const std::unique_ptr<QMimeData> dragged(
                    m_fixture->Proxy()->mimeData({m_fixture->Proxy()->index(any(rows), 0)}));
                QVERIFY(m_fixture->Proxy()->dropMimeData(dragged.get(), Qt::CopyAction, -1, -1, QModelIndex()));
            }
            break;
        case 9:
            view->verticalScrollBar()->setValue(any(view->verticalScrollBar()->maximum() + 1));
            break;
        case 10:
            if (any(4) == 0) {
                if (any(2))
                    saved = m_fixture->model->ToByteArray();
                else
                    m_fixture->dialog->Import(m_fixture->WriteFile(QStringLiteral("list.xml"), saved));
            }
            break;
        case 11:
            if (m_fixture->model->rowCount() > 0) {
                m_fixture->model->SetConnectionStatus(
                    m_fixture->model->GetConnection(any(m_fixture->model->rowCount())), any(2));
            }
            break;
        }
        QCoreApplication::processEvents();
        CompareViews();
        if (QTest::currentTestFailed()) {
            qWarning("after step %d", step);
            return;
        }
    }
    QVERIFY(m_fixture->model->rowCount() > 0);
}

void TestDialogViews::selectedRowsAgreeWithQt()
{
    m_fixture->Build();
    for (int i = 0; i < 30; ++i) {
        Connection entry = Entry(QString::number(i));
        entry.ConnectionType = i % 3;
        entry.ConnectionStatus = i % 4 == 0 ? Connection::InUse : Connection::Free;
        m_fixture->Add({entry});
    }
    const QAbstractItemModel* const shown = m_fixture->Proxy();
    QItemSelectionModel* const selection = m_fixture->BasicView()->selectionModel();
    QRandomGenerator random(99);
    for (int round = 0; round < 300; ++round) {
        const int top = random.bounded(30);
        const int left = random.bounded(3) ? 0 : random.bounded(10);
        const int right = random.bounded(3) ? 9 : random.bounded(left, 10);
        const QItemSelection range(shown->index(top, left), shown->index(random.bounded(top, 30), right));
        selection->select(range,
                          random.bounded(5) == 0 ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::Toggle);
        QList<int> expected;
        for (const QModelIndex& index : selection->selectedRows())
            expected += index.row();
        QList<int> actual = SelectedRows(*selection);
        std::sort(expected.begin(), expected.end());
        std::sort(actual.begin(), actual.end());
        QCOMPARE(actual, expected);
    }
}

void TestDialogViews::longTextsKeepRowHeights()
{
    m_fixture->Build();
    m_fixture->dialog->resize(1200, 400);
    m_fixture->Action("m_pDetailsAction")->trigger();
    const QString broken = QStringLiteral("a\nb\r\nc") + QChar(QChar::LineSeparator) + QLatin1Char('d');
    m_fixture->Add({Entry(broken), Entry(QString(1024 * 1024, QLatin1Char('n'))), Entry("z")});
    m_fixture->Show();
    CompareViews();
    QCOMPARE(m_fixture->Proxy()->index(0, 1).data().toString(), QStringLiteral("a b  c d"));
    QVERIFY(m_fixture->Proxy()->index(1, 1).data().toString().size() < 1000);
    // The whole text is edited and searched.
    QCOMPARE(m_fixture->Proxy()->index(0, 1).data(Qt::EditRole).toString(), broken);
    m_fixture->Find<QLineEdit>("m_pFilterPatternLineEdit")->setText(QString(20000, QLatin1Char('n')));
    QCOMPARE(m_fixture->Proxy()->rowCount(), 1);
}

void TestDialogViews::anyNameIsOneLineHigh_data()
{
    constexpr qsizetype kMegabyte = 1024 * 1024;
    const auto repeated = [](const QString& part) {
        return part.repeated(kMegabyte / part.size());
    };
    QString controls;
    for (int c = 1; c < 0xa0; ++c)
        if (QChar(c).category() == QChar::Other_Control)
            controls += QChar(c);
    QTest::addColumn<QString>("name");
    QTest::newRow("a megabyte") << repeated(QStringLiteral("m"));
    QTest::newRow("controls") << QString(QLatin1Char('c') + controls);
    QTest::newRow("a megabyte of controls") << repeated(controls);
    QTest::newRow("line and paragraph separators") << repeated(QStringLiteral("a\u2028b\u2029c\u0085d\ve\f"));
    QTest::newRow("right-to-left marks") << repeated(QStringLiteral("\u202e\u05d0b\u202c\u200f\u2067x"));
    QTest::newRow("right-to-left override without end") << QString(QStringLiteral("\u202eabc \u05d0\u05d1"));
    QTest::newRow("combining marks") << QString(QLatin1Char('a') + repeated(QStringLiteral("\u0301")));
    QTest::newRow("combining marks above and below") << repeated(QStringLiteral("\u0e17\u0e35\u0e48\u0316\u0489"));
}

void TestDialogViews::anyNameIsOneLineHigh()
{
    QFETCH(QString, name);
    m_fixture->Build();
    m_fixture->dialog->resize(1200, 400);
    m_fixture->Action("m_pDetailsAction")->trigger();
    m_fixture->Add({Entry("0"), Entry("1")});
    m_fixture->Show();
    QTreeView* const basic = m_fixture->BasicView();
    const int lineHeight = basic->visualRect(m_fixture->Proxy()->index(0, ConnectionsModel::ColumnName)).height();
    Connection entry = Entry(name);
    entry.DeviceAddress = name;
    m_fixture->Add({entry});
    CompareViews();
    const int row = m_fixture->ProxyRow(name);
    QVERIFY(row >= 0);
    const QModelIndex cell = m_fixture->Proxy()->index(row, ConnectionsModel::ColumnName);
    // A fallback font can be higher, but not as high as two lines.
    QVERIFY(basic->visualRect(cell).height() < 2 * lineHeight);

    // The editor has the whole text.
    basic->setFocus();
    m_fixture->dialog->SlotDoubleClicked(cell);
    auto* const editor = basic->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    QCOMPARE(editor->text().size(), name.size());
    QVERIFY(editor->text() == name);
    // A long text is not shaped, which would take minutes for combining marks.
    QCOMPARE(editor->font().styleStrategy() == QFont::PreferNoShaping, name.size() > 10000);
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_VERIFY(!basic->viewport()->findChild<QLineEdit*>());
    QVERIFY(m_fixture->model->GetConnection(2).ConnectionName == name);
}

void TestDialogViews::lineEditorsTakeAnyText_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("markup") << QStringLiteral("<b>&amp;]]></b>");
    QTest::newRow("line breaks") << QStringLiteral("one\r\ntwo\nthree");
    QTest::newRow("right to left") << QStringLiteral("\u05d0\u05d1 \u0627\u0644 1.2");
    QTest::newRow("outside the BMP") << QString::fromUcs4(U"\U0001F4E1 \U00010348");
    QTest::newRow("control") << QStringLiteral("a\u0001b\u001b\tc");
    QTest::newRow("a megabyte") << QString(1024 * 1024, QLatin1Char('m'));
}

void TestDialogViews::lineEditorsTakeAnyText()
{
    QFETCH(QString, text);
    m_fixture->Build();
    m_fixture->dialog->resize(1200, 300);
    Connection entry = Entry("x");
    entry.ConnectionType = Connection::RemoteConnection;
    m_fixture->Add({Entry("before"), entry, Entry("zz after")});
    m_fixture->Action("m_pDetailsAction")->trigger();
    m_fixture->Show();

    QHash<int, QString> kept;
    for (const int column : {ConnectionsModel::ColumnDeviceAddress, ConnectionsModel::ColumnDriverAddress,
                             ConnectionsModel::ColumnSubsystem, ConnectionsModel::ColumnName}) {
        QTreeView* const view =
            column == ConnectionsModel::ColumnName ? m_fixture->BasicView() : m_fixture->DetailsView();
        view->setFocus();
        const int row = m_fixture->Proxy()->mapFromSource(m_fixture->model->index(1, column)).row();
        m_fixture->dialog->SlotDoubleClicked(m_fixture->Proxy()->index(row, column));
        auto* const editor = view->viewport()->findChild<QLineEdit*>();
        QVERIFY(editor);
        QGuiApplication::clipboard()->setText(text);
        editor->selectAll();
        editor->paste();
        kept.insert(column, editor->text());
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_VERIFY(!view->viewport()->findChild<QLineEdit*>());
        QCOMPARE(m_fixture->model->index(1, column).data(Qt::EditRole).toString(), kept.value(column));
    }

    // Stored and read back, without characters that XML does not allow. The other entries are unchanged.
    m_fixture->model->SetConfiguration();
    ConnectionsModel again(nullptr, QStringLiteral("ConnectionsModel"));
    QCOMPARE(again.rowCount(), 3);
    for (auto it = kept.cbegin(); it != kept.cend(); ++it) {
        QString expected = it.value();
        expected.remove(QChar(1)).remove(QChar(0x1b));
        QCOMPARE(again.index(1, it.key()).data(Qt::EditRole).toString(), expected);
    }
    QCOMPARE(again.GetConnection(0).ConnectionName, QStringLiteral("before"));
    QCOMPARE(again.GetConnection(2).ConnectionName, QStringLiteral("zz after"));
}

VEXEL_TEST(QTEST_MAIN, TestDialogViews)
#include "tst_dialogviews.moc"
