// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/host/hostsetup.h"
#include "tests/support/testmain.h"

#include <array>

// vexelctl without a host: lists of entries that go in and out as files.
class TestCtlLists : public QObject
{
    Q_OBJECT

private slots:
    void importReplacesAllEntries();
    void importedAndAddedEntriesAreFree();
    void storedEntriesAreFree();
    void addAppendsEveryFileInOrder();
    void listIsATableOfTheEntries();
    void badFileChangesNothing_data();
    void badFileChangesNothing();
    void unreadableFileChangesNothing();
    void tooManyEntriesAreRefused();
    void exportedListIsImportedUnchanged();
    void exportOfAnEmptyList();
    void exportReplacesAFile();
    void exportToStandardOutput();
    void filesAreReadFromStandardInput();
    void failedExportKeepsTheFile();
    void lostListIsNotExported();
    void dataDirectoryIsStored();
    void checkPrintsTheEntries();
    void checkTellsWhereTheErrorIs();
    void neitherDisplayNorPluginIsNeeded();
    void runsAtTheSameTimeWaitForEachOther();
};

void TestCtlLists::importReplacesAllEntries()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("old 1"), QStringLiteral("old 2"), QStringLiteral("old 3")});
    setUp.WriteList("new.xml", "b a", "a");
    // Relative to the current directory, as a person types it.
    const auto result = setUp.Run("import new.xml");
    QCOMPARE(result.error, QString());
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(setUp.Names(), Words("b a"));
    QCOMPARE(setUp.TickedNames(), Words("a"));
}

void TestCtlLists::importedAndAddedEntriesAreFree()
{
    HostSetUp setUp;
    setUp.Write(setUp.Path("busy.xml"), HostSetUp::ListDocument({QStringLiteral("one")}, {}, 1));
    QCOMPARE(setUp.Run("import busy.xml").exitCode, 0);
    QCOMPARE(setUp.Run("add busy.xml").exitCode, 0);
    const auto result = setUp.Run("export -");
    QVERIFY2(result.output.count(QLatin1String("<ConnectionStatus>0</ConnectionStatus>")) == 2,
             qPrintable(result.output));
    for (const QJsonValue& entry : setUp.Entries())
        QCOMPARE(entry[QLatin1String("status")], QJsonValue(0));
}

// Nobody serves them where no host runs, whatever a host that was killed has stored.
void TestCtlLists::storedEntriesAreFree()
{
    HostSetUp setUp;
    QVERIFY(QDir().mkpath(setUp.Config() + QStringLiteral("/application")));
    setUp.Write(setUp.Document(), R"({"values": {"ConnectionsModel/ModelMimeData": ")" +
                                      HostSetUp::ListDocument({QStringLiteral("one")}, {}, 1).toHex() + "\"}}");
    const QJsonArray entries = setUp.Entries();
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries.at(0)[QLatin1String("status")], QJsonValue(0));
}

void TestCtlLists::addAppendsEveryFileInOrder()
{
    HostSetUp setUp;
    setUp.Fill("old");
    setUp.WriteList("one.xml", "b a");
    setUp.WriteList("two.xml", "c");
    const auto result = setUp.Run("add one.xml two.xml one.xml");
    QCOMPARE(result.error, QString());
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(setUp.Names(), Words("old b a c b a"));
}

void TestCtlLists::listIsATableOfTheEntries()
{
    HostSetUp setUp;
    setUp.Fill("mast pier", "pier");
    const auto result = setUp.Run("list");
    QCOMPARE(result.error, QString());
    QCOMPARE(result.exitCode, 0);
    const QStringList lines = result.OutputLines();
    QCOMPARE(lines.size(), 3);
    QVERIFY2(lines.at(0).startsWith(QLatin1String("Name  Status  Device Type  ")), qPrintable(lines.at(0)));
    QVERIFY2(lines.at(1).startsWith(QLatin1String("mast  Free    Kite Echo ")), qPrintable(lines.at(1)));
    QVERIFY(lines.at(2).endsWith(QLatin1String(" yes")));
    // In the language of the user, as JSON never is.
    const auto german = setUp.Run("list --language de");
    QVERIFY2(german.OutputLines().constFirst().contains(QStringLiteral("Ger\u00e4tetyp")), qPrintable(german.output));
    QVERIFY2(german.OutputLines().at(1).startsWith(QLatin1String("mast  Frei ")), qPrintable(german.output));
    QCOMPARE(setUp.Run("list --json --language de").output, setUp.Run("list --json --language en").output);
}

