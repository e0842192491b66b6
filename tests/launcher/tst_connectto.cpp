// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/filelock.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/appcounter.h"

#include "tests/support/files.h"
#include "tests/support/launcherfixture.h"
#include "tests/support/linkfixture.h"
#include "tests/support/markingtranslator.h"
#include "tests/support/messageboxes.h"
#include "tests/support/system/inheritedhandles.h"
#include "tests/support/system/system.h"
#include "tests/support/tracerecorder.h"
#include "userinterface/vexelconnectdlg/applicationinstance.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTemporaryFile>
#include <QTest>

#include <memory>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

Connection Entry(const char* name, int deviceType, int connectionType = 1)
{
    Connection entry;
    entry.ConnectionName = s(name);
    entry.DeviceType = deviceType;
    entry.ConnectionType = connectionType;
    entry.DriverAddress = QStringLiteral("driver.example");
    return entry;
}

} // namespace

/// Starting applications for entries, and the end of applications.
class TestConnectTo : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void argumentsReachTheProgram_data();
    void argumentsReachTheProgram();
    void childInheritsNoHandles();
    void startsInCurrentDirectory();
    void tooLongCommandLineFails();
    void entryIsInUseUntilProcessEnds();
    void firstFreeApplicationIsStarted();
    void kiteEchoFamilySharesApplications();
    void statusChangesBeforeInstanceIsDeleted();
    void statusChangesBeforeRunningApplications();
    void statusChangeFindsTheApplication();
    void applicationOfEntryIsFound();
    void statusChangeFindsTheApplicationThatEnded();
    void failedStartHasNoApplication();
    void namesOfRunningApplicationsAreCaseSensitive();
    void updateForgetsRunningApplications();

    void noFreeApplicationShowsProblem_data();
    void noFreeApplicationShowsProblem();
    void problemCountsRunningApplications();
    void problemIsTranslated();
    void longNameIsShortenedInProblem_data();
    void longNameIsShortenedInProblem();
    void shortenedNameEndsWithAnEllipsis();

    void failedStartLeavesEntryFree();
    void failedInstanceIsDeletedWhenAnotherEnds();
    void deletingFailedInstanceFreesEqualEntry();
    void releasedInstanceIsDeleted();
    void startedAndErrorInstancesAreKept();
    void instanceIsDeletedOnce();
    void typesCountRunningApplicationsSeparately();
    void nothingToDeleteChangesNothing();
    void unsupportedTypeIsStarted();
    void commandLineIsTraced_data();
    void commandLineIsTraced();
    void manyStartsLeakNothing();
    void worksWithoutModel();
    void worksAfterModelIsDeleted();
    void destructorEndsRunningApplications_data();
    void destructorEndsRunningApplications();
    void destructorDeletesReleasedInstances();

private:
    /// Builds the launcher with these applications and the device types that they serve.
    void Install(const QList<std::pair<QString, QList<int>>>& applications,
                 const QString& program = TestChild::Program());
    bool WaitForEnd(qsizetype instances = 0) const
    {
        return QTest::qWaitFor([&] { return m_pCounter->Instances().size() == instances; }, 20000);
    }
    int Status(int row) const { return m_pModel->GetConnection(row).ConnectionStatus; }

    std::unique_ptr<TestChild> m_pChild;
    std::unique_ptr<DataDirectory> m_pData;
    std::unique_ptr<TraceRecorder> m_pTraces;
    std::unique_ptr<MessageBoxes> m_pBoxes;
    std::unique_ptr<ConnectionsModel> m_pModel;
    std::unique_ptr<AppCounter> m_pCounter;
};

void TestConnectTo::init()
{
    m_pChild = std::make_unique<TestChild>();
    m_pData = std::make_unique<DataDirectory>();
    m_pTraces = std::make_unique<TraceRecorder>();
    m_pBoxes = std::make_unique<MessageBoxes>();
    m_pModel = std::make_unique<ConnectionsModel>(nullptr, QStringLiteral("ConnectionsModel"));
    new QAbstractItemModelTester(m_pModel.get(), QAbstractItemModelTester::FailureReportingMode::QtTest,
                                 m_pModel.get());
}

void TestConnectTo::cleanup()
{
    m_pModel.reset();
    m_pCounter.reset();
    m_pBoxes.reset();
    m_pTraces.reset();
    m_pData.reset();
    m_pChild.reset();
}

void TestConnectTo::Install(const QList<std::pair<QString, QList<int>>>& applications, const QString& program)
{
    QVERIFY(m_pData->Install(applications, program));
    m_pCounter = std::make_unique<AppCounter>(m_pModel.get(), QStringLiteral("Launcher"));
    m_pTraces->Clear();
}

