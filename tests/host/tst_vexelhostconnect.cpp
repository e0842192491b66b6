#include "tests/host/hostsetup.h"
#include "tests/support/system.h"
#include "tests/support/testmain.h"

#include <QImage>
#include <QRegularExpression>

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

const QStringList kMastUsed{QStringLiteral("mast: Free -> In Use"), QStringLiteral("mast: In Use -> Free")};

} // namespace

// The host's executable with the real plug-in: connecting, waiting and pictures, without a person.
class TestVexelHostConnect : public QObject
{
    Q_OBJECT

private slots:
    void connectAndWait();
    void withoutWaitTheApplicationEndsWithTheHost();
    void unknownNameConnectsNothing();
    void connectSelected();
    void connectSelectedWithoutTicksFails();
    void connectWithoutAFreeApplicationFails();
    void missingProgramIsReported();
    void programMayEndAtOnce();
    void equalEntriesAreInUseTogether();
    void installedSamplesAreTheDefaultData();
    void childrenFindTheConfiguration_data();
    void childrenFindTheConfiguration();
    void picturesAreTakenAtEachMoment();
    void unwritablePictureIsReported();
    void terminatedHostSaves();
    void closedOutputDoesNotStopTheWork();
    void terminatedHostEndsItsApplications();
    void nameChoosesTheMappingFile();
    void problemTextKeepsTheNameUnchanged();
    void failedSaveIsReportedOnce();

private:
    static QStringList Changes(const QStringList& lines);
};

/// "NAME: Free -> In Use" for each line, whose form is checked.
QStringList TestVexelHostConnect::Changes(const QStringList& lines)
{
    static const QRegularExpression form(QStringLiteral(R"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3} (.*: .* -> .*)$)"));
    QStringList changes;
    for (const QString& line : lines) {
        const QRegularExpressionMatch match = form.match(line);
        changes.append(match.hasMatch() ? match.captured(1) : QStringLiteral("not a change: ") + line);
    }
    return changes;
}

void TestVexelHostConnect::connectAndWait()
{
    Station setUp(1);
    setUp.Fill("mast pier", "pier");
    const auto result = setUp.Run("--connect mast --wait");
    QCOMPARE(result.error, QString());
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(Changes(result.OutputLines()), kMastUsed);
}

void TestVexelHostConnect::withoutWaitTheApplicationEndsWithTheHost()
{
    Station setUp(1, "3600");
    setUp.Fill("mast");
    const auto result = setUp.Run("--connect mast");
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.output, QString());
    QCOMPARE(setUp.Names(), Words("mast"));
}

void TestVexelHostConnect::unknownNameConnectsNothing()
{
    Station setUp(1);
    setUp.Fill("mast");
    COMPARE_FAILURE(setUp.Run("--connect mast --connect Mast --wait"), 3,
                    QLatin1String("there is no entry called \"Mast\""));
}

void TestVexelHostConnect::connectSelected()
{
    Station setUp(2);
    setUp.Fill("mast pier van", "mast van");
    const auto result = setUp.Run("--connect-selected --wait");
    QCOMPARE(result.exitCode, 0);
    const QStringList changes = Changes(result.OutputLines());
    QCOMPARE(changes.size(), 4);
    QCOMPARE(changes.mid(0, 2),
             QStringList({QStringLiteral("mast: Free -> In Use"), QStringLiteral("van: Free -> In Use")}));
    QVERIFY(changes.contains(QStringLiteral("mast: In Use -> Free")));
    QVERIFY(changes.contains(QStringLiteral("van: In Use -> Free")));
    QCOMPARE(setUp.TickedNames(), Words("mast van"));
}

void TestVexelHostConnect::connectSelectedWithoutTicksFails()
{
    Station setUp(1);
    setUp.Fill("mast");
    COMPARE_FAILURE(setUp.Run("--connect-selected --wait"), 3, QLatin1String("no entry is ticked"));
}

