// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/applicationinstance.h"

#ifdef Q_OS_UNIX
#include "tests/launcher/startwaits_unix.h"
#endif
#include "tests/support/launcherfixture.h"
#include "tests/support/markingtranslator.h"
#include "tests/support/metaobject.h"
#include "tests/support/system/system.h"
#include "tests/support/tracerecorder.h"

#include <QSignalSpy>
#include <QTest>

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

} // namespace

class TestApplicationInstance : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void declaresSignalAndSlot();
    void constructorStartsNothing();
    void connectionIsCopied();
    void hostNameIsFirstArgumentUpToColon_data();
    void hostNameIsFirstArgumentUpToColon();
    void setStateTracesChanges();
    void stateNamesAreTranslated();
    void tracesHaveSourceAndLine();
    void noTraceWhileTracesAreOff();

    void startAndEndOfProcess();
#ifdef Q_OS_UNIX
    void waitsThirtySecondsForStart();
#endif
    void exitCodeIsNoCrash();
    void crashIsTraced();
    void processAndEndAreKnown_data();
    void processAndEndAreKnown();
    void failedStartHasNoProcess();
    void nextStartHasNoEnd();
    void failedStartIsReported_data();
    void failedStartIsReported();
    void placeholdersInProgramNameAreKept();
    void startsInWorkingDirectory();
    void missingWorkingDirectoryIsTraced();
    void argumentsArriveUnchanged_data();
    void argumentsArriveUnchanged();
    void outputIsDiscarded();
    void inputIsPipe();
    void canStartAgain();
    void secondStartEndsFirstProcess();

    void releaseAsksProcessToEnd();
    void releaseWithoutProcessIsTraced();
    void secondReleaseKillsProcess();
    void releaseInOtherStateKillsProcess_data();
    void releaseInOtherStateKillsProcess();
    void releaseOfStartedStateWithoutProcess();
    void endInErrorStateEmitsNoSignal();
    void endInUnknownStateIsOnlyTraced_data();
    void endInUnknownStateIsOnlyTraced();
    void exitNotificationWithoutProcessIsIgnored();
    void destructorKillsProcess_data();
    void destructorKillsProcess();
    void canBeDeletedInItsSignal();

private:
    std::unique_ptr<ApplicationInstance> Instance(const QStringList& arguments = {},
                                                  const QString& program = TestChild::Program()) const
    {
        return std::make_unique<ApplicationInstance>(program, arguments, QDir::currentPath(), Connection());
    }
    /// Starts an instance and waits for its report. Returns null if it does not start.
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

void TestApplicationInstance::declaresSignalAndSlot()
{
    QCOMPARE(Declaration(ApplicationInstance::staticMetaObject),
             (QStringList{QStringLiteral("ApplicationInstance : QObject"), QStringLiteral("signal ProcessExited()"),
                          QStringLiteral("slot SlotProcessExited(int iCode, QProcess::ExitStatus status)")}));
}

void TestApplicationInstance::constructorStartsNothing()
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

void TestApplicationInstance::connectionIsCopied()
{
    Connection entry;
    entry.ConnectionName = QStringLiteral("before");
    const ApplicationInstance instance(QString(), {}, QString(), entry);
    entry.ConnectionName = QStringLiteral("after");
    QCOMPARE(instance.GetConnection().ConnectionName, QStringLiteral("before"));
}

void TestApplicationInstance::hostNameIsFirstArgumentUpToColon_data()
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

void TestApplicationInstance::hostNameIsFirstArgumentUpToColon()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, name);
    QCOMPARE(Instance(arguments)->GetHostName(), name);
}

void TestApplicationInstance::setStateTracesChanges()
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
    const MarkingTranslator translator(QStringLiteral("ApplicationInstance"));
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

void TestApplicationInstance::tracesHaveSourceAndLine()
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
    // Missing directory, started, state, crash, end, failed start, release.
    QCOMPARE(lines.size(), 7);
}

void TestApplicationInstance::noTraceWhileTracesAreOff()
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

void TestApplicationInstance::startAndEndOfProcess()
{
    const auto instance = Instance();
    int stateInSignal = -1;
    connect(instance.get(), &ApplicationInstance::ProcessExited, this, [&] { stateInSignal = instance->GetState(); });
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);

    QVERIFY(instance->Start());
    // The start returns before the end is handled.
    QCOMPARE(instance->GetState(), ApplicationInstance::Started);
    QCOMPARE(exited.count(), 0);
    QTRY_COMPARE(exited.count(), 1);
    QCOMPARE(stateInSignal, 0);
    QCOMPARE(m_pTraces->Messages(),
             (QStringList{Started(), StateChange("Free", "Started"), Ended(), StateChange("Started", "Free")}));
    QCOMPARE(m_pChild->Count(), 1);
    QVERIFY(!System::IsProcess(m_pChild->Reports().constFirst().pid));
}