void TestConnectTo::argumentsReachTheProgram_data()
{
    // tst_commandline tests the command lines of all types, tst_applicationinstance tests all kinds of texts.
    QTest::addColumn<int>("deviceType");
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("name") << 6 << QStringList{s("Server"), s("Mast \"7\" & north\\")};
    QTest::newRow("driver address") << 1 << QStringList{s("Server"), s("Connection=driver.example:27061")};
    QTest::newRow("multichannel server") << 2
                                         << QStringList{s("Server"), s("MCS"), s("MCSMaster"),
                                                        s("Connection=driver.example:27081")};
    QTest::newRow("unsupported type") << 9 << QStringList{};
}

void TestConnectTo::argumentsReachTheProgram()
{
    QFETCH(const int, deviceType);
    QFETCH(const QStringList, arguments);
    const QString name = s("Пеленгатор_方位.2-a");
    Install({{name, {1, 2, 4, 9}}});
    QVERIFY(m_pCounter->ConnectTo(Entry("Mast \"7\" & north\\", deviceType, Connection::MultiChannelServer)));
    QTRY_COMPARE(m_pChild->Count(), 1);
    QCOMPARE(m_pChild->Reports().constFirst().arguments, QStringList(name + s(":XMsgDlg.dll")) + arguments);
    QCOMPARE(QFileInfo(m_pChild->Reports().constFirst().program).canonicalFilePath(),
             QFileInfo(TestChild::Program()).canonicalFilePath());
    QCOMPARE(m_pBoxes->Count(), 0);
    QVERIFY(WaitForEnd());
}

void TestConnectTo::childInheritsNoHandles()
{
    Install({{s("Kite"), {1}}, {s("Kestrel"), {1}}});
    // Handles that this process inherited itself are passed on.
    const QStringList before = HandlesToInherit();
    // A host has open files, locks, sockets and other children when it starts applications.
    QTemporaryFile file;
    QVERIFY(file.open());
    FileLock lock;
    QString error;
    QCOMPARE(lock.TryLock(file.fileName() + s(".lock"), &error), FileLock::Result::Locked);
    const TestServer link;
    const auto caller = CallerOf(link.port);
    QTRY_COMPARE(link.callback.Count(RecordingCallback::Open), 1);
    m_pChild->Behave("stay");
    QVERIFY(m_pCounter->ConnectTo(Entry("first", 1)));
    QVERIFY(m_pCounter->ConnectTo(Entry("second", 1)));
    QTRY_COMPARE(m_pChild->Count(), 2);
    for (const TestChild::Report& report : m_pChild->Reports())
        QCOMPARE(report.inherited.join(u'\n'), before.join(u'\n'));
}

void TestConnectTo::startsInCurrentDirectory()
{
    Install({{s("Kite"), {1}}});
    const QTemporaryDir elsewhere;
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(elsewhere.path()));
    const bool started = m_pCounter->ConnectTo(Entry("a", 1));
    const QString current = QDir::currentPath();
    QVERIFY(QDir::setCurrent(before));
    QVERIFY(started);
    QCOMPARE(m_pCounter->Instances().constFirst()->GetWorkingDirectory(), current);
    QTRY_COMPARE(m_pChild->Count(), 1);
    QCOMPARE(m_pChild->Reports().constFirst().directory, QDir(elsewhere.path()).canonicalPath());
    QVERIFY(WaitForEnd());
}

void TestConnectTo::tooLongCommandLineFails()
{
    if (System::IsWine())
        QSKIP("Wine takes command lines of any length");
    // An argument of a megabyte.
    Install({{s("Kite"), {4}}});
    Connection entry = Entry("", 4);
    entry.ConnectionName = QString(1024 * 1024, QLatin1Char('x'));
    m_pModel->AddConnection(entry);
    QVERIFY(!m_pCounter->ConnectTo(entry));
    QCOMPARE(
        m_pTraces->Messages(),
        (QStringList{s("ApplicationInstance::Start(): Application <%1> could not be started").arg(TestChild::Program()),
                     s("ApplicationInstance::ReleaseInstance() unknwon state 0")}));
    QCOMPARE(m_pBoxes->Count(), 0);
    QCOMPARE(Status(0), 0);
    QVERIFY(m_pCounter->RunningApplications(4).isEmpty());
    QCOMPARE(m_pChild->Count(), 0);

    // The application remains available.
    QVERIFY(m_pCounter->ConnectTo(Entry("short", 4)));
    QVERIFY(WaitForEnd());
}

