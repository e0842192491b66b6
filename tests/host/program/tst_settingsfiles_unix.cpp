// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/host/hostsetup.h"
#include "tests/support/testmain.h"

#include <algorithm>

namespace {

/// The programs with a folder of the user's and one of the machine's for settings.
struct SetUp : HostSetUp
{
    SetUp()
    {
        Environment().insert(QStringLiteral("XDG_CONFIG_HOME"), Path("user"));
        Environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        for (const QString& file : {User(), Machine()})
            QDir().mkpath(QFileInfo(file).path());
    }
    QString User() const { return Path("user/Vexel/vexelhost.ini"); }
    QString Machine() const { return MachineFolder() + QStringLiteral("/Vexel/vexelhost.ini"); }
    QString Entry() const { return Path("user/autostart/vexelhost.desktop"); }

    /// Starts a host without options of its own, waits for `said` on standard error, and ends it.
    QString SaidAtAStart(const QByteArray& said, const char* arguments = "")
    {
        QProcess process;
        StartHost(process, arguments);
        QByteArray errors;
        [&] {
            QTRY_VERIFY2((errors += process.readAllStandardError()).contains(said), errors.constData());
        }();
        System::AskToEnd(process.processId());
        const Result result = End(process);
        [&] {
            QCOMPARE(result.exitCode, 0);
        }();
        return QString::fromUtf8(errors) + result.error;
    }

    QJsonObject Diagnosis(const char* section, const QStringList& options = {})
    {
        const Result result = Run(Words("diagnose --json") + options);
        return QJsonDocument::fromJson(result.output.toUtf8()).object().value(QLatin1String(section)).toObject();
    }
    /// "VALUE from ORIGIN".
    QString Setting(const char* key, const QStringList& options = {})
    {
        const QJsonArray rows = Diagnosis("settings", options).value(QLatin1String("settings")).toArray();
        for (const QJsonValue& row : rows)
            if (row[QLatin1String("key")] == QLatin1String(key))
                return row[QLatin1String("value")].toString() + QStringLiteral(" from ") +
                       row[QLatin1String("from")].toString();
        return {};
    }
};

} // namespace

/// Settings files of the user and of the machine, as the programs use them.
class TestSettingsFiles : public QObject
{
    Q_OBJECT

private slots:
    void diagnosisNamesTheSourceOfEachSetting();
    void diagnosisNamesProblems();
    void dataDirectoryIsUsedAndNotStored();
    void languageIsUsedByBothPrograms();
    void diagnosisChecksTheTraceFile();
    void tracesAreTheHosts();
    void unusableTraceFileDoesNotKeepTheHostFromStarting();
    void autostartIsSwitched();
    void autostartIsReported();
};

void TestSettingsFiles::diagnosisNamesTheSourceOfEachSetting()
{
    SetUp setUp;
    setUp.Install(QStringLiteral("/no/such/program"), 1);
    QVERIFY(setUp.Setting("data").endsWith(QLatin1String(" from the installed samples")));
    QVERIFY(setUp.Setting("language").endsWith(QLatin1String(" from built in: the system's")));
    QCOMPARE(setUp.Setting("trace"), QStringLiteral("false from built in"));
    QCOMPARE(setUp.Setting("trace-file"), QStringLiteral("none from built in"));

    setUp.Write(setUp.Machine(), "data=/srv/machine\nlanguage=fr\ntrace=true\n");
    QCOMPARE(setUp.Setting("data"), QStringLiteral("/srv/machine from ") + setUp.Machine());
    QCOMPARE(setUp.Setting("language"), QStringLiteral("fr from ") + setUp.Machine());
    QCOMPARE(setUp.Setting("trace"), QStringLiteral("true from ") + setUp.Machine());
    QCOMPARE(setUp.Diagnosis("paths").value(QLatin1String("dataDirectory")),
             QJsonValue(QStringLiteral("/srv/machine")));

    setUp.Write(setUp.User(), "data=/srv/user\nlanguage=de\n");
    QCOMPARE(setUp.Setting("data"), QStringLiteral("/srv/user from ") + setUp.User());
    QCOMPARE(setUp.Setting("language"), QStringLiteral("de from ") + setUp.User());
    QCOMPARE(setUp.Setting("trace"), QStringLiteral("true from ") + setUp.Machine());

    // What was given once and stored is the user's choice for this configuration.
    setUp.WriteList("list.xml", "one");
    QCOMPARE(setUp.Run("add list.xml --data data").exitCode, 0);
    QCOMPARE(setUp.Setting("data"), setUp.Data() + QStringLiteral(" from the configuration"));
    QCOMPARE(setUp.Setting("data", {QStringLiteral("--data"), setUp.Config()}),
             setUp.Config() + QStringLiteral(" from --data"));
    QCOMPARE(setUp.Setting("language", Words("--language es")), QStringLiteral("es_ES from --language"));
}

