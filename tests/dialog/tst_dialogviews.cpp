#include "tests/dialog/dialogfixture.h"
#include "userinterface/vexelconnectdlg/selectedrows.h"

#include <QClipboard>
#include <QHeaderView>
#include <QListView>
#include <QMimeData>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QSpinBox>

/// The two views as one table, whatever is done to it; and texts of every kind through every editor.
class tst_DialogViews : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_Fixture = std::make_unique<DialogFixture>(); }
    void cleanup() { m_Fixture.reset(); }

    void randomWalkKeepsViewsAndModelTogether();
    void selectedRowsAreTheToolkits();
    void longAndBrokenTextsKeepRowsAlike();
    void editorsTakeTextsOfEveryKind_data();
    void editorsTakeTextsOfEveryKind();
    void editorGrowsAboutItsCell();
    void deviceTypeEditorOffersTwelve();
    void timeoutCountsAsTyped();

private:
    void CompareViews();

    std::unique_ptr<DialogFixture> m_Fixture;
};

void tst_DialogViews::CompareViews()
{
    const QTreeView* const basic = m_Fixture->BasicView();
    const QTreeView* const details = m_Fixture->DetailsView();
    QCOMPARE(details->model(), basic->model());
    QCOMPARE(details->selectionModel(), basic->selectionModel());
    QCOMPARE(details->verticalScrollBar()->value(), basic->verticalScrollBar()->value());
    QTRY_COMPARE(details->verticalScrollBar()->maximum(), basic->verticalScrollBar()->maximum());
    QCOMPARE(details->header()->sortIndicatorSection(), basic->header()->sortIndicatorSection());
    QCOMPARE(details->header()->sortIndicatorOrder(), basic->header()->sortIndicatorOrder());

    // The same rows at the same heights, in both views.
    const int first = basic->indexAt(QPoint(1, 1)).row();
    for (int row = std::max(first, 0); row < std::min(first + 5, m_Fixture->Proxy()->rowCount()); ++row) {
        const QRect left = basic->visualRect(m_Fixture->Proxy()->index(row, ConnectionsModel::ColumnName));
        const QRect right = details->visualRect(m_Fixture->Proxy()->index(row, ConnectionsModel::ColumnLinkSpeed));
        QCOMPARE(right.top(), left.top());
        QCOMPARE(right.height(), left.height());
    }

    // Every entry that matches is shown once, and nothing else.
    const auto expression = m_Fixture->Proxy()->filterRegularExpression();
    QStringList matching;
    for (const QString& name : m_Fixture->Names()) {
        if (name.contains(expression)) {
            matching += name;
        }
    }
    QStringList shown = m_Fixture->ShownNames();
    matching.sort();
    shown.sort();
    QCOMPARE(shown, matching);

    int selectedFree = 0;
    for (int row = 0; row < m_Fixture->model->rowCount(); ++row) {
        const Connection entry = m_Fixture->model->GetConnection(row);
        selectedFree += entry.Selected && entry.ConnectionStatus == 0 ? 1 : 0;
    }
    QCOMPARE(m_Fixture->model->CountSelectedFree(), selectedFree);
}