void TestConnectTo::entryIsInUseUntilProcessEnds()
{
    Install({{s("Kite"), {1}}});
    m_pChild->Behave("polite");
    m_pModel->AddConnection(Entry("other", 1));
    m_pModel->AddConnection(Entry("mine", 1));
    QSignalSpy changed(m_pModel.get(), &QAbstractItemModel::dataChanged);

    QVERIFY(m_pCounter->ConnectTo(Entry("mine", 1)));
    QCOMPARE(Status(0), 0);
    QCOMPARE(Status(1), 1);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).toModelIndex(), m_pModel->index(1, ConnectionsModel::ColumnStatus));
    QCOMPARE(m_pCounter->RunningApplications(1), QStringList(s("Kite")));
    QVERIFY(m_pCounter->FreeApplications(1).isEmpty());
    QCOMPARE(m_pCounter->InstalledApplications(1), QStringList(s("Kite")));
    QCOMPARE(m_pCounter->Instances().size(), 1);
    ApplicationInstance* const instance = m_pCounter->Instances().constFirst();
    QCOMPARE(instance->GetState(), ApplicationInstance::Started);
    QVERIFY(instance->GetConnection() == Entry("mine", 1));
    QCOMPARE(instance->GetHostName(), s("Kite"));

    // Ends like an application whose window is closed.
    QTRY_COMPARE(m_pChild->Count(), 1);
    const QPointer<ApplicationInstance> watched = instance;
    instance->ReleaseInstance();
    instance->SetState(ApplicationInstance::Started);
    QVERIFY(WaitForEnd());
    QCOMPARE(Status(1), 0);
    QCOMPARE(changed.count(), 2);
    QVERIFY(m_pCounter->RunningApplications(1).isEmpty());
    QCOMPARE(m_pCounter->FreeApplications(1), QStringList(s("Kite")));
    QTRY_VERIFY(watched.isNull());
}

void TestConnectTo::firstFreeApplicationIsStarted()
{
    Install({{s("First"), {1}}, {s("Second"), {1}}});
    m_pChild->Behave("polite");
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QVERIFY(m_pCounter->ConnectTo(Entry("b", 1)));
    QCOMPARE(m_pCounter->RunningApplications(1), (QStringList{s("First"), s("Second")}));
    QVERIFY(!m_pCounter->ConnectTo(Entry("c", 1)));
    QCOMPARE(m_pBoxes->Count(), 1);

    // The first one ends and is free again.
    QTRY_COMPARE(m_pChild->Count(), 2);
    ApplicationInstance* const first = m_pCounter->Instances().constFirst();
    QCOMPARE(first->GetHostName(), s("First"));
    first->ReleaseInstance();
    first->SetState(ApplicationInstance::Started);
    QVERIFY(WaitForEnd(1));
    QCOMPARE(m_pCounter->FreeApplications(1), QStringList(s("First")));
    QVERIFY(m_pCounter->ConnectTo(Entry("c", 1)));
    QCOMPARE(m_pCounter->Instances().constLast()->GetHostName(), s("First"));
    QCOMPARE(m_pCounter->RunningApplications(1), (QStringList{s("Second"), s("First")}));
}

void TestConnectTo::kiteEchoFamilySharesApplications()
{
    Install({{s("Kite"), {4}}});
    m_pChild->Behave("stay");
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 6)));
    for (const int deviceType : {0, 3, 4, 5, 6, 7, 8}) {
        QCOMPARE(m_pCounter->RunningApplications(deviceType), QStringList(s("Kite")));
        QVERIFY(m_pCounter->FreeApplications(deviceType).isEmpty());
        QVERIFY(!m_pCounter->ConnectTo(Entry("b", deviceType)));
    }
    QCOMPARE(m_pBoxes->Count(), 7);
    // The box shows the type of the entry.
    QVERIFY(m_pBoxes->Boxes().at(0).text.contains(s("Device type: Kite Alpha + Wren C\n")));
}

void TestConnectTo::statusChangesBeforeInstanceIsDeleted()
{
    // When the model announces "Free", the instance is still listed.
    Install({{s("Kite"), {1}}});
    m_pModel->AddConnection(Entry("a", 1));
    QList<std::pair<int, qsizetype>> seen;
    connect(m_pModel.get(), &QAbstractItemModel::dataChanged, m_pCounter.get(), [&] {
        seen.append({Status(0), m_pCounter->Instances().size()});
    });
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QVERIFY(WaitForEnd());
    QCOMPARE(seen, (QList<std::pair<int, qsizetype>>{{1, 1}, {0, 1}}));
}

void TestConnectTo::statusChangesBeforeRunningApplications()
{
    Install({{s("Kite"), {1}}});
    m_pModel->AddConnection(Entry("a", 1));
    QList<std::pair<int, QStringList>> seen;
    connect(m_pModel.get(), &QAbstractItemModel::dataChanged, m_pCounter.get(), [&] {
        seen.append({Status(0), m_pCounter->RunningApplications(1)});
    });
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QVERIFY(WaitForEnd());
    QCOMPARE(seen, (QList<std::pair<int, QStringList>>{{1, {}}, {0, {s("Kite")}}}));
}

