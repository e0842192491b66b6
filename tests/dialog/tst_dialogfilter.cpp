#include "tests/dialog/dialogfixture.h"

#include <QListView>
#include <QRegularExpression>
#include <QSignalSpy>

/// The filter as an operator sets it: column, pattern, search mode, its sign, and what is kept of it between runs.
class tst_DialogFilter : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_Fixture = std::make_unique<DialogFixture>(); }
    void cleanup() { m_Fixture.reset(); }

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
    QComboBox* Column() { return m_Fixture->Find<QComboBox>("m_pFilterColumnComboBox"); }
    QLineEdit* Pattern() { return m_Fixture->Find<QLineEdit>("m_pFilterPatternLineEdit"); }
    QComboBox* Mode() { return m_Fixture->Find<QComboBox>("m_pRegExpComboBox"); }
    QLabel* Sign() { return m_Fixture->Find<QLabel>("m_pFilterActiveLabel"); }

    std::unique_ptr<DialogFixture> m_Fixture;
};

void tst_DialogFilter::columnChoiceShowsHeadersWithIcons()
{
    m_Fixture->Build();
    QCOMPARE(Column()->count(), 10);
    for (int column = 0; column < 10; ++column) {
        QCOMPARE(Column()->itemText(column),
                 m_Fixture->model->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
        QCOMPARE(Column()->itemIcon(column).isNull(), column != 0 && column != 8);
    }
    QCOMPARE(Column()->currentIndex(), 1);
}

void tst_DialogFilter::columnChoiceOffersWhatIsShown()
{
    m_Fixture->Build();
    m_Fixture->Show();
    const auto* const list = qobject_cast<QListView*>(Column()->view());
    QVERIFY(list);
    const auto offered = [&] {
        QList<int> columns;
        for (int column = 0; column < 10; ++column) {
            if (!list->isRowHidden(column)) {
                columns += column;
            }
        }
        return columns;
    };
    QCOMPARE(offered(), (QList<int>{1, 2, 3}));
    m_Fixture->Action("m_pDetailsAction")->trigger();
    QCOMPARE(offered(), (QList<int>{1, 2, 3, 4, 5, 6, 7, 8, 9}));
    m_Fixture->Action("m_pDetailsAction")->trigger();
    QCOMPARE(offered(), (QList<int>{1, 2, 3}));
}

void tst_DialogFilter::columnChoiceIsNotUpdatedByShowing()
{
    m_Fixture->Build();
    // Switched on while the dialog is hidden: the details are not visible yet, and showing does not ask again.
    m_Fixture->Action("m_pDetailsAction")->trigger();
    m_Fixture->Show();
    QVERIFY(m_Fixture->DetailsView()->isVisible());
    QVERIFY(qobject_cast<QListView*>(Column()->view())->isRowHidden(5));
}

void tst_DialogFilter::tickCannotBeChosenByKeys()
{
    m_Fixture->Build();
    m_Fixture->Action("m_pFilterAction")->trigger();
    m_Fixture->Show();
    Column()->setFocus();
    QCOMPARE(Column()->currentIndex(), 1);
    QTest::keyClick(Column(), Qt::Key_Up);
    QCOMPARE(Column()->currentIndex(), 1);
    QTest::keyClick(Column(), Qt::Key_Home);
    QCOMPARE(Column()->currentIndex(), 1);
    for (int i = 0; i < 6; ++i) {
        QTest::keyClick(Column(), Qt::Key_Down);
    }
    QCOMPARE(Column()->currentIndex(), 3);
}

void tst_DialogFilter::patternFiltersAsItIsTyped_data()
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

void tst_DialogFilter::patternFiltersAsItIsTyped()
{
    QFETCH(int, mode);
    QFETCH(QString, pattern);
    QFETCH(QStringList, shown);
    m_Fixture->Build();
    for (const char* name : {"a/north", "e.st", "NORTH", "s[o]uth", "we*st"}) {
        m_Fixture->Add({Entry(QString::fromLatin1(name))});
    }
    m_Fixture->Show();
    m_Fixture->Action("m_pFilterAction")->trigger();
    Mode()->setCurrentIndex(mode);
    QTest::keyClicks(Pattern(), pattern);
    QStringList sorted = m_Fixture->ShownNames();
    sorted.sort(Qt::CaseInsensitive);
    shown.sort(Qt::CaseInsensitive);
    QCOMPARE(sorted, shown);
    QCOMPARE(m_Fixture->DetailsView()->model()->rowCount(), shown.size());
}

void tst_DialogFilter::invalidExpressionShowsNothingAndSaysNothing()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a")), Entry(QStringLiteral("b"))});
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    Mode()->setCurrentIndex(2);
    Pattern()->setText(QStringLiteral("a("));
    QCOMPARE(m_Fixture->ShownNames(), QStringList());
    Pattern()->setText(QStringLiteral("a"));
    QCOMPARE(m_Fixture->ShownNames(), QStringList{QStringLiteral("a")});
    QCOMPARE(m_Fixture->model->rowCount(), 2);
}

