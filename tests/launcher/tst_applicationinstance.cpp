#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/applicationinstance.h"

#include "tests/support/launcherfixture.h"
#include "tests/support/system.h"
#include "tests/support/tracerecorder.h"

#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>
#include <QTranslator>

#include <csignal>
#include <memory>

namespace {

QString Text(const char* text, const QString& first = QString(), const QString& second = QString())
{
    QString result = QString::fromLatin1(text);
    if (!first.isNull())
        result.replace(QLatin1String("%1"), first);
    if (!second.isNull())
        result.replace(QLatin1String("%2"), second);
    return result;
}

QString StateChange(const char* from, const char* to, const QString& program = TestChild::Program())
{
    return Text("ApplicationInstance::SetState: <%1> to <%2> for application <", QLatin1String(from),
                QLatin1String(to)) +
           program + QStringLiteral(">.");
}

QString Started(const QString& program = TestChild::Program())
{
    return Text("ApplicationInstance::Start(): Started application <%1>", program);
}

QString Ended(const QString& program = TestChild::Program())
{
    return Text("ApplicationInstance::SlotProcessExited(): Received SlotProcessExited signal for application <%1>.",
                program);
}

/// Answers every text with itself in brackets.
class BracketTranslator : public QTranslator
{
public:
    QString translate(const char* context, const char* text, const char* /*disambiguation*/, int /*n*/) const override
    {
        return QLatin1String(context) == QLatin1String("ApplicationInstance")
                   ? QLatin1Char('[') + QLatin1String(text) + QLatin1Char(']')
                   : QString();
    }
    bool isEmpty() const override { return false; }
};

} // namespace

class TestApplicationInstance : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void metaObject();
    void storesAndStartsNothing();
    void connectionIsCopy();
    void hostName_data();
    void hostName();
    void setState();
    void stateNamesAreTranslated();
    void everyTraceNamesItsPlace();
    void silentWithoutTraces();

    void startAndEnd();
    void exitCodeIsNoCrash();
    void crash();
    void failedStart_data();
    void failedStart();
    void programNameWithPlaceholder();
    void workingDirectory();
    void missingWorkingDirectory();
    void arguments_data();
    void arguments();
    void outputGoesNowhere();
    void inputIsSilentPipe();
    void startAgain();
    void startWhileRunning();

    void releaseStarted();
    void releaseFreeWithoutProcess();
    void releaseFreeWithProcess();
    void releaseOtherState_data();
    void releaseOtherState();
    void releaseStartedWithoutProcess();
    void endInErrorState();
    void slotWithoutProcess();
    void destructorEndsProcess_data();
    void destructorEndsProcess();
    void deletedByItsOwnSignal();

private:
    std::unique_ptr<ApplicationInstance> Instance(const QStringList& arguments = {},
                                                  const QString& program = TestChild::Program()) const
    {
        return std::make_unique<ApplicationInstance>(program, arguments, QDir::currentPath(), Connection());
    }
    /// Starts one and waits until it has said so. Null when it does not come up.
    std::unique_ptr<ApplicationInstance> RunningInstance(const char* mode, TestChild::Report* report = nullptr)
    {
        m_pChild->Behave(mode);
        const qsizetype before = m_pChild->Count();
        auto instance = Instance();
        if (!instance->Start() || !QTest::qWaitFor([&] { return m_pChild->Count() == before + 1; }))
            return nullptr;
        if (report)
            *report = m_pChild->Reports().constLast();
        return instance;
    }

    std::unique_ptr<TestChild> m_pChild;
    std::unique_ptr<TraceRecorder> m_pTraces;
};

void TestApplicationInstance::init()
{
    m_pChild = std::make_unique<TestChild>();
    m_pTraces = std::make_unique<TraceRecorder>();
}

void TestApplicationInstance::cleanup()
{
    m_pTraces.reset();
    m_pChild.reset();
}