void TestConnectTo::statusChangeFindsTheApplication()
{
    Install({{s("Kite"), {1}}});
    m_pChild->Behave("exit", 3);
    const Connection entry = Entry("a", 1);
    m_pModel->AddConnection(entry);
    QList<qint64> processes;
    QList<int> exitCodes;
    connect(m_pModel.get(), &QAbstractItemModel::dataChanged, m_pCounter.get(), [&] {
        const ApplicationInstance* const instance = m_pCounter->InstanceOf(entry);
        processes.append(instance ? instance->GetProcess() : -1);
        exitCodes.append(instance && instance->GetEnd() ? instance->GetEnd()->code : -1);
    });
    QVERIFY(!m_pCounter->InstanceOf(entry));
    QVERIFY(m_pCounter->ConnectTo(entry));
    QVERIFY(WaitForEnd());
    const qint64 process = m_pChild->Reports().constFirst().pid;
    QCOMPARE(processes, (QList<qint64>{process, process}));
    QCOMPARE(exitCodes, (QList<int>{-1, 3}));
    QVERIFY(!m_pCounter->InstanceOf(entry));
}

void TestConnectTo::applicationOfEntryIsFound()
{
    Install({{s("A"), {1}}, {s("B"), {1}}});
    m_pChild->Behave("stay");
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QVERIFY(m_pCounter->ConnectTo(Entry("b", 1)));
    const QList<ApplicationInstance*> instances = m_pCounter->Instances();
    Connection entry = Entry("b", 1);
    entry.Selected = true;
    entry.ConnectionStatus = Connection::InUse;
    QCOMPARE(m_pCounter->InstanceOf(entry), instances.at(1));
    QCOMPARE(m_pCounter->InstanceOf(Entry("a", 1)), instances.at(0));
    QCOMPARE(m_pCounter->InstanceOf(Entry("c", 1)), nullptr);
    // Started once more.
    instances.at(0)->SetState(ApplicationInstance::Free);
    m_pCounter->SlotOnProcessExit();
    QCOMPARE(m_pCounter->InstanceOf(Entry("a", 1)), nullptr);
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QCOMPARE(m_pCounter->InstanceOf(Entry("a", 1)), m_pCounter->Instances().constLast());
}

// Both serve entries that are equal, so the status changes with the end of either.
void TestConnectTo::statusChangeFindsTheApplicationThatEnded()
{
    Install({{s("A"), {1}}, {s("B"), {1}}});
    m_pChild->Behave("stay");
    const Connection entry = Entry("a", 1);
    m_pModel->AddConnection(entry);
    QVERIFY(m_pCounter->ConnectTo(entry));
    QVERIFY(m_pCounter->ConnectTo(entry));
    const qint64 first = m_pCounter->Instances().constFirst()->GetProcess();
    qint64 found = -1;
    connect(m_pModel.get(), &QAbstractItemModel::dataChanged, m_pCounter.get(), [&] {
        if (const ApplicationInstance* const instance = m_pCounter->InstanceOf(entry))
            found = instance->GetProcess();
    });
    QVERIFY(System::Crash(first));
    QTRY_COMPARE(m_pCounter->Instances().size(), 1);
    QCOMPARE(found, first);
}

void TestConnectTo::failedStartHasNoApplication()
{
    Install({{s("Kite"), {1}}}, s("/no/such/program"));
    QVERIFY(!m_pCounter->ConnectTo(Entry("a", 1)));
    QCOMPARE(m_pCounter->Instances().size(), 1);
    QCOMPARE(m_pCounter->InstanceOf(Entry("a", 1)), nullptr);
}

void TestConnectTo::namesOfRunningApplicationsAreCaseSensitive()
{
    Install({{s("Kite"), {1}}, {s("KITE"), {1}}});
    m_pChild->Behave("stay");
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QCOMPARE(m_pCounter->FreeApplications(1), QStringList(s("KITE")));
    QVERIFY(m_pCounter->ConnectTo(Entry("b", 1)));
    QCOMPARE(m_pCounter->RunningApplications(1), (QStringList{s("Kite"), s("KITE")}));
    m_pCounter->Instances().constLast()->SetState(ApplicationInstance::Free);
    m_pCounter->SlotOnProcessExit();
    QCOMPARE(m_pCounter->RunningApplications(1), QStringList(s("Kite")));
}

