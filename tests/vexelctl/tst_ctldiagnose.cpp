// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/host/hostsetup.h"
#include "tests/support/linkport.h"
#include "tests/support/testmain.h"
#include "vexelctl/support/crashreport.h"

#include <QTcpServer>

// vexelctl: the report for support, above all when much is broken.
class TestCtlDiagnose : public QObject
{
    Q_OBJECT

private slots:
    void textHasEverySection();
    void versions();
    void paths();
    void worksWithoutDisplayPluginAndConfiguration();
    void unusablePluginIsReported();
    void originOfTheDataDirectoryIsReported();
    void nameChoosesTheMapping();
    void desktopIsDescribed();
    void unusableDesktopIsReported();
    void crashesAreReported();
    void stateOfTheStore();
    void damagedDocuments();
    void versionUsedByTheNextStartIsReported();
    void truncatedListIsReported();
    void onlyKnownVariablesAreReported();
    void traceFileIsNotTouched();
    void usedPortIsReported();
    void runningHostIsReported();
    void staleLockIsIgnored();
    void diagnosisChangesNothing();

private:
    static QJsonObject Diagnose(HostSetUp& setUp, const QStringList& arguments = {})
    {
        const auto result = setUp.Run(Words("diagnose --json") + arguments);
        if (result.exitCode != 0 || !result.error.isEmpty())
            qWarning("exit code %d: %s", result.exitCode, qPrintable(result.error));
        return result.exitCode == 0 && result.error.isEmpty() ? QJsonDocument::fromJson(result.output.toUtf8()).object()
                                                              : QJsonObject();
    }
    static QJsonValue Value(const QJsonObject& report, const char* section, const char* key)
    {
        return report.value(QLatin1String(section)).toObject().value(QLatin1String(key));
    }
};

void TestCtlDiagnose::textHasEverySection()
{
    HostSetUp setUp;
    setUp.Fill("one");
    const auto result = setUp.Run("diagnose");
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.error, QString());
    qsizetype place = -1;
    for (const char* title : {"Versions\n", "\nPaths\n", "\nSettings\n", "\nDesktop\n", "\nApplications\n",
                              "\nConfiguration\n", "\nCrashes\n", "\nStarter link\n"}) {
        const qsizetype next = result.output.indexOf(QLatin1String(title));
        QVERIFY2(next > place, title);
        place = next;
    }
    QVERIFY(result.output.contains(QLatin1String("\n  entries stored  1\n")));
}

void TestCtlDiagnose::versions()
{
    HostSetUp setUp;
    const QJsonObject report = Diagnose(setUp);
    QCOMPARE(Value(report, "versions", "program"), QJsonValue(QStringLiteral(VEXEL_VERSION)));
    QCOMPARE(Value(report, "versions", "platformLibrary"), QJsonValue(QStringLiteral(VEXEL_VERSION)));
    QCOMPARE(Value(report, "versions", "plugIn"), QJsonValue(QStringLiteral(VEXEL_VERSION)));
    QCOMPARE(
        Value(Diagnose(setUp, {QStringLiteral("--plugin"), QStringLiteral(PLUGIN_REFUSING)}), "versions", "plugIn"),
        QJsonValue());
    QCOMPARE(Value(report, "versions", "qt"), QJsonValue(QString::fromLatin1(qVersion())));
    QCOMPARE(Value(report, "versions", "qtBuiltWith"), QJsonValue(QStringLiteral(QT_VERSION_STR)));
    for (const char* key : {"system", "kernel", "processor", "compiler"})
        QVERIFY2(!Value(report, "versions", key).toString().isEmpty(), key);
}

