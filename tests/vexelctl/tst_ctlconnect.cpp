// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/filelock.h"
#include "tests/host/hostsetup.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"
#include "tests/support/waitforend.h"

#include <QImage>
#include <QRegularExpression>

#include <memory>

namespace {

/// With applications that end by themselves.
struct Station : HostSetUp
{
    explicit Station(int applications, const char* seconds = "0.2")
    {
        Install(QDir().absoluteFilePath(QStringLiteral(PROGRAM_DIRECTORY "/kitecontrol")), applications);
        Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QString::fromLatin1(seconds));
    }
};

const QString kNoHost = QStringLiteral("vexelctl: no host runs, so the applications end with this command\n");
const QStringList kMastUsed{QStringLiteral("mast: Free -> In Use (kitecontrol, process)"),
                            QStringLiteral("mast: In Use -> Free (exit code 0)")};

/// The run has this exit code, nothing on standard output, and says `hint` in its last line.
#define COMPARE_NOT_CONNECTED(result, code, hint)                                                                      \
    do {                                                                                                               \
        const HostSetUp::Result failed = (result);                                                                     \
        QCOMPARE(failed.exitCode, code);                                                                               \
        QCOMPARE(failed.output, QString());                                                                            \
        QVERIFY2(failed.ErrorLines().constLast().contains(hint), qPrintable(failed.error));                            \
    } while (false)

} // namespace

// vexelctl without a host: connecting and screenshots, with the real plug-in off screen.
class TestCtlConnect : public QObject
{
    Q_OBJECT

private slots:
    void connectWaitsForTheApplication();
    void changesAsJson();
    void unknownNameConnectsNothing();
    void connectSelected();
    void connectSelectedWithoutTicksFails();
    void connectWithoutAFreeApplicationFails();
    void missingProgramIsReported();
    void exitCodeOfTheApplicationCounts();
    void crashOfTheApplicationCounts();
    void equalEntriesAreInUseTogether();
    void installedSamplesAreTheDefaultData();
    void childrenFindTheConfiguration_data();
    void childrenFindTheConfiguration();
    void picturesAreTakenAtEachMoment();
    void screenshotChangesNothing();
    void unwritablePictureIsReportedFirst();
    void tooLargePictureIsReported();
    void interruptionSavesAndEndsTheApplications_data();
    void interruptionSavesAndEndsTheApplications();
    void interruptionBeforeTheStart();
    void nameChoosesTheMappingFile();
    void problemTextKeepsTheNameUnchanged();
    void failedSaveIsReportedOnce();

private:
    static QStringList Changes(const QStringList& lines);
};

/// "NAME: Free -> In Use (PROGRAM, process)" for each line, whose form is checked.
QStringList TestCtlConnect::Changes(const QStringList& lines)
{
    static const QRegularExpression form(
        QStringLiteral(R"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}[+-]\d\d:\d\d (.*: .* -> .*)$)"));
    static const QRegularExpression process(QStringLiteral("process \\d+"));
    QStringList changes;
    for (const QString& line : lines) {
        const QRegularExpressionMatch match = form.match(line);
        changes.append(match.hasMatch() ? match.captured(1).replace(process, QStringLiteral("process"))
                                        : QStringLiteral("not a change: ") + line);
    }
    return changes;
}

void TestCtlConnect::connectWaitsForTheApplication()
{
    Station setUp(1);
    setUp.Fill("mast pier", "pier");
    const auto result = setUp.Run("connect mast");
    QCOMPARE(result.error, kNoHost);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(Changes(result.OutputLines()), kMastUsed);
    QCOMPARE(setUp.Run("connect mast --wait").exitCode, 0);
}