void TestConnectTo::updateForgetsRunningApplications()
{
    Install({{s("Kite"), {4}}});
    m_pChild->Behave("stay");
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 4)));
    QCOMPARE(m_pCounter->RunningApplications(4), QStringList(s("Kite")));
    m_pCounter->UpdateInstalledApps();
    QVERIFY(m_pCounter->RunningApplications(4).isEmpty());
    m_pCounter->UpdateTypeDeviceMappings();
    QCOMPARE(m_pCounter->FreeApplications(4), QStringList(s("Kite")));
    QCOMPARE(m_pCounter->Instances().size(), 1);
}

void TestConnectTo::noFreeApplicationShowsProblem_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("deviceType");
    QTest::addColumn<QString>("typeName");
    QTest::newRow("plain name") << s("Mast 7") << 1 << s("Kite Bravo");
    QTest::newRow("type out of range") << s("Mast 7") << 99 << s("No string representation for ID 99");
    QTest::newRow("empty name") << QString() << 9 << s("Heron");
    QTest::newRow("markup and placeholders") << s("<b>%1</b> \"%2\"\n%3 %4 %n %L1") << 2 << s("Kite Cobra");
    QTest::newRow("non-Latin") << s("Пеленгатор \xF0\x9F\x93\xA1") << 14 << s("Linnet + DF");
}

void TestConnectTo::noFreeApplicationShowsProblem()
{
    QFETCH(const QString, name);
    QFETCH(const int, deviceType);
    QFETCH(const QString, typeName);
    Install({});
    Connection entry = Entry("", deviceType);
    entry.ConnectionName = name;
    m_pModel->AddConnection(entry);
    QSignalSpy changed(m_pModel.get(), &QAbstractItemModel::dataChanged);

    QVERIFY(!m_pCounter->ConnectTo(entry));
    QCOMPARE(m_pBoxes->Count(), 1);
    const MessageBoxes::Box& box = m_pBoxes->Boxes().constFirst();
    QCOMPARE(box.title, s("Problem"));
    QCOMPARE(box.text, s("Could not connect to \"") + name +
                           s("\".\n\nThere is no free userinterface available to connect to this type of hardware."
                             "\n\nDevice type: ") +
                           typeName +
                           s("\nNumber of installed applications for this type: 0"
                             "\nNumber of running applications for this type: 0"));
    QCOMPARE(box.informativeText, QString());
    QCOMPARE(box.icon, QMessageBox::Information);
    QCOMPARE(box.buttons, QMessageBox::Ok);
    QVERIFY(box.modal);
    QVERIFY(!box.hasParent);
    QCOMPARE(box.textFormat, Qt::PlainText);

    // Nothing else happens.
    QVERIFY(m_pCounter->Instances().isEmpty());
    QCOMPARE(changed.count(), 0);
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());
}

void TestConnectTo::problemCountsRunningApplications()
{
    Install({{s("Kite"), {1}}});
    m_pChild->Behave("stay");
    m_pModel->AddConnection(Entry("a", 1));
    m_pModel->AddConnection(Entry("b", 1));
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QVERIFY(!m_pCounter->ConnectTo(Entry("b", 1)));
    QCOMPARE(m_pBoxes->Count(), 1);
    QVERIFY(m_pBoxes->Boxes().constFirst().text.endsWith(
        s("\nNumber of installed applications for this type: 1\nNumber of running applications for this type: 1")));
    QCOMPARE(Status(0), 1);
    QCOMPARE(Status(1), 0);
    QCOMPARE(m_pCounter->Instances().size(), 1);
    QCOMPARE(m_pCounter->RunningApplications(1), QStringList(s("Kite")));
}

void TestConnectTo::problemIsTranslated()
{
    const MarkingTranslator translator(s("AppCounter"));
    Install({});
    QVERIFY(!m_pCounter->ConnectTo(Entry("Mast 7", 1)));
    QCOMPARE(m_pBoxes->Count(), 1);
    QCOMPARE(m_pBoxes->Boxes().constFirst().title, s("[Problem]"));
    const QString text = m_pBoxes->Boxes().constFirst().text;
    QVERIFY2(text.startsWith(s("[Could not connect to \"Mast 7\"")) && text.endsWith(u']'), qPrintable(text));
}

void TestConnectTo::longNameIsShortenedInProblem_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<bool>("whole");
    QTest::newRow("long") << 10'000 << true;
    QTest::newRow("longer than a box can show") << 1024 * 1024 << false;
}

