#include "tests/host/hostsetup.h"
#include "tests/support/system.h"
#include "tests/support/testmain.h"

#include <QImage>
#include <QRegularExpression>

// The host's executable with the real plug-in: connecting, waiting and pictures, without a person.
class TestVexelHostConnect : public QObject
{
    Q_OBJECT

private slots:
    void connectAndWait();
    void connectedTwiceIsConnectedOnce();
    void connectWithoutWaitingTakesTheApplicationAlong();
    void unknownNameConnectsNothing();
    void connectSelected();
    void nothingTickedToConnect();
    void noApplicationFree();
    void programThatDoesNotExist();
    void programThatEndsAtOnce();
    void ticksStayAsTheyWere();
    void entriesOfTheSameName();
    void installedSamplesServeWithoutADataDirectory();
    void childrenFindTheConfiguration_data();
    void childrenFindTheConfiguration();
    void picturesAtEachMoment();
    void pictureThatCannotBeWritten();
    void terminatedWhileWaiting();
    void readerThatGoesAway();
    void endOfTheHostEndsItsApplications();
    void nameChoosesTheMappingFile();
    void boxTextKeepsTheName();
    void configurationThatCannotBeSaved();

private:
    static QStringList Changes(const QStringList& lines);
    static QString KiteControl() { return QDir().absoluteFilePath(QStringLiteral(PROGRAM_DIRECTORY "/kitecontrol")); }
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
    HostSetUp setUp;
    setUp.Install(KiteControl(), 1);
    setUp.Fill({QStringLiteral("mast"), QStringLiteral("pier")}, {QStringLiteral("pier")});
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("0.2"));
    const auto result = setUp.Run({QStringLiteral("--connect"), QStringLiteral("mast"), QStringLiteral("--wait")});
    QCOMPARE(result.error, QString());
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(Changes(result.OutputLines()),
             QStringList({QStringLiteral("mast: Free -> In Use"), QStringLiteral("mast: In Use -> Free")}));
}

void TestVexelHostConnect::connectedTwiceIsConnectedOnce()
{
    HostSetUp setUp;
    setUp.Install(KiteControl(), 2);
    setUp.Fill({QStringLiteral("mast")});
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("0.2"));
    const auto result = setUp.Run({QStringLiteral("--connect"), QStringLiteral("mast"), QStringLiteral("--connect"),
                                   QStringLiteral("mast"), QStringLiteral("--wait")});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.OutputLines().size(), 2);
}

void TestVexelHostConnect::connectWithoutWaitingTakesTheApplicationAlong()
{
    HostSetUp setUp;
    setUp.Install(KiteControl(), 1);
    setUp.Fill({QStringLiteral("mast")});
    // It would live for an hour.
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("3600"));
    const auto result = setUp.Run({QStringLiteral("--connect"), QStringLiteral("mast")});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.output, QString());
    QCOMPARE(setUp.Names(), QStringList(QStringLiteral("mast")));
}

void TestVexelHostConnect::unknownNameConnectsNothing()
{
    HostSetUp setUp;
    setUp.Install(KiteControl(), 1);
    setUp.Fill({QStringLiteral("mast")});
    const auto result = setUp.Run({QStringLiteral("--connect"), QStringLiteral("mast"), QStringLiteral("--connect"),
                                   QStringLiteral("Mast"), QStringLiteral("--wait")});
    QCOMPARE(result.exitCode, 3);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.ErrorLines(), QStringList(QStringLiteral("vexelhost: there is no entry called \"Mast\"")));
}

