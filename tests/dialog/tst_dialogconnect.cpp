#include "tests/dialog/dialogfixture.h"
#include "tests/launcher/launcherfixture.h"
#include "tests/support/system.h"

#include <QSignalSpy>

/// "&Connect" in the dialog, down to real processes and what they find in the configuration.
class tst_DialogConnect : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void hidesWritesAndStartsTickedFreeEntries();
    void entriesComeBackWhenTheProcessesEnd();
    void recordsAreWrittenBeforeAnythingStarts();
    void filterHidesNothingFromConnect();
    void modelOrderDecidesNotTheView();
    void entriesInUseAreSkipped();
    void nothingFreeTellsAndGoesOn();
    void failedStartLeavesTheEntryFree();
    void mnemonicAndEnterPressConnect();
    void tearDownWithRunningApplications();

private:
    static std::unique_ptr<ICfg> Record(int row)
    {
        return std::unique_ptr<ICfg>(
            CfgCenter::CreateCfg(QStringLiteral("KiteResources/ConnectData"), View::Shared, QString())
                ->OpenChild(QStringLiteral("ConnectData%1").arg(row), 0));
    }
    static QString RecordCount()
    {
        return CfgCenter::CreateCfg(QStringLiteral("KiteResources/ConnectData"), View::Shared, QString())
            ->GetString(QStringLiteral("ConnectionCount"), QStringLiteral("none"), 0);
    }
    QList<int> Statuses() const
    {
        QList<int> statuses;
        for (int row = 0; row < m_Fixture->model->rowCount(); ++row) {
            statuses += m_Fixture->model->GetConnection(row).ConnectionStatus;
        }
        return statuses;
    }

    std::unique_ptr<TestChild> m_Child;
    std::unique_ptr<DialogFixture> m_Fixture;
};

void tst_DialogConnect::init()
{
    m_Child = std::make_unique<TestChild>();
    m_Fixture = std::make_unique<DialogFixture>();
    m_Fixture->Install({QStringLiteral("Kite1"), QStringLiteral("Kite2"), QStringLiteral("Kite3")},
                       {Connection::KiteEcho, Connection::KiteBravo}, TestChild::Program());
    m_Fixture->Build();
}

void tst_DialogConnect::cleanup()
{
    m_Fixture.reset();
    m_Child.reset();
}

void tst_DialogConnect::hidesWritesAndStartsTickedFreeEntries()
{
    m_Child->Behave("stay");
    m_Fixture->Add({Entry(QStringLiteral("one"), Connection::KiteEcho, true), Entry(QStringLiteral("two")),
                    Entry(QStringLiteral("three"), Connection::KiteBravo, true, QStringLiteral("10.0.0.3"))});
    m_Fixture->Show();
    MessageBoxes boxes;
    QTest::mouseClick(m_Fixture->ConnectButton(), Qt::LeftButton);
    QVERIFY(!m_Fixture->dialog->isVisible());
    QCOMPARE(Statuses(), (QList<int>{1, 0, 1}));
    QVERIFY(!m_Fixture->ConnectButton()->isEnabled());
    QTRY_COMPARE(m_Child->Count(), 2);
    QList<QStringList> arguments;
    for (const TestChild::Report& report : m_Child->Reports()) {
        arguments += report.arguments;
    }
    QVERIFY(arguments.contains(
        QStringList{QStringLiteral("Kite1:XMsgDlg.dll"), QStringLiteral("Server"), QStringLiteral("one")}));
    QVERIFY(arguments.contains(QStringList{QStringLiteral("Kite1:XMsgDlg.dll"), QStringLiteral("Server"),
                                           QStringLiteral("Connection=10.0.0.3:27061")}));
    QCOMPARE(RecordCount(), QStringLiteral("3"));
    QCOMPARE(Record(1)->GetString(QStringLiteral("StationName"), QString(), 0), QStringLiteral("two"));
    QCOMPARE(Record(2)->GetString(QStringLiteral("DeviceType"), QString(), 0), QStringLiteral("Kite Bravo"));
    QCOMPARE(boxes.Count(), 0);
    QVERIFY(!m_Fixture->dialog->isVisible());
}

void tst_DialogConnect::entriesComeBackWhenTheProcessesEnd()
{
    m_Child->Behave("exit", 3);
    m_Fixture->Add({Entry(QStringLiteral("one"), Connection::KiteEcho, true),
                    Entry(QStringLiteral("two"), Connection::KiteEcho, true)});
    QSignalSpy changed(m_Fixture->model, &QAbstractItemModel::dataChanged);
    m_Fixture->ConnectButton()->click();
    QCOMPARE(Statuses(), (QList<int>{1, 1}));
    QTRY_COMPARE(Statuses(), (QList<int>{0, 0}));
    QCOMPARE(changed.count(), 4);
    QVERIFY(m_Fixture->ConnectButton()->isEnabled());
    QVERIFY(m_Fixture->model->GetConnection(0).Selected);
}

void tst_DialogConnect::recordsAreWrittenBeforeAnythingStarts()
{
    m_Child->Behave("stay");
    m_Fixture->Add({Entry(QStringLiteral("one"), Connection::KiteEcho, true), Entry(QStringLiteral("two"))});
    QString countAtFirstStart = QStringLiteral("not started");
    connect(m_Fixture->model, &QAbstractItemModel::dataChanged, this, [&] { countAtFirstStart = RecordCount(); });
    m_Fixture->ConnectButton()->click();
    QCOMPARE(countAtFirstStart, QStringLiteral("2"));
}