void TestConnectTo::longNameIsShortenedInProblem()
{
    QFETCH(const int, length);
    QFETCH(const bool, whole);
    Install({});
    Connection entry = Entry("", 1);
    entry.ConnectionName = QString(length, QLatin1Char('x'));
    QVERIFY(!m_pCounter->ConnectTo(entry));
    QCOMPARE(m_pBoxes->Count(), 1);
    const QString& text = m_pBoxes->Boxes().constFirst().text;
    QCOMPARE(text.contains(s("\"") + entry.ConnectionName + s("\".\n")), whole);
    QVERIFY(text.startsWith(s("Could not connect to \"") + entry.ConnectionName.left(10'000)));
    QVERIFY(text.endsWith(s("Number of running applications for this type: 0")));
    QVERIFY(text.size() < 20'000);
}

void TestConnectTo::shortenedNameEndsWithAnEllipsis()
{
    Install({});
    Connection entry = Entry("", 1);
    entry.ConnectionName = QString(1024 * 1024, QLatin1Char('x'));
    QVERIFY(!m_pCounter->ConnectTo(entry));
    QCOMPARE(m_pBoxes->Count(), 1);
    QVERIFY(m_pBoxes->Boxes().constFirst().text.contains(QStringLiteral(u"x\u2026\".\n")));
}

void TestConnectTo::failedStartLeavesEntryFree()
{
    Install({{s("Kite"), {1}}}, s("/no/such/program"));
    m_pModel->AddConnection(Entry("a", 1));
    QSignalSpy changed(m_pModel.get(), &QAbstractItemModel::dataChanged);
    QVERIFY(!m_pCounter->ConnectTo(Entry("a", 1)));
    QCOMPARE(m_pBoxes->Count(), 0);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(Status(0), 0);
    QVERIFY(m_pCounter->RunningApplications(1).isEmpty());
    QCOMPARE(m_pCounter->FreeApplications(1), QStringList(s("Kite")));
    QCOMPARE(m_pTraces->Messages(),
             (QStringList{s("ApplicationInstance::Start(): Application </no/such/program> could not be started"),
                          s("ApplicationInstance::ReleaseInstance() unknwon state 0")}));
    // It stays in the list until another instance ends.
    QCOMPARE(m_pCounter->Instances().size(), 1);
    QCOMPARE(m_pCounter->Instances().constFirst()->GetState(), ApplicationInstance::Free);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    QCOMPARE(m_pCounter->Instances().size(), 1);
}

void TestConnectTo::failedInstanceIsDeletedWhenAnotherEnds()
{
    QVERIFY(m_pData->WriteMachine(DataDirectory::Machine(DataDirectory::Application(s("Bad"), s("/no/such/program")) +
                                                         DataDirectory::Application(s("Good"), TestChild::Program()))));
    QVERIFY(m_pData->WriteMappings(
        DataDirectory::Mappings(DataDirectory::Mapping(1, s("Bad")) + DataDirectory::Mapping(2, s("Good")))));
    m_pCounter = std::make_unique<AppCounter>(m_pModel.get(), QString());
    m_pModel->AddConnection(Entry("bad", 1));
    m_pModel->AddConnection(Entry("good", 2));
    QVERIFY(!m_pCounter->ConnectTo(Entry("bad", 1)));
    QVERIFY(!m_pCounter->ConnectTo(Entry("bad", 1)));
    QVERIFY(m_pCounter->ConnectTo(Entry("good", 2)));
    QCOMPARE(m_pCounter->Instances().size(), 3);
    QVERIFY(WaitForEnd());
    QCOMPARE(Status(0), 0);
    QCOMPARE(Status(1), 0);
}

void TestConnectTo::deletingFailedInstanceFreesEqualEntry()
{
    // Deleting the failed instance makes its entry "Free" and its application available, although a later start of the
    // same entry succeeded.
    const QString program = m_pData->Path(QFileInfo(TestChild::Program()).fileName());
    Install({{s("Kite"), {1}}}, program);
    m_pChild->Behave("stay");
    m_pModel->AddConnection(Entry("a", 1));
    QVERIFY(!m_pCounter->ConnectTo(Entry("a", 1)));
    QVERIFY(QFile::copy(TestChild::Program(), program));
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QCOMPARE(Status(0), 1);
    QCOMPARE(m_pCounter->RunningApplications(1), QStringList(s("Kite")));

    m_pCounter->SlotOnProcessExit();
    QCOMPARE(Status(0), 0);
    QVERIFY(m_pCounter->RunningApplications(1).isEmpty());
    QCOMPARE(m_pCounter->Instances().size(), 1);
    QCOMPARE(m_pCounter->Instances().constFirst()->GetState(), ApplicationInstance::Started);
}

void TestConnectTo::releasedInstanceIsDeleted()
{
    // Only the state counts: the process still runs.
    Install({{s("Kite"), {1}}});
    m_pChild->Behave("stubborn");
    m_pModel->AddConnection(Entry("a", 1));
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QTRY_COMPARE(m_pChild->Count(), 1);
    m_pCounter->Instances().constFirst()->ReleaseInstance();
    QCOMPARE(Status(0), 1);
    m_pCounter->SlotOnProcessExit();
    QCOMPARE(Status(0), 0);
    QVERIFY(m_pCounter->Instances().isEmpty());
    QVERIFY(m_pCounter->RunningApplications(1).isEmpty());
    // The process ends with the instance.
    QTRY_VERIFY(!System::IsProcess(m_pChild->Reports().constFirst().pid));
}

void TestConnectTo::startedAndErrorInstancesAreKept()
{
    Install({{s("A"), {1}}, {s("B"), {1}}, {s("C"), {1}}});
    m_pChild->Behave("stay");
    for (const char* const name : {"a", "b", "c"}) {
        m_pModel->AddConnection(Entry(name, 1));
        QVERIFY(m_pCounter->ConnectTo(Entry(name, 1)));
    }
    const QList<ApplicationInstance*> instances = m_pCounter->Instances();
    instances.at(1)->SetState(ApplicationInstance::Error);
    instances.at(2)->SetState(ApplicationInstance::Free);
    m_pCounter->SlotOnProcessExit();
    QCOMPARE(m_pCounter->Instances(), instances.mid(0, 2));
    QCOMPARE((QList<int>{Status(0), Status(1), Status(2)}), (QList<int>{1, 1, 0}));
    QCOMPARE(m_pCounter->RunningApplications(1), (QStringList{s("A"), s("B")}));
}

void TestConnectTo::instanceIsDeletedOnce()
{
    Install({{s("Kite"), {1, 2}}});
    m_pChild->Behave("stay");
    m_pModel->AddConnection(Entry("a", 1));
    m_pModel->AddConnection(Entry("b", 2));
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QVERIFY(m_pCounter->ConnectTo(Entry("b", 2)));
    for (ApplicationInstance* const instance : m_pCounter->Instances())
        instance->SetState(ApplicationInstance::Free);
    // A receiver of the first status change deletes both instances and connects the second entry again. Its new
    // application must not be taken for the old one.
    connect(
        m_pModel.get(), &QAbstractItemModel::dataChanged, m_pCounter.get(),
        [this] {
            m_pCounter->SlotOnProcessExit();
            QVERIFY(m_pCounter->ConnectTo(Entry("b", 2)));
        },
        Qt::SingleShotConnection);
    m_pCounter->SlotOnProcessExit();
    QCOMPARE((QList<int>{Status(0), Status(1)}), (QList<int>{0, 1}));
    QVERIFY(m_pCounter->RunningApplications(1).isEmpty());
    QCOMPARE(m_pCounter->RunningApplications(2), QStringList(s("Kite")));
    QCOMPARE(m_pCounter->Instances().size(), 1);
}

void TestConnectTo::typesCountRunningApplicationsSeparately()
{
    // One application can serve an entry of each type at the same time.
    Install({{s("Kite"), {1, 2}}});
    m_pChild->Behave("stay");
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QVERIFY(m_pCounter->RunningApplications(2).isEmpty());
    QVERIFY(m_pCounter->ConnectTo(Entry("b", 2)));
    m_pCounter->Instances().constLast()->SetState(ApplicationInstance::Free);
    m_pCounter->SlotOnProcessExit();
    QCOMPARE(m_pCounter->RunningApplications(1), QStringList(s("Kite")));
    QVERIFY(m_pCounter->RunningApplications(2).isEmpty());
}

void TestConnectTo::nothingToDeleteChangesNothing()
{
    Install({{s("Kite"), {1}}});
    QSignalSpy changed(m_pModel.get(), &QAbstractItemModel::dataChanged);
    m_pCounter->SlotOnProcessExit();
    QCOMPARE(changed.count(), 0);
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());
}

void TestConnectTo::unsupportedTypeIsStarted()
{
    Install({{s("Kite"), {11, 33}}});
    m_pModel->AddConnection(Entry("a", 33));
    m_pChild->Behave("stay");
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 33)));
    QCOMPARE(Status(0), 1);
    QCOMPARE(m_pCounter->RunningApplications(33), QStringList(s("Kite")));
}