void TestVexelHostConnect::connectSelected()
{
    HostSetUp setUp;
    setUp.Install(KiteControl(), 2);
    setUp.Fill({QStringLiteral("mast"), QStringLiteral("pier"), QStringLiteral("van")},
               {QStringLiteral("mast"), QStringLiteral("van")});
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("0.2"));
    const auto result = setUp.Run({QStringLiteral("--connect-selected"), QStringLiteral("--wait")});
    QCOMPARE(result.exitCode, 0);
    const QStringList changes = Changes(result.OutputLines());
    QCOMPARE(changes.size(), 4);
    QCOMPARE(changes.mid(0, 2),
             QStringList({QStringLiteral("mast: Free -> In Use"), QStringLiteral("van: Free -> In Use")}));
    QVERIFY(changes.contains(QStringLiteral("mast: In Use -> Free")));
    QVERIFY(changes.contains(QStringLiteral("van: In Use -> Free")));
    QCOMPARE(setUp.TickedNames(), QStringList({QStringLiteral("mast"), QStringLiteral("van")}));
}

void TestVexelHostConnect::nothingTickedToConnect()
{
    HostSetUp setUp;
    setUp.Install(KiteControl(), 1);
    setUp.Fill({QStringLiteral("mast")});
    const auto result = setUp.Run({QStringLiteral("--connect-selected"), QStringLiteral("--wait")});
    QCOMPARE(result.exitCode, 3);
    QCOMPARE(result.ErrorLines(), QStringList(QStringLiteral("vexelhost: no entry is ticked")));
}

void TestVexelHostConnect::noApplicationFree()
{
    HostSetUp setUp;
    setUp.Install(KiteControl(), 1);
    setUp.Fill({QStringLiteral("mast"), QStringLiteral("pier")}, {QStringLiteral("pier")});
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("0.2"));
    const auto result = setUp.Run({QStringLiteral("--connect"), QStringLiteral("mast"), QStringLiteral("--connect"),
                                   QStringLiteral("pier"), QStringLiteral("--wait")});
    QCOMPARE(result.exitCode, 3);
    // What could be connected was, and was waited for.
    QCOMPARE(Changes(result.OutputLines()),
             QStringList({QStringLiteral("mast: Free -> In Use"), QStringLiteral("mast: In Use -> Free")}));
    QCOMPARE(result.ErrorLines(),
             QStringList({QStringLiteral("vexelhost: Problem: Could not connect to \"pier\". There is no free "
                                         "userinterface available to connect to this type of hardware. Device type: "
                                         "Kite Echo Number of installed applications for this type: 1 Number of "
                                         "running applications for this type: 1"),
                          QStringLiteral("vexelhost: \"pier\" could not be connected")}));
    QCOMPARE(setUp.TickedNames(), QStringList(QStringLiteral("pier")));
}

void TestVexelHostConnect::programThatDoesNotExist()
{
    HostSetUp setUp;
    setUp.Install(QStringLiteral("/no/such/program"), 1);
    setUp.Fill({QStringLiteral("mast")});
    const auto result = setUp.Run({QStringLiteral("--connect"), QStringLiteral("mast"), QStringLiteral("--wait")});
    QCOMPARE(result.exitCode, 3);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.ErrorLines(),
             QStringList(QStringLiteral("vexelhost: \"mast\" could not be connected (use --trace for the reason)")));
}

void TestVexelHostConnect::programThatEndsAtOnce()
{
    HostSetUp setUp;
    // The host itself: it takes the application's arguments for a wrong command line.
    setUp.Install(QDir().absoluteFilePath(QStringLiteral(VEXELHOST)), 1);
    setUp.Fill({QStringLiteral("mast")});
    const auto result = setUp.Run({QStringLiteral("--connect"), QStringLiteral("mast"), QStringLiteral("--wait")});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(Changes(result.OutputLines()),
             QStringList({QStringLiteral("mast: Free -> In Use"), QStringLiteral("mast: In Use -> Free")}));
}

