// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/dialogfixture.h"
#include "tests/support/testmain.h"

#include <QListView>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSortFilterProxyModel>

#include <functional>

/// The filter widgets: column, pattern, search mode, the label of an active filter, and the stored settings.
class TestDialogFilter : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture = std::make_unique<DialogFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void columnBoxShowsHeadersWithIcons();
    void columnBoxOffersVisibleColumns();
    void columnBoxIsNotUpdatedByShowing();
    void keysSkipTickColumn();
    void typedPatternFilters_data();
    void typedPatternFilters();
    void columnBoxChoosesWhereToSearch();
    void invalidPatternShowsNothingAndNoMessage();
    void showingFilterSelectsPattern();
    void showingFilterAppliesItAgain();
    void activeLabelShowsHiddenFilter();
    void activeLabelCountsFrameOfHiddenDialogAsHidden();
    void activeLabelNeverShowsWithTheFrame_data();
    void activeLabelNeverShowsWithTheFrame();
    void hidingFrameKeepsFilter();
    void selectionAndCurrentRowSurviveFilter();

    void settingsAreRestored();
    void invalidSettingsAreCorrected_data();
    void invalidSettingsAreCorrected();
    void settingsAreStored();

private:
    QComboBox* Column() { return m_fixture->Find<QComboBox>("m_pFilterColumnComboBox"); }
    QLineEdit* Pattern() { return m_fixture->Find<QLineEdit>("m_pFilterPatternLineEdit"); }
    QComboBox* Mode() { return m_fixture->Find<QComboBox>("m_pRegExpComboBox"); }
    QLabel* ActiveLabel() { return m_fixture->Find<QLabel>("m_pFilterActiveLabel"); }

    std::unique_ptr<DialogFixture> m_fixture;
};

void TestDialogFilter::columnBoxShowsHeadersWithIcons()
{
    m_fixture->Build();
    QCOMPARE(Column()->count(), 10);
    for (int column = 0; column < 10; ++column) {
        QCOMPARE(Column()->itemText(column),
                 m_fixture->model->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
        QCOMPARE(Column()->itemIcon(column).isNull(), column != 0 && column != 8);
    }
    QCOMPARE(Column()->currentIndex(), 1);
}

void TestDialogFilter::columnBoxOffersVisibleColumns()
{
    m_fixture->Build();
    m_fixture->Show();
    const auto* const list = qobject_cast<QListView*>(Column()->view());
    QVERIFY(list);
    const auto offered = [&] {
        QList<int> columns;
        for (int column = 0; column < 10; ++column)
            if (!list->isRowHidden(column))
                columns += column;
        return columns;
    };
    QCOMPARE(offered(), (QList<int>{1, 2, 3}));
    m_fixture->Action("m_pDetailsAction")->trigger();
    QCOMPARE(offered(), (QList<int>{1, 2, 3, 4, 5, 6, 7, 8, 9}));
    m_fixture->Action("m_pDetailsAction")->trigger();
    QCOMPARE(offered(), (QList<int>{1, 2, 3}));
}

void TestDialogFilter::columnBoxIsNotUpdatedByShowing()
{
    m_fixture->Build();
    // Switched on while the dialog is hidden, the details are not visible yet.
    m_fixture->Action("m_pDetailsAction")->trigger();
    m_fixture->Show();
    QVERIFY(m_fixture->DetailsView()->isVisible());
    QVERIFY(qobject_cast<QListView*>(Column()->view())->isRowHidden(5));
}

void TestDialogFilter::keysSkipTickColumn()
{
    m_fixture->Build();
    m_fixture->Action("m_pFilterAction")->trigger();
    m_fixture->Show();
    Column()->setFocus();
    QCOMPARE(Column()->currentIndex(), 1);
    QTest::keyClick(Column(), Qt::Key_Up);
    QCOMPARE(Column()->currentIndex(), 1);
    QTest::keyClick(Column(), Qt::Key_Home);
    QCOMPARE(Column()->currentIndex(), 1);
    for (int i = 0; i < 6; ++i)
        QTest::keyClick(Column(), Qt::Key_Down);
    QCOMPARE(Column()->currentIndex(), 3);
}

void TestDialogFilter::typedPatternFilters_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QStringList>("shown");
    const auto names = [](const char* list) {
        return *list ? QString::fromUtf8(list).split(QLatin1Char(' ')) : QStringList();
    };
    QTest::newRow("plain text") << 0 << QStringLiteral("or") << names("a/north NORTH");
    QTest::newRow("wildcard") << 1 << QStringLiteral("a*th") << names("a/north");
    QTest::newRow("regular expression") << 2 << QStringLiteral("^n|\\.") << names("e.st NORTH");
}