void TestApplicationInstance::metaObject()
{
    const QMetaObject& meta = ApplicationInstance::staticMetaObject;
    QCOMPARE(meta.className(), "ApplicationInstance");
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QCOMPARE(meta.propertyCount(), QObject::staticMetaObject.propertyCount());
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 2);
    const QMetaMethod exited = meta.method(meta.methodOffset());
    QCOMPARE(exited.methodSignature(), QByteArray("ProcessExited()"));
    QCOMPARE(exited.methodType(), QMetaMethod::Signal);
    const QMetaMethod slot = meta.method(meta.methodOffset() + 1);
    QCOMPARE(slot.methodSignature(), QByteArray("SlotProcessExited(int,QProcess::ExitStatus)"));
    QCOMPARE(slot.methodType(), QMetaMethod::Slot);
    QCOMPARE(slot.access(), QMetaMethod::Public);
    QCOMPARE(slot.parameterNames(), (QList<QByteArray>{"iCode", "status"}));
}

void TestApplicationInstance::storesAndStartsNothing()
{
    Connection entry;
    entry.ConnectionName = QStringLiteral("Mast 7");
    entry.ConnectionStatus = Connection::InUse;
    entry.Selected = true;
    const ApplicationInstance instance(TestChild::Program(), {QStringLiteral("Kite:XMsgDlg.dll")},
                                       QStringLiteral("/some/where"), entry);
    QCOMPARE(instance.GetState(), ApplicationInstance::Free);
    QCOMPARE(instance.GetWorkingDirectory(), QStringLiteral("/some/where"));
    QCOMPARE(instance.GetHostName(), QStringLiteral("Kite"));
    QVERIFY(instance.GetConnection() == entry);
    QCOMPARE(instance.GetConnection().ConnectionStatus, 1);
    QVERIFY(instance.GetConnection().Selected);
    QCOMPARE(instance.parent(), nullptr);
    QVERIFY(m_pTraces->Reports().isEmpty());
    QCOMPARE(m_pChild->Count(), 0);
}

void TestApplicationInstance::connectionIsCopy()
{
    Connection entry;
    entry.ConnectionName = QStringLiteral("before");
    const ApplicationInstance instance(QString(), {}, QString(), entry);
    entry.ConnectionName = QStringLiteral("after");
    QCOMPARE(instance.GetConnection().ConnectionName, QStringLiteral("before"));
}

void TestApplicationInstance::hostName_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("name");
    const auto row = [](const char* first, const char* name) {
        QTest::newRow(*first ? first : "empty")
            << QStringList{QLatin1String(first), QStringLiteral("x:y")} << QString::fromLatin1(name);
    };
    QTest::newRow("no arguments") << QStringList() << QString();
    row("KiteControl:XMsgDlg.dll", "KiteControl");
    row("a:b:c", "a");
    row("plain", "plain");
    row(":x", "");
    row("x:", "x");
    row("", "");
}

void TestApplicationInstance::hostName()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, name);
    QCOMPARE(Instance(arguments)->GetHostName(), name);
}

void TestApplicationInstance::setState()
{
    const auto instance = Instance();
    instance->SetState(ApplicationInstance::Free);
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());

    instance->SetState(ApplicationInstance::Started);
    QCOMPARE(instance->GetState(), ApplicationInstance::Started);
    instance->SetState(ApplicationInstance::Started);
    instance->SetState(ApplicationInstance::Error);
    instance->SetState(7);
    QCOMPARE(int{instance->GetState()}, 7);
    instance->SetState(7);
    instance->SetState(-1);
    instance->SetState(ApplicationInstance::Free);
    QCOMPARE(m_pTraces->Messages(),
             (QStringList{StateChange("Free", "Started"), StateChange("Started", "Error"),
                          StateChange("Error", "Unknown state of ApplicationInstance"),
                          StateChange("Unknown state of ApplicationInstance", "Unknown state of ApplicationInstance"),
                          StateChange("Unknown state of ApplicationInstance", "Free")}));
}

void TestApplicationInstance::stateNamesAreTranslated()
{
    BracketTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    const auto instance = Instance();
    instance->SetState(ApplicationInstance::Started);
    instance->SetState(ApplicationInstance::Error);
    instance->SetState(3);
    instance->SetState(ApplicationInstance::Free);
    QCOMPARE(m_pTraces->Messages(),
             (QStringList{StateChange("[Free]", "[Started]"), StateChange("[Started]", "[Error]"),
                          StateChange("[Error]", "Unknown state of ApplicationInstance"),
                          StateChange("Unknown state of ApplicationInstance", "[Free]")}));
}

