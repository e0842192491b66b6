// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/filelock.h"
#include "tests/support/dialogfixture.h"
#include "tests/support/launcherfixture.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/applicationinstance.h"

#include <QMessageBox>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <csignal>
#include <functional>
#include <optional>

/// "&Connect" in the dialog, with real processes and the records in the configuration.
class TestDialogConnect : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void connectHidesStoresAndStarts();
    void entriesAreFreeAfterProcessesEnd();
    void applicationOfRowIsTold();
    void endOfApplicationIsTold_data();
    void endOfApplicationIsTold();
    void recordsAreWrittenBeforeFirstStart();
    void dialogHidesBeforeRecordsAreWritten();
    void entriesAddedDuringConnectAreConnected();
    void hiddenEntriesAreConnected();
    void entriesStartInModelOrder();
    void entriesInUseAreSkipped();
    void problemBoxDoesNotStopConnect();
    void entriesMayBeRemovedWhileTheProblemBoxIsOpen();
    void failedStartLeavesEntryFree();
    void destructionEndsApplications();

    void eventsAreHandledBeforeTheRecordsAreSaved();
    void secondConnectDuringTheFirst();
    void recordsTellOfChangesDuringTheirSave();
    void destructionBeforeTheRecordsAreSaved_data();
    void destructionBeforeTheRecordsAreSaved();
    void endOfTheProgramBeforeTheRecordsAreSaved_data();
    void endOfTheProgramBeforeTheRecordsAreSaved();
    void importBeforeTheRecordsAreSavedEndsConnect();
    void removalBeforeTheRecordsAreSavedIsNoFailure();
    void nothingTickedStartsNothing();
    void entryTickedBeforeTheFirstStartIsConnected();
    void failedSaveOfRecordsDoesNotStopConnect();
    void eventsAreHandledBetweenStarts();
    void applicationsThatEndMeanwhileStayInUse();
    void entriesMayMoveBetweenStarts();
    void entryConnectedLastMayBeRemoved();
    void failedEntryIsNotTriedAgainAfterABreak();
    void recordsTellOfChangesBetweenStarts();
    void hostConnectsEntriesWithoutTicks();
    void entriesOfTheHostMayMove();
    void importBetweenStartsEndsConnect();
    void applicationEndsDuringCancelledImport();
    void destructionBetweenStarts();
    void endOfTheProgramBetweenStarts_data();
    void endOfTheProgramBetweenStarts();

private:
    /// Opens an empty configuration on disk.
    void OpenStore()
    {
        m_store.emplace();
        QVERIFY(CfgCenter::Open(m_store->path()));
    }
    void LockRecords()
    {
        QVERIFY(QDir().mkpath(QFileInfo(RecordsFile()).path()));
        m_lock = std::make_unique<FileLock>();
        QString error;
        QCOMPARE(m_lock->TryLock(RecordsFile() + QStringLiteral(".lock"), &error), FileLock::Result::Locked);
    }
    QString RecordsFile() const { return m_store->filePath(QStringLiteral("shared/KiteResources/ConnectData.json")); }

    /// Calls `connectEntries` with locked records, and `meanwhile` when events are handled.
    void ConnectLocked(const std::function<void()>& meanwhile, const std::function<void()>& connectEntries)
    {
        LockRecords();
        bool wasMeanwhile = false;
        QTimer::singleShot(0, m_fixture->dialog, [&] {
            wasMeanwhile = true;
            QVERIFY(!m_fixture->dialog->isVisible());
            QVERIFY(m_fixture->dialog->property("isConnecting").toBool());
            meanwhile();
        });
        connectEntries();
        m_lock.reset();
        QVERIFY(wasMeanwhile);
    }
    void ConnectLocked(const std::function<void()>& meanwhile)
    {
        ConnectLocked(
            meanwhile, [this] { m_fixture->ConnectButton()->click(); });
    }
    /// Connects the first entry, in vain, as the test's data tell.
    std::function<void()> FailingConnect()
    {
        QFETCH(const bool, isByHost);
        if (isByHost)
            return [this] {
                QVERIFY(!m_fixture->dialog->ConnectEntries({0}));
            };
        return [this] {
            m_fixture->ConnectButton()->click();
        };
    }

    static void WaitLongerThanNoticed()
    {
        QTest::qSleep(50); // handles no events
    }

    /// Connects; the first start takes long, and `meanwhile` is called when events are handled after it.
    void ConnectSlowly(const std::function<void()>& meanwhile)
    {
        bool wasMeanwhile = false;
        connect(
            m_fixture->model, &QAbstractItemModel::dataChanged, this,
            [&] {
                WaitLongerThanNoticed();
                QMetaObject::invokeMethod(
                    m_fixture->dialog,
                    [&] {
                        wasMeanwhile = true;
                        meanwhile();
                    },
                    Qt::QueuedConnection);
            },
            Qt::SingleShotConnection);
        m_fixture->ConnectButton()->click();
        QVERIFY(wasMeanwhile);
    }

    QList<int> Statuses() const
    {
        QList<int> statuses;
        for (int row = 0; row < m_fixture->model->rowCount(); ++row)
            statuses += m_fixture->model->GetConnection(row).ConnectionStatus;
        return statuses;
    }

    QList<bool> Ticks() const
    {
        QList<bool> ticks;
        for (int row = 0; row < m_fixture->model->rowCount(); ++row)
            ticks += m_fixture->model->GetConnection(row).Selected;
        return ticks;
    }

    std::optional<QTemporaryDir> m_store;
    std::unique_ptr<FileLock> m_lock;
    std::unique_ptr<TestChild> m_child;
    std::unique_ptr<DialogFixture> m_fixture;
};