void TestCtlDiagnose::paths()
{
    HostSetUp setUp;
    const QJsonObject report = Diagnose(setUp);
    QCOMPARE(Value(report, "paths", "program"), QJsonValue(QFileInfo(QStringLiteral(VEXELCTL)).canonicalFilePath()));
    QVERIFY(QFileInfo::exists(Value(report, "paths", "plugIn").toString()));
    QCOMPARE(Value(report, "paths", "plugInFrom"), QJsonValue(QStringLiteral("installed with the host")));
    QCOMPARE(Value(report, "paths", "plugInState"),
             QJsonValue(QStringLiteral("loads; exports ARCreateEx and ARDestroy")));
    QCOMPARE(Value(report, "paths", "configuration"), QJsonValue(setUp.Config()));
    QCOMPARE(Value(report, "paths", "configurationFrom"), QJsonValue(QStringLiteral("--config")));
    QVERIFY(Value(report, "paths", "catalogues").toArray().contains(QStringLiteral("VexelConnectDlg_de.qm")));
    QCOMPARE(Value(report, "paths", "display"), QJsonValue(setUp.HasDisplay()));
}

void TestCtlDiagnose::worksWithoutDisplayPluginAndConfiguration()
{
    HostSetUp setUp;
    setUp.Environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("no-such-platform"));
    const QJsonObject report = Diagnose(setUp, {QStringLiteral("--plugin"), QStringLiteral("/no/such/plugin.so")});
    QVERIFY(Value(report, "paths", "plugInState").toString().contains(QLatin1String("/no/such/plugin.so")));
    QCOMPARE(Value(report, "configuration", "exists"), QJsonValue(false));
    QVERIFY(!QFileInfo::exists(setUp.Config()));

    // A file in the directory's place.
    setUp.Write(setUp.Config(), "a regular file");
    QCOMPARE(Value(Diagnose(setUp), "configuration", "exists"), QJsonValue(false));
}

void TestCtlDiagnose::unusablePluginIsReported()
{
    HostSetUp setUp;
    for (const auto& [file, hint] :
         {std::pair{LIBRARY_NOEXPORTS, "ARCreateEx"}, std::pair{PROGRAM_DIRECTORY, "not a file"},
          std::pair{PROGRAM_DIRECTORY "/../share/vexel/connections.xml", "cannot be loaded"}}) {
        const QJsonObject report = Diagnose(setUp, {QStringLiteral("--plugin"), QString::fromLatin1(file)});
        const QString state = Value(report, "paths", "plugInState").toString();
        QVERIFY2(state.contains(QLatin1String(hint)), qPrintable(state));
        QCOMPARE(Value(report, "paths", "plugInFrom"), QJsonValue(QStringLiteral("--plugin")));
    }
    // It is loaded, and nothing more: this one would give no instance.
    const QJsonObject report = Diagnose(setUp, {QStringLiteral("--plugin"), QStringLiteral(PLUGIN_REFUSING)});
    QVERIFY(Value(report, "paths", "plugInState").toString().startsWith(QLatin1String("loads")));
}

void TestCtlDiagnose::originOfTheDataDirectoryIsReported()
{
    HostSetUp setUp;
    QJsonObject report = Diagnose(setUp);
    QCOMPARE(Value(report, "paths", "dataDirectoryFrom"), QJsonValue(QStringLiteral("the installed samples")));
    QVERIFY(Value(report, "applications", "applications").toArray().size() > 1);

    setUp.Install(QStringLiteral("/no/such/program"), 2);
    report = Diagnose(setUp, {QStringLiteral("--data"), setUp.Data()});
    QCOMPARE(Value(report, "paths", "dataDirectory"), QJsonValue(setUp.Data()));
    QCOMPARE(Value(report, "paths", "dataDirectoryFrom"), QJsonValue(QStringLiteral("--data")));
    const QJsonArray applications = Value(report, "applications", "applications").toArray();
    QCOMPARE(applications.size(), 2);
    QCOMPARE(applications.at(0)[QLatin1String("foundAs")], QJsonValue(QStringLiteral("NOT FOUND")));
    // Looked at, not stored.
    QCOMPARE(Value(Diagnose(setUp), "paths", "dataDirectoryFrom"), QJsonValue(QStringLiteral("the installed samples")));

    setUp.WriteList("list.xml", "one");
    QCOMPARE(setUp.Run("add list.xml --data data").exitCode, 0);
    report = Diagnose(setUp);
    QCOMPARE(Value(report, "paths", "dataDirectory"), QJsonValue(setUp.Data()));
    QCOMPARE(Value(report, "paths", "dataDirectoryFrom"), QJsonValue(QStringLiteral("the configuration")));

    QVERIFY(QDir(setUp.Data()).removeRecursively());
    report = Diagnose(setUp);
    QCOMPARE(Value(report, "paths", "dataDirectoryExists"), QJsonValue(false));
    QCOMPARE(Value(report, "applications", "machineFileState"), QJsonValue(QStringLiteral("not read: no such file")));
}

