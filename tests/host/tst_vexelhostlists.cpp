#include "tests/host/hostsetup.h"
#include "tests/support/testmain.h"

// The host's executable with the real plug-in: lists of entries that go in and out as files.
class TestVexelHostLists : public QObject
{
    Q_OBJECT

private slots:
    void importReplacesAllEntries();
    void importedAndAddedEntriesAreFree();
    void importThenAddThenExportThenList();
    void badFileChangesNothing_data();
    void badFileChangesNothing();
    void unreadableFileChangesNothing();
    void failedAddUndoesTheImport();
    void exportedListIsImportedUnchanged();
    void exportOfAnEmptyList();
    void exportReplacesAFile();
    void exportToStandardOutput();
    void failedExportKeepsTheFile();
};

void TestVexelHostLists::importReplacesAllEntries()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("old 1"), QStringLiteral("old 2"), QStringLiteral("old 3")});
    setUp.WriteList("new.xml", "b a", "a");
    // Relative to the current directory, as a person types it.
    const auto result = setUp.Run("--import new.xml");
    QCOMPARE(result.error, QString());
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(setUp.Names(), Words("b a"));
    QCOMPARE(setUp.TickedNames(), Words("a"));
}

void TestVexelHostLists::importedAndAddedEntriesAreFree()
{
    HostSetUp setUp;
    setUp.Write(setUp.Path("busy.xml"), HostSetUp::ListDocument({QStringLiteral("one")}, {}, 1));
    const auto result = setUp.Run("--import busy.xml --add busy.xml --export -");
    QVERIFY2(result.output.count(QLatin1String("<ConnectionStatus>0</ConnectionStatus>")) == 2,
             qPrintable(result.output));
    for (const QJsonValue& entry : setUp.Entries())
        QCOMPARE(entry[QLatin1String("status")], QJsonValue(0));
}

void TestVexelHostLists::importThenAddThenExportThenList()
{
    HostSetUp setUp;
    setUp.Fill("old");
    setUp.WriteList("imported.xml", "imported");
    setUp.WriteList("added.xml", "added");
    // Whatever the order on the command line.
    const auto result = setUp.Run("--list --export out.xml --add added.xml --import imported.xml");
    QCOMPARE(result.error, QString());
    QCOMPARE(result.exitCode, 0);
    const QStringList lines = result.OutputLines();
    QCOMPARE(lines.size(), 3);
    QVERIFY2(lines.at(1).startsWith(QLatin1String("imported ")), qPrintable(lines.at(1)));
    QVERIFY2(lines.at(2).startsWith(QLatin1String("added ")), qPrintable(lines.at(2)));

    HostSetUp other;
    QCOMPARE(other.Run({QStringLiteral("--import"), setUp.Path("out.xml")}).exitCode, 0);
    QCOMPARE(other.Names(), Words("imported added"));
}

void TestVexelHostLists::badFileChangesNothing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("not XML") << QByteArray("hello");
    // The dialog keeps its entries then, too.
    QTest::newRow("no entry") << QByteArray("<ConnectionEntries/>");
    QTest::newRow("truncated") << HostSetUp::ListDocument(Words("half more")).chopped(25);
    QTest::newRow("declares entities") << QByteArray("<!DOCTYPE x [<!ENTITY a \"b\">]>") +
                                              HostSetUp::ListDocument(Words("half"));
}

void TestVexelHostLists::badFileChangesNothing()
{
    QFETCH(const QByteArray, content);
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("one"), QStringLiteral("two\r\n")}, Words("one"));
    const QJsonArray before = setUp.Entries();
    QCOMPARE(before.size(), 2);
    setUp.Write(setUp.Path("bad.xml"), content);
    setUp.WriteList("good.xml", "three");
    COMPARE_FAILURE(setUp.Run("--import bad.xml --export out.xml --list"), 2, setUp.Path("bad.xml"));
    COMPARE_FAILURE(setUp.Run("--add good.xml --add bad.xml --list"), 2, setUp.Path("bad.xml"));
    QVERIFY(!QFileInfo::exists(setUp.Path("out.xml")));
    QCOMPARE(setUp.Entries(), before);
}

void TestVexelHostLists::unreadableFileChangesNothing()
{
    HostSetUp setUp;
    setUp.Fill("one");
    const QByteArray stored = setUp.StoredText();
    for (const QString& fileName : {setUp.Path("missing.xml"), setUp.Data()})
        for (const QString& option : {QStringLiteral("--import"), QStringLiteral("--add")})
            COMPARE_FAILURE(setUp.Run({option, fileName}), 2, fileName);
    QCOMPARE(setUp.StoredText(), stored);
}