void TestDialogConnect::init()
{
    m_child = std::make_unique<TestChild>();
    m_fixture = std::make_unique<DialogFixture>();
    m_fixture->Install({QStringLiteral("Kite1"), QStringLiteral("Kite2"), QStringLiteral("Kite3")},
                       {Connection::KiteEcho, Connection::KiteBravo}, TestChild::Program());
    m_fixture->Build();
}

void TestDialogConnect::cleanup()
{
    m_lock.reset();
    m_fixture.reset();
    m_child.reset();
    CfgCenter::Close();
}

void TestDialogConnect::connectHidesStoresAndStarts()
{
    m_child->Behave("stay");
    m_fixture->Add({Entry("one", Connection::KiteEcho, true), Entry("two"),
                    Entry(QStringLiteral("three"), Connection::KiteBravo, true, QStringLiteral("10.0.0.3"))});
    m_fixture->Show();
    MessageBoxes boxes;
    QTest::mouseClick(m_fixture->ConnectButton(), Qt::LeftButton);
    QVERIFY(!m_fixture->dialog->isVisible());
    QCOMPARE(Statuses(), (QList<int>{1, 0, 1}));
    QVERIFY(!m_fixture->ConnectButton()->isEnabled());
    QTRY_COMPARE(m_child->Count(), 2);
    QList<QStringList> arguments;
    for (const TestChild::Report& report : m_child->Reports())
        arguments += report.arguments;
    QVERIFY(arguments.contains(
        QStringList{QStringLiteral("Kite1:XMsgDlg.dll"), QStringLiteral("Server"), QStringLiteral("one")}));
    QVERIFY(arguments.contains(QStringList{QStringLiteral("Kite1:XMsgDlg.dll"), QStringLiteral("Server"),
                                           QStringLiteral("Connection=10.0.0.3:27061")}));
    QCOMPARE(ConfigNodes::LegacyCount(QStringLiteral("none")), QStringLiteral("3"));
    QCOMPARE(ConfigNodes::LegacyRecord(1)->GetString(QStringLiteral("StationName"), QString(), 0),
             QStringLiteral("two"));
    QCOMPARE(ConfigNodes::LegacyRecord(2)->GetString(QStringLiteral("DeviceType"), QString(), 0),
             QStringLiteral("Kite Bravo"));
    QCOMPARE(boxes.Count(), 0);
    QVERIFY(!m_fixture->dialog->isVisible());
}

void TestDialogConnect::entriesAreFreeAfterProcessesEnd()
{
    m_child->Behave("exit", 3);
    m_fixture->Add({Entry("one", Connection::KiteEcho, true), Entry("two", Connection::KiteEcho, true)});
    QSignalSpy changed(m_fixture->model, &QAbstractItemModel::dataChanged);
    m_fixture->ConnectButton()->click();
    QCOMPARE(Statuses(), (QList<int>{1, 1}));
    QTRY_COMPARE(Statuses(), (QList<int>{0, 0}));
    QCOMPARE(changed.count(), 4);
    QVERIFY(m_fixture->ConnectButton()->isEnabled());
    QVERIFY(m_fixture->model->GetConnection(0).Selected);
}