void TestVexelHostConnect::ticksStayAsTheyWere()
{
    HostSetUp setUp;
    setUp.Install(KiteControl(), 1);
    const QStringList ticked = {QStringLiteral("b"), QStringLiteral("d")};
    setUp.Fill({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("d")}, ticked);
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("0.1"));
    for (const char* name : {"a", "b", "unknown"}) {
        const int expected = qstrcmp(name, "unknown") == 0 ? 3 : 0;
        QCOMPARE(setUp.Run({QStringLiteral("--connect"), QString::fromLatin1(name), QStringLiteral("--wait")}).exitCode,
                 expected);
        QCOMPARE(setUp.TickedNames(), ticked);
    }
}

void TestVexelHostConnect::entriesOfTheSameName()
{
    HostSetUp setUp;
    setUp.Install(KiteControl(), 2);
    // Alike in all that makes an entry: connecting one of them puts both to use.
    setUp.Fill({QStringLiteral("twin"), QStringLiteral("twin")});
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("0.1"));
    const auto result = setUp.Run({QStringLiteral("--connect"), QStringLiteral("twin"), QStringLiteral("--wait")});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.OutputLines().size(), 4);
}

void TestVexelHostConnect::installedSamplesServeWithoutADataDirectory()
{
    HostSetUp setUp;
    setUp.Write(setUp.Path("list.xml"), HostSetUp::ListDocument({QStringLiteral("mast")}));
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("0.1"));
    const auto result = setUp.Run({QStringLiteral("--add"), setUp.Path("list.xml"), QStringLiteral("--connect"),
                                   QStringLiteral("mast"), QStringLiteral("--wait")});
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
    setUp.Write(list, HostSetUp::ListDocument({QStringLiteral("mast")}));
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

void TestVexelHostConnect::picturesAtEachMoment()
{
    HostSetUp setUp;
    setUp.Install(KiteControl(), 1);
    QStringList names;
    for (int i = 0; i < 20; ++i)
        names.append(QStringLiteral("mast number %1").arg(i));
    setUp.Fill(names);
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("0.5"));
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
    // The picture's size is nobody's wish.
    QVERIFY(!setUp.StoredText().contains(QByteArray("VexelConnectDlgGUI")));
}

void TestVexelHostConnect::pictureThatCannotBeWritten()
{
    HostSetUp setUp;
    const QString fileName = setUp.Path("no/such/folder/a.png");
    const auto result = setUp.Run({QStringLiteral("--screenshot"), fileName});
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(result.ErrorLines().size(), 1);
    QVERIFY2(result.error.contains(fileName), qPrintable(result.error));
}

void TestVexelHostConnect::terminatedWhileWaiting()
{
    HostSetUp setUp;
    setUp.Install(KiteControl(), 1);
    setUp.Fill({QStringLiteral("mast"), QStringLiteral("pier")}, {QStringLiteral("pier")});
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("3600"));
    setUp.Write(setUp.Path("more.xml"), HostSetUp::ListDocument({QStringLiteral("van")}));
    QProcess process;
    setUp.Start(process, {QStringLiteral("--add"), setUp.Path("more.xml"), QStringLiteral("--connect"),
                          QStringLiteral("mast"), QStringLiteral("--wait")});
    QTRY_VERIFY(process.peek(1000).contains("mast: Free -> In Use\n"));
    process.terminate();
    const auto result = HostSetUp::End(process);
    QCOMPARE(result.error, QString());
    QCOMPARE(result.exitCode, 0);
    // Saved: what was added before it was terminated, and the ticks as they were.
    QCOMPARE(setUp.Names(), QStringList({QStringLiteral("mast"), QStringLiteral("pier"), QStringLiteral("van")}));
    QCOMPARE(setUp.TickedNames(), QStringList(QStringLiteral("pier")));
}