void TestCtlDiagnose::nameChoosesTheMapping()
{
    HostSetUp setUp;
    setUp.Install(QStringLiteral("/no/such/program"), 1);
    QVERIFY(QDir().mkpath(setUp.Config() + QStringLiteral("/application")));
    setUp.Write(setUp.Config() + QStringLiteral("/application/Second.json"),
                R"({"values": {"TypeApplicationMappings": "/another/mapping.xml"}})");
    const QStringList data{QStringLiteral("--data"), setUp.Data()};
    QCOMPARE(Value(Diagnose(setUp, data), "applications", "mappingFile"),
             QJsonValue(setUp.Data() + QStringLiteral("/TypeApplicationMappings.xml")));
    QCOMPARE(Value(Diagnose(setUp, data + Words("--name Second")), "applications", "mappingFile"),
             QJsonValue(QStringLiteral("/another/mapping.xml")));
}

void TestCtlDiagnose::desktopIsDescribed()
{
    HostSetUp setUp;
    setUp.Environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    setUp.Environment().insert(QStringLiteral("QT_STYLE_OVERRIDE"), QStringLiteral("windows"));
    setUp.Environment().insert(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("1.25"));
    const QJsonObject report = Diagnose(setUp);
    QCOMPARE(Value(report, "desktop", "state"), QJsonValue(QStringLiteral("as the host finds it")));
    QCOMPARE(Value(report, "desktop", "platform"), QJsonValue(QStringLiteral("offscreen")));
    QCOMPARE(Value(report, "desktop", "widgetStyle"), QJsonValue(QStringLiteral("windows")));
    const QJsonArray screens = Value(report, "desktop", "screens").toArray();
    QCOMPARE(screens.size(), 1);
    QCOMPARE(screens.at(0)[QLatin1String("scale")], QJsonValue(QStringLiteral("1.25")));
    QCOMPARE(screens.at(0)[QLatin1String("size")], QJsonValue(QStringLiteral("640x640")));
    QVERIFY(screens.at(0)[QLatin1String("dotsPerInch")].toString().toDouble() > 0);
}

void TestCtlDiagnose::unusableDesktopIsReported()
{
    HostSetUp setUp;
    setUp.Environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("no-such-platform"));
    const QString state = Value(Diagnose(setUp), "desktop", "state").toString();
    QVERIFY2(state.startsWith(QLatin1String("unknown: ")) && state.contains(QLatin1String("no-such-platform")),
             qPrintable(state));
    if (setUp.HasDisplay())
        return;
    setUp.Environment().remove(QStringLiteral("QT_QPA_PLATFORM"));
    QCOMPARE(Value(Diagnose(setUp), "desktop", "state"),
             QJsonValue(QStringLiteral("unknown: vexelhost: there is no display")));
}

void TestCtlDiagnose::crashesAreReported()
{
    HostSetUp setUp;
    const QString folder = setUp.Config() + QStringLiteral("/crashes");
    QVERIFY(QDir().mkpath(folder));
    setUp.Write(folder + QStringLiteral("/vexelhost-20260101T000000Z-4711.dmp"), "12345");
    const QJsonObject report = Diagnose(setUp);
#ifdef Q_OS_WIN
    const QJsonArray dumps = Value(report, "crashes", "minidumps").toArray();
    QCOMPARE(dumps.size(), 1);
    QVERIFY(dumps.at(0)[QLatin1String("file")].toString().endsWith(QLatin1String("-4711.dmp")));
    QCOMPARE(dumps.at(0)[QLatin1String("bytes")], QJsonValue(5));
#else
    QFile pattern(QStringLiteral("/proc/sys/kernel/core_pattern"));
    if (!pattern.open(QIODevice::ReadOnly))
        QSKIP("This system has no pattern for core dumps.");
    QCOMPARE(Value(report, "crashes", "coreDumps"),
             QJsonValue(CoreDumpPlace(QString::fromLocal8Bit(pattern.readAll()).trimmed())));
#endif
}