void tst_DialogFilter::hardExpressionCountsAsNoMatch()
{
    m_Fixture->Build();
    // The engine finds its match in the end, but only after a quarter of a million steps back.
    const QString hard = QString(18, QLatin1Char('a')) + QStringLiteral("! aab");
    const QString pattern = QStringLiteral("(a+)+b");
    QVERIFY(hard.contains(QRegularExpression(pattern)));
    m_Fixture->Add({Entry(hard), Entry(QStringLiteral("aab"))});
    Mode()->setCurrentIndex(2);
    Pattern()->setText(pattern);
    QCOMPARE(m_Fixture->ShownNames(), QStringList{QStringLiteral("aab")});
    Pattern()->setText(QStringLiteral("a!"));
    QCOMPARE(m_Fixture->ShownNames(), QStringList{hard});
}

void tst_DialogFilter::withoutAColumnAnyColumnMatches()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("Cobra"), Connection::KiteEcho),
                    Entry(QStringLiteral("x"), Connection::KiteCobra), Entry(QStringLiteral("y"))});
    Pattern()->setText(QStringLiteral("cobra"));
    Column()->setCurrentIndex(-1);
    QCOMPARE(m_Fixture->ShownNames(), (QStringList{QStringLiteral("Cobra"), QStringLiteral("x")}));
}

void tst_DialogFilter::emptyPatternLetsEverythingThrough()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a")), Entry(QString())});
    for (int mode = 0; mode < 3; ++mode) {
        Mode()->setCurrentIndex(mode);
        QCOMPARE(m_Fixture->Proxy()->rowCount(), 2);
    }
}

void tst_DialogFilter::columnDecidesWhereToSearch()
{
    m_Fixture->Build();
    m_Fixture->Add(
        {Entry(QStringLiteral("Cobra"), Connection::KiteEcho), Entry(QStringLiteral("x"), Connection::KiteCobra)});
    Pattern()->setText(QStringLiteral("cobra"));
    QCOMPARE(m_Fixture->ShownNames(), QStringList{QStringLiteral("Cobra")});
    Column()->setCurrentIndex(ConnectionsModel::ColumnDeviceType);
    QCOMPARE(m_Fixture->ShownNames(), QStringList{QStringLiteral("x")});
    QCOMPARE(m_Fixture->Proxy()->filterKeyColumn(), int{ConnectionsModel::ColumnDeviceType});
}

void tst_DialogFilter::showingFocusesAndSelectsThePattern()
{
    m_Fixture->Build();
    Pattern()->setText(QStringLiteral("abc"));
    m_Fixture->Show();
    m_Fixture->Action("m_pFilterAction")->trigger();
    QVERIFY(m_Fixture->Find<QFrame>("m_pFilterFrame")->isVisible());
    QVERIFY(Pattern()->hasFocus());
    QCOMPARE(Pattern()->selectedText(), QStringLiteral("abc"));
}