void tst_DialogConnect::filterHidesNothingFromConnect()
{
    m_Child->Behave("stay");
    m_Fixture->Add({Entry(QStringLiteral("one"), Connection::KiteEcho, true), Entry(QStringLiteral("two"))});
    m_Fixture->Find<QLineEdit>("m_pFilterPatternLineEdit")->setText(QStringLiteral("two"));
    QCOMPARE(m_Fixture->ShownNames(), QStringList{QStringLiteral("two")});
    m_Fixture->ConnectButton()->click();
    QCOMPARE(Statuses(), (QList<int>{1, 0}));
    QCOMPARE(RecordCount(), QStringLiteral("2"));
}

void tst_DialogConnect::modelOrderDecidesNotTheView()
{
    m_Child->Behave("stay");
    m_Fixture->Add({Entry(QStringLiteral("z"), Connection::KiteEcho, true),
                    Entry(QStringLiteral("a"), Connection::KiteEcho, true)});
    m_Fixture->ConnectButton()->click();
    QTRY_COMPARE(m_Child->Count(), 2);
    QStringList firstApplication;
    for (const TestChild::Report& report : m_Child->Reports()) {
        if (report.arguments.first() == QLatin1String("Kite1:XMsgDlg.dll")) {
            firstApplication = report.arguments;
        }
    }
    QCOMPARE(firstApplication.last(), QStringLiteral("z"));
    QCOMPARE(Record(0)->GetString(QStringLiteral("StationName"), QString(), 0), QStringLiteral("z"));
}

void tst_DialogConnect::entriesInUseAreSkipped()
{
    m_Child->Behave("stay");
    m_Fixture->Add({Entry(QStringLiteral("one"), Connection::KiteEcho, true)});
    m_Fixture->ConnectButton()->click();
    QTRY_COMPARE(m_Child->Count(), 1);
    m_Fixture->Add({Entry(QStringLiteral("two"), Connection::KiteEcho, true)});
    m_Fixture->dialog->SlotConnect();
    QTRY_COMPARE(m_Child->Count(), 2);
    QCOMPARE(m_Fixture->appCounter->RunningApplications(Connection::KiteEcho).size(), 2);
}

void tst_DialogConnect::nothingFreeTellsAndGoesOn()
{
    m_Child->Behave("stay");
    m_Fixture->Add({Entry(QStringLiteral("no <b>%1</b>"), Connection::Heron, true),
                    Entry(QStringLiteral("two"), Connection::KiteEcho, true)});
    MessageBoxes boxes;
    m_Fixture->ConnectButton()->click();
    QCOMPARE(boxes.Count(), 1);
    QCOMPARE(boxes.Boxes().first().title, QStringLiteral("Problem"));
    QCOMPARE(boxes.Boxes().first().text,
             QStringLiteral("Could not connect to \"no <b>%1</b>\".\n\nThere is no free userinterface available to "
                            "connect to this type of hardware.\n\nDevice type: Heron\nNumber of installed applications "
                            "for this type: 0\nNumber of running applications for this type: 0"));
    QCOMPARE(Statuses(), (QList<int>{0, 1}));
    QVERIFY(!m_Fixture->dialog->isVisible());
}

void tst_DialogConnect::failedStartLeavesTheEntryFree()
{
    m_Fixture->TearDown();
    m_Fixture->Install({QStringLiteral("Kite1")}, {Connection::KiteEcho}, m_Fixture->DataPath(QStringLiteral("gone")));
    m_Fixture->Build();
    m_Fixture->model->removeRows(0, m_Fixture->model->rowCount());
    m_Fixture->Add({Entry(QStringLiteral("one"), Connection::KiteEcho, true)});
    MessageBoxes boxes;
    TraceRecorder traces;
    m_Fixture->ConnectButton()->click();
    QCOMPARE(Statuses(), QList<int>{0});
    QCOMPARE(boxes.Count(), 0);
    QCOMPARE(traces.Count(QStringLiteral("ApplicationInstance::Start(): Application <%1> could not be started")
                              .arg(m_Fixture->DataPath(QStringLiteral("gone")))),
             1);
    QVERIFY(m_Fixture->ConnectButton()->isEnabled());
}

void tst_DialogConnect::mnemonicAndEnterPressConnect()
{
    m_Fixture->Add({Entry(QStringLiteral("one"))});
    for (const auto& [key, modifier] :
         {std::pair(Qt::Key_C, Qt::AltModifier), std::pair(Qt::Key_Return, Qt::NoModifier)}) {
        m_Fixture->Show();
        m_Fixture->dialog->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_Fixture->dialog));
        QTest::keyClick(m_Fixture->dialog, key, modifier);
        QTRY_VERIFY(!m_Fixture->dialog->isVisible());
    }
    QCOMPARE(RecordCount(), QStringLiteral("1"));
}

void tst_DialogConnect::tearDownWithRunningApplications()
{
    m_Child->Behave("stubborn");
    m_Fixture->Add({Entry(QStringLiteral("one"), Connection::KiteEcho, true),
                    Entry(QStringLiteral("two"), Connection::KiteEcho, true)});
    m_Fixture->ConnectButton()->click();
    QTRY_COMPARE(m_Child->Count(), 2);
    m_Fixture->TearDown();
    for (const TestChild::Report& report : m_Child->Reports()) {
        QTRY_VERIFY(!System::IsProcess(report.pid));
    }
}

QTEST_MAIN(tst_DialogConnect)
#include "tst_dialogconnect.moc"