void TestCtlDiagnose::stateOfTheStore()
{
    HostSetUp setUp;
    setUp.Fill("one");
    setUp.Fill("two");
    QVERIFY(QDir().mkpath(setUp.Config() + QStringLiteral("/user")));
    setUp.Write(setUp.Config() + QStringLiteral("/user/@application.json"), R"({"values": {"a": "1"}})");
    setUp.Write(setUp.Config() + QStringLiteral("/application/a.b.json"), R"({"values": {"a": "1"}})");
    const QJsonObject report = Diagnose(setUp);
    QCOMPARE(Value(report, "configuration", "exists"), QJsonValue(true));
    QCOMPARE(Value(report, "configuration", "canBeWritten"), QJsonValue(true));
    QCOMPARE(Value(report, "configuration", "hostAtWork"), QJsonValue(QStringLiteral("none")));
    QCOMPARE(Value(report, "configuration", "storedList"), QJsonValue(QStringLiteral("valid")));
    QCOMPARE(Value(report, "configuration", "entriesStored"), QJsonValue(2));
    QCOMPARE(Value(report, "configuration", "quarantined"), QJsonValue(QJsonArray()));

    QMap<QString, QJsonObject> documents;
    const QJsonArray rows = Value(report, "configuration", "documents").toArray();
    for (const QJsonValue& row : rows)
        documents.insert(row[QLatin1String("file")].toString(), row.toObject());
    QCOMPARE(documents.keys(), Words("application/@application.json application/Administration.json "
                                     "application/a.b.json user/@application.json"));
    const QJsonObject own = documents.value(QStringLiteral("application/@application.json"));
    QCOMPARE(own.value(QLatin1String("bytes")).toInteger(), QFileInfo(setUp.Document()).size());
    QCOMPARE(own.value(QLatin1String("state")), QJsonValue(QStringLiteral("readable")));
    QCOMPARE(own.value(QLatin1String("versions")), QJsonValue(1));
    QVERIFY(!own.value(QLatin1String("newestVersion")).toString().isEmpty());
    QCOMPARE(documents.value(QStringLiteral("application/a.b.json")).value(QLatin1String("state")),
             QJsonValue(QStringLiteral("not a document of the store")));
}

void TestCtlDiagnose::damagedDocuments()
{
    HostSetUp setUp;
    setUp.Fill("one");
    setUp.Fill("two");
    const QByteArray garbage("\0\0 garbage", 10);
    setUp.Write(setUp.Document(), garbage);
    setUp.Write(setUp.Config() + QStringLiteral("/application/Administration.json"), garbage);
    const QJsonObject report = Diagnose(setUp);
    const QJsonArray rows = Value(report, "configuration", "documents").toArray();
    QVERIFY2(rows.at(0)[QLatin1String("state")].toString().startsWith(QLatin1String("DAMAGED; the next start uses")),
             qPrintable(rows.at(0)[QLatin1String("state")].toString()));
    QCOMPARE(rows.at(1)[QLatin1String("state")], QJsonValue(QStringLiteral("DAMAGED, and no version can be read")));
    // As the next start loads it.
    QCOMPARE(Value(report, "configuration", "entriesStored"), QJsonValue(1));
    QCOMPARE(Value(report, "paths", "dataDirectoryFrom"), QJsonValue(QStringLiteral("the installed samples")));

    // And so it does.
    QCOMPARE(setUp.Names(), Words("one"));
    setUp.WriteList("more.xml", "more");
    QCOMPARE(setUp.Run("add more.xml").exitCode, 0);
    QCOMPARE(setUp.Names(), Words("one more"));
    const QJsonArray quarantined = Value(Diagnose(setUp), "configuration", "quarantined").toArray();
    QVERIFY(quarantined.size() >= 1);
    QVERIFY(quarantined.at(0).toString().startsWith(QLatin1String("application/@application.json.damaged-")));
}

