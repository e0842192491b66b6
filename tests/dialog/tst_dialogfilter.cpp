#include "tests/support/dialogfixture.h"
#include "tests/support/testmain.h"

#include <QListView>
#include <QRegularExpression>
#include <QSignalSpy>

/// The filter as an operator sets it: column, pattern, search mode, its sign, and what is kept of it between runs.
class TestDialogFilter : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture = std::make_unique<DialogFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void columnChoiceShowsHeadersWithIcons();
    void columnChoiceOffersWhatIsShown();
    void columnChoiceIsNotUpdatedByShowing();
    void tickCannotBeChosenByKeys();
    void patternFiltersAsItIsTyped_data();
    void patternFiltersAsItIsTyped();
    void invalidExpressionShowsNothingAndSaysNothing();
    void hardExpressionCountsAsNoMatch();
    void withoutAColumnAnyColumnMatches();
    void emptyPatternLetsEverythingThrough();
    void columnDecidesWhereToSearch();
    void showingFocusesAndSelectsThePattern();
    void signShowsWhileAHiddenFilterIsInForce();
    void hidingTheFrameKeepsTheFilter();
    void mnemonicsReachTheInputs();

    void settingsAreRestored();
    void settingsReadRule_data();
    void settingsReadRule();
    void missingSettingsAreTheDefaults();
    void settingsAreStoredAsTheyStand();

private:
    std::unique_ptr<ICfg> Settings()
    {
        return std::unique_ptr<ICfg>(CfgCenter::GetAppCfg(View::User)->OpenChild(QStringLiteral("FilterSettings"), 0));
    }
    QComboBox* Column() { return m_fixture->Find<QComboBox>("m_pFilterColumnComboBox"); }
    QLineEdit* Pattern() { return m_fixture->Find<QLineEdit>("m_pFilterPatternLineEdit"); }
    QComboBox* Mode() { return m_fixture->Find<QComboBox>("m_pRegExpComboBox"); }
    QLabel* Sign() { return m_fixture->Find<QLabel>("m_pFilterActiveLabel"); }

    std::unique_ptr<DialogFixture> m_fixture;
};

void TestDialogFilter::columnChoiceShowsHeadersWithIcons()
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

void TestDialogFilter::columnChoiceOffersWhatIsShown()
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

void TestDialogFilter::columnChoiceIsNotUpdatedByShowing()
{
    m_fixture->Build();
    // Switched on while the dialog is hidden: the details are not visible yet, and showing does not ask again.
    m_fixture->Action("m_pDetailsAction")->trigger();
    m_fixture->Show();
    QVERIFY(m_fixture->DetailsView()->isVisible());
    QVERIFY(qobject_cast<QListView*>(Column()->view())->isRowHidden(5));
}

void TestDialogFilter::tickCannotBeChosenByKeys()
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

void TestDialogFilter::patternFiltersAsItIsTyped_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QStringList>("shown");
    const auto names = [](const char* list) {
        return *list ? QString::fromUtf8(list).split(QLatin1Char(' ')) : QStringList();
    };
    QTest::newRow("plain part") << 0 << QStringLiteral("or") << names("a/north NORTH");
    QTest::newRow("plain other case") << 0 << QStringLiteral("NoR") << names("a/north NORTH");
    QTest::newRow("plain dot") << 0 << QStringLiteral(".") << names("e.st");
    QTest::newRow("plain star") << 0 << QStringLiteral("*") << names("we*st");
    QTest::newRow("plain bracket") << 0 << QStringLiteral("[") << names("s[o]uth");
    QTest::newRow("wildcard star") << 1 << QStringLiteral("a*th") << names("a/north");
    QTest::newRow("wildcard unanchored") << 1 << QStringLiteral("o?t") << names("a/north NORTH");
    QTest::newRow("wildcard set") << 1 << QStringLiteral("[we].st") << names("e.st");
    QTest::newRow("wildcard literal dot") << 1 << QStringLiteral(".") << names("e.st");
    QTest::newRow("expression") << 2 << QStringLiteral("^n|\\.") << names("e.st NORTH");
    QTest::newRow("expression case") << 2 << QStringLiteral("^north$") << names("NORTH");
}

void TestDialogFilter::patternFiltersAsItIsTyped()
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