void TestConnectTo::commandLineIsTraced_data()
{
    QTest::addColumn<int>("deviceType");
    QTest::addColumn<QString>("traced");
    const QString noPort = s("AppCounter::ConnectTo() no port number added to sDriver");
    const QString notSupported = s("AppCounter::ConnectTo() DeviceType %1 is not yet supported");
    QTest::newRow("default port") << int{Connection::KiteBravo} << QString();
    QTest::newRow("no default port") << int{Connection::KiteAlphaFinch} << noPort;
    QTest::newRow("Heron") << 9 << notSupported.arg(s("Heron"));
    QTest::newRow("Pipit") << 11 << notSupported.arg(s("Pipit"));
    QTest::newRow("above the range") << 33 << notSupported.arg(s("No string representation for ID 33"));
}

void TestConnectTo::commandLineIsTraced()
{
    QFETCH(const int, deviceType);
    QFETCH(const QString, traced);
    Install({{s("Kite"), {deviceType}}});
    m_pChild->Behave("stay");
    const auto report = [this] {
        QList<TraceRecorder::Report> reports = m_pTraces->Reports();
        reports.removeIf([](const TraceRecorder::Report& other) {
            return other.sourceFile != s("userinterface/vexelconnectdlg/appcounter");
        });
        return reports.size() == 1 ? reports.constFirst() : TraceRecorder::Report{};
    };
    QVERIFY(m_pCounter->ConnectTo(Entry("a", deviceType)));
    QCOMPARE(report().message, traced);
    if (traced.isEmpty())
        return;
    QCOMPARE(report().kind, ErrorHandler::Trace);

    // The line is that of the trace in the named file.
    const QByteArray text = traced.contains(s("DeviceType")) ? "is not yet supported" : "no port number added";
    const QList<QByteArray> source = Files::Read(s(VEXEL_APPCOUNTER)).split('\n');
    QVERIFY(source.size() > report().line + 1);
    QVERIFY2(source.mid(report().line - 1, 3).join().contains(text), source.at(report().line - 1).constData());
}