void TestVexelHostLists::failedAddUndoesTheImport()
{
    HostSetUp setUp;
    setUp.Fill("one");
    const QJsonArray before = setUp.Entries();
    setUp.WriteList("good.xml", "two three");
    COMPARE_FAILURE(setUp.Run("--import good.xml --add missing.xml"), 2, setUp.Path("missing.xml"));
    QCOMPARE(setUp.Entries(), before);
}

void TestVexelHostLists::exportedListIsImportedUnchanged()
{
    HostSetUp setUp;
    const QString samples = QStringLiteral(PROGRAM_DIRECTORY "/../share/vexel/connections.xml");
    const QString odd = QStringLiteral("<&> \"quoted\"\ttab\n\U0001F4E1 \u00e4");
    setUp.Write(setUp.Path("odd.xml"), HostSetUp::ListDocument({odd, QString(), odd}, {odd}));
    QCOMPARE(setUp.Run({QStringLiteral("--import"), samples, QStringLiteral("--add"), setUp.Path("odd.xml")}).exitCode,
             0);
    const QJsonArray entries = setUp.Entries();
    QCOMPARE(entries.size(), 21);

    const auto exported = setUp.Run("--export out.xml");
    QCOMPARE(exported.error, QString());
    QCOMPARE(exported.output, QString());
    QCOMPARE(exported.exitCode, 0);
    QCOMPARE(setUp.Entries(), entries);

    HostSetUp other;
    other.Fill({QStringLiteral("to be replaced")});
    QCOMPARE(other.Run({QStringLiteral("--import"), setUp.Path("out.xml")}).exitCode, 0);
    QCOMPARE(other.Entries(), entries);
}

void TestVexelHostLists::exportOfAnEmptyList()
{
    HostSetUp setUp;
    QCOMPARE(setUp.Run("--export out.xml").exitCode, 0);
    QFile file(setUp.Path("out.xml"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray document = file.readAll();
    QVERIFY2(document.contains("<ConnectionEntries/>"), document.constData());
}

void TestVexelHostLists::exportReplacesAFile()
{
    HostSetUp setUp;
    setUp.Fill("one");
    // In one run also the file that was read.
    const QString fileName = setUp.Path("list.xml");
    setUp.Write(fileName, HostSetUp::ListDocument({QStringLiteral("two")}) + QByteArray(100'000, ' '));
    QCOMPARE(setUp.Run({QStringLiteral("--add"), fileName, QStringLiteral("--export"), fileName}).exitCode, 0);
    QVERIFY(QFileInfo(fileName).size() < 10'000);
    HostSetUp other;
    QCOMPARE(other.Run({QStringLiteral("--import"), fileName}).exitCode, 0);
    QCOMPARE(other.Names(), Words("one two"));
}

void TestVexelHostLists::exportToStandardOutput()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("M\u00e4st \U0001F4E1")});
    // The document is UTF-8, whatever the terminal speaks.
    setUp.Environment().insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    const auto printed = setUp.Run("--export -");
    QCOMPARE(printed.error, QString());
    QCOMPARE(printed.exitCode, 0);
    QCOMPARE(setUp.Run("--export out.xml").exitCode, 0);
    QFile file(setUp.Path("out.xml"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(printed.output, QString::fromUtf8(file.readAll()));
    QVERIFY(printed.output.contains(QStringLiteral("<![CDATA[M\u00e4st \U0001F4E1]]>")));
    QVERIFY(!QFileInfo::exists(setUp.Path("-")));
}

void TestVexelHostLists::failedExportKeepsTheFile()
{
    HostSetUp setUp;
    setUp.Fill("one");
    QDir(setUp.Data()).mkdir(QStringLiteral("folder"));
    for (const QString& fileName : {setUp.Path("no/such/folder/out.xml"), setUp.Data() + QStringLiteral("/folder")}) {
        const auto result = setUp.Run({QStringLiteral("--export"), fileName, QStringLiteral("--list")});
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.ErrorLines().size(), 1);
        QVERIFY2(result.error.contains(fileName), qPrintable(result.error));
        // The rest of the work is done.
        QCOMPARE(result.OutputLines().size(), 2);
    }
    QVERIFY(QFileInfo(setUp.Data() + QStringLiteral("/folder")).isDir());
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelHostLists)
#include "tst_vexelhostlists.moc"