void tst_DialogViews::randomWalkKeepsViewsAndModelTogether()
{
    m_Fixture->Build();
    m_Fixture->dialog->resize(1200, 400);
    m_Fixture->Action("m_pDetailsAction")->trigger();
    m_Fixture->Show();
    MessageBoxes boxes;
    QRandomGenerator random(20240607);
    const auto any = [&random](int below) {
        return below > 0 ? random.bounded(below) : 0;
    };
    QTreeView* const views[] = {m_Fixture->BasicView(), m_Fixture->DetailsView()};
    QByteArray saved = m_Fixture->model->ToByteArray();

    for (int step = 0; step < 1000; ++step) {
        QTreeView* const view = views[any(2)];
        const int rows = m_Fixture->Proxy()->rowCount();
        switch (any(12)) {
        case 0:
        case 1:
            m_Fixture->Action("m_pNewAction")->trigger();
            m_Fixture->model->setData(m_Fixture->model->index(m_Fixture->model->rowCount() - 1, 1),
                                      QStringLiteral("station %1").arg(any(500)));
            break;
        case 2:
            if (rows > 0) {
                DialogFixture::Click(m_Fixture->BasicView(), m_Fixture->Proxy()->index(any(rows), 0));
            }
            break;
        case 3:
            view->sortByColumn(any(10), any(2) ? Qt::AscendingOrder : Qt::DescendingOrder);
            break;
        case 4:
            m_Fixture->Find<QLineEdit>("m_pFilterPatternLineEdit")
                ->setText(any(3) ? QString() : QString::number(any(10)));
            break;
        case 5:
            m_Fixture->Find<QComboBox>("m_pRegExpComboBox")->setCurrentIndex(any(3));
            break;
        case 6:
            if (rows > 0) {
                DialogFixture::DoubleClick(m_Fixture->BasicView(), m_Fixture->Proxy()->index(any(rows), 1));
                if (auto* const editor = m_Fixture->BasicView()->viewport()->findChild<QLineEdit*>()) {
                    editor->setText(QStringLiteral("edited %1").arg(any(500)));
                    QTest::keyClick(editor, Qt::Key_Return);
                    QTRY_VERIFY(!m_Fixture->BasicView()->viewport()->findChild<QLineEdit*>());
                }
            }
            break;
        case 7:
            for (int i = any(4); i > 0 && rows > 0; --i) {
                view->selectionModel()->select(m_Fixture->Proxy()->index(any(rows), 0),
                                               QItemSelectionModel::Toggle | QItemSelectionModel::Rows);
            }
            break;
        case 8:
            if (any(3) == 0) {
                m_Fixture->Action("m_pDeleteAction")->trigger();
            } else if (rows > 0) {
                const std::unique_ptr<QMimeData> dragged(
                    m_Fixture->Proxy()->mimeData({m_Fixture->Proxy()->index(any(rows), 0)}));
                QVERIFY(m_Fixture->Proxy()->dropMimeData(dragged.get(), Qt::CopyAction, -1, -1, QModelIndex()));
            }
            break;
        case 9:
            view->verticalScrollBar()->setValue(any(view->verticalScrollBar()->maximum() + 1));
            break;
        case 10:
            if (any(4) == 0) {
                if (any(2)) {
                    saved = m_Fixture->model->ToByteArray();
                } else {
                    m_Fixture->dialog->Import(m_Fixture->WriteFile(QStringLiteral("list.xml"), saved));
                }
            }
            break;
        case 11:
            if (m_Fixture->model->rowCount() > 0) {
                m_Fixture->model->SetConnectionStatus(
                    m_Fixture->model->GetConnection(any(m_Fixture->model->rowCount())), any(2));
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
    QVERIFY(m_Fixture->model->rowCount() > 0);
}

void tst_DialogViews::selectedRowsAreTheToolkits()
{
    m_Fixture->Build();
    for (int i = 0; i < 30; ++i) {
        Connection entry = Entry(QString::number(i));
        entry.ConnectionType = i % 3;
        entry.ConnectionStatus = i % 4 == 0 ? Connection::InUse : Connection::Free;
        m_Fixture->Add({entry});
    }
    const QAbstractItemModel* const shown = m_Fixture->Proxy();
    QItemSelectionModel* const selection = m_Fixture->BasicView()->selectionModel();
    QRandomGenerator random(99);
    for (int round = 0; round < 300; ++round) {
        const int top = random.bounded(30);
        const int left = random.bounded(3) ? 0 : random.bounded(10);
        const int right = random.bounded(3) ? 9 : random.bounded(left, 10);
        const QItemSelection range(shown->index(top, left), shown->index(random.bounded(top, 30), right));
        selection->select(range,
                          random.bounded(5) == 0 ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::Toggle);
        QList<int> expected;
        for (const QModelIndex& index : selection->selectedRows()) {
            expected += index.row();
        }
        QList<int> actual = SelectedRows(*selection);
        std::sort(expected.begin(), expected.end());
        std::sort(actual.begin(), actual.end());
        QCOMPARE(actual, expected);
    }
}

void tst_DialogViews::longAndBrokenTextsKeepRowsAlike()
{
    m_Fixture->Build();
    m_Fixture->dialog->resize(1200, 400);
    m_Fixture->Action("m_pDetailsAction")->trigger();
    const QString broken = QStringLiteral("a\nb\r\nc") + QChar(QChar::LineSeparator) + QLatin1Char('d');
    m_Fixture->Add({Entry(broken), Entry(QString(1024 * 1024, QLatin1Char('n'))), Entry(QStringLiteral("z"))});
    m_Fixture->Show();
    CompareViews();
    QCOMPARE(m_Fixture->Proxy()->index(0, 1).data().toString(), QStringLiteral("a b  c d"));
    QVERIFY(m_Fixture->Proxy()->index(1, 1).data().toString().size() < 1000);
    // The whole text is what is edited and searched.
    QCOMPARE(m_Fixture->Proxy()->index(0, 1).data(Qt::EditRole).toString(), broken);
    m_Fixture->Find<QLineEdit>("m_pFilterPatternLineEdit")->setText(QString(20000, QLatin1Char('n')));
    QCOMPARE(m_Fixture->Proxy()->rowCount(), 1);
}

void tst_DialogViews::editorsTakeTextsOfEveryKind_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("markup") << QStringLiteral("<b>&amp;]]></b>");
    QTest::newRow("line breaks") << QStringLiteral("one\r\ntwo\nthree");
    QTest::newRow("right to left") << QStringLiteral("\u05d0\u05d1 \u0627\u0644 1.2");
    QTest::newRow("astral") << QString::fromUcs4(U"\U0001F4E1 \U00010348");
    QTest::newRow("control") << QStringLiteral("a\u0001b\u001b\tc");
    QTest::newRow("a megabyte") << QString(1024 * 1024, QLatin1Char('m'));
}

void tst_DialogViews::editorsTakeTextsOfEveryKind()
{
    QFETCH(QString, text);
    m_Fixture->Build();
    m_Fixture->dialog->resize(1200, 300);
    Connection entry = Entry(QStringLiteral("x"));
    entry.ConnectionType = Connection::RemoteConnection;
    m_Fixture->Add({Entry(QStringLiteral("before")), entry, Entry(QStringLiteral("zz after"))});
    m_Fixture->Action("m_pDetailsAction")->trigger();
    m_Fixture->Show();

    QHash<int, QString> kept;
    for (const int column : {ConnectionsModel::ColumnDeviceAddress, ConnectionsModel::ColumnDriverAddress,
                             ConnectionsModel::ColumnSubsystem, ConnectionsModel::ColumnName}) {
        QTreeView* const view =
            column == ConnectionsModel::ColumnName ? m_Fixture->BasicView() : m_Fixture->DetailsView();
        view->setFocus();
        const int row = m_Fixture->Proxy()->mapFromSource(m_Fixture->model->index(1, column)).row();
        m_Fixture->dialog->SlotDoubleClicked(m_Fixture->Proxy()->index(row, column));
        auto* const editor = view->viewport()->findChild<QLineEdit*>();
        QVERIFY(editor);
        QGuiApplication::clipboard()->setText(text);
        editor->selectAll();
        editor->paste();
        kept.insert(column, editor->text());
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_VERIFY(!view->viewport()->findChild<QLineEdit*>());
        QCOMPARE(m_Fixture->model->index(1, column).data(Qt::EditRole).toString(), kept.value(column));
    }

    // Stored and read back; what XML cannot hold is left out, and the neighbours are what they were.
    m_Fixture->model->SetConfiguration();
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

void tst_DialogViews::editorGrowsAboutItsCell()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a")), Entry(QStringLiteral("b")), Entry(QStringLiteral("c"))});
    m_Fixture->dialog->resize(1200, 300);
    m_Fixture->Show();
    const QModelIndex cell = m_Fixture->ProxyIndex(QStringLiteral("b"), ConnectionsModel::ColumnDeviceType);
    DialogFixture::DoubleClick(m_Fixture->BasicView(), cell);
    auto* const editor = m_Fixture->BasicView()->viewport()->findChild<QComboBox*>();
    QVERIFY(editor);
    const QRect rect = m_Fixture->BasicView()->visualRect(cell);
    QRect expected(QPoint(), rect.size().expandedTo(editor->sizeHint()));
    expected.moveCenter(rect.center());
    QCOMPARE(editor->geometry(), expected);
    QVERIFY(editor->width() >= editor->sizeHint().width());
}

void tst_DialogViews::deviceTypeEditorOffersTwelve()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a"), Connection::WrenD)});
    m_Fixture->Show();
    const QModelIndex cell = m_Fixture->ProxyIndex(QStringLiteral("a"), ConnectionsModel::ColumnDeviceType);
    DialogFixture::DoubleClick(m_Fixture->BasicView(), cell);
    auto* const editor = m_Fixture->BasicView()->viewport()->findChild<QComboBox*>();
    QVERIFY(editor);
    QCOMPARE(editor->currentText(), QStringLiteral("Wren D"));
    const auto* const list = qobject_cast<QListView*>(editor->view());
    int pickable = 0;
    for (int row = 0; row < editor->count(); ++row) {
        pickable += list->isRowHidden(row) ? 0 : 1;
    }
    QCOMPARE(pickable, 12);
}

void tst_DialogViews::timeoutCountsAsTyped()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a"))});
    m_Fixture->dialog->resize(1200, 300);
    m_Fixture->Action("m_pDetailsAction")->trigger();
    m_Fixture->Show();
    m_Fixture->dialog->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_Fixture->dialog));
    DialogFixture::DoubleClick(m_Fixture->DetailsView(),
                               m_Fixture->ProxyIndex(QStringLiteral("a"), ConnectionsModel::ColumnTimeout));
    auto* const editor = m_Fixture->DetailsView()->viewport()->findChild<QSpinBox*>();
    QVERIFY(editor);
    QCOMPARE(editor->text(), QStringLiteral("No Timeout"));
    editor->selectAll();
    QTest::keyClicks(editor, QStringLiteral("75"));
    m_Fixture->ConnectButton()->setFocus();
    QTRY_COMPARE(m_Fixture->model->GetConnection(0).TimeoutSeconds, 75);
}

QTEST_MAIN(tst_DialogViews)
#include "tst_dialogviews.moc"