void TestDialogFilter::typedPatternFilters()
{
    QFETCH(int, mode);
    QFETCH(QString, pattern);
    QFETCH(QStringList, shown);
    m_fixture->Build();
    for (const char* name : {"a/north", "e.st", "NORTH", "s[o]uth", "we*st"})
        m_fixture->Add({Entry(QString::fromLatin1(name))});
    m_fixture->Show();
    m_fixture->Action("m_pFilterAction")->trigger();
    Mode()->setCurrentIndex(mode);
    QTest::keyClicks(Pattern(), pattern);
    QStringList sorted = m_fixture->ShownNames();
    sorted.sort(Qt::CaseInsensitive);
    shown.sort(Qt::CaseInsensitive);
    QCOMPARE(sorted, shown);
    QCOMPARE(m_fixture->DetailsView()->model()->rowCount(), shown.size());
}

void TestDialogFilter::columnBoxChoosesWhereToSearch()
{
    m_fixture->Build();
    m_fixture->Add({Entry("Cobra", Connection::KiteEcho), Entry("x", Connection::KiteCobra)});
    Pattern()->setText(QStringLiteral("cobra"));
    QCOMPARE(m_fixture->ShownNames(), QStringList{QStringLiteral("Cobra")});
    Column()->setCurrentIndex(ConnectionsModel::ColumnDeviceType);
    QCOMPARE(m_fixture->ShownNames(), QStringList{QStringLiteral("x")});
    QCOMPARE(m_fixture->Proxy()->filterKeyColumn(), int{ConnectionsModel::ColumnDeviceType});
    Column()->setCurrentIndex(-1);
    QCOMPARE(m_fixture->ShownNames(), (QStringList{QStringLiteral("Cobra"), QStringLiteral("x")}));
}

void TestDialogFilter::invalidPatternShowsNothingAndNoMessage()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a(")});
    m_fixture->Show();
    m_fixture->Action("m_pFilterAction")->trigger();
    const MessageBoxes boxes;
    Pattern()->setText(QStringLiteral("("));
    QCOMPARE(m_fixture->ShownNames(), QStringList{QStringLiteral("a(")});
    m_fixture->Find<QComboBox>("m_pRegExpComboBox")->setCurrentIndex(2);
    QCOMPARE(m_fixture->ShownNames(), QStringList());
    QCOMPARE(boxes.Count(), 0);
}

void TestDialogFilter::showingFilterAppliesItAgain()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a"), Entry("b")});
    m_fixture->Show();
    Pattern()->setText(QStringLiteral("a"));
    auto* const proxy = qobject_cast<QSortFilterProxyModel*>(m_fixture->dialog->m_pBasicView->model());
    for (int toggle = 0; toggle < 2; ++toggle) {
        proxy->setFilterRegularExpression(QStringLiteral("b"));
        QCOMPARE(m_fixture->ShownNames(), QStringList{QStringLiteral("b")});
        m_fixture->Action("m_pFilterAction")->trigger();
        QCOMPARE(m_fixture->ShownNames(), QStringList{QStringLiteral("a")});
    }
}