void TestDialogFilter::invalidExpressionShowsNothingAndSaysNothing()
{
    m_fixture->Build();
    m_fixture->Add({Entry(QStringLiteral("a")), Entry(QStringLiteral("b"))});
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    Mode()->setCurrentIndex(2);
    Pattern()->setText(QStringLiteral("a("));
    QCOMPARE(m_fixture->ShownNames(), QStringList());
    Pattern()->setText(QStringLiteral("a"));
    QCOMPARE(m_fixture->ShownNames(), QStringList{QStringLiteral("a")});
    QCOMPARE(m_fixture->model->rowCount(), 2);
}

void TestDialogFilter::hardExpressionCountsAsNoMatch()
{
    m_fixture->Build();
    // The engine finds its match in the end, but only after a quarter of a million steps back.
    const QString hard = QString(18, QLatin1Char('a')) + QStringLiteral("! aab");
    const QString pattern = QStringLiteral("(a+)+b");
    QVERIFY(hard.contains(QRegularExpression(pattern)));
    m_fixture->Add({Entry(hard), Entry(QStringLiteral("aab"))});
    Mode()->setCurrentIndex(2);
    Pattern()->setText(pattern);
    QCOMPARE(m_fixture->ShownNames(), QStringList{QStringLiteral("aab")});
    Pattern()->setText(QStringLiteral("a!"));
    QCOMPARE(m_fixture->ShownNames(), QStringList{hard});
}

void TestDialogFilter::withoutAColumnAnyColumnMatches()
{
    m_fixture->Build();
    m_fixture->Add({Entry(QStringLiteral("Cobra"), Connection::KiteEcho),
                    Entry(QStringLiteral("x"), Connection::KiteCobra), Entry(QStringLiteral("y"))});
    Pattern()->setText(QStringLiteral("cobra"));
    Column()->setCurrentIndex(-1);
    QCOMPARE(m_fixture->ShownNames(), (QStringList{QStringLiteral("Cobra"), QStringLiteral("x")}));
}

void TestDialogFilter::emptyPatternLetsEverythingThrough()
{
    m_fixture->Build();
    m_fixture->Add({Entry(QStringLiteral("a")), Entry(QString())});
    for (int mode = 0; mode < 3; ++mode) {
        Mode()->setCurrentIndex(mode);
        QCOMPARE(m_fixture->Proxy()->rowCount(), 2);
    }
}

void TestDialogFilter::columnDecidesWhereToSearch()
{
    m_fixture->Build();
    m_fixture->Add(
        {Entry(QStringLiteral("Cobra"), Connection::KiteEcho), Entry(QStringLiteral("x"), Connection::KiteCobra)});
    Pattern()->setText(QStringLiteral("cobra"));
    QCOMPARE(m_fixture->ShownNames(), QStringList{QStringLiteral("Cobra")});
    Column()->setCurrentIndex(ConnectionsModel::ColumnDeviceType);
    QCOMPARE(m_fixture->ShownNames(), QStringList{QStringLiteral("x")});
    QCOMPARE(m_fixture->Proxy()->filterKeyColumn(), int{ConnectionsModel::ColumnDeviceType});
}

void TestDialogFilter::showingFocusesAndSelectsThePattern()
{
    m_fixture->Build();
    Pattern()->setText(QStringLiteral("abc"));
    m_fixture->Show();
    m_fixture->Action("m_pFilterAction")->trigger();
    QVERIFY(m_fixture->Find<QFrame>("m_pFilterFrame")->isVisible());
    QVERIFY(Pattern()->hasFocus());
    QCOMPARE(Pattern()->selectedText(), QStringLiteral("abc"));
}

void TestDialogFilter::signShowsWhileAHiddenFilterIsInForce()
{
    m_fixture->Build();
    m_fixture->Show();
    QVERIFY(!Sign()->isVisible());
    Pattern()->setText(QStringLiteral("x"));
    QVERIFY(Sign()->isVisible());
    m_fixture->Action("m_pFilterAction")->trigger();
    QVERIFY(!Sign()->isVisible());
    Pattern()->setText(QStringLiteral("xy"));
    QVERIFY(!Sign()->isVisible());
    m_fixture->Action("m_pFilterAction")->trigger();
    QVERIFY(Sign()->isVisible());
    Pattern()->clear();
    QVERIFY(!Sign()->isVisible());
}