void TestDialogConnect::applicationOfRowIsTold()
{
    m_child->Behave("stay");
    m_fixture->Add({Entry("one"), Entry("two", Connection::KiteEcho, true)});
    QVERIFY(m_fixture->dialog->ApplicationOf(1).isEmpty());
    const QDateTime before = QDateTime::currentDateTime();
    m_fixture->ConnectButton()->click();
    QTRY_COMPARE(m_child->Count(), 1);
    const QVariantMap application = m_fixture->dialog->ApplicationOf(1);
    QCOMPARE(application.keys(),
             (QStringList{QStringLiteral("process"), QStringLiteral("program"), QStringLiteral("since")}));
    QCOMPARE(application.value(QStringLiteral("process")), QVariant(m_child->Reports().constFirst().pid));
    QCOMPARE(application.value(QStringLiteral("program")), QVariant(TestChild::Program()));
    const QDateTime since = application.value(QStringLiteral("since")).toDateTime();
    QVERIFY(since >= before && since <= QDateTime::currentDateTime());
    for (const int row : {-1, 0, 2})
        QVERIFY(m_fixture->dialog->ApplicationOf(row).isEmpty());
}

void TestDialogConnect::endOfApplicationIsTold_data()
{
    QTest::addColumn<QByteArray>("mode");
    QTest::addColumn<QVariantMap>("end");
    QTest::newRow("exit code") << QByteArray("exit") << QVariantMap{{QStringLiteral("exitCode"), 3}};
    QVariantMap crash{{QStringLiteral("crashed"), true}};
#ifdef Q_OS_UNIX
    crash.insert(QStringLiteral("signal"), SIGABRT);
#endif
    QTest::newRow("crash") << QByteArray("crash") << crash;
}

void TestDialogConnect::endOfApplicationIsTold()
{
    QFETCH(const QByteArray, mode);
    QFETCH(const QVariantMap, end);
    m_child->Behave(mode.constData(), 3);
    m_fixture->Add({Entry("one", Connection::KiteEcho, true)});
    m_fixture->ConnectButton()->click();
    QVariantMap expected = m_fixture->dialog->ApplicationOf(0);
    QVERIFY(!expected.isEmpty());
    expected.insert(end);

    QVariantMap told;
    connect(m_fixture->model, &QAbstractItemModel::dataChanged, this,
            [&] { told = m_fixture->dialog->ApplicationOf(0); });
    QTRY_COMPARE(Statuses(), QList<int>{0});
    QCOMPARE(told, expected);
    QVERIFY(m_fixture->dialog->ApplicationOf(0).isEmpty());
}

void TestDialogConnect::recordsAreWrittenBeforeFirstStart()
{
    m_child->Behave("stay");
    m_fixture->Add({Entry("one", Connection::KiteEcho, true), Entry("two")});
    QString countAtFirstStart = QStringLiteral("not started");
    connect(m_fixture->model, &QAbstractItemModel::dataChanged, this,
            [&] { countAtFirstStart = ConfigNodes::LegacyCount(QStringLiteral("none")); });
    m_fixture->ConnectButton()->click();
    QCOMPARE(countAtFirstStart, QStringLiteral("2"));
}

namespace {

/// Notes how many records are stored when a window hides.
class HideWatcher : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Hide)
            counts += ConfigNodes::LegacyCount(QStringLiteral("none"));
        return QObject::eventFilter(watched, event);
    }

    QStringList counts;
};

} // namespace

void TestDialogConnect::dialogHidesBeforeRecordsAreWritten()
{
    m_child->Behave("stay");
    m_fixture->Add({Entry("one", Connection::KiteEcho, true)});
    m_fixture->Show();
    HideWatcher watcher;
    m_fixture->dialog->installEventFilter(&watcher);
    m_fixture->ConnectButton()->click();
    QCOMPARE(watcher.counts, QStringList{QStringLiteral("none")});
    QCOMPARE(ConfigNodes::LegacyCount(QStringLiteral("none")), QStringLiteral("1"));
}

void TestDialogConnect::entriesAddedDuringConnectAreConnected()
{
    m_child->Behave("stay");
    m_fixture->Add({Entry("one", Connection::KiteEcho, true)});
    // The second start waits for a break, as events are handled after a slow one.
    const auto add = [this] {
        m_fixture->Add({Entry("two", Connection::KiteEcho, true)});
        WaitLongerThanNoticed();
    };
    connect(m_fixture->model, &QAbstractItemModel::dataChanged, this, add, Qt::SingleShotConnection);
    m_fixture->ConnectButton()->click();
    QCOMPARE(Statuses(), (QList<int>{1, 1}));
    // The records were written before.
    QCOMPARE(ConfigNodes::LegacyCount(QStringLiteral("none")), QStringLiteral("1"));
}

