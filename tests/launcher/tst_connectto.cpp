#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/appcounter.h"

#include "tests/support/inheritedhandles.h"
#include "tests/support/launcherfixture.h"
#include "tests/support/linkfixture.h"
#include "tests/support/messageboxes.h"
#include "tests/support/system.h"
#include "tests/support/tracerecorder.h"
#include "userinterface/vexelconnectdlg/applicationinstance.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QAbstractItemModelTester>
#include <QLockFile>
#include <QSignalSpy>
#include <QTemporaryFile>
#include <QTest>
#include <QTranslator>

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

/// Starting applications for entries, and what their ends do.
class TestConnectTo : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void everyType_data();
    void everyType();
    void textsArriveAsGiven_data();
    void textsArriveAsGiven();
    void anApplicationsNameArrivesAsGiven();
    void childInheritsNothing();
    void startsInCurrentDirectory();
    void startsInTheDirectoryOfTheMoment();
    void nameTooLongForACommandLine();
    void entryIsInUseUntilEnd();
    void equalEntries();
    void applicationsInTurn();
    void oneListForFoldedTypes();
    void typesDoNotShareRunning();
    void signalOrder();

    void noFreeApplication_data();
    void noFreeApplication();
    void noFreeApplicationWhileRunning();
    void problemTextIsTranslated();
    void problemWithLongName_data();
    void problemWithLongName();

    void failedStart();
    void failedStartIsSweptByAnotherEnd();
    void failedStartFreesWhatRuns();
    void releasedIsSwept();
    void sweepKeepsStartedAndError();
    void sweepIsPerDeviceType();
    void sweepByHand();
    void unsupportedTypeIsStarted();
    void crashFreesEntry();
    void manyStarts();
    void withoutModel();
    void modelGoneFirst();
    void tearDownWithRunningChildren_data();
    void tearDownWithRunningChildren();
    void tearDownAfterSweepWithoutEventLoop();

private:
    /// The applications, all of them the test's child, each for the device types of which it is listed.
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
    QString machine;
    QString mappings;
    for (const auto& [name, deviceTypes] : applications) {
        machine += DataDirectory::Application(name, program);
        for (const int deviceType : deviceTypes)
            mappings += DataDirectory::Mapping(deviceType, name);
    }
    QVERIFY(m_pData->WriteMachine(DataDirectory::Machine(machine)));
    QVERIFY(m_pData->WriteMappings(DataDirectory::Mappings(mappings)));
    m_pCounter = std::make_unique<AppCounter>(m_pModel.get(), QStringLiteral("Launcher"));
    m_pTraces->Clear();
}

void TestConnectTo::everyType_data()
{
    QTest::addColumn<int>("deviceType");
    QTest::addColumn<int>("connectionType");
    QTest::addColumn<QStringList>("further");

    const QString server = s("Server");
    const auto driver = [](const char* port) {
        return s("Connection=driver.example") + s(port);
    };
    for (int deviceType = 0; deviceType < 15; ++deviceType) {
        for (int connectionType = 0; connectionType < 3; ++connectionType) {
            QStringList further{server, s("Mast \"7\" & north\\")};
            if (deviceType == 1)
                further = {server, driver(":27061")};
            else if (deviceType == 2 && connectionType == 0)
                further = {};
            else if (deviceType == 2 && connectionType == 1)
                further = {server, driver(":27081")};
            else if (deviceType == 2)
                further = {server, s("MCS"), s("MCSMaster"), driver(":27081")};
            else if (deviceType == 9 || deviceType == 11)
                further = {};
            else if (deviceType == 10)
                further = {server, driver(":9446")};
            else if (deviceType == 12)
                further = {server, driver("")};
            else if (deviceType == 13)
                further = {server, driver(":27091")};
            else if (deviceType == 14)
                further = {server, driver(":27071")};
            QTest::addRow("type %d, connection %d", deviceType, connectionType)
                << deviceType << connectionType << further;
        }
    }
}