void TestCtlConnect::changesAsJson()
{
    Station setUp(1);
    setUp.Fill("mast");
    // Whatever the language.
    const auto result = setUp.Run("connect mast --json --language de");
    QCOMPARE(result.exitCode, 0);
    const QStringList lines = result.OutputLines();
    QCOMPARE(lines.size(), 2);
    const QJsonObject start = QJsonDocument::fromJson(lines.at(0).toUtf8()).object();
    QCOMPARE(start[QLatin1String("name")], QJsonValue(QStringLiteral("mast")));
    QCOMPARE(start[QLatin1String("from")], QJsonValue(0));
    QCOMPARE(start[QLatin1String("fromText")], QJsonValue(QStringLiteral("Free")));
    QCOMPARE(start[QLatin1String("to")], QJsonValue(1));
    QCOMPARE(start[QLatin1String("toText")], QJsonValue(QStringLiteral("In Use")));
    QVERIFY(start[QLatin1String("program")].toString().contains(QLatin1String("kitecontrol")));
    QVERIFY(start[QLatin1String("process")].toInteger() > 0);
    QVERIFY(!start.contains(QLatin1String("exitCode")));
    const QJsonObject end = QJsonDocument::fromJson(lines.at(1).toUtf8()).object();
    QCOMPARE(end[QLatin1String("process")], start[QLatin1String("process")]);
    QCOMPARE(end[QLatin1String("to")], QJsonValue(0));
    QCOMPARE(end[QLatin1String("exitCode")], QJsonValue(0));
}

void TestCtlConnect::unknownNameConnectsNothing()
{
    Station setUp(1);
    setUp.Fill("mast");
    COMPARE_NOT_CONNECTED(setUp.Run("connect mast Mast"), 3, QLatin1String("there is no entry called \"Mast\""));
}

void TestCtlConnect::connectSelected()
{
    Station setUp(2);
    setUp.Fill("mast pier van", "mast van");
    const auto result = setUp.Run("connect --selected");
    QCOMPARE(result.exitCode, 0);
    const QStringList changes = Changes(result.OutputLines());
    QCOMPARE(changes.size(), 4);
    QVERIFY(changes.at(0).startsWith(QLatin1String("mast: Free -> In Use")));
    QVERIFY(changes.at(1).startsWith(QLatin1String("van: Free -> In Use")));
    QVERIFY(changes.contains(QStringLiteral("mast: In Use -> Free (exit code 0)")));
    QVERIFY(changes.contains(QStringLiteral("van: In Use -> Free (exit code 0)")));
    QCOMPARE(setUp.TickedNames(), Words("mast van"));
}

void TestCtlConnect::connectSelectedWithoutTicksFails()
{
    Station setUp(1);
    setUp.Fill("mast");
    COMPARE_NOT_CONNECTED(setUp.Run("connect --selected"), 3, QLatin1String("no entry is ticked"));
}

void TestCtlConnect::connectWithoutAFreeApplicationFails()
{
    Station setUp(1);
    setUp.Fill("mast pier", "pier");
    const auto result = setUp.Run("connect mast pier");
    QCOMPARE(result.exitCode, 3);
    // The other entry was connected, and waited for.
    QCOMPARE(Changes(result.OutputLines()), kMastUsed);
    QCOMPARE(result.ErrorLines().mid(1),
             QStringList({QStringLiteral("vexelctl: Problem: Could not connect to \"pier\". There is no free "
                                         "userinterface available to connect to this type of hardware. Device type: "
                                         "Kite Echo Number of installed applications for this type: 1 Number of "
                                         "running applications for this type: 1"),
                          QStringLiteral("vexelctl: \"pier\" could not be connected")}));
    QCOMPARE(setUp.TickedNames(), Words("pier"));
}

void TestCtlConnect::missingProgramIsReported()
{
    HostSetUp setUp;
    setUp.Install(QStringLiteral("/no/such/program"), 1);
    setUp.Fill("mast");
    COMPARE_NOT_CONNECTED(setUp.Run("connect mast"), 3,
                          QLatin1String("\"mast\" could not be connected (--trace gives the reason)"));
}

void TestCtlConnect::exitCodeOfTheApplicationCounts()
{
    HostSetUp setUp;
    // The host itself: it takes the application's arguments for a wrong command line, and ends at once.
    setUp.Install(QDir().absoluteFilePath(QStringLiteral(VEXELHOST)), 1);
    setUp.Fill("mast");
    const auto result = setUp.Run("connect mast");
    QCOMPARE(result.exitCode, 3);
    QCOMPARE(Changes(result.OutputLines()), QStringList({QStringLiteral("mast: Free -> In Use (vexelhost, process)"),
                                                         QStringLiteral("mast: In Use -> Free (exit code 1)")}));
    QCOMPARE(setUp.Run("connect mast --ignore-exit-codes").exitCode, 0);
}