void TestCtlDiagnose::versionUsedByTheNextStartIsReported()
{
    HostSetUp setUp;
    for (int i = 1; i <= 4; ++i)
        setUp.Fill({QStringLiteral("entry %1").arg(i)});
    const QDir versions(setUp.Document() + QStringLiteral(".versions"));
    const QStringList names = versions.entryList(QDir::Files, QDir::Name);
    QCOMPARE(names.size(), 3);
    // Not the two newest: one that holds nothing, and one that holds no document.
    setUp.Write(versions.filePath(names.at(2)), QByteArray());
    setUp.Write(versions.filePath(names.at(1)), "garbage");
    setUp.Write(setUp.Document(), "garbage");
    const QJsonObject report = Diagnose(setUp);
    const QString state =
        Value(report, "configuration", "documents").toArray().at(0)[QLatin1String("state")].toString();
    const QString beginning = QStringLiteral("DAMAGED; the next start uses the version of ");
    QVERIFY2(state.startsWith(beginning), qPrintable(state));
    QCOMPARE(Value(report, "configuration", "entriesStored"), QJsonValue(1));

    setUp.WriteList("more.xml", "more");
    const auto start = setUp.Run("add more.xml");
    QVERIFY2(start.error.contains(QLatin1String("using the version of ") + state.mid(beginning.size()) +
                                  QLatin1String(" instead")),
             qPrintable(state + QLatin1Char('\n') + start.error));
    QCOMPARE(setUp.Names(), QStringList({QStringLiteral("entry 1"), QStringLiteral("more")}));
    // Reported once, and repaired.
    QCOMPARE(setUp.Run("list").error, QString());
}

void TestCtlDiagnose::truncatedListIsReported()
{
    HostSetUp setUp;
    QVERIFY(QDir().mkpath(setUp.Config() + QStringLiteral("/application")));
    setUp.Write(setUp.Document(), R"({"values": {"ConnectionsModel/ModelMimeData": ")" +
                                      HostSetUp::ListDocument({QStringLiteral("one")}).chopped(30).toHex() + "\"}}");
    const QJsonObject report = Diagnose(setUp);
    QVERIFY2(Value(report, "configuration", "storedList").toString().startsWith(QLatin1String("MALFORMED")),
             qPrintable(Value(report, "configuration", "storedList").toString()));
    QCOMPARE(Value(report, "configuration", "entriesStored"), QJsonValue(1));
}

void TestCtlDiagnose::onlyKnownVariablesAreReported()
{
    HostSetUp setUp;
    setUp.Environment().insert(QStringLiteral("VEXEL_CONFIG_DIR"), QStringLiteral("/somewhere"));
    setUp.Environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    setUp.Environment().insert(QStringLiteral("SECRET_TOKEN"), QStringLiteral("hush-hush"));
    const auto result = setUp.Run("diagnose");
    QVERIFY(result.output.contains(QLatin1String("QT_QPA_PLATFORM=offscreen")));
    QVERIFY(!result.output.contains(QLatin1String("hush-hush")));
    setUp.Environment().insert(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("1.5"));
    const QStringList known =
        Words("LANG LANGUAGE LC_ALL LC_MESSAGES QT_QPA_PLATFORM QT_QPA_PLATFORMTHEME QT_SCALE_FACTOR "
              "QT_SCREEN_SCALE_FACTORS QT_STYLE_OVERRIDE XDG_CURRENT_DESKTOP");
    QStringList expected;
    const QStringList names = setUp.Environment().keys();
    for (const QString& name : names)
        if (name.startsWith(QLatin1String("VEXEL_")) || known.contains(name))
            expected.append(name + QLatin1Char('=') + setUp.Environment().value(name));
    expected.sort();
    QCOMPARE(Value(Diagnose(setUp), "paths", "environment").toVariant().toStringList(), expected);
}