void TestConnectTo::everyType()
{
    QFETCH(const int, deviceType);
    QFETCH(const int, connectionType);
    QFETCH(const QStringList, further);

    Install({{s("KiteControl"), {1, 2, 4, 9, 10, 11, 12, 13, 14}}});
    const Connection entry = Entry("Mast \"7\" & north\\", deviceType, connectionType);
    m_pModel->AddConnection(entry);
    QVERIFY(m_pCounter->ConnectTo(entry));
    QTRY_COMPARE(m_pChild->Count(), 1);
    QCOMPARE(m_pChild->Reports().constFirst().arguments, QStringList(s("KiteControl:XMsgDlg.dll")) + further);
    QCOMPARE(QFileInfo(m_pChild->Reports().constFirst().program).canonicalFilePath(),
             QFileInfo(TestChild::Program()).canonicalFilePath());

    QStringList expected;
    if (deviceType == 12)
        expected += s("AppCounter::ConnectTo() no port number added to sDriver");
    if (deviceType == 9 || deviceType == 11)
        expected +=
            s("AppCounter::ConnectTo() DeviceType %1 is not yet supported").arg(Connection::DeviceTypeName(deviceType));
    QCOMPARE(m_pTraces->Messages(s("userinterface/vexelconnectdlg/appcounter")), expected);
    QCOMPARE(m_pBoxes->Count(), 0);
    QVERIFY(WaitForEnd());
}

void TestConnectTo::textsArriveAsGiven_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("blanks") << s("  Mast 7  north ");
    QTest::newRow("quotes") << s("say \"hello\" and 'bye'");
    QTest::newRow("backslashes at the end") << s("C:\\data dir\\\\");
    QTest::newRow("quote and backslash") << s("a\\\\\"b\\\"");
    QTest::newRow("percent") << s("100% %1 %2 %PATH% %%");
    QTest::newRow("shell characters") << s("$HOME `id` ; | & > < * ? ^ ! # (x) {y}");
    QTest::newRow("non-Latin") << s("Пеленгатор 方位 ⚓");
    QTest::newRow("astral") << QString::fromUcs4(U"\x1F4E1\x10FFFD", 2);
    QTest::newRow("8,000 characters") << QString(8000, QLatin1Char('x'));
}

void TestConnectTo::textsArriveAsGiven()
{
    // Each of the four forms of a command line that carries a text of the entry.
    QFETCH(const QString, text);
    Install({{s("KiteControl"), {1, 2, 4, 12}}});
    struct Form
    {
        int deviceType;
        int connectionType;
        QStringList further;
    };
    // The port is there, so that the address stays as it is.
    const QString driver = text + s(":1");
    const QString connection = s("Connection=") + driver;
    const QList<Form> forms = {{1, 0, {s("Server"), connection}},
                               {2, 1, {s("Server"), connection}},
                               {2, 2, {s("Server"), s("MCS"), s("MCSMaster"), connection}},
                               {12, 0, {s("Server"), connection}},
                               {4, 0, {s("Server"), text}}};
    for (const Form& form : forms) {
        m_pChild->Clear();
        Connection entry = Entry("", form.deviceType, form.connectionType);
        entry.ConnectionName = text;
        entry.DriverAddress = driver;
        QVERIFY(m_pCounter->ConnectTo(entry));
        QTRY_COMPARE(m_pChild->Count(), 1);
        QCOMPARE(m_pChild->Reports().constFirst().arguments, QStringList(s("KiteControl:XMsgDlg.dll")) + form.further);
        QVERIFY(WaitForEnd());
    }
}

// It is the name of an element of the machine's file, which knows no blanks and no quotes.
void TestConnectTo::anApplicationsNameArrivesAsGiven()
{
    const QString name = s("Пеленгатор_方位.2-a");
    Install({{name, {4}}});
    QVERIFY(m_pCounter->ConnectTo(Entry("mast", 4, 0)));
    QTRY_COMPARE(m_pChild->Count(), 1);
    QCOMPARE(m_pChild->Reports().constFirst().arguments.value(0), name + s(":XMsgDlg.dll"));
    QVERIFY(WaitForEnd());
}

void TestConnectTo::childInheritsNothing()
{
    Install({{s("Kite"), {1}}, {s("Kestrel"), {1}}});
    // What whoever runs the tests has left open goes on to the children; that is not the launcher's doing.
    const QStringList before = HandlesToInherit();
    // What a host has open while it starts applications: files, locks, the link with a caller on it, other children.
    QTemporaryFile file;
    QVERIFY(file.open());
    QLockFile lock(file.fileName() + s(".lock"));
    QVERIFY(lock.tryLock());
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
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QCOMPARE(m_pCounter->Instances().constFirst()->GetWorkingDirectory(), QDir::currentPath());
    QTRY_COMPARE(m_pChild->Count(), 1);
    QCOMPARE(m_pChild->Reports().constFirst().directory, QDir::current().canonicalPath());
}