void TestCtlConnect::crashOfTheApplicationCounts()
{
    Station setUp(1, "3600");
    setUp.Fill("mast");
    static const QRegularExpression number(QStringLiteral("process\\W+(\\d+)"));
    const auto runAndCrash = [&setUp](const char* arguments) {
        QProcess process;
        setUp.Start(process, arguments);
        const auto child = [&process] {
            return number.match(QString::fromUtf8(process.peek(1000))).captured(1).toLongLong();
        };
        [&] {
            QTRY_VERIFY(child() > 0);
        }();
        System::Crash(child());
        return HostSetUp::End(process);
    };
    const auto json = runAndCrash("connect mast --json");
    QCOMPARE(json.exitCode, 3);
    const QJsonObject end = QJsonDocument::fromJson(json.OutputLines().constLast().toUtf8()).object();
    QCOMPARE(end[QLatin1String("crashed")], QJsonValue(true));
    QVERIFY(!end.contains(QLatin1String("exitCode")));

    const auto text = runAndCrash("connect mast --ignore-exit-codes");
    QCOMPARE(text.exitCode, 0);
    const QString change = Changes(text.OutputLines()).constLast();
    if (end.contains(QLatin1String("signal")))
        QCOMPARE(change, QStringLiteral("mast: In Use -> Free (signal %1)").arg(end[QLatin1String("signal")].toInt()));
    else
        QCOMPARE(change, QStringLiteral("mast: In Use -> Free (crashed)"));
}

void TestCtlConnect::equalEntriesAreInUseTogether()
{
    Station setUp(2);
    // Alike in all that makes an entry: connecting one of them puts both to use.
    setUp.Fill("twin twin");
    const auto result = setUp.Run("connect twin");
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.OutputLines().size(), 4);
}

void TestCtlConnect::installedSamplesAreTheDefaultData()
{
    HostSetUp setUp;
    setUp.WriteList("list.xml", "mast");
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("0.1"));
    QCOMPARE(setUp.Run("add list.xml").exitCode, 0);
    const auto result = setUp.Run("connect mast");
    QCOMPARE(result.error, kNoHost);
    QCOMPARE(result.exitCode, 0);
    QVERIFY(!setUp.StoredText().contains("VexelDataDir"));
}

void TestCtlConnect::childrenFindTheConfiguration_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("plain") << QStringLiteral("config");
    // More than the narrow characters of any one country hold.
    QTest::newRow("letters") << QStringLiteral("\u00fc \u0441\u0432\u044f\u0437\u044c \u5317\u6597");
}

void TestCtlConnect::childrenFindTheConfiguration()
{
    QFETCH(const QString, folder);
    HostSetUp setUp;
    // Without a path: found beside the host.
    setUp.Install(QStringLiteral("kitecontrol"), 1);
    const QString list = setUp.Path("list.xml");
    setUp.WriteList("list.xml", "mast");
    QVERIFY(QDir().mkpath(setUp.Path("reports")));
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("0.1"));
    setUp.Environment().insert(QStringLiteral("KITECONTROL_REPORT_DIR"), setUp.Path("reports"));
    // A relative directory, which the child could not find from elsewhere.
    const QStringList config{QStringLiteral("--config"), folder};
    QCOMPARE(
        setUp.Run(QStringList{QStringLiteral("add"), list, QStringLiteral("--data"), setUp.Data()} + config).exitCode,
        0);
    QCOMPARE(setUp.Run(QStringList{QStringLiteral("connect"), QStringLiteral("mast")} + config).exitCode, 0);
    const QFileInfoList reports = QDir(setUp.Path("reports")).entryInfoList(QDir::Files);
    QCOMPARE(reports.size(), 1);
    QFile report(reports.constFirst().absoluteFilePath());
    QVERIFY(report.open(QIODevice::ReadOnly | QIODevice::Text));
    const QByteArray text = report.readAll();
    // As the system writes it; in the report a backslash is two.
    const QString directory = QDir::toNativeSeparators(QFileInfo(setUp.Config()).dir().filePath(folder))
                                  .replace(QLatin1String("\\"), QLatin1String("\\\\"));
    QVERIFY2(text.contains("configuration: " + directory.toUtf8() + '\n'), text.constData());
    QVERIFY2(text.contains("App1:XMsgDlg.dll Server mast\n"), text.constData());
    QVERIFY2(text.contains("station name: mast\n"), text.constData());
}