void TestDialogConnect::hiddenEntriesAreConnected()
{
    m_child->Behave("stay");
    m_fixture->Add({Entry("one", Connection::KiteEcho, true), Entry("two")});
    m_fixture->Find<QLineEdit>("m_pFilterPatternLineEdit")->setText(QStringLiteral("two"));
    QCOMPARE(m_fixture->ShownNames(), QStringList{QStringLiteral("two")});
    m_fixture->ConnectButton()->click();
    QCOMPARE(Statuses(), (QList<int>{1, 0}));
    QCOMPARE(ConfigNodes::LegacyCount(QStringLiteral("none")), QStringLiteral("2"));
}

void TestDialogConnect::entriesStartInModelOrder()
{
    m_child->Behave("stay");
    m_fixture->Add({Entry("z", Connection::KiteEcho, true), Entry("a", Connection::KiteEcho, true)});
    m_fixture->ConnectButton()->click();
    QTRY_COMPARE(m_child->Count(), 2);
    QStringList firstApplication;
    for (const TestChild::Report& report : m_child->Reports())
        if (report.arguments.first() == QLatin1String("Kite1:XMsgDlg.dll"))
            firstApplication = report.arguments;
    QCOMPARE(firstApplication.last(), QStringLiteral("z"));
    QCOMPARE(ConfigNodes::LegacyRecord(0)->GetString(QStringLiteral("StationName"), QString(), 0), QStringLiteral("z"));
}

void TestDialogConnect::entriesInUseAreSkipped()
{
    m_child->Behave("stay");
    m_fixture->Add({Entry("one", Connection::KiteEcho, true)});
    m_fixture->ConnectButton()->click();
    QTRY_COMPARE(m_child->Count(), 1);
    m_fixture->Add({Entry("two", Connection::KiteEcho, true)});
    m_fixture->dialog->SlotConnect();
    QTRY_COMPARE(m_child->Count(), 2);
    QCOMPARE(m_fixture->appCounter->RunningApplications(Connection::KiteEcho).size(), 2);
}

void TestDialogConnect::problemBoxDoesNotStopConnect()
{
    m_child->Behave("stay");
    m_fixture->Add({Entry("no <b>%1</b>", Connection::Heron, true), Entry("two", Connection::KiteEcho, true)});
    MessageBoxes boxes;
    m_fixture->ConnectButton()->click();
    QCOMPARE(boxes.Count(), 1);
    QCOMPARE(boxes.Boxes().first().title, QStringLiteral("Problem"));
    QCOMPARE(boxes.Boxes().first().text,
             QStringLiteral("Could not connect to \"no <b>%1</b>\".\n\nThere is no free userinterface available to "
                            "connect to this type of hardware.\n\nDevice type: Heron\nNumber of installed applications "
                            "for this type: 0\nNumber of running applications for this type: 0"));
    QCOMPARE(Statuses(), (QList<int>{0, 1}));
    QVERIFY(!m_fixture->dialog->isVisible());
}

void TestDialogConnect::entriesMayBeRemovedWhileTheProblemBoxIsOpen()
{
    m_fixture->Add({Entry("none", Connection::Heron, true), Entry("one", Connection::KiteEcho, true),
                    Entry("two", Connection::KiteEcho, true)});
    QTimer::singleShot(0, m_fixture->dialog, [this] {
        QVERIFY(QApplication::activeModalWidget());
        m_fixture->model->RemoveEntries({1, 2});
        QApplication::activeModalWidget()->close();
    });
    m_fixture->ConnectButton()->click();
    QCOMPARE(Statuses(), QList<int>{0});
    QVERIFY(m_fixture->appCounter->Instances().isEmpty());
}

void TestDialogConnect::failedStartLeavesEntryFree()
{
    m_fixture->TearDown();
    m_fixture->Install({QStringLiteral("Kite1")}, {Connection::KiteEcho}, m_fixture->DataPath(QStringLiteral("gone")));
    m_fixture->Build();
    m_fixture->model->removeRows(0, m_fixture->model->rowCount());
    m_fixture->Add({Entry("one", Connection::KiteEcho, true)});
    MessageBoxes boxes;
    TraceRecorder traces;
    m_fixture->ConnectButton()->click();
    QCOMPARE(Statuses(), QList<int>{0});
    QCOMPARE(boxes.Count(), 0);
    QCOMPARE(traces.Count(QStringLiteral("ApplicationInstance::Start(): Application <%1> could not be started")
                              .arg(m_fixture->DataPath(QStringLiteral("gone")))),
             1);
    QVERIFY(m_fixture->ConnectButton()->isEnabled());
}