#ifdef Q_OS_UNIX
void TestApplicationInstance::waitsThirtySecondsForStart()
{
    StartWaits::Forget();
    QVERIFY(Instance()->Start());
    QCOMPARE(StartWaits::All(), QList<int>{30'000});
}
#endif

void TestApplicationInstance::exitCodeIsNoCrash()
{
    m_pChild->Behave("exit", 3);
    const auto instance = Instance();
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    QVERIFY(instance->Start());
    QTRY_COMPARE(exited.count(), 1);
    QVERIFY2(m_pTraces->Messages().contains(Ended()), m_pTraces->Text().constData());
}

void TestApplicationInstance::crashIsTraced()
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

void TestApplicationInstance::processAndEndAreKnown_data()
{
    QTest::addColumn<QByteArray>("mode");
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("code");
    QTest::newRow("done") << QByteArray("exit") << 0 << int{QProcess::NormalExit} << 0;
    QTest::newRow("failed") << QByteArray("exit") << 3 << int{QProcess::NormalExit} << 3;
#ifdef Q_OS_WIN
    const int code = static_cast<int>(0xC0000005);
#else
    const int code = SIGABRT;
#endif
    QTest::newRow("crashed") << QByteArray("crash") << 0 << int{QProcess::CrashExit} << code;
}

void TestApplicationInstance::processAndEndAreKnown()
{
    QFETCH(const QByteArray, mode);
    QFETCH(const int, number);
    QFETCH(const int, status);
    QFETCH(const int, code);
    m_pChild->Behave(mode.constData(), number);
    const auto instance = Instance();
    QCOMPARE(instance->GetProgram(), TestChild::Program());
    QCOMPARE(instance->GetProcess(), 0);
    QVERIFY(!instance->GetStartTime().isValid());
    QVERIFY(!instance->GetEnd());
    std::optional<ApplicationInstance::End> inSignal;
    connect(instance.get(), &ApplicationInstance::ProcessExited, this, [&] { inSignal = instance->GetEnd(); });

    const QDateTime before = QDateTime::currentDateTime();
    QVERIFY(instance->Start());
    QVERIFY(!instance->GetEnd());
    const qint64 process = instance->GetProcess();
    const QDateTime since = instance->GetStartTime();
    QVERIFY(since >= before && since <= QDateTime::currentDateTime());
    QTRY_VERIFY(inSignal);
    QCOMPARE(int{inSignal->status}, status);
    QCOMPARE(inSignal->code, code);
    QCOMPARE(m_pChild->Reports().constFirst().pid, process);
    // Still known after the end.
    QCOMPARE(instance->GetProcess(), process);
    QCOMPARE(instance->GetStartTime(), since);
    QVERIFY(instance->GetEnd());
}

void TestApplicationInstance::failedStartHasNoProcess()
{
    const QTemporaryDir folder;
    const QString program = folder.filePath(QFileInfo(TestChild::Program()).fileName());
    QVERIFY(QFile::copy(TestChild::Program(), program));
    const auto instance = Instance({}, program);
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    QVERIFY(instance->Start());
    QTRY_COMPARE(exited.count(), 1);
    QTRY_VERIFY(!QFile::exists(program) || QFile::remove(program)); // Windows may hold it for a moment
    QVERIFY(!instance->Start());
    QCOMPARE(instance->GetProcess(), 0);
    QVERIFY(!instance->GetStartTime().isValid());
    QVERIFY(!instance->GetEnd());
}

void TestApplicationInstance::nextStartHasNoEnd()
{
    m_pChild->Behave("exit", 3);
    const auto instance = Instance();
    QVERIFY(instance->Start());
    QTRY_VERIFY(instance->GetEnd());
    m_pChild->Behave("stay");
    QVERIFY(instance->Start());
    QVERIFY(!instance->GetEnd());
}

void TestApplicationInstance::failedStartIsReported_data()
{
    QTest::addColumn<QString>("program");
    QTest::newRow("no program") << QString();
    QTest::newRow("missing file") << QStringLiteral("/no/such/program");
    QTest::newRow("not on the path") << QStringLiteral("vexel-no-such-program");
    QTest::newRow("directory") << QDir::tempPath();
    QTest::newRow("not executable") << QStringLiteral(__FILE__);
    QTest::newRow("missing drive") << QStringLiteral("Q:/nowhere/program.exe");
    QTest::newRow("missing network share") << QStringLiteral("//no-such-host/share/program.exe");
    const QStringList devices = System::Devices();
    for (const QString& device : devices)
        QTest::newRow(qPrintable(device)) << device;
}

void TestApplicationInstance::failedStartIsReported()
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

    // Nothing follows later, and another start behaves the same.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    QVERIFY(!instance->Start());
    QCOMPARE(m_pTraces->Messages(), expected + expected);
    QCOMPARE(exited.count(), 0);
}

void TestApplicationInstance::placeholdersInProgramNameAreKept()
{
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

void TestApplicationInstance::startsInWorkingDirectory()
{
    const QTemporaryDir directory;
    ApplicationInstance instance(TestChild::Program(), {}, directory.path(), Connection());
    QVERIFY(instance.Start());
    QTRY_COMPARE(m_pChild->Count(), 1);
    QCOMPARE(m_pChild->Reports().constFirst().directory, QDir(directory.path()).canonicalPath());
    QCOMPARE(m_pTraces->Messages().constFirst(), Started());
}

void TestApplicationInstance::missingWorkingDirectoryIsTraced()
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

void TestApplicationInstance::argumentsArriveUnchanged_data()
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
    row("backslashes at the end", QStringLiteral("C:\\data dir\\\\"));
    row("backslashes before a quote", QStringLiteral("a\\\\\"b"));
    row("shell characters", QStringLiteral("$HOME `id` ; | & > < * ? ^ ~ ! # (x) {y} [z] 100% %1 %PATH% %n"));
    row("non-Latin", QStringLiteral("Пеленгатор 方位 ⚓"));
    row("outside the BMP", QString::fromUcs4(U"\x1F4E1\x10FFFD", 2));
    row("8,000 characters", QString(8000, QLatin1Char('x')));
    QTest::newRow("400 arguments") << QList<QString>(400, QStringLiteral("a b"));
}

void TestApplicationInstance::argumentsArriveUnchanged()
{
    QFETCH(const QStringList, arguments);
    const auto instance = Instance(arguments);
    QVERIFY(instance->Start());
    QTRY_COMPARE(m_pChild->Count(), 1);
    QCOMPARE(m_pChild->Reports().constFirst().arguments, arguments);
}

void TestApplicationInstance::outputIsDiscarded()
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

    // A process that prints endlessly can be ended.
    TestChild::Report report;
    const auto endless = RunningInstance("print-forever", &report);
    QVERIFY(endless);
    QSignalSpy endlessExited(endless.get(), &ApplicationInstance::ProcessExited);
    endless->SetState(ApplicationInstance::Error);
    endless->ReleaseInstance();
    QVERIFY(!System::IsProcess(report.pid));
    QCOMPARE(endlessExited.count(), 0);
}