void TestDialogFilter::showingFilterSelectsPattern()
{
    m_fixture->Build();
    Pattern()->setText(QStringLiteral("abc"));
    m_fixture->Show();
    m_fixture->Action("m_pFilterAction")->trigger();
    QVERIFY(m_fixture->Find<QFrame>("m_pFilterFrame")->isVisible());
    QVERIFY(Pattern()->hasFocus());
    QCOMPARE(Pattern()->selectedText(), QStringLiteral("abc"));
}

void TestDialogFilter::activeLabelShowsHiddenFilter()
{
    m_fixture->Build();
    m_fixture->Show();
    QVERIFY(!ActiveLabel()->isVisible());
    Pattern()->setText(QStringLiteral("x"));
    QVERIFY(ActiveLabel()->isVisible());
    m_fixture->Action("m_pFilterAction")->trigger();
    QVERIFY(!ActiveLabel()->isVisible());
    Pattern()->setText(QStringLiteral("xy"));
    QVERIFY(!ActiveLabel()->isVisible());
    m_fixture->Action("m_pFilterAction")->trigger();
    QVERIFY(ActiveLabel()->isVisible());
    Pattern()->clear();
    QVERIFY(!ActiveLabel()->isVisible());
}

void TestDialogFilter::activeLabelCountsFrameOfHiddenDialogAsHidden()
{
    m_fixture->Build();
    m_fixture->Action("m_pFilterAction")->trigger();
    QVERIFY(!m_fixture->Find<QFrame>("m_pFilterFrame")->isHidden());
    QVERIFY(ActiveLabel()->isHidden());
    Pattern()->setText(QStringLiteral("x"));
    QVERIFY(!ActiveLabel()->isHidden());
}

void TestDialogFilter::activeLabelNeverShowsWithTheFrame_data()
{
    // Something that happens while the dialog is hidden.
    QTest::addColumn<std::function<void(DialogFixture&)>>("happens");
    const auto row = [](const char* name, const std::function<void(DialogFixture&)>& happens) {
        QTest::newRow(name) << happens;
    };
    row(
        "import",
        [](DialogFixture& fixture) {
            const QByteArray list = fixture.model->ToByteArray();
            QVERIFY(fixture.dialog->Import(fixture.WriteFile(QStringLiteral("list.xml"), list)));
        });
    row("other pattern", [](DialogFixture& fixture) {
        fixture.Find<QLineEdit>("m_pFilterPatternLineEdit")->setText(QStringLiteral("y"));
    });
    row("frame shown again", [](DialogFixture& fixture) {
        fixture.Action("m_pFilterAction")->setChecked(false);
        fixture.Action("m_pFilterAction")->setChecked(true);
    });
}

void TestDialogFilter::activeLabelNeverShowsWithTheFrame()
{
    QFETCH(const std::function<void(DialogFixture&)>, happens);
    m_fixture->Build();
    m_fixture->Add({Entry("x")});
    m_fixture->Show();
    m_fixture->Action("m_pFilterAction")->setChecked(true);
    Pattern()->setText(QStringLiteral("x"));
    m_fixture->dialog->hide();
    happens(*m_fixture);
    m_fixture->Show();
    QVERIFY(m_fixture->Find<QFrame>("m_pFilterFrame")->isVisible());
    QVERIFY(!ActiveLabel()->isVisible());
    m_fixture->Action("m_pFilterAction")->setChecked(false);
    QVERIFY(ActiveLabel()->isVisible());
}

void TestDialogFilter::hidingFrameKeepsFilter()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a"), Entry("b")});
    m_fixture->Show();
    m_fixture->Action("m_pFilterAction")->trigger();
    QTest::keyClicks(Pattern(), QStringLiteral("b"));
    m_fixture->Action("m_pFilterAction")->trigger();
    QCOMPARE(m_fixture->ShownNames(), QStringList{QStringLiteral("b")});
    m_fixture->dialog->hide();
    m_fixture->Show();
    QCOMPARE(m_fixture->ShownNames(), QStringList{QStringLiteral("b")});
}