void TestVexelHostConnect::connectWithoutAFreeApplicationFails()
{
    Station setUp(1);
    setUp.Fill("mast pier", "pier");
    const auto result = setUp.Run("--connect mast --connect pier --wait");
    QCOMPARE(result.exitCode, 3);
    // The other entry was connected, and waited for.
    QCOMPARE(Changes(result.OutputLines()), kMastUsed);
    QCOMPARE(result.ErrorLines(),
             QStringList({QStringLiteral("vexelhost: Problem: Could not connect to \"pier\". There is no free "
                                         "userinterface available to connect to this type of hardware. Device type: "
                                         "Kite Echo Number of installed applications for this type: 1 Number of "
                                         "running applications for this type: 1"),
                          QStringLiteral("vexelhost: \"pier\" could not be connected")}));
    QCOMPARE(setUp.TickedNames(), Words("pier"));
}

void TestVexelHostConnect::missingProgramIsReported()
{
    HostSetUp setUp;
    setUp.Install(QStringLiteral("/no/such/program"), 1);
    setUp.Fill("mast");
    COMPARE_FAILURE(setUp.Run("--connect mast --wait"), 3,
                    QLatin1String("\"mast\" could not be connected (use --trace for the reason)"));
}

void TestVexelHostConnect::programMayEndAtOnce()
{
    HostSetUp setUp;
    // The host itself: it takes the application's arguments for a wrong command line.
    setUp.Install(QDir().absoluteFilePath(QStringLiteral(VEXELHOST)), 1);
    setUp.Fill("mast");
    const auto result = setUp.Run("--connect mast --wait");
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(Changes(result.OutputLines()), kMastUsed);
}

void TestVexelHostConnect::equalEntriesAreInUseTogether()
{
    Station setUp(2);
    // Alike in all that makes an entry: connecting one of them puts both to use.
    setUp.Fill("twin twin");
    const auto result = setUp.Run("--connect twin --wait");
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.OutputLines().size(), 4);
}

void TestVexelHostConnect::installedSamplesAreTheDefaultData()
{
    HostSetUp setUp;
    setUp.WriteList("list.xml", "mast");
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("0.1"));
    const auto result = setUp.Run("--add list.xml --connect mast --wait");
    QCOMPARE(result.error, QString());
    QCOMPARE(result.exitCode, 0);
    QVERIFY(!setUp.StoredText().contains("VexelDataDir"));
}

void TestVexelHostConnect::childrenFindTheConfiguration_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("plain") << QStringLiteral("config");
    // More than the narrow characters of any one country hold.
    QTest::newRow("letters") << QStringLiteral("\u00fc \u0441\u0432\u044f\u0437\u044c \u5317\u6597");
}

void TestVexelHostConnect::childrenFindTheConfiguration()
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
    const auto result =
        setUp.Run({QStringLiteral("--config"), folder, QStringLiteral("--data"), setUp.Data(), QStringLiteral("--add"),
                   list, QStringLiteral("--connect"), QStringLiteral("mast"), QStringLiteral("--wait")});
    QCOMPARE(result.exitCode, 0);
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