void TestDialogConnect::destructionEndsApplications()
{
    m_child->Behave("stubborn");
    m_fixture->Add({Entry("one", Connection::KiteEcho, true), Entry("two", Connection::KiteEcho, true)});
    m_fixture->ConnectButton()->click();
    QTRY_COMPARE(m_child->Count(), 2);
    m_fixture->TearDown();
    for (const TestChild::Report& report : m_child->Reports())
        QTRY_VERIFY(!System::IsProcess(report.pid));
}

void TestDialogConnect::eventsAreHandledBeforeTheRecordsAreSaved()
{
    m_child->Behave("stay");
    OpenStore();
    m_fixture->Add({Entry("one", Connection::KiteEcho, true), Entry("two", Connection::KiteBravo, true)});
    QByteArray recordsAtFirstStart;
    connect(
        m_fixture->model, &QAbstractItemModel::dataChanged, this,
        [&] { recordsAtFirstStart = Files::Read(RecordsFile()); }, Qt::SingleShotConnection);
    QList<int> statusesMeanwhile;
    bool existedMeanwhile = true;
    ConnectLocked([&] {
        statusesMeanwhile = Statuses();
        existedMeanwhile = QFile::exists(RecordsFile());
        m_lock.reset();
    });
    QCOMPARE(statusesMeanwhile, (QList<int>{0, 0}));
    QVERIFY(!existedMeanwhile);
    QCOMPARE(Statuses(), (QList<int>{1, 1}));
    QVERIFY2(recordsAtFirstStart.contains("\"ConnectionCount\": \"2\""), recordsAtFirstStart.constData());
    QVERIFY(recordsAtFirstStart.contains("\"ConnectData1/StationName\": \"two\""));
    QVERIFY(!m_fixture->dialog->property("isConnecting").toBool());
}

void TestDialogConnect::secondConnectDuringTheFirst()
{
    m_child->Behave("stay");
    OpenStore();
    m_fixture->Add({Entry("one", Connection::KiteEcho, true), Entry("two", Connection::KiteEcho, true)});
    MessageBoxes boxes;
    QList<int> statusesOfTheSecond;
    ConnectLocked([&] {
        m_fixture->Add({Entry("three", Connection::KiteEcho, true)});
        m_lock.reset();
        m_fixture->dialog->SlotConnect();
        statusesOfTheSecond = Statuses();
        QVERIFY(m_fixture->dialog->property("isConnecting").toBool());
    });
    QCOMPARE(statusesOfTheSecond, (QList<int>{1, 1, 1}));
    QCOMPARE(Statuses(), (QList<int>{1, 1, 1}));
    QTRY_COMPARE(m_child->Count(), 3);
    QCOMPARE(m_fixture->appCounter->Instances().size(), 3);
    QCOMPARE(boxes.Count(), 0);
    QCOMPARE(ConfigNodes::LegacyCount(QStringLiteral("none")), QStringLiteral("3"));
    QVERIFY(!m_fixture->dialog->property("isConnecting").toBool());
}

void TestDialogConnect::recordsTellOfChangesDuringTheirSave()
{
    m_child->Behave("stay");
    OpenStore();
    m_fixture->Add({Entry("one", Connection::KiteEcho, true)});
    QByteArray recordsAtFirstStart;
    ConnectLocked([&] {
        m_fixture->model->setData(m_fixture->model->index(0, ConnectionsModel::ColumnName), QStringLiteral("renamed"));
        connect(
            m_fixture->model, &QAbstractItemModel::dataChanged, this,
            [&] { recordsAtFirstStart = Files::Read(RecordsFile()); }, Qt::SingleShotConnection);
        m_lock.reset();
    });
    QCOMPARE(Statuses(), QList<int>{1});
    QVERIFY2(recordsAtFirstStart.contains("\"ConnectData0/StationName\": \"renamed\""),
             recordsAtFirstStart.constData());
}

void TestDialogConnect::destructionBeforeTheRecordsAreSaved_data()
{
    QTest::addColumn<bool>("isByHost");
    QTest::newRow("by the user") << false;
    QTest::newRow("by the host") << true;
}

void TestDialogConnect::destructionBeforeTheRecordsAreSaved()
{
    OpenStore();
    m_fixture->Add({Entry("one", Connection::KiteEcho, true)});
    ConnectLocked([this] { m_fixture->TearDown(); }, FailingConnect());
    // The records are saved nevertheless.
    QCOMPARE(ConfigNodes::LegacyCount(QStringLiteral("none")), QStringLiteral("1"));
    QCOMPARE(m_child->Count(), 0);
}