void TestConnectTo::startsInTheDirectoryOfTheMoment()
{
    // Not in that of the launcher's own start.
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

void TestConnectTo::nameTooLongForACommandLine()
{
    if (System::IsWine())
        QSKIP("Wine takes command lines of any length");
    // An argument of a megabyte: a start that fails like any other.
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

    // And its application still serves others.
    QVERIFY(m_pCounter->ConnectTo(Entry("short", 4)));
    QVERIFY(WaitForEnd());
}

void TestConnectTo::entryIsInUseUntilEnd()
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

    // Ended from outside, as an operator closes its window.
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

void TestConnectTo::equalEntries()
{
    Install({{s("Kite"), {1}}});
    m_pChild->Behave("stay");
    Connection twin = Entry("mine", 1);
    m_pModel->AddConnection(twin);
    twin.Selected = true;
    m_pModel->AddConnection(twin);
    QVERIFY(m_pCounter->ConnectTo(twin));
    QCOMPARE(Status(0), 1);
    QCOMPARE(Status(1), 1);
    QCOMPARE(m_pModel->CountInUse(), 2);
}

void TestConnectTo::applicationsInTurn()
{
    Install({{s("First"), {1}}, {s("Second"), {1}}});
    m_pChild->Behave("polite");
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QVERIFY(m_pCounter->ConnectTo(Entry("b", 1)));
    QCOMPARE(m_pCounter->RunningApplications(1), (QStringList{s("First"), s("Second")}));
    QVERIFY(!m_pCounter->ConnectTo(Entry("c", 1)));
    QCOMPARE(m_pBoxes->Count(), 1);

    // The first one ends: it is the one that is free now.
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

void TestConnectTo::oneListForFoldedTypes()
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
    // The box names the entry's own type.
    QVERIFY(m_pBoxes->Boxes().at(0).text.contains(s("Device type: Kite Alpha + Wren C\n")));
}

void TestConnectTo::typesDoNotShareRunning()
{
    Install({{s("Kite"), {1, 2}}});
    m_pChild->Behave("stay");
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QVERIFY(m_pCounter->RunningApplications(2).isEmpty());
    QVERIFY(m_pCounter->ConnectTo(Entry("b", 2)));
    QCOMPARE(m_pCounter->Instances().size(), 2);
}

void TestConnectTo::signalOrder()
{
    // At the moment the model announces "Free" the instance is still listed; afterwards nothing of it is left.
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

void TestConnectTo::noFreeApplication_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("deviceType");
    QTest::addColumn<QString>("typeName");
    QTest::newRow("plain") << s("Mast 7") << 1 << s("Kite Bravo");
    QTest::newRow("folded type keeps its name") << s("Mast 7") << 6 << s("Kite Moss");
    QTest::newRow("type out of range") << s("Mast 7") << 99 << s("No string representation for ID 99");
    QTest::newRow("empty name") << QString() << 9 << s("Heron");
    QTest::newRow("markup") << s("<b>bold</b><img src='x'>") << 2 << s("Kite Cobra");
    QTest::newRow("placeholders") << s("%1 %2 %3 %4 %n %L1") << 2 << s("Kite Cobra");
    QTest::newRow("quotes and breaks") << s("a \"b\"\nc & d\te") << 2 << s("Kite Cobra");
    QTest::newRow("non-Latin") << s("Пеленгатор \xF0\x9F\x93\xA1") << 14 << s("Linnet + DF");
}

void TestConnectTo::noFreeApplication()
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
    // A name is no markup, whatever it looks like.
    QCOMPARE(box.textFormat, Qt::PlainText);

    // Nothing else happens.
    QVERIFY(m_pCounter->Instances().isEmpty());
    QCOMPARE(changed.count(), 0);
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());
}

void TestConnectTo::noFreeApplicationWhileRunning()
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

void TestConnectTo::problemTextIsTranslated()
{
    class Translator : public QTranslator
    {
    public:
        QString translate(const char* context, const char* text, const char* /*d*/, int /*n*/) const override
        {
            if (QLatin1String(context) != QLatin1String("AppCounter"))
                return {};
            return QLatin1String(text) == QLatin1String("Problem") ? s("Aufgabe") : s("%4|%3|%2|%1");
        }
        bool isEmpty() const override { return false; }
    };
    Translator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    Install({});
    QVERIFY(!m_pCounter->ConnectTo(Entry("Mast 7", 1)));
    QCOMPARE(m_pBoxes->Count(), 1);
    QCOMPARE(m_pBoxes->Boxes().constFirst().title, s("Aufgabe"));
    QCOMPARE(m_pBoxes->Boxes().constFirst().text, s("0|0|Kite Bravo|Mast 7"));
}

void TestConnectTo::problemWithLongName_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<bool>("whole");
    QTest::newRow("long") << 10'000 << true;
    QTest::newRow("longer than a box can show") << 1024 * 1024 << false;
}

void TestConnectTo::problemWithLongName()
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