void TestDialogFilter::hidingTheFrameKeepsTheFilter()
{
    m_fixture->Build();
    m_fixture->Add({Entry(QStringLiteral("a")), Entry(QStringLiteral("b"))});
    m_fixture->Show();
    m_fixture->Action("m_pFilterAction")->trigger();
    QTest::keyClicks(Pattern(), QStringLiteral("b"));
    m_fixture->Action("m_pFilterAction")->trigger();
    QCOMPARE(m_fixture->ShownNames(), QStringList{QStringLiteral("b")});
    m_fixture->dialog->hide();
    m_fixture->Show();
    QCOMPARE(m_fixture->ShownNames(), QStringList{QStringLiteral("b")});
}

void TestDialogFilter::mnemonicsReachTheInputs()
{
    m_fixture->Build();
    m_fixture->Show();
    m_fixture->Action("m_pFilterAction")->trigger();
    m_fixture->dialog->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_fixture->dialog));
    QTest::keyClick(m_fixture->dialog, Qt::Key_O, Qt::AltModifier);
    QVERIFY(Column()->hasFocus());
    QTest::keyClick(m_fixture->dialog, Qt::Key_P, Qt::AltModifier);
    QVERIFY(Pattern()->hasFocus());
    QTest::keyClick(m_fixture->dialog, Qt::Key_M, Qt::AltModifier);
    QVERIFY(Mode()->hasFocus());
}

void TestDialogFilter::settingsAreRestored()
{
    {
        const auto settings = Settings();
        settings->SetInt(QStringLiteral("Column"), 3, 0);
        settings->SetString(QStringLiteral("FilterPattern"), QStringLiteral("b*o"), 0);
        settings->SetInt(QStringLiteral("SearchMode"), 1, 0);
    }
    m_fixture->Build();
    QCOMPARE(Column()->currentIndex(), 3);
    QCOMPARE(Pattern()->text(), QStringLiteral("b*o"));
    QCOMPARE(Mode()->currentIndex(), 1);
    m_fixture->Add({Entry(QStringLiteral("x"), Connection::KiteBravo), Entry(QStringLiteral("y"))});
    QCOMPARE(m_fixture->ShownNames(), QStringList{QStringLiteral("x")});
}

void TestDialogFilter::settingsReadRule_data()
{
    QTest::addColumn<int>("storedColumn");
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("storedMode");
    QTest::addColumn<int>("mode");
    QTest::newRow("one below") << -1 << 0 << 0 << 0;
    QTest::newRow("two below") << -2 << -1 << 1 << 1;
    QTest::newRow("tick") << 0 << 0 << 2 << 2;
    QTest::newRow("last") << 9 << 9 << 3 << 0;
    QTest::newRow("one above") << 10 << 9 << 7 << 0;
    QTest::newRow("two above") << 11 << -1 << -1 << 0;
}

void TestDialogFilter::settingsReadRule()
{
    QFETCH(int, storedColumn);
    QFETCH(int, column);
    QFETCH(int, storedMode);
    QFETCH(int, mode);
    {
        const auto settings = Settings();
        settings->SetInt(QStringLiteral("Column"), storedColumn, 0);
        settings->SetInt(QStringLiteral("SearchMode"), storedMode, 0);
    }
    m_fixture->Build();
    QCOMPARE(Column()->currentIndex(), column);
    QCOMPARE(Mode()->currentIndex(), mode);
}

void TestDialogFilter::missingSettingsAreTheDefaults()
{
    m_fixture->Build();
    QCOMPARE(Column()->currentIndex(), 1);
    QCOMPARE(Pattern()->text(), QString());
    QCOMPARE(Mode()->currentIndex(), 0);
}

void TestDialogFilter::settingsAreStoredAsTheyStand()
{
    m_fixture->Build();
    Column()->setCurrentIndex(2);
    Pattern()->setText(QStringLiteral(" two words, \"quoted\" "));
    Mode()->setCurrentIndex(2);
    m_fixture->dialog->StoreFilterSettings();
    const auto settings = Settings();
    QCOMPARE(settings->GetInt(QStringLiteral("Column"), -7, 0), 2);
    QCOMPARE(settings->GetString(QStringLiteral("FilterPattern"), QString(), 0),
             QStringLiteral(" two words, \"quoted\" "));
    QCOMPARE(settings->GetInt(QStringLiteral("SearchMode"), -7, 0), 2);
}

VEXEL_TEST(QTEST_MAIN, TestDialogFilter)
#include "tst_dialogfilter.moc"