void TestDialogConnect::endOfTheProgramBeforeTheRecordsAreSaved_data()
{
    destructionBeforeTheRecordsAreSaved_data();
}

void TestDialogConnect::endOfTheProgramBeforeTheRecordsAreSaved()
{
    OpenStore();
    m_fixture->Add({Entry("one", Connection::KiteEcho, true)});
    QTimer::singleShot(0, this, [this] { ConnectLocked([] { QCoreApplication::exit(); }, FailingConnect()); });
    QCoreApplication::exec();
    QCOMPARE(m_fixture->appCounter->Instances().size(), 0);
    QCOMPARE(ConfigNodes::LegacyCount(QStringLiteral("none")), QStringLiteral("1"));
}

void TestDialogConnect::importBeforeTheRecordsAreSavedEndsConnect()
{
    m_child->Behave("stay");
    OpenStore();
    m_fixture->Add({Entry("before"), Entry("one", Connection::KiteEcho, true)});
    ConnectionsModel other(nullptr, QString());
    other.AddConnection(Entry("a", Connection::KiteEcho, true));
    ConnectLocked([&] {
        QVERIFY(m_fixture->dialog->Import(m_fixture->WriteFile(QStringLiteral("list.xml"), other.ToByteArray())));
        m_lock.reset();
    });
    QCOMPARE(Statuses(), QList<int>{0});
    QVERIFY(m_fixture->appCounter->Instances().isEmpty());
}

void TestDialogConnect::removalBeforeTheRecordsAreSavedIsNoFailure()
{
    OpenStore();
    m_fixture->Add({Entry("one")});
    ConnectLocked(
        [this] {
            m_fixture->model->removeRows(0, 1);
            m_lock.reset();
        },
        [this] { QVERIFY(m_fixture->dialog->ConnectEntries({0})); });
    QVERIFY(m_fixture->appCounter->Instances().isEmpty());
}

// What is ticked later was not there when the user connected.
void TestDialogConnect::nothingTickedStartsNothing()
{
    OpenStore();
    m_fixture->Add({Entry("one", Connection::KiteEcho)});
    ConnectLocked([this] {
        m_fixture->model->setData(m_fixture->model->index(0, ConnectionsModel::ColumnSelected), true);
        m_lock.reset();
    });
    QCOMPARE(Statuses(), QList<int>{0});
    QCOMPARE(ConfigNodes::LegacyCount(QStringLiteral("none")), QStringLiteral("1"));
}

void TestDialogConnect::entryTickedBeforeTheFirstStartIsConnected()
{
    m_child->Behave("stay");
    OpenStore();
    m_fixture->Add({Entry("one", Connection::KiteEcho), Entry("two", Connection::KiteEcho, true)});
    ConnectLocked([this] {
        m_fixture->model->setData(m_fixture->model->index(0, ConnectionsModel::ColumnSelected), true);
        m_lock.reset();
    });
    QCOMPARE(Statuses(), (QList<int>{1, 1}));
}

void TestDialogConnect::failedSaveOfRecordsDoesNotStopConnect()
{
    m_child->Behave("stay");
    OpenStore();
    m_fixture->Add({Entry("one", Connection::KiteEcho, true)});
    const QString inTheWay = RecordsFile() + QStringLiteral(".lock");
    QVERIFY(QDir().mkpath(inTheWay));
    m_fixture->ConnectButton()->click();
    QCOMPARE(Statuses(), QList<int>{1});
    QVERIFY(!QFile::exists(RecordsFile()));
    QVERIFY(QDir().rmdir(inTheWay));
    QVERIFY(CfgCenter::SaveDocument());
    QVERIFY(QFile::exists(RecordsFile()));
}

void TestDialogConnect::eventsAreHandledBetweenStarts()
{
    m_child->Behave("stay");
    m_fixture->Add({Entry("one", Connection::KiteEcho, true), Entry("two", Connection::KiteEcho, true)});
    QList<int> statusesMeanwhile;
    ConnectSlowly([&] { statusesMeanwhile = Statuses(); });
    QCOMPARE(statusesMeanwhile, (QList<int>{1, 0}));
    QCOMPARE(Statuses(), (QList<int>{1, 1}));
    QTRY_COMPARE(m_child->Count(), 2);
}