void TestSettingsFiles::diagnosisNamesProblems()
{
    SetUp setUp;
    const QJsonArray none = setUp.Diagnosis("settings").value(QLatin1String("files")).toArray();
    QCOMPARE(none.size(), 2);
    QCOMPARE(none.at(0)[QLatin1String("file")], QJsonValue(setUp.User()));
    QCOMPARE(none.at(1)[QLatin1String("file")], QJsonValue(setUp.Machine()));
    QCOMPARE(none.at(1)[QLatin1String("state")], QJsonValue(QStringLiteral("does not exist")));

    setUp.Write(setUp.Machine(), "this is no settings file");
    setUp.Write(setUp.User(), "language=de\nlangauge=fr\n");
    const QJsonObject report = setUp.Diagnosis("settings");
    QCOMPARE(report.value(QLatin1String("problems")).toArray().size(), 2);
    QCOMPARE(report.value(QLatin1String("problems")).toArray().at(0),
             QJsonValue(setUp.User() + QStringLiteral(": unknown key: langauge")));
    QVERIFY(report.value(QLatin1String("files"))[1][QLatin1String("state")].toString().startsWith(
        QLatin1String("IGNORED: damaged")));
    QCOMPARE(setUp.Setting("language"), QStringLiteral("de from ") + setUp.User());
    // The commands work as before, and say nothing.
    setUp.Fill("one");
    QCOMPARE(setUp.Run("list").error, QString());
    QVERIFY(setUp.Run("list --trace").error.contains(QLatin1String(": unknown key: langauge")));
}

void TestSettingsFiles::diagnosisChecksTheTraceFile()
{
    SetUp setUp;
    const QString fileName = setUp.Path("trace.log");
    setUp.Write(setUp.Machine(), "trace-file=" + fileName.toUtf8() + '\n');
    setUp.Write(fileName, "12345");
    QVERIFY(QFile::setPermissions(fileName, QFile::permissions(fileName) | QFile::WriteOther));
    const QJsonObject paths = setUp.Diagnosis("paths");
    QCOMPARE(paths.value(QLatin1String("traceFile")), QJsonValue(fileName));
    QCOMPARE(paths.value(QLatin1String("traceFileState")), QJsonValue(QStringLiteral("5 bytes")));
    const QJsonArray access = paths.value(QLatin1String("accessByOthers")).toArray();
    QVERIFY(std::any_of(access.cbegin(), access.cend(),
                        [&fileName](const QJsonValue& row) { return row[QLatin1String("file")] == fileName; }));
}

void TestSettingsFiles::dataDirectoryIsUsedAndNotStored()
{
    SetUp setUp;
    setUp.Write(setUp.Machine(), "trace=true\ndata=" + setUp.Data().toUtf8() + '\n');
    // There is no mapping file in the directory, which the plug-in has to say.
    const QString said = setUp.SaidAtAStart("TCPServer()");
    QVERIFY2(said.contains(setUp.Data() + QStringLiteral("/TypeApplicationMappings.xml")), qPrintable(said));
    QVERIFY(!said.contains(QLatin1String("the installed samples")));
    QVERIFY(!setUp.StoredText().contains("VexelDataDir"));
    QCOMPARE(setUp.Setting("data"), setUp.Data() + QStringLiteral(" from ") + setUp.Machine());
}