void TestApplicationInstance::everyTraceNamesItsPlace()
{
    m_pChild->Behave("crash");
    ApplicationInstance instance(TestChild::Program(), {}, QStringLiteral("/no/such/folder"), Connection());
    QSignalSpy exited(&instance, &ApplicationInstance::ProcessExited);
    QVERIFY(instance.Start());
    QTRY_COMPARE(exited.count(), 1);
    m_pChild->Behave("exit");
    QVERIFY(instance.Start());
    QTRY_COMPARE(exited.count(), 2);
    Instance({}, QStringLiteral("/no/such/program"))->Start();

    const QList<TraceRecorder::Report> reports = m_pTraces->Reports();
    QSet<quint16> lines;
    for (const TraceRecorder::Report& report : reports) {
        QCOMPARE(report.kind, ErrorHandler::Trace);
        QCOMPARE(report.sourceFile, QStringLiteral("userinterface/vexelconnectdlg/applicationinstance"));
        QVERIFY(report.line > 0);
        lines.insert(report.line);
    }
    // Working directory, started, state, crash, end, could not be started, release.
    QCOMPARE(lines.size(), 7);
}

void TestApplicationInstance::silentWithoutTraces()
{
    m_pTraces.reset();
    m_pTraces = std::make_unique<TraceRecorder>(ErrorHandler::Assertion);
    m_pChild->Behave("crash");
    ApplicationInstance instance(TestChild::Program(), {}, QStringLiteral("/no/such/folder"), Connection());
    QSignalSpy exited(&instance, &ApplicationInstance::ProcessExited);
    QVERIFY(instance.Start());
    QTRY_COMPARE(exited.count(), 1);
    instance.ReleaseInstance();
    QVERIFY(!Instance({}, QStringLiteral("/no/such/program"))->Start());
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());
}

void TestApplicationInstance::startAndEnd()
{
    const auto instance = Instance();
    int stateInSignal = -1;
    connect(instance.get(), &ApplicationInstance::ProcessExited, this, [&] { stateInSignal = instance->GetState(); });
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);

    QVERIFY(instance->Start());
    // Whatever the program does, the start returns first.
    QCOMPARE(instance->GetState(), ApplicationInstance::Started);
    QCOMPARE(exited.count(), 0);
    QTRY_COMPARE(exited.count(), 1);
    QCOMPARE(stateInSignal, 0);
    QCOMPARE(m_pTraces->Messages(),
             (QStringList{Started(), StateChange("Free", "Started"), Ended(), StateChange("Started", "Free")}));
    QCOMPARE(m_pChild->Count(), 1);
    QVERIFY(!System::IsProcess(m_pChild->Reports().constFirst().pid));
}

void TestApplicationInstance::exitCodeIsNoCrash()
{
    m_pChild->Behave("exit", 3);
    const auto instance = Instance();
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    QVERIFY(instance->Start());
    QTRY_COMPARE(exited.count(), 1);
    QVERIFY2(m_pTraces->Messages().contains(Ended()), m_pTraces->Text().constData());
}

void TestApplicationInstance::crash()
{
    m_pChild->Behave("crash");
    const auto instance = Instance();
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    QVERIFY(instance->Start());
    QTRY_COMPARE(exited.count(), 1);
    QCOMPARE(instance->GetState(), ApplicationInstance::Free);
#ifdef Q_OS_WIN
    const QString code = QString::number(static_cast<int>(0xC0000005));
#else
    const QString code = QString::number(SIGABRT);
#endif
    QCOMPARE(
        m_pTraces->Messages(),
        (QStringList{Started(), StateChange("Free", "Started"),
                     Text("ApplicationInstance::SlotProcessExited(): abnormal exit with code <%1> of process <%2>.",
                          code, TestChild::Program()),
                     StateChange("Started", "Free")}));
}

void TestApplicationInstance::failedStart_data()
{
    QTest::addColumn<QString>("program");
    QTest::newRow("no program") << QString();
    QTest::newRow("missing") << QStringLiteral("/no/such/program");
    QTest::newRow("missing on the path") << QStringLiteral("vexel-no-such-program");
    QTest::newRow("directory") << QDir::tempPath();
    QTest::newRow("not executable") << QStringLiteral(__FILE__);
    QTest::newRow("drive that is not there") << QStringLiteral("Q:/nowhere/program.exe");
    QTest::newRow("share that is not there") << QStringLiteral("//no-such-host/share/program.exe");
    const QStringList devices = System::Devices();
    for (const QString& device : devices)
        QTest::newRow(qPrintable(device)) << device;
}