void TestApplicationInstance::inputIsPipe()
{
    TestChild::Report report;
    QVERIFY(RunningInstance("stay", &report));
    QCOMPARE(report.stdinTarget, QStringLiteral("pipe"));
}

void TestApplicationInstance::canStartAgain()
{
    const auto instance = Instance();
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    for (int run = 1; run <= 3; ++run) {
        QVERIFY(instance->Start());
        QTRY_COMPARE(exited.count(), run);
        QCOMPARE(m_pChild->Count(), run);
    }
}

void TestApplicationInstance::secondStartEndsFirstProcess()
{
    TestChild::Report first;
    const auto instance = RunningInstance("stay", &first);
    QVERIFY(instance);
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    m_pChild->Clear();
    QVERIFY(instance->Start());
    QTRY_COMPARE(m_pChild->Count(), 1);
    // The first process was killed, and its end was not taken for that of the second.
    QVERIFY(m_pChild->Reports().constFirst().pid != first.pid);
    QVERIFY(!System::IsProcess(first.pid));
    QCOMPARE(instance->GetState(), ApplicationInstance::Started);
    QCOMPARE(exited.count(), 0);
}

void TestApplicationInstance::releaseAsksProcessToEnd()
{
    // The process is not killed: this one exits on request.
    TestChild::Report report;
    const auto instance = RunningInstance("polite", &report);
    QVERIFY(instance);
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    m_pTraces->Clear();

    instance->ReleaseInstance();
    QCOMPARE(instance->GetState(), ApplicationInstance::Free);
    QCOMPARE(m_pTraces->Messages(), QStringList(StateChange("Started", "Free")));

    // Its end is only traced, because the instance is already "Free".
    QTRY_COMPARE(m_pTraces->Reports().size(), 2);
    QCOMPARE(m_pTraces->Messages(), (QStringList{StateChange("Started", "Free"), Ended()}));
    QVERIFY(!System::IsProcess(report.pid));
    QCOMPARE(instance->GetState(), ApplicationInstance::Free);
    QCOMPARE(exited.count(), 0);
}