void TestVexelHostConnect::endOfTheHostEndsItsApplications()
{
    HostSetUp setUp;
    setUp.Install(KiteControl(), 1);
    setUp.Fill({QStringLiteral("mast")});
    QVERIFY(QDir().mkpath(setUp.Path("reports")));
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("3600"));
    setUp.Environment().insert(QStringLiteral("KITECONTROL_REPORT_DIR"), setUp.Path("reports"));
    QProcess process;
    setUp.Start(process, {QStringLiteral("--connect"), QStringLiteral("mast"), QStringLiteral("--wait")});
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
    HostSetUp setUp;
    setUp.Install(KiteControl(), 1);
    setUp.Fill({QStringLiteral("mast")});
    const QString file = setUp.Path("elsewhere.xml");
    setUp.Write(setUp.Config() + QStringLiteral("/application/Second.json"),
                R"({"values": {"TypeApplicationMappings": ")" + file.toUtf8() + "\"}}");
    const QString missed = QStringLiteral("Could not open ") + file + QStringLiteral(" for reading");
    QVERIFY(!setUp.Run({QStringLiteral("--trace"), QStringLiteral("--list")}).error.contains(missed));
    const auto result = setUp.Run(
        {QStringLiteral("--trace"), QStringLiteral("--list"), QStringLiteral("--name"), QStringLiteral("Second")});
    QVERIFY2(result.error.contains(missed), qPrintable(result.error));
}

void TestVexelHostConnect::boxTextKeepsTheName()
{
    HostSetUp setUp;
    setUp.Install(KiteControl(), 0);
    const QString name = QStringLiteral("two  blanks");
    setUp.Fill({name});
    const auto result = setUp.Run({QStringLiteral("--connect"), name});
    QCOMPARE(result.exitCode, 3);
    QVERIFY2(result.ErrorLines().constFirst().contains(QLatin1String("\"two  blanks\".")), qPrintable(result.error));
}

void TestVexelHostConnect::readerThatGoesAway()
{
    HostSetUp setUp;
    setUp.Install(KiteControl(), 1);
    setUp.Fill({QStringLiteral("mast")});
    setUp.Write(setUp.Path("more.xml"), HostSetUp::ListDocument({QStringLiteral("van")}));
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("0.5"));
    QProcess process;
    setUp.Start(process, {QStringLiteral("--add"), setUp.Path("more.xml"), QStringLiteral("--connect"),
                          QStringLiteral("mast"), QStringLiteral("--wait")});
    QTRY_VERIFY(process.peek(1000).contains("mast: Free -> In Use\n"));
    process.closeReadChannel(QProcess::StandardOutput);
    QCOMPARE(HostSetUp::End(process).exitCode, 0);
    QCOMPARE(setUp.Names(), QStringList({QStringLiteral("mast"), QStringLiteral("van")}));
}

void TestVexelHostConnect::configurationThatCannotBeSaved()
{
    HostSetUp setUp;
    setUp.Install(KiteControl(), 1);
    setUp.Fill({QStringLiteral("mast")});
    setUp.Write(setUp.Path("more.xml"), HostSetUp::ListDocument({QStringLiteral("van")}));
    setUp.Environment().insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("0.5"));
    QProcess process;
    setUp.Start(process, {QStringLiteral("--add"), setUp.Path("more.xml"), QStringLiteral("--connect"),
                          QStringLiteral("mast"), QStringLiteral("--wait")});
    QTRY_VERIFY(process.peek(1000).contains("mast: Free -> In Use\n"));
    // The directory goes, and nothing can take its place.
    QVERIFY(QDir().rename(setUp.Config(), setUp.Path("aside")));
    setUp.Write(setUp.Config(), "a regular file");
    const auto result = HostSetUp::End(process);
    QCOMPARE(result.exitCode, 2);
    // Said once. That its lock file is gone, too, may be told beside that.
    QCOMPARE(result.ErrorLines().filter(QStringLiteral("could not be saved")).size(), 1);
    QVERIFY(QFile::remove(setUp.Config()));
    QVERIFY(QDir().rename(setUp.Path("aside"), setUp.Config()));
    QCOMPARE(setUp.Names(), QStringList(QStringLiteral("mast")));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelHostConnect)
#include "tst_vexelhostconnect.moc"