void TestSettingsFiles::languageIsUsedByBothPrograms()
{
    SetUp setUp;
    setUp.Fill("one");
    setUp.Write(setUp.Machine(), "language=de\n");
    QVERIFY(setUp.Run("list").output.contains(QStringLiteral("Ger\u00e4tetyp")));
    QVERIFY(!setUp.Run("list --language en").output.contains(QStringLiteral("Ger\u00e4tetyp")));
}

void TestSettingsFiles::tracesAreTheHosts()
{
    SetUp setUp;
    setUp.Write(setUp.Machine(), "trace=true\n");
    setUp.Write(setUp.User(), "trace-file=" + setUp.Path("trace.log").toUtf8() + '\n');
    setUp.Fill("one"); // without a trace on standard error
    QVERIFY(!QFileInfo::exists(setUp.Path("trace.log")));
    setUp.SaidAtAStart(" trace userinterface/", "--data data");
    QVERIFY(QFileInfo(setUp.Path("trace.log")).size() > 0);
}

void TestSettingsFiles::unusableTraceFileDoesNotKeepTheHostFromStarting()
{
    SetUp setUp;
    setUp.Write(setUp.Machine(), "trace=true\ntrace-file=/no/such/folder/trace.log\n");
    const QString said = setUp.SaidAtAStart("TCPServer()", "--data data");
    QVERIFY2(said.startsWith(QLatin1String("vexelhost: cannot write traces to /no/such/folder/trace.log: ")),
             qPrintable(said));
}

void TestSettingsFiles::autostartIsSwitched()
{
    SetUp setUp;
    setUp.Environment().remove(QStringLiteral("QT_QPA_PLATFORM"));
    // No display is needed.
    auto result = setUp.RunHost("--autostart on --data data");
    QCOMPARE(result.error, QString());
    QCOMPARE(result.output, QStringLiteral("This user's session starts the host: %1\n").arg(setUp.Entry()));
    QCOMPARE(result.exitCode, 0);
    QFile entry(setUp.Entry());
    QVERIFY(entry.open(QIODevice::ReadOnly));
    const QByteArray line = "\nExec=" + QFileInfo(QStringLiteral(VEXELHOST)).canonicalFilePath().toUtf8() +
                            " --hidden --config " + setUp.Config().toUtf8() + " --data " + setUp.Data().toUtf8() + '\n';
    QVERIFY2(entry.readAll().contains(line), line.constData());
    QVERIFY(!QFileInfo::exists(setUp.Config()));

    result = setUp.RunHost("--autostart off");
    QCOMPARE(result.output, QStringLiteral("This user's session does not start the host.\n"));
    QCOMPARE(result.exitCode, 0);
    QVERIFY(!QFileInfo::exists(setUp.Entry()));

    QVERIFY(QDir(setUp.Path("user")).rmdir(QStringLiteral("autostart")));
    setUp.Write(setUp.Path("user/autostart"), "a file in the folder's place");
    COMPARE_FAILURE(setUp.RunHost("--autostart on"), 2, setUp.Path("user/autostart"));
}

void TestSettingsFiles::autostartIsReported()
{
    SetUp setUp;
    QCOMPARE(setUp.Diagnosis("settings").value(QLatin1String("startAtLogin")), QJsonValue(false));
    QCOMPARE(setUp.RunHost("--autostart on").exitCode, 0);
    const QJsonObject report = setUp.Diagnosis("settings");
    QCOMPARE(report.value(QLatin1String("startAtLogin")), QJsonValue(true));
    QCOMPARE(report.value(QLatin1String("startAtLoginBy")), QJsonValue(setUp.Entry()));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestSettingsFiles)
#include "tst_settingsfiles_unix.moc"