void TestApplicationInstance::releaseWithoutProcessIsTraced()
{
    const auto instance = Instance();
    instance->ReleaseInstance();
    QCOMPARE(instance->GetState(), ApplicationInstance::Free);
    QCOMPARE(m_pTraces->Messages(), QStringList(Text("ApplicationInstance::ReleaseInstance() unknwon state 0")));
    // It can still be started.
    QVERIFY(instance->Start());
}

void TestApplicationInstance::secondReleaseKillsProcess()
{
    TestChild::Report report;
    const auto instance = RunningInstance("stubborn", &report);
    QVERIFY(instance);
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    instance->ReleaseInstance();
    QCOMPARE(instance->GetState(), ApplicationInstance::Free);
    // The process ignores the request to end.
    QVERIFY(System::IsProcess(report.pid));
    m_pTraces->Clear();

    instance->ReleaseInstance();
    QCOMPARE(m_pTraces->Messages(), QStringList(Text("ApplicationInstance::ReleaseInstance() unknwon state 0")));
    QVERIFY(!System::IsProcess(report.pid));
    QCoreApplication::processEvents();
    QCOMPARE(m_pTraces->Reports().size(), 1);
    QCOMPARE(exited.count(), 0);
}

void TestApplicationInstance::releaseInOtherStateKillsProcess_data()
{
    QTest::addColumn<int>("state");
    QTest::newRow("Error") << 2;
    QTest::newRow("unknown") << 7;
    QTest::newRow("negative") << -1;
}

void TestApplicationInstance::releaseInOtherStateKillsProcess()
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

void TestApplicationInstance::releaseOfStartedStateWithoutProcess()
{
    const auto instance = Instance();
    instance->SetState(ApplicationInstance::Started);
    instance->ReleaseInstance();
    QCOMPARE(instance->GetState(), ApplicationInstance::Free);
}

void TestApplicationInstance::endInErrorStateEmitsNoSignal()
{
    const auto instance = Instance();
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    QVERIFY(instance->Start());
    instance->SetState(ApplicationInstance::Error);
    m_pTraces->Clear();
    QTRY_COMPARE(instance->GetState(), ApplicationInstance::Free);
    QCOMPARE(m_pTraces->Messages(), (QStringList{Ended(), StateChange("Error", "Free")}));
    QCOMPARE(exited.count(), 0);

    // The process is deleted: a further notification is ignored.
    m_pTraces->Clear();
    instance->SlotProcessExited(0, QProcess::NormalExit);
    QVERIFY2(m_pTraces->Reports().isEmpty(), m_pTraces->Text().constData());
}

void TestApplicationInstance::endInUnknownStateIsOnlyTraced_data()
{
    QTest::addColumn<int>("state");
    QTest::newRow("unknown") << 7;
    QTest::newRow("negative") << -1;
}

void TestApplicationInstance::endInUnknownStateIsOnlyTraced()
{
    QFETCH(const int, state);
    const auto instance = Instance();
    QSignalSpy exited(instance.get(), &ApplicationInstance::ProcessExited);
    QVERIFY(instance->Start());
    instance->SetState(state);
    m_pTraces->Clear();
    QTRY_COMPARE(m_pTraces->Messages(), QStringList(Ended()));
    QCOMPARE(int{instance->GetState()}, state);
    // The process is kept: a further notification is traced, too.
    instance->SlotProcessExited(0, QProcess::NormalExit);
    QCOMPARE(m_pTraces->Messages(), (QStringList{Ended(), Ended()}));
    QCOMPARE(exited.count(), 0);
}

void TestApplicationInstance::exitNotificationWithoutProcessIsIgnored()
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

void TestApplicationInstance::destructorKillsProcess_data()
{
    QTest::addColumn<bool>("released");
    QTest::newRow("started") << false;
    QTest::newRow("released, but still running") << true;
}

void TestApplicationInstance::destructorKillsProcess()
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

void TestApplicationInstance::canBeDeletedInItsSignal()
{
    QPointer<ApplicationInstance> instance = Instance().release();
    connect(instance, &ApplicationInstance::ProcessExited, this, [&] { delete instance; });
    QVERIFY(instance->Start());
    QTRY_VERIFY(instance.isNull());
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestApplicationInstance)
#include "tst_applicationinstance.moc"