void TestConnectTo::failedStart()
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
    // It stays listed, "Free", until an instance ends.
    QCOMPARE(m_pCounter->Instances().size(), 1);
    QCOMPARE(m_pCounter->Instances().constFirst()->GetState(), ApplicationInstance::Free);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    QCOMPARE(m_pCounter->Instances().size(), 1);
}

void TestConnectTo::failedStartIsSweptByAnotherEnd()
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

void TestConnectTo::failedStartFreesWhatRuns()
{
    // What sweeping a failed start undoes need not be its own doing: its entry becomes "Free", and its application
    // available once, though both belong to a start that succeeded since.
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

void TestConnectTo::releasedIsSwept()
{
    // "Free" though its process may still be there: only the state counts.
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
    // The process goes with the instance.
    QTRY_VERIFY(!System::IsProcess(m_pChild->Reports().constFirst().pid));
}

void TestConnectTo::sweepKeepsStartedAndError()
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

void TestConnectTo::sweepIsPerDeviceType()
{
    // An application booked for two types is still booked for one when the other's instance ends.
    Install({{s("Kite"), {1, 2}}});
    m_pChild->Behave("stay");
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QVERIFY(m_pCounter->ConnectTo(Entry("b", 2)));
    m_pCounter->Instances().constLast()->SetState(ApplicationInstance::Free);
    m_pCounter->SlotOnProcessExit();
    QCOMPARE(m_pCounter->RunningApplications(1), QStringList(s("Kite")));
    QVERIFY(m_pCounter->RunningApplications(2).isEmpty());
}

void TestConnectTo::sweepByHand()
{
    // Nothing to sweep: nothing changes.
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
    QCOMPARE(m_pTraces->Messages(s("userinterface/vexelconnectdlg/appcounter")),
             QStringList(s("AppCounter::ConnectTo() DeviceType No string representation for ID 33 is not yet "
                           "supported")));
}

void TestConnectTo::crashFreesEntry()
{
    Install({{s("Kite"), {1}}});
    m_pChild->Behave("crash");
    m_pModel->AddConnection(Entry("a", 1));
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QCOMPARE(Status(0), 1);
    QVERIFY(WaitForEnd());
    QCOMPARE(Status(0), 0);
    QCOMPARE(m_pCounter->FreeApplications(1), QStringList(s("Kite")));
}

void TestConnectTo::manyStarts()
{
    Install({{s("Kite"), {1}}});
    m_pModel->AddConnection(Entry("a", 1));
    qsizetype handles = 0;
    for (int run = 0; run < 200; ++run) {
        QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
        QVERIFY(WaitForEnd());
        QTRY_COMPARE(m_pCounter->children().size(), 0);
        QCOMPARE(Status(0), 0);
        if (run == 0)
            handles = System::OpenHandles();
    }
    QCOMPARE(m_pChild->Count(), 200);
    // A process is deleted by the event loop once its end was handled.
    QTRY_COMPARE(System::OpenHandles(), handles);
    QVERIFY(m_pCounter->RunningApplications(1).isEmpty());
}

void TestConnectTo::withoutModel()
{
    Install({{s("Kite"), {1}}});
    m_pCounter = std::make_unique<AppCounter>(nullptr, QString());
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    QCOMPARE(m_pCounter->RunningApplications(1), QStringList(s("Kite")));
    QVERIFY(WaitForEnd());
    QVERIFY(m_pCounter->RunningApplications(1).isEmpty());
}

void TestConnectTo::modelGoneFirst()
{
    // The launcher goes on without the model, should an application end in between.
    Install({{s("Kite"), {1}}});
    QVERIFY(m_pCounter->ConnectTo(Entry("a", 1)));
    m_pModel.reset();
    QVERIFY(WaitForEnd());
    QVERIFY(m_pCounter->RunningApplications(1).isEmpty());
}

void TestConnectTo::tearDownWithRunningChildren_data()
{
    QTest::addColumn<QByteArray>("mode");
    QTest::newRow("waiting") << QByteArray("stay");
    QTest::newRow("deaf to requests") << QByteArray("stubborn");
    QTest::newRow("printing") << QByteArray("print-forever");
}

void TestConnectTo::tearDownWithRunningChildren()
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
    // Nothing was heard of them any more, and nothing is left of them in the system.
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());
    for (const TestChild::Report& report : m_pChild->Reports())
        QVERIFY(!System::IsProcess(report.pid));
    QCoreApplication::processEvents();
}

void TestConnectTo::tearDownAfterSweepWithoutEventLoop()
{
    // Swept, but not deleted yet, when the launcher goes. The leak checker would find it.
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