void TestCtlLists::badFileChangesNothing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("not XML") << QByteArray("hello");
    // The dialog keeps its entries then, too.
    QTest::newRow("no entry") << QByteArray("<ConnectionEntries/>");
    QTest::newRow("truncated") << HostSetUp::ListDocument(Words("half more")).chopped(25);
    QTest::newRow("declares entities") << QByteArray("<!DOCTYPE x [<!ENTITY a \"b\">]>") +
                                              HostSetUp::ListDocument(Words("half"));
}

void TestCtlLists::badFileChangesNothing()
{
    QFETCH(const QByteArray, content);
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("one"), QStringLiteral("two\r\n")}, Words("one"));
    const QJsonArray before = setUp.Entries();
    QCOMPARE(before.size(), 2);
    setUp.Write(setUp.Path("bad.xml"), content);
    setUp.WriteList("good.xml", "three");
    COMPARE_FAILURE(setUp.Run("import bad.xml"), 2, setUp.Path("bad.xml"));
    COMPARE_FAILURE(setUp.Run("add good.xml bad.xml"), 2, setUp.Path("bad.xml"));
    QCOMPARE(setUp.Entries(), before);
    // Neither is a configuration made for it.
    HostSetUp other;
    other.Write(other.Path("bad.xml"), content);
    COMPARE_FAILURE(other.Run("add bad.xml"), 2, other.Path("bad.xml"));
    QVERIFY(!QFileInfo::exists(other.Config()));
}

void TestCtlLists::unreadableFileChangesNothing()
{
    HostSetUp setUp;
    setUp.Fill("one");
    const QByteArray stored = setUp.StoredText();
    for (const QString& fileName : {setUp.Path("missing.xml"), setUp.Data()})
        for (const QString& command : {QStringLiteral("import"), QStringLiteral("add")})
            COMPARE_FAILURE(setUp.Run({command, fileName}), 2, fileName);
    QCOMPARE(setUp.StoredText(), stored);
}