void TestApplicationInstance::failedStart()
{
    QFETCH(const QString, program);
    const auto instance = Instance({}, program);
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    QVERIFY(!instance->Start());
    QCOMPARE(instance->GetState(), ApplicationInstance::Free);
    const QStringList expected{
        QStringLiteral("ApplicationInstance::Start(): Application <") + program +
            QStringLiteral("> could not be started"),
        Text("ApplicationInstance::ReleaseInstance() unknwon state 0"),
    };
    QCOMPARE(m_pTraces->Messages(), expected);

    // Nothing comes later, and the instance is as new.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    QVERIFY(!instance->Start());
    QCOMPARE(m_pTraces->Messages(), expected + expected);
    QCOMPARE(exited.count(), 0);
}

void TestApplicationInstance::programNameWithPlaceholder()
{
    // Texts filled into a message are not searched for placeholders again.
    const QString program = QStringLiteral("/no/%2/%1");
    const auto instance = Instance({}, program);
    instance->SetState(ApplicationInstance::Error);
    instance->SetState(ApplicationInstance::Free);
    instance->Start();
    QCOMPARE(m_pTraces->Messages().mid(0, 3),
             (QStringList{StateChange("Free", "Error", program), StateChange("Error", "Free", program),
                          QStringLiteral("ApplicationInstance::Start(): Application </no/%2/%1> could not be "
                                         "started")}));
}

void TestApplicationInstance::workingDirectory()
{
    const QTemporaryDir directory;
    ApplicationInstance instance(TestChild::Program(), {}, directory.path(), Connection());
    QVERIFY(instance.Start());
    QTRY_COMPARE(m_pChild->Count(), 1);
    QCOMPARE(m_pChild->Reports().constFirst().directory, QDir(directory.path()).canonicalPath());
    QCOMPARE(m_pTraces->Messages().constFirst(), Started());
}

void TestApplicationInstance::missingWorkingDirectory()
{
    ApplicationInstance instance(TestChild::Program(), {}, QStringLiteral("/no/such/folder"), Connection());
    QVERIFY(instance.Start());
    QTRY_COMPARE(m_pChild->Count(), 1);
    QCOMPARE(m_pChild->Reports().constFirst().directory, QDir::current().canonicalPath());
    QCOMPARE(m_pTraces->Messages().mid(0, 2),
             (QStringList{Text("ApplicationInstance::Start(): Specified working directory does not exist: <%1>",
                               QStringLiteral("/no/such/folder")),
                          Started()}));
    QCOMPARE(instance.GetWorkingDirectory(), QStringLiteral("/no/such/folder"));
}

void TestApplicationInstance::arguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    const auto row = [](const char* name, const QString& argument) {
        QTest::newRow(name) << QStringList{argument};
    };
    QTest::newRow("none") << QStringList();
    QTest::newRow("several") << QStringList{QStringLiteral("Kite:XMsgDlg.dll"), QStringLiteral("Server"),
                                            QStringLiteral("Connection=10.0.0.1:27061")};
    row("empty", QLatin1String(""));
    QTest::newRow("empty ones between") << QStringList{QLatin1String(""), QStringLiteral("a"), QLatin1String(""),
                                                       QLatin1String("")};
    row("blanks", QStringLiteral("  Mast 7  north "));
    row("tab and line break", QStringLiteral("a\tb\nc\r\nd"));
    row("quotes", QStringLiteral("say \"hello\" and 'bye'"));
    row("quote only", QStringLiteral("\""));
    row("backslashes at the end", QStringLiteral("C:\\data dir\\\\"));
    row("backslashes before a quote", QStringLiteral("a\\\\\"b"));
    row("shell characters", QStringLiteral("$HOME `id` ; | & > < * ? ~ ! # (x) {y} [z]"));
    row("percent", QStringLiteral("100% %1 %PATH% %n"));
    row("looks like an option", QStringLiteral("--help"));
    row("non-Latin", QStringLiteral("Пеленгатор 方位 ⚓"));
    row("astral", QString::fromUcs4(U"\x1F4E1\x10FFFD", 2));
    row("8,000 characters", QString(8000, QLatin1Char('x')));
    QTest::newRow("400 arguments") << QList<QString>(400, QStringLiteral("a b"));
}