void TestCtlConnect::picturesAreTakenAtEachMoment()
{
    Station setUp(1);
    QStringList names;
    for (int i = 0; i < 20; ++i)
        names.append(QStringLiteral("mast number %1").arg(i));
    setUp.Fill(names);
    QCOMPARE(setUp.Run("screenshot before.png").error, QString());
    const auto result =
        setUp.Run({QStringLiteral("connect"), names.at(0), QStringLiteral("--screenshot-during"),
                   QStringLiteral("during.png"), QStringLiteral("--screenshot"), QStringLiteral("after.png")});
    QCOMPARE(result.error, kNoHost);
    QCOMPARE(result.exitCode, 0);
    const QImage before(setUp.Path("before.png"));
    const QImage during(setUp.Path("during.png"));
    const QImage after(setUp.Path("after.png"));
    for (const QImage& image : {before, during, after}) {
        QVERIFY(!image.isNull());
        // Twenty rows and two buttons.
        QVERIFY(image.height() > 250 && image.height() < 1600);
        QVERIFY(image.width() > 200 && image.width() < 2400);
    }
    QVERIFY(during != after);
    // The size of the picture is not stored as the size of the dialog.
    QVERIFY(!setUp.StoredText().contains(QByteArray("VexelConnectDlgGUI")));
}

void TestCtlConnect::screenshotChangesNothing()
{
    HostSetUp setUp;
    COMPARE_FAILURE(setUp.Run("screenshot a.png"), 2, setUp.Config());
    QVERIFY(!QFileInfo::exists(setUp.Config()));
    setUp.Fill("mast");
    const QByteArray stored = setUp.StoredText();
    QProcess process;
    setUp.Start(process, "screenshot - --data data");
    QVERIFY(WaitForEnd(process));
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QVERIFY(!QImage::fromData(process.readAllStandardOutput()).isNull());
    QCOMPARE(setUp.StoredText(), stored);
}

void TestCtlConnect::unwritablePictureIsReportedFirst()
{
    Station setUp(1, "3600");
    setUp.Fill("mast");
    const QString fileName = setUp.Path("no/such/folder/a.png");
    COMPARE_FAILURE(setUp.Run({QStringLiteral("screenshot"), fileName}), 2, fileName);
    // Before anything is connected.
    for (const QString& option : {QStringLiteral("--screenshot"), QStringLiteral("--screenshot-during")})
        COMPARE_FAILURE(setUp.Run({QStringLiteral("connect"), QStringLiteral("mast"), option, fileName}), 2, fileName);
}

void TestCtlConnect::tooLargePictureIsReported()
{
    HostSetUp setUp;
    setUp.Fill("mast");
    // Larger than the memory.
    for (const char* factor : {"100", "1000", "nan"}) {
        setUp.Environment().insert(QStringLiteral("QT_SCALE_FACTOR"), QString::fromLatin1(factor));
        COMPARE_FAILURE(setUp.Run("screenshot large.png"), 2, QLatin1String("the dialog is too large"));
        QVERIFY(!QFileInfo::exists(setUp.Path("large.png")));
    }
}

void TestCtlConnect::interruptionSavesAndEndsTheApplications_data()
{
    QTest::addColumn<QString>("request");
    for (const QString& request : System::RequestsToEnd())
        QTest::newRow(qPrintable(request)) << request;
}

void TestCtlConnect::interruptionSavesAndEndsTheApplications()
{
    QFETCH(const QString, request);
    Station setUp(1, "3600");
    setUp.Fill("mast pier", "pier");
    QProcess process;
    setUp.Start(process, "connect mast --json");
    QByteArray line;
    QTRY_VERIFY((line += process.readAllStandardOutput()).endsWith('\n'));
    const qint64 child = QJsonDocument::fromJson(line).object()[QLatin1String("process")].toInteger();
    QVERIFY(System::IsProcess(child));
    QVERIFY(System::AskToEnd(process.processId(), request));
    const auto result = HostSetUp::End(process);
    QCOMPARE(result.error, kNoHost);
    QVERIFY2(QList<int>({128 + 1, 128 + 2, 128 + 15}).contains(result.exitCode), qPrintable(request));
    // Neither running nor waiting to be asked for its exit code.
    QVERIFY(!System::IsProcess(child));
    QCOMPARE(setUp.Names(), Words("mast pier"));
    QCOMPARE(setUp.TickedNames(), Words("pier"));
}