void TestDialogFilter::selectionAndCurrentRowSurviveFilter()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a 1"), Entry("b 2"), Entry("c 1"), Entry("d 2")});
    m_fixture->Show();
    const auto names = [](const QModelIndexList& rows) {
        QStringList texts;
        for (const QModelIndex& row : rows)
            texts += row.siblingAtColumn(ConnectionsModel::ColumnName).data().toString();
        return texts;
    };
    QItemSelectionModel* const selection = m_fixture->BasicView()->selectionModel();
    m_fixture->BasicView()->selectAll();
    selection->setCurrentIndex(m_fixture->ProxyIndex("d 2", ConnectionsModel::ColumnName),
                               QItemSelectionModel::NoUpdate);
    Pattern()->setText(QStringLiteral("1"));
    QCOMPARE(names(selection->selectedRows()), (QStringList{QStringLiteral("a 1"), QStringLiteral("c 1")}));
    QCOMPARE(names({m_fixture->DetailsView()->currentIndex()}), QStringList{QStringLiteral("c 1")});
    Pattern()->clear();
    QCOMPARE(names(selection->selectedRows()), (QStringList{QStringLiteral("a 1"), QStringLiteral("c 1")}));
}

void TestDialogFilter::settingsAreRestored()
{
    {
        const auto settings = ConfigNodes::Filter();
        settings->SetInt(QStringLiteral("Column"), 3, 0);
        settings->SetString(QStringLiteral("FilterPattern"), QStringLiteral("b*o"), 0);
        settings->SetInt(QStringLiteral("SearchMode"), 1, 0);
    }
    m_fixture->Build();
    QCOMPARE(Column()->currentIndex(), 3);
    QCOMPARE(Pattern()->text(), QStringLiteral("b*o"));
    QCOMPARE(Mode()->currentIndex(), 1);
    m_fixture->Add({Entry("x", Connection::KiteBravo), Entry("y")});
    QCOMPARE(m_fixture->ShownNames(), QStringList{QStringLiteral("x")});
}

void TestDialogFilter::invalidSettingsAreCorrected_data()
{
    QTest::addColumn<int>("storedColumn");
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("storedMode");
    QTest::addColumn<int>("mode");
    QTest::newRow("corrected") << -1 << 0 << 3 << 0;
    QTest::newRow("no such column") << 11 << -1 << 2 << 2;
}

void TestDialogFilter::invalidSettingsAreCorrected()
{
    QFETCH(int, storedColumn);
    QFETCH(int, column);
    QFETCH(int, storedMode);
    QFETCH(int, mode);
    {
        const auto settings = ConfigNodes::Filter();
        settings->SetInt(QStringLiteral("Column"), storedColumn, 0);
        settings->SetInt(QStringLiteral("SearchMode"), storedMode, 0);
    }
    m_fixture->Build();
    QCOMPARE(Column()->currentIndex(), column);
    QCOMPARE(Mode()->currentIndex(), mode);
}

void TestDialogFilter::settingsAreStored()
{
    m_fixture->Build();
    Column()->setCurrentIndex(2);
    Pattern()->setText(QStringLiteral(" two words, \"quoted\" "));
    Mode()->setCurrentIndex(2);
    m_fixture->dialog->StoreFilterSettings();
    const auto settings = ConfigNodes::Filter();
    QCOMPARE(settings->GetInt(QStringLiteral("Column"), -7, 0), 2);
    QCOMPARE(settings->GetString(QStringLiteral("FilterPattern"), QString(), 0),
             QStringLiteral(" two words, \"quoted\" "));
    QCOMPARE(settings->GetInt(QStringLiteral("SearchMode"), -7, 0), 2);
}

VEXEL_TEST(QTEST_MAIN, TestDialogFilter)
#include "tst_dialogfilter.moc"