void TestApplicationInstance::arguments()
{
    QFETCH(const QStringList, arguments);
    const auto instance = Instance(arguments);
    QVERIFY(instance->Start());
    QTRY_COMPARE(m_pChild->Count(), 1);
    QCOMPARE(m_pChild->Reports().constFirst().arguments, arguments);
}

void TestApplicationInstance::outputGoesNowhere()
{
    // The report of this child comes after it has printed.
    m_pChild->Behave("print", 64 * 1024 * 1024);
    const auto instance = Instance();
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    const qint64 before = System::ResidentKiB();
    QVERIFY(instance->Start());
    QTRY_COMPARE_WITH_TIMEOUT(m_pChild->Count(), 1, 60000);
    QVERIFY2(System::ResidentKiB() - before < 32 * 1024,
             QByteArray::number(System::ResidentKiB() - before).constData());
    QTRY_COMPARE(exited.count(), 1);

    QCOMPARE(m_pChild->Reports().constFirst().stdoutTarget, QStringLiteral("nothing"));
    QCOMPARE(m_pChild->Reports().constFirst().stderrTarget, QStringLiteral("nothing"));

    // And one that never stops printing ends like any other.
    TestChild::Report report;
    const auto endless = RunningInstance("print-forever", &report);
    QVERIFY(endless);
    QSignalSpy endlessExited(endless.get(), &ApplicationInstance::ProcessExited);
    endless->SetState(ApplicationInstance::Error);
    endless->ReleaseInstance();
    QVERIFY(!System::IsProcess(report.pid));
    QCOMPARE(endlessExited.count(), 0);
}

void TestApplicationInstance::inputIsSilentPipe()
{
    TestChild::Report report;
    QVERIFY(RunningInstance("stay", &report));
    QCOMPARE(report.stdinTarget, QStringLiteral("pipe"));
}

void TestApplicationInstance::startAgain()
{
    const auto instance = Instance();
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    for (int run = 1; run <= 3; ++run) {
        QVERIFY(instance->Start());
        QTRY_COMPARE(exited.count(), run);
        QCOMPARE(m_pChild->Count(), run);
    }
}

void TestApplicationInstance::startWhileRunning()
{
    TestChild::Report first;
    const auto instance = RunningInstance("stay", &first);
    QVERIFY(instance);
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    m_pChild->Clear();
    QVERIFY(instance->Start());
    QTRY_COMPARE(m_pChild->Count(), 1);
    // The first has no owner any more, so it is gone, without having been taken for the second.
    QVERIFY(m_pChild->Reports().constFirst().pid != first.pid);
    QVERIFY(!System::IsProcess(first.pid));
    QCOMPARE(instance->GetState(), ApplicationInstance::Started);
    QCOMPARE(exited.count(), 0);
}

void TestApplicationInstance::releaseStarted()
{
    // Asked, not killed: this one still chooses how it ends.
    TestChild::Report report;
    const auto instance = RunningInstance("polite", &report);
    QVERIFY(instance);
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    m_pTraces->Clear();

    instance->ReleaseInstance();
    QCOMPARE(instance->GetState(), ApplicationInstance::Free);
    QCOMPARE(m_pTraces->Messages(), QStringList(StateChange("Started", "Free")));

    // Its end comes later, finds the instance "Free", and is only traced.
    QTRY_COMPARE(m_pTraces->Reports().size(), 2);
    QCOMPARE(m_pTraces->Messages(), (QStringList{StateChange("Started", "Free"), Ended()}));
    QVERIFY(!System::IsProcess(report.pid));
    QCOMPARE(instance->GetState(), ApplicationInstance::Free);
    QCOMPARE(exited.count(), 0);
}

void TestApplicationInstance::releaseFreeWithoutProcess()
{
    const auto instance = Instance();
    instance->ReleaseInstance();
    QCOMPARE(instance->GetState(), ApplicationInstance::Free);
    QCOMPARE(m_pTraces->Messages(), QStringList(Text("ApplicationInstance::ReleaseInstance() unknwon state 0")));
    // And it can still be started.
    QVERIFY(instance->Start());
}