void TestConnectTo::manyStartsLeakNothing()
{
    Install({{s("Kite"), {1}}});
    m_pModel->AddConnection(Entry("a", 1));
    constexpr int kStarts = 50;
    qsizetype handles = 0;
    for (int run = 0; run < kStarts; ++run) {
        QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
        QVERIFY(WaitForEnd());
        QTRY_COMPARE(m_pCounter->children().size(), 0);
        QCOMPARE(Status(0), 0);
        if (run == 0)
            handles = System::OpenHandles();
    }
    QCOMPARE(m_pChild->Count(), kStarts);
    // The event loop deletes the processes.
    QTRY_COMPARE(System::OpenHandles(), handles);
    QVERIFY(m_pCounter->RunningApplications(1).isEmpty());
}

void TestConnectTo::worksWithoutModel()
{
    Install({{s("Kite"), {1}}});
    m_pCounter = std::make_unique<AppCounter>(nullptr, QString());
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QCOMPARE(m_pCounter->RunningApplications(1), QStringList(s("Kite")));
    QVERIFY(WaitForEnd());
    QVERIFY(m_pCounter->RunningApplications(1).isEmpty());
}

void TestConnectTo::worksAfterModelIsDeleted()
{
    Install({{s("Kite"), {1}}});
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    m_pModel.reset();
    QVERIFY(WaitForEnd());
    QVERIFY(m_pCounter->RunningApplications(1).isEmpty());
}

void TestConnectTo::destructorEndsRunningApplications_data()
{
    QTest::addColumn<QByteArray>("mode");
    QTest::newRow("waiting") << QByteArray("stay");
    QTest::newRow("ignoring requests") << QByteArray("stubborn");
    QTest::newRow("printing") << QByteArray("print-forever");
}

void TestConnectTo::destructorEndsRunningApplications()
{
    QFETCH(const QByteArray, mode);
    Install({{s("A"), {1}}, {s("B"), {1}}, {s("C"), {1}}});
    m_pChild->Behave(mode.constData());
    for (const char* const name : {"a", "b", "c"})
        QVERIFY(m_pCounter->ConnectTo(Entry(name, 1)));
    QTRY_COMPARE(m_pChild->Count(), 3);
    m_pTraces->Clear();

    m_pModel.reset();
    m_pCounter.reset();
    // No trace, and no process is left.
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());
    for (const TestChild::Report& report : m_pChild->Reports())
        QVERIFY(!System::IsProcess(report.pid));
    QCoreApplication::processEvents();
}

void TestConnectTo::destructorDeletesReleasedInstances()
{
    // The event loop has not deleted the instance yet.
    Install({{s("Kite"), {1}}});
    m_pChild->Behave("stay");
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    const QPointer<ApplicationInstance> instance = m_pCounter->Instances().constFirst();
    instance->SetState(ApplicationInstance::Free);
    m_pCounter->SlotOnProcessExit();
    QVERIFY(m_pCounter->Instances().isEmpty());
    QVERIFY(!instance.isNull());
    m_pModel.reset();
    m_pCounter.reset();
    QVERIFY(instance.isNull());
}

VEXEL_TEST(QTEST_MAIN, TestConnectTo)
#include "tst_connectto.moc"