void TestCtlConnect::interruptionBeforeTheStart()
{
    Station setUp(1, "3600");
    setUp.Fill("mast");
    const QString folder = setUp.Config() + QStringLiteral("/shared/KiteResources");
    QVERIFY(QDir().mkpath(folder));
    auto lock = std::make_unique<FileLock>();
    QString error;
    QCOMPARE(lock->TryLock(folder + QStringLiteral("/ConnectData.json.lock"), &error), FileLock::Result::Locked);
    QProcess process;
    setUp.Start(process, "connect mast");
    const auto isRunning = [&setUp] {
        const QByteArray status = setUp.Run("status --json").output.toUtf8();
        return QJsonDocument::fromJson(status).object()[QLatin1String("running")].toBool();
    };
    QTRY_VERIFY(isRunning());
    static const QRegularExpression answer(QStringLiteral("entries are being connected|already in use"));
    QTRY_VERIFY(setUp.Run("connect mast").error.contains(answer)); // the latter if the lock has been given up
    QVERIFY(System::AskToEnd(process.processId(), System::RequestsToEnd().constFirst()));
    lock.reset();
    const auto result = HostSetUp::End(process);
    QCOMPARE(result.error, kNoHost);
    QVERIFY2(result.exitCode > 128, qPrintable(QString::number(result.exitCode)));
    QCOMPARE(setUp.Names(), Words("mast"));
}

void TestCtlConnect::nameChoosesTheMappingFile()
{
    Station setUp(1);
    setUp.Fill("mast");
    const QString file = setUp.Path("elsewhere.xml");
    setUp.Write(setUp.Config() + QStringLiteral("/application/Second.json"),
                R"({"values": {"TypeApplicationMappings": ")" + file.toUtf8() + "\"}}");
    const QString missed = QStringLiteral("Could not open ") + file + QStringLiteral(" for reading");
    QVERIFY(!setUp.Run("screenshot a.png --trace").error.contains(missed));
    const auto result = setUp.Run("screenshot a.png --trace --name Second");
    QVERIFY2(result.error.contains(missed), qPrintable(result.error));
}

void TestCtlConnect::problemTextKeepsTheNameUnchanged()
{
    Station setUp(0);
    const QString name = QStringLiteral("two  blanks");
    setUp.Fill({name});
    const auto result = setUp.Run({QStringLiteral("connect"), name});
    QCOMPARE(result.exitCode, 3);
    QVERIFY2(result.ErrorLines().at(1).contains(QLatin1String("\"two  blanks\".")), qPrintable(result.error));
}

void TestCtlConnect::failedSaveIsReportedOnce()
{
    Station setUp(1, "3600");
    setUp.Fill("mast");
    QProcess process;
    setUp.Start(process, "connect mast");
    QTRY_VERIFY(process.peek(1000).contains("mast: Free -> In Use "));
    // The directory is gone, and cannot be recreated.
    // On Windows only while no application has a file open in it.
    QVERIFY(QTest::qWaitFor([&] { return QDir().rename(setUp.Config(), setUp.Path("aside")); }, 20'000));
    setUp.Write(setUp.Config(), "a regular file");
    process.terminate();
    const auto result = HostSetUp::End(process);
    QCOMPARE(result.exitCode, 2);
    // Reported once; the lost lock file may be reported, too.
    QCOMPARE(result.ErrorLines().filter(QStringLiteral("could not be saved")).size(), 1);
    QVERIFY(QFile::remove(setUp.Config()));
    QVERIFY(QDir().rename(setUp.Path("aside"), setUp.Config()));
    QCOMPARE(setUp.Names(), Words("mast"));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCtlConnect)
#include "tst_ctlconnect.moc"