void tst_DialogFilter::signShowsWhileAHiddenFilterIsInForce()
{
    m_Fixture->Build();
    m_Fixture->Show();
    QVERIFY(!Sign()->isVisible());
    Pattern()->setText(QStringLiteral("x"));
    QVERIFY(Sign()->isVisible());
    m_Fixture->Action("m_pFilterAction")->trigger();
    QVERIFY(!Sign()->isVisible());
    Pattern()->setText(QStringLiteral("xy"));
    QVERIFY(!Sign()->isVisible());
    m_Fixture->Action("m_pFilterAction")->trigger();
    QVERIFY(Sign()->isVisible());
    Pattern()->clear();
    QVERIFY(!Sign()->isVisible());
}

void tst_DialogFilter::hidingTheFrameKeepsTheFilter()
{
    m_Fixture->Build();
    m_Fixture->Add({Entry(QStringLiteral("a")), Entry(QStringLiteral("b"))});
    m_Fixture->Show();
    m_Fixture->Action("m_pFilterAction")->trigger();
    QTest::keyClicks(Pattern(), QStringLiteral("b"));
    m_Fixture->Action("m_pFilterAction")->trigger();
    QCOMPARE(m_Fixture->ShownNames(), QStringList{QStringLiteral("b")});
    m_Fixture->dialog->hide();
    m_Fixture->Show();
    QCOMPARE(m_Fixture->ShownNames(), QStringList{QStringLiteral("b")});
}

void tst_DialogFilter::mnemonicsReachTheInputs()
{
    m_Fixture->Build();
    m_Fixture->Show();
    m_Fixture->Action("m_pFilterAction")->trigger();
    m_Fixture->dialog->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_Fixture->dialog));
    QTest::keyClick(m_Fixture->dialog, Qt::Key_O, Qt::AltModifier);
    QVERIFY(Column()->hasFocus());
    QTest::keyClick(m_Fixture->dialog, Qt::Key_P, Qt::AltModifier);
    QVERIFY(Pattern()->hasFocus());
    QTest::keyClick(m_Fixture->dialog, Qt::Key_M, Qt::AltModifier);
    QVERIFY(Mode()->hasFocus());
}

void tst_DialogFilter::settingsAreRestored()
{
    {
        const auto settings = Settings();
        settings->SetInt(QStringLiteral("Column"), 3, 0);
        settings->SetString(QStringLiteral("FilterPattern"), QStringLiteral("b*o"), 0);
        settings->SetInt(QStringLiteral("SearchMode"), 1, 0);
    }
    m_Fixture->Build();
    QCOMPARE(Column()->currentIndex(), 3);
    QCOMPARE(Pattern()->text(), QStringLiteral("b*o"));
    QCOMPARE(Mode()->currentIndex(), 1);
    m_Fixture->Add({Entry(QStringLiteral("x"), Connection::KiteBravo), Entry(QStringLiteral("y"))});
    QCOMPARE(m_Fixture->ShownNames(), QStringList{QStringLiteral("x")});
}

void tst_DialogFilter::settingsReadRule_data()
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

void tst_DialogFilter::settingsReadRule()
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
    m_Fixture->Build();
    QCOMPARE(Column()->currentIndex(), column);
    QCOMPARE(Mode()->currentIndex(), mode);
}

void tst_DialogFilter::missingSettingsAreTheDefaults()
{
    m_Fixture->Build();
    QCOMPARE(Column()->currentIndex(), 1);
    QCOMPARE(Pattern()->text(), QString());
    QCOMPARE(Mode()->currentIndex(), 0);
}

void tst_DialogFilter::settingsAreStoredAsTheyStand()
{
    m_Fixture->Build();
    Column()->setCurrentIndex(2);
    Pattern()->setText(QStringLiteral(" two words, \"quoted\" "));
    Mode()->setCurrentIndex(2);
    m_Fixture->dialog->StoreFilterSettings();
    const auto settings = Settings();
    QCOMPARE(settings->GetInt(QStringLiteral("Column"), -7, 0), 2);
    QCOMPARE(settings->GetString(QStringLiteral("FilterPattern"), QString(), 0),
             QStringLiteral(" two words, \"quoted\" "));
    QCOMPARE(settings->GetInt(QStringLiteral("SearchMode"), -7, 0), 2);
}

QTEST_MAIN(tst_DialogFilter)
#include "tst_dialogfilter.moc"