void TestCtlLists::tooManyEntriesAreRefused()
{
    HostSetUp setUp;
    setUp.Fill("one");
    const QByteArray stored = setUp.StoredText();
    QByteArray document = "<ConnectionEntries>";
    document.reserve(3 * 1024 * 1024);
    for (int i = 0; i < 200'000; ++i)
        document += "<Connection/>";
    setUp.Write(setUp.Path("long.xml"), document + "</ConnectionEntries>");
    COMPARE_FAILURE(setUp.Run("add long.xml"), 2, QLatin1String("too many entries"));
    setUp.WriteList("more.xml", "two");
    COMPARE_FAILURE(setUp.Run("add long.xml more.xml"), 2, setUp.Path("more.xml"));
    QCOMPARE(setUp.StoredText(), stored);
}

void TestCtlLists::exportedListIsImportedUnchanged()
{
    HostSetUp setUp;
    const QString samples = QStringLiteral(PROGRAM_DIRECTORY "/../share/vexel/connections.xml");
    const QString odd = QStringLiteral("<&> \"quoted\"\ttab\n\U0001F4E1 \u00e4");
    setUp.Write(setUp.Path("odd.xml"), HostSetUp::ListDocument({odd, QString(), odd}, {odd}));
    QCOMPARE(setUp.Run({QStringLiteral("import"), samples}).exitCode, 0);
    QCOMPARE(setUp.Run("add odd.xml").exitCode, 0);
    const QJsonArray entries = setUp.Entries();
    QCOMPARE(entries.size(), 21);

    const auto exported = setUp.Run("export out.xml");
    QCOMPARE(exported.error, QString());
    QCOMPARE(exported.output, QString());
    QCOMPARE(exported.exitCode, 0);
    QCOMPARE(setUp.Entries(), entries);

    HostSetUp other;
    other.Fill({QStringLiteral("to be replaced")});
    QCOMPARE(other.Run({QStringLiteral("import"), setUp.Path("out.xml")}).exitCode, 0);
    QCOMPARE(other.Entries(), entries);
}

void TestCtlLists::exportOfAnEmptyList()
{
    HostSetUp setUp;
    QVERIFY(QDir().mkpath(setUp.Config()));
    QCOMPARE(setUp.Run("export out.xml").exitCode, 0);
    QFile file(setUp.Path("out.xml"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray document = file.readAll();
    QVERIFY2(document.contains("<ConnectionEntries/>"), document.constData());
}

void TestCtlLists::exportReplacesAFile()
{
    HostSetUp setUp;
    setUp.Fill("one");
    const QString fileName = setUp.Path("list.xml");
    setUp.Write(fileName, HostSetUp::ListDocument({QStringLiteral("two")}) + QByteArray(100'000, ' '));
    QCOMPARE(setUp.Run({QStringLiteral("export"), fileName}).exitCode, 0);
    QVERIFY(QFileInfo(fileName).size() < 10'000);
    HostSetUp other;
    QCOMPARE(other.Run({QStringLiteral("import"), fileName}).exitCode, 0);
    QCOMPARE(other.Names(), Words("one"));
}

void TestCtlLists::exportToStandardOutput()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("M\u00e4st \U0001F4E1")});
    // The document is UTF-8, whatever the terminal speaks.
    setUp.Environment().insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    const auto printed = setUp.Run("export -");
    QCOMPARE(printed.error, QString());
    QCOMPARE(printed.exitCode, 0);
    QCOMPARE(setUp.Run("export out.xml").exitCode, 0);
    QFile file(setUp.Path("out.xml"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(printed.output, QString::fromUtf8(file.readAll()));
    QVERIFY(printed.output.contains(QStringLiteral("<![CDATA[M\u00e4st \U0001F4E1]]>")));
    QVERIFY(!QFileInfo::exists(setUp.Path("-")));
}

void TestCtlLists::filesAreReadFromStandardInput()
{
    HostSetUp setUp;
    setUp.Fill("old");
    setUp.WriteList("first.xml", "first");
    const auto run = [&setUp](const char* arguments, const QByteArray& input) {
        QProcess process;
        setUp.Start(process, arguments);
        process.write(input);
        process.closeWriteChannel();
        return HostSetUp::End(process);
    };
    QCOMPARE(run("add first.xml -", HostSetUp::ListDocument(Words("piped"))).exitCode, 0);
    QCOMPARE(setUp.Names(), Words("old first piped"));
    QCOMPARE(run("import -", HostSetUp::ListDocument(Words("new"))).exitCode, 0);
    QCOMPARE(setUp.Names(), Words("new"));
    COMPARE_FAILURE(run("import -", "hello"), 2, QLatin1String("standard input"));
    COMPARE_FAILURE(run("import -", ""), 2, QLatin1String("standard input"));
    QCOMPARE(setUp.Names(), Words("new"));
}

void TestCtlLists::failedExportKeepsTheFile()
{
    HostSetUp setUp;
    setUp.Fill("one");
    QDir(setUp.Data()).mkdir(QStringLiteral("folder"));
    for (const QString& fileName : {setUp.Path("no/such/folder/out.xml"), setUp.Data() + QStringLiteral("/folder")})
        COMPARE_FAILURE(setUp.Run({QStringLiteral("export"), fileName}), 2, fileName);
    QVERIFY(QFileInfo(setUp.Data() + QStringLiteral("/folder")).isDir());
}

// It would replace a good file by an empty list.
void TestCtlLists::lostListIsNotExported()
{
    HostSetUp setUp;
    setUp.Fill("one");
    setUp.Write(setUp.Path("out.xml"), "kept");
    const QString versions = setUp.Document() + QStringLiteral(".versions");
    QVERIFY(QDir(versions).removeRecursively());
    setUp.Write(setUp.Document(), "damage");
    const auto isRefused = [&setUp](const char* arguments) {
        const auto result = setUp.Run(arguments);
        return result.exitCode == 2 && result.output.isEmpty() && result.error.contains(setUp.Document()) &&
               result.error.contains(QLatin1String("the stored list cannot be read"));
    };
    QVERIFY(isRefused("export out.xml"));
    QVERIFY(isRefused("list"));
    // Missing, beside a version that cannot be read.
    QVERIFY(QDir().mkdir(versions));
    QVERIFY(QFile::rename(setUp.Document(), versions + QStringLiteral("/00000001-20260101T000000.000Z.json")));
    QVERIFY(isRefused("export out.xml"));
    QFile file(setUp.Path("out.xml"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("kept"));
    QVERIFY(!QFileInfo::exists(setUp.Document()));
}

void TestCtlLists::dataDirectoryIsStored()
{
    HostSetUp setUp;
    setUp.WriteList("list.xml", "mast");
    for (const char* command : {"import", "add"}) {
        QVERIFY(QDir(setUp.Config()).removeRecursively());
        QCOMPARE(setUp.Run({QLatin1String(command), QStringLiteral("list.xml")}).exitCode, 0);
        QVERIFY(!setUp.StoredText().contains("VexelDataDir"));
        QCOMPARE(setUp
                     .Run({QLatin1String(command), QStringLiteral("list.xml"), QStringLiteral("--data"),
                           QStringLiteral("data")})
                     .exitCode,
                 0);
        QVERIFY(setUp.StoredText().contains("\"VexelDataDir\": \"" + setUp.Data().toUtf8() + '"'));
    }
    QVERIFY(QFile::remove(setUp.Data() + QStringLiteral("/CfgVEXEL.xml")));
    COMPARE_FAILURE(setUp.Run("add list.xml --data data"), 1, QLatin1String("CfgVEXEL.xml"));
    QCOMPARE(setUp.Run("add list.xml --data data --force").exitCode, 0);
}

void TestCtlLists::checkPrintsTheEntries()
{
    HostSetUp setUp;
    setUp.WriteList("list.xml", "mast pier", "pier");
    const auto text = setUp.Run("check list.xml");
    QCOMPARE(text.error, QString());
    QCOMPARE(text.exitCode, 0);
    QCOMPARE(text.OutputLines().size(), 3);
    const auto json = setUp.Run("check list.xml --json");
    QCOMPARE(json.exitCode, 0);
    const QJsonArray entries =
        QJsonDocument::fromJson(json.output.toUtf8()).object().value(QLatin1String("connections")).toArray();
    QCOMPARE(entries.size(), 2);
    QCOMPARE(entries.at(1)[QLatin1String("name")], QJsonValue(QStringLiteral("pier")));
    // Without a configuration, and without making one.
    QVERIFY(!QFileInfo::exists(setUp.Config()));
}

void TestCtlLists::checkTellsWhereTheErrorIs()
{
    HostSetUp setUp;
    setUp.Write(setUp.Path("bad.xml"), "<ConnectionEntries>\n<Connection></Wrong>\n</ConnectionEntries>");
    COMPARE_FAILURE(setUp.Run("check bad.xml"), 2,
                    QLatin1String("bad.xml cannot be used as a connection list: row 2, column 20: "));
    const auto json = setUp.Run("check bad.xml --json");
    QCOMPARE(json.exitCode, 2);
    const QJsonObject error =
        QJsonDocument::fromJson(json.output.toUtf8()).object().value(QLatin1String("error")).toObject();
    QCOMPARE(error.value(QLatin1String("row")), QJsonValue(2));
    QCOMPARE(error.value(QLatin1String("column")), QJsonValue(20));
    QVERIFY(!error.value(QLatin1String("text")).toString().isEmpty());
    setUp.Write(setUp.Path("empty.xml"), "<ConnectionEntries/>");
    COMPARE_FAILURE(setUp.Run("check empty.xml"), 2, QLatin1String("has no entries"));
    COMPARE_FAILURE(setUp.Run("check missing.xml"), 2, QLatin1String("no such file"));
}

void TestCtlLists::neitherDisplayNorPluginIsNeeded()
{
    HostSetUp setUp;
    setUp.Environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("no-such-platform"));
    setUp.Fill("one");
    setUp.WriteList("list.xml", "two");
    for (const char* arguments : {"import list.xml", "list", "status", "export out.xml", "check list.xml", "backups",
                                  "restore 1", "wait", "save", "quit"}) {
        const auto result = setUp.Run(arguments);
        QCOMPARE(result.error, QString());
        QCOMPARE(result.exitCode, 0);
    }
}

void TestCtlLists::runsAtTheSameTimeWaitForEachOther()
{
    HostSetUp setUp;
    std::array<QProcess, 8> processes;
    QStringList names;
    for (QProcess& process : processes) {
        names.append(QStringLiteral("entry%1").arg(names.size()));
        const QString file = names.constLast() + QStringLiteral(".xml");
        setUp.Write(setUp.Path(qPrintable(file)), HostSetUp::ListDocument({names.constLast()}));
        setUp.Start(process, {QStringLiteral("add"), file});
    }
    for (QProcess& process : processes) {
        const auto result = HostSetUp::End(process);
        QCOMPARE(result.error, QString());
        QCOMPARE(result.exitCode, 0);
    }
    QStringList stored = setUp.Names();
    stored.sort();
    QCOMPARE(stored, names);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCtlLists)
#include "tst_ctllists.moc"