void TestApplicationInstance::releaseFreeWithProcess()
{
    TestChild::Report report;
    const auto instance = RunningInstance("stubborn", &report);
    QVERIFY(instance);
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    instance->ReleaseInstance();
    QCOMPARE(instance->GetState(), ApplicationInstance::Free);
    // A polite request is all it got: the program may refuse.
    QVERIFY(System::IsProcess(report.pid));
    m_pTraces->Clear();

    instance->ReleaseInstance();
    QCOMPARE(m_pTraces->Messages(), QStringList(Text("ApplicationInstance::ReleaseInstance() unknwon state 0")));
    QVERIFY(!System::IsProcess(report.pid));
    QCoreApplication::processEvents();
    QCOMPARE(m_pTraces->Reports().size(), 1);
    QCOMPARE(exited.count(), 0);
}

void TestApplicationInstance::releaseOtherState_data()
{
    QTest::addColumn<int>("state");
    QTest::newRow("Error") << 2;
    QTest::newRow("unknown") << 7;
    QTest::newRow("negative") << -1;
}

void TestApplicationInstance::releaseOtherState()
{
    QFETCH(const int, state);
    TestChild::Report report;
    const auto instance = RunningInstance("stay", &report);
    QVERIFY(instance);
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    instance->SetState(state);
    m_pTraces->Clear();

    instance->ReleaseInstance();
    QCOMPARE(instance->GetState(), ApplicationInstance::Free);
    QCOMPARE(m_pTraces->Messages(),
             (QStringList{Text("ApplicationInstance::ReleaseInstance() unknwon state %1", QString::number(state)),
                          StateChange(state == 2 ? "Error" : "Unknown state of ApplicationInstance", "Free")}));
    QVERIFY(!System::IsProcess(report.pid));
    QCoreApplication::processEvents();
    QCOMPARE(m_pTraces->Reports().size(), 2);
    QCOMPARE(exited.count(), 0);
}

void TestApplicationInstance::releaseStartedWithoutProcess()
{
    const auto instance = Instance();
    instance->SetState(ApplicationInstance::Started);
    instance->ReleaseInstance();
    QCOMPARE(instance->GetState(), ApplicationInstance::Free);
}

void TestApplicationInstance::endInErrorState()
{
    const auto instance = Instance();
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    QVERIFY(instance->Start());
    instance->SetState(ApplicationInstance::Error);
    m_pTraces->Clear();
    QTRY_COMPARE(instance->GetState(), ApplicationInstance::Free);
    QCOMPARE(m_pTraces->Messages(), (QStringList{Ended(), StateChange("Error", "Free")}));
    QCOMPARE(exited.count(), 0);

    // Its process is gone with it: a further notification finds none.
    m_pTraces->Clear();
    instance->SlotProcessExited(0, QProcess::NormalExit);
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());
}

void TestApplicationInstance::slotWithoutProcess()
{
    const auto instance = Instance();
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    instance->SlotProcessExited(0, QProcess::NormalExit);
    instance->SlotProcessExited(1, QProcess::CrashExit);
    instance->SetState(ApplicationInstance::Started);
    m_pTraces->Clear();
    instance->SlotProcessExited(0, QProcess::NormalExit);
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());
    QCOMPARE(instance->GetState(), ApplicationInstance::Started);
    QCOMPARE(exited.count(), 0);
}

void TestApplicationInstance::destructorEndsProcess_data()
{
    QTest::addColumn<bool>("released");
    QTest::newRow("started") << false;
    QTest::newRow("released, but still there") << true;
}

void TestApplicationInstance::destructorEndsProcess()
{
    QFETCH(const bool, released);
    TestChild::Report report;
    auto instance = RunningInstance("stubborn", &report);
    QVERIFY(instance);
    if (released)
        instance->ReleaseInstance();
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    m_pTraces->Clear();
    instance.reset();
    QVERIFY(!System::IsProcess(report.pid));
    QCOMPARE(exited.count(), 0);
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());
}

void TestApplicationInstance::deletedByItsOwnSignal()
{
    QPointer<ApplicationInstance> instance = Instance().release();
    connect(instance, &ApplicationInstance::ProcessExited, this, [&] { delete instance; });
    QVERIFY(instance->Start());
    QTRY_VERIFY(instance.isNull());
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestApplicationInstance)
#include "tst_applicationinstance.moc"