// An application that ends at once does not become available to the next entry of the same "Connect".
void TestDialogConnect::applicationsThatEndMeanwhileStayInUse()
{
    m_fixture->Add({Entry("one", Connection::KiteEcho, true), Entry("two", Connection::KiteEcho, true)});
    ConnectSlowly([this] {
        const ApplicationInstance* const first = m_fixture->appCounter->Instances().constFirst();
        QTRY_VERIFY(first->GetEnd());
        QCOMPARE(Statuses(), (QList<int>{1, 0}));
    });
    QCOMPARE(Statuses(), (QList<int>{1, 1}));
    QCOMPARE(m_fixture->appCounter->RunningApplications(Connection::KiteEcho),
             (QStringList{QStringLiteral("Kite1"), QStringLiteral("Kite2")}));
    QTRY_COMPARE(Statuses(), (QList<int>{0, 0}));
}

void TestDialogConnect::entriesMayMoveBetweenStarts()
{
    m_child->Behave("stay");
    m_fixture->Add({Entry("before"), Entry("one", Connection::KiteEcho, true), Entry("two", Connection::KiteEcho, true),
                    Entry("three", Connection::KiteEcho, true)});
    ConnectSlowly([this] {
        m_fixture->model->removeRows(0, 1);
        m_fixture->model->setData(m_fixture->model->index(2, ConnectionsModel::ColumnSelected), false);
    });
    QCOMPARE(m_fixture->Names(), (QStringList{QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")}));
    QCOMPARE(Statuses(), (QList<int>{1, 1, 0}));
    QTRY_COMPARE(m_child->Count(), 2);
}

void TestDialogConnect::entryConnectedLastMayBeRemoved()
{
    m_child->Behave("stay");
    m_fixture->Add({Entry("one", Connection::KiteEcho, true), Entry("two", Connection::KiteEcho, true),
                    Entry("three", Connection::KiteEcho, true)});
    ConnectSlowly([this] { m_fixture->model->removeRows(0, 2); });
    QCOMPARE(m_fixture->Names(), QStringList{QStringLiteral("three")});
    QCOMPARE(Statuses(), QList<int>{1});
}

void TestDialogConnect::failedEntryIsNotTriedAgainAfterABreak()
{
    m_child->Behave("stay");
    m_fixture->Add({Entry("none", Connection::Heron, true), Entry("one", Connection::KiteEcho, true),
                    Entry("two", Connection::KiteEcho, true)});
    MessageBoxes boxes;
    ConnectSlowly([] {});
    QCOMPARE(boxes.Count(), 1);
    QCOMPARE(Statuses(), (QList<int>{0, 1, 1}));
}

void TestDialogConnect::recordsTellOfChangesBetweenStarts()
{
    m_child->Behave("stay");
    OpenStore();
    m_fixture->Add({Entry("one", Connection::KiteEcho, true), Entry("two", Connection::KiteEcho, true)});
    QByteArray recordsAtSecondStart;
    ConnectSlowly([&] {
        m_fixture->model->setData(m_fixture->model->index(1, ConnectionsModel::ColumnName), QStringLiteral("renamed"));
        connect(
            m_fixture->model, &QAbstractItemModel::dataChanged, this,
            [&] { recordsAtSecondStart = Files::Read(RecordsFile()); }, Qt::SingleShotConnection);
    });
    QCOMPARE(Statuses(), (QList<int>{1, 1}));
    QVERIFY2(recordsAtSecondStart.contains("\"ConnectData1/StationName\": \"renamed\""),
             recordsAtSecondStart.constData());
}

void TestDialogConnect::hostConnectsEntriesWithoutTicks()
{
    m_child->Behave("stay");
    m_fixture->Add({Entry("one", Connection::KiteEcho, false), Entry("two", Connection::KiteEcho, true),
                    Entry("used", Connection::KiteEcho, false), Entry("four", Connection::KiteEcho, false)});
    m_fixture->model->SetConnectionStatus(m_fixture->model->GetConnection(2), Connection::InUse);
    m_fixture->Show();
    QVERIFY(m_fixture->dialog->ConnectEntries({3, 2, -1, 0, 4}));
    QCOMPARE(Statuses(), (QList<int>{1, 0, 1, 1}));
    QStringList started;
    for (const ApplicationInstance* const instance : m_fixture->appCounter->Instances())
        started.append(instance->GetConnection().ConnectionName);
    QCOMPARE(started, (QStringList{QStringLiteral("one"), QStringLiteral("four")}));
    QCOMPARE(Ticks(), (QList<bool>{false, true, false, false}));
    QVERIFY(!m_fixture->dialog->isVisible());
}

void TestDialogConnect::entriesOfTheHostMayMove()
{
    m_child->Behave("stay");
    OpenStore();
    m_fixture->Add({Entry("one", Connection::KiteEcho, false), Entry("two", Connection::KiteEcho, true),
                    Entry("three", Connection::KiteEcho, false)});
    ConnectLocked(
        [&] {
            m_fixture->model->RemoveEntries({0});
            m_fixture->model->setData(m_fixture->model->index(0, ConnectionsModel::ColumnSelected), false);
            m_lock.reset();
        },
        [this] { QVERIFY(m_fixture->dialog->ConnectEntries({2})); });
    QCOMPARE(Statuses(), (QList<int>{0, 1}));
    QCOMPARE(Ticks(), (QList<bool>{false, false}));
    QVERIFY(Files::Read(RecordsFile()).contains("\"ConnectionCount\": \"2\""));
}

void TestDialogConnect::importBetweenStartsEndsConnect()
{
    m_child->Behave("stay");
    m_fixture->Add({Entry("one", Connection::KiteEcho, true), Entry("two", Connection::KiteEcho, true)});
    ConnectionsModel other(nullptr, QString());
    for (const char* name : {"a", "b", "c"})
        other.AddConnection(Entry(name, Connection::KiteEcho, true));
    ConnectSlowly([&] {
        QVERIFY(m_fixture->dialog->Import(m_fixture->WriteFile(QStringLiteral("list.xml"), other.ToByteArray())));
    });
    QCOMPARE(Statuses(), (QList<int>{0, 0, 0}));
    QCOMPARE(m_fixture->appCounter->Instances().size(), 1);
}

void TestDialogConnect::applicationEndsDuringCancelledImport()
{
    m_child->Behave("stay");
    m_fixture->Add({Entry("one", Connection::KiteEcho, true)});
    m_fixture->ConnectButton()->click();
    m_fixture->Show();
    QCOMPARE(Statuses(), QList<int>{1});
    const auto end = [&] {
        m_fixture->appCounter->Instances().constFirst()->SlotProcessExited(0, QProcess::NormalExit);
        QApplication::activeModalWidget()->close();
    };
    connect(
        m_fixture->model, &QAbstractItemModel::rowsRemoved, m_fixture->dialog,
        [&] { QMetaObject::invokeMethod(m_fixture->dialog, end, Qt::QueuedConnection); }, Qt::SingleShotConnection);
    ConnectionsModel other(nullptr, QString());
    other.AddConnection(Entry("other"));
    const QByteArray longList = other.ToByteArray() + "<!--" + QByteArray(2 * 1024 * 1024, 'x') + "-->";
    QVERIFY(!m_fixture->dialog->Import(m_fixture->WriteFile(QStringLiteral("list.xml"), longList)));
    QCOMPARE(m_fixture->Names(), QStringList{QStringLiteral("one")});
    QTRY_COMPARE(Statuses(), QList<int>{0});
}

void TestDialogConnect::destructionBetweenStarts()
{
    m_fixture->Add({Entry("one", Connection::KiteEcho, true), Entry("two", Connection::KiteEcho, true)});
    const QSignalSpy destroyed(m_fixture->appCounter, &QObject::destroyed);
    ConnectSlowly([this] { m_fixture->TearDown(); });
    QCOMPARE(destroyed.count(), 1);
}

void TestDialogConnect::endOfTheProgramBetweenStarts_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("isNested");
    QTest::newRow("exit code 0") << 0 << false;
    QTest::newRow("exit code 1") << 1 << false;
    QTest::newRow("in a message box") << 0 << true;
}

void TestDialogConnect::endOfTheProgramBetweenStarts()
{
    QFETCH(const int, code);
    QFETCH(const bool, isNested);

    m_child->Behave("stay");
    m_fixture->Add({Entry("one", Connection::KiteEcho, true), Entry("two", Connection::KiteEcho, true)});
    QMessageBox box;
    const auto end = [&] {
        if (!isNested)
            return QCoreApplication::exit(code);
        QTimer::singleShot(0, &box, [code] { QCoreApplication::exit(code); });
        box.exec();
    };
    // By a timer, so that it ends the event loop of the break.
    QTimer::singleShot(0, this, [&] { ConnectSlowly([&] { QTimer::singleShot(0, &box, end); }); });
    QCOMPARE(QCoreApplication::exec(), code);
    QCOMPARE(Statuses(), (QList<int>{1, 0}));
}

VEXEL_TEST(QTEST_MAIN, TestDialogConnect)
#include "tst_dialogconnect.moc"