void TestVexelHostConnect::picturesAreTakenAtEachMoment()
{
    Station setUp(1);
    QStringList names;
    for (int i = 0; i < 20; ++i)
        names.append(QStringLiteral("mast number %1").arg(i));
    setUp.Fill(names);
    const auto result = setUp.Run({QStringLiteral("--connect"), names.at(0), QStringLiteral("--wait"),
                                   QStringLiteral("--screenshot-before"), QStringLiteral("before.png"),
                                   QStringLiteral("--screenshot-during"), QStringLiteral("during.png"),
                                   QStringLiteral("--screenshot"), QStringLiteral("after.png")});
    QCOMPARE(result.error, QString());
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

void TestVexelHostConnect::unwritablePictureIsReported()
{
    HostSetUp setUp;
    const QString fileName = setUp.Path("no/such/folder/a.png");
    COMPARE_FAILURE(setUp.Run({QStringLiteral("--screenshot"), fileName}), 1, fileName);

    // Larger than the memory.
    for (const char* factor : {"100", "1000", "nan"}) {
        setUp.Environment().insert(QStringLiteral("QT_SCALE_FACTOR"), QString::fromLatin1(factor));
        COMPARE_FAILURE(setUp.Run("--screenshot large.png"), 1, QLatin1String("the dialog is too large"));
        QVERIFY(!QFileInfo::exists(setUp.Path("large.png")));
    }
}

void TestVexelHostConnect::terminatedHostSaves()
{
    Station setUp(1, "3600");
    setUp.Fill("mast pier", "pier");
    setUp.WriteList("more.xml", "van");
    QProcess process;
    setUp.Start(process, "--add more.xml --connect mast --wait");
    QTRY_VERIFY(process.peek(1000).contains("mast: Free -> In Use\n"));
    process.terminate();
    const auto result = HostSetUp::End(process);
    QCOMPARE(result.error, QString());
    QCOMPARE(result.exitCode, 0);
    // Saved: the added entry, and the unchanged ticks.
    QCOMPARE(setUp.Names(), Words("mast pier van"));
    QCOMPARE(setUp.TickedNames(), Words("pier"));
}

void TestVexelHostConnect::terminatedHostEndsItsApplications()
{
    Station setUp(1, "3600");
    setUp.Fill("mast");
    QVERIFY(QDir().mkpath(setUp.Path("reports")));
    setUp.Environment().insert(QStringLiteral("KITECONTROL_REPORT_DIR"), setUp.Path("reports"));
    QProcess process;
    setUp.Start(process, "--connect mast --wait");
    QStringList reports;
    QTRY_VERIFY(!(reports = QDir(setUp.Path("reports")).entryList({QStringLiteral("*.txt")}, QDir::Files)).isEmpty());
    // "<program>-<process id>.txt"
    const qint64 child = reports.constFirst().section(u'-', -1).section(u'.', 0, 0).toLongLong();
    QVERIFY(System::IsProcess(child));
    process.terminate();
    QCOMPARE(HostSetUp::End(process).exitCode, 0);
    // Neither running nor waiting to be asked for its exit code.
    QVERIFY(!System::IsProcess(child));
}

void TestVexelHostConnect::nameChoosesTheMappingFile()
{
    Station setUp(1);
    setUp.Fill("mast");
    const QString file = setUp.Path("elsewhere.xml");
    setUp.Write(setUp.Config() + QStringLiteral("/application/Second.json"),
                R"({"values": {"TypeApplicationMappings": ")" + file.toUtf8() + "\"}}");
    const QString missed = QStringLiteral("Could not open ") + file + QStringLiteral(" for reading");
    QVERIFY(!setUp.Run("--trace --list").error.contains(missed));
    const auto result = setUp.Run("--trace --list --name Second");
    QVERIFY2(result.error.contains(missed), qPrintable(result.error));
}

void TestVexelHostConnect::problemTextKeepsTheNameUnchanged()
{
    Station setUp(0);
    const QString name = QStringLiteral("two  blanks");
    setUp.Fill({name});
    const auto result = setUp.Run({QStringLiteral("--connect"), name});
    QCOMPARE(result.exitCode, 3);
    QVERIFY2(result.ErrorLines().constFirst().contains(QLatin1String("\"two  blanks\".")), qPrintable(result.error));
}

void TestVexelHostConnect::closedOutputDoesNotStopTheWork()
{
    Station setUp(1);
    setUp.Fill("mast");
    setUp.WriteList("more.xml", "van");
    QProcess process;
    setUp.Start(process, "--add more.xml --connect mast --wait");
    QTRY_VERIFY(process.peek(1000).contains("mast: Free -> In Use\n"));
    process.closeReadChannel(QProcess::StandardOutput);
    QCOMPARE(HostSetUp::End(process).exitCode, 0);
    QCOMPARE(setUp.Names(), Words("mast van"));
}

void TestVexelHostConnect::failedSaveIsReportedOnce()
{
    Station setUp(1, "3600");
    setUp.Fill("mast");
    setUp.WriteList("more.xml", "van");
    QProcess process;
    setUp.Start(process, "--add more.xml --connect mast --wait");
    QTRY_VERIFY(process.peek(1000).contains("mast: Free -> In Use\n"));
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

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelHostConnect)
#include "tst_vexelhostconnect.moc"