void TestCtlDiagnose::traceFileIsNotTouched()
{
    HostSetUp setUp;
    const QString fileName = setUp.Path("trace.log");
    const QStringList option{QStringLiteral("--trace-file"), fileName};
    QCOMPARE(Value(Diagnose(setUp), "paths", "traceFile"), QJsonValue());
    QCOMPARE(Value(Diagnose(setUp, option), "paths", "traceFile"), QJsonValue(fileName));
    QCOMPARE(Value(Diagnose(setUp, option), "paths", "traceFileState"),
             QJsonValue(QStringLiteral("does not exist yet")));
    QVERIFY(!QFileInfo::exists(fileName));
    setUp.Write(fileName, "12345");
    QCOMPARE(Value(Diagnose(setUp, option), "paths", "traceFileState"), QJsonValue(QStringLiteral("5 bytes")));
    QCOMPARE(QFileInfo(fileName).size(), 5);
    QCOMPARE(Value(Diagnose(setUp, {QStringLiteral("--trace-file"), setUp.Path("no/folder/t.log")}), "paths",
                   "traceFileState"),
             QJsonValue(QStringLiteral("its folder does not exist")));
}

void TestCtlDiagnose::usedPortIsReported()
{
    HostSetUp setUp;
    QTcpServer server;
    // Another host may use the port for a while.
    QTRY_VERIFY_WITH_TIMEOUT(server.isListening() || server.listen(QHostAddress::LocalHost, LinkPort::kNumber), 60'000);
    const QJsonObject report = Diagnose(setUp);
    QCOMPARE(Value(report, "starterLink", "free"), QJsonValue(false));
    QCOMPARE(Value(report, "starterLink", "state"), QJsonValue(QStringLiteral("in use")));
    QVERIFY(!server.hasPendingConnections() && !server.waitForNewConnection(0));
    server.close();
    QTRY_COMPARE_WITH_TIMEOUT(Value(Diagnose(setUp), "starterLink", "free"), QJsonValue(true), 60'000);
}

void TestCtlDiagnose::runningHostIsReported()
{
    HostSetUp setUp;
    QProcess host;
    const QByteArray said = setUp.StartDialog(host);
    const QJsonObject report = Diagnose(setUp);
    QCOMPARE(Value(report, "configuration", "hostAtWork"),
             QJsonValue(QStringLiteral("process %1").arg(host.processId())));
    if (said.contains("Server TCP interface created"))
        QCOMPARE(Value(report, "starterLink", "state"), QJsonValue(QStringLiteral("in use")));
    // Nothing has called it.
    host.terminate();
    const QString rest = HostSetUp::End(host).error;
    QVERIFY2(!rest.contains(QLatin1String("Received call")), qPrintable(rest));
}

void TestCtlDiagnose::staleLockIsIgnored()
{
    HostSetUp setUp;
    setUp.Fill("one");
    const QString lock = setUp.Config() + QStringLiteral("/vexelhost.lock");
    // Of another machine, so that no process number says anything.
    setUp.Write(lock, "999999\nvexelhost\nelsewhere\n");
    QCOMPARE(Value(Diagnose(setUp), "configuration", "hostAtWork"), QJsonValue(QStringLiteral("none")));
    // It looks, and leaves removing to the next change.
    QVERIFY(QFileInfo::exists(lock));
    QCOMPARE(setUp.Names(), Words("one"));
    QVERIFY(QFileInfo::exists(lock));
    setUp.Fill("two");
    QVERIFY(!QFileInfo::exists(lock));
}

void TestCtlDiagnose::diagnosisChangesNothing()
{
    HostSetUp setUp;
    setUp.Fill("one");
    setUp.Write(setUp.Document(), "[ConnectionsModel]\nModelMimeData=3c\n");
    const auto snapshot = [&setUp] {
        QStringList files;
        QDirIterator all(setUp.Path("."), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
        while (all.hasNext()) {
            const QFileInfo file(all.next());
            if (file.isFile())
                files.append(file.filePath() + file.lastModified().toString(Qt::ISODateWithMs));
            else
                files.append(file.filePath());
        }
        files.sort();
        return files;
    };
    const QStringList before = snapshot();
    const QByteArray stored = setUp.StoredText();
    QVERIFY(!Diagnose(setUp).isEmpty());
    QCOMPARE(snapshot(), before);
    QCOMPARE(setUp.StoredText(), stored);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCtlDiagnose)
#include "tst_ctldiagnose.moc"
