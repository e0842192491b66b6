#include "tests/host/hostsetup.h"
#include "tests/support/testmain.h"

// The host's executable with the real plug-in: lists of entries that go in and out as files.
class TestVexelHostLists : public QObject
{
    Q_OBJECT

private slots:
    void importTakesThePlaceOfAllEntries();
    void importedEntriesAreFree();
    void importThenAddThenExportThenList();
    void importOfABadFileChangesNothing_data();
    void importOfABadFileChangesNothing();
    void importIsUndoneWhenAnAddFails();
    void exportThenImportGivesAnEqualList();
    void exportOfAnEmptyList();
    void exportReplacesAFile();
    void exportToStandardOutput();
    void exportThatFailsLeavesTheFileAsItWas();
};

void TestVexelHostLists::importTakesThePlaceOfAllEntries()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("old 1"), QStringLiteral("old 2"), QStringLiteral("old 3")});
    setUp.Write(setUp.Path("new.xml"),
                HostSetUp::ListDocument({QStringLiteral("b"), QStringLiteral("a")}, {QStringLiteral("a")}));
    // Relative to the current directory, as a person types it.
    const auto result = setUp.Run({QStringLiteral("--import"), QStringLiteral("new.xml")});
    QCOMPARE(result.error, QString());
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(setUp.Names(), QStringList({QStringLiteral("b"), QStringLiteral("a")}));
    QCOMPARE(setUp.TickedNames(), QStringList(QStringLiteral("a")));
}

void TestVexelHostLists::importedEntriesAreFree()
{
    HostSetUp setUp;
    setUp.Write(setUp.Path("busy.xml"), HostSetUp::ListDocument({QStringLiteral("one")}, {}, 1));
    const auto result = setUp.Run(
        {QStringLiteral("--import"), setUp.Path("busy.xml"), QStringLiteral("--export"), QStringLiteral("-")});
    QVERIFY2(result.output.contains(QLatin1String("<ConnectionStatus>0</ConnectionStatus>")),
             qPrintable(result.output));
    QCOMPARE(setUp.Entries().at(0).toObject().value(QLatin1String("status")), QJsonValue(0));
}

void TestVexelHostLists::importThenAddThenExportThenList()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("old")});
    setUp.Write(setUp.Path("imported.xml"), HostSetUp::ListDocument({QStringLiteral("imported")}));
    setUp.Write(setUp.Path("added.xml"), HostSetUp::ListDocument({QStringLiteral("added")}));
    // Whatever the order on the command line.
    const auto result =
        setUp.Run({QStringLiteral("--list"), QStringLiteral("--export"), setUp.Path("out.xml"), QStringLiteral("--add"),
                   setUp.Path("added.xml"), QStringLiteral("--import"), setUp.Path("imported.xml")});
    QCOMPARE(result.error, QString());
    QCOMPARE(result.exitCode, 0);
    const QStringList lines = result.OutputLines();
    QCOMPARE(lines.size(), 3);
    QVERIFY2(lines.at(1).startsWith(QLatin1String("imported ")), qPrintable(lines.at(1)));
    QVERIFY2(lines.at(2).startsWith(QLatin1String("added ")), qPrintable(lines.at(2)));

    HostSetUp other;
    QCOMPARE(other.Run({QStringLiteral("--import"), setUp.Path("out.xml")}).exitCode, 0);
    QCOMPARE(other.Names(), QStringList({QStringLiteral("imported"), QStringLiteral("added")}));
}

void TestVexelHostLists::importOfABadFileChangesNothing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("not XML") << QByteArray("hello");
    QTest::newRow("empty") << QByteArray();
    // The dialog keeps its entries then, too.
    QTest::newRow("no entry") << QByteArray("<ConnectionEntries/>");
    QTest::newRow("breaks off")
        << HostSetUp::ListDocument({QStringLiteral("half"), QStringLiteral("more")}).chopped(25);
    QTest::newRow("declares entities") << QByteArray("<!DOCTYPE x [<!ENTITY a \"b\">]>") +
                                              HostSetUp::ListDocument({QStringLiteral("half")});
}

void TestVexelHostLists::importOfABadFileChangesNothing()
{
    QFETCH(const QByteArray, content);
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("one"), QStringLiteral("two\r\n")}, {QStringLiteral("one")});
    const QJsonArray before = setUp.Entries();
    QCOMPARE(before.size(), 2);
    setUp.Write(setUp.Path("bad.xml"), content);
    const auto result = setUp.Run({QStringLiteral("--import"), setUp.Path("bad.xml"), QStringLiteral("--export"),
                                   setUp.Path("out.xml"), QStringLiteral("--list")});
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.ErrorLines().size(), 1);
    QVERIFY2(result.error.contains(setUp.Path("bad.xml")), qPrintable(result.error));
    QVERIFY(!QFileInfo::exists(setUp.Path("out.xml")));
    QCOMPARE(setUp.Entries(), before);

    for (const QString& fileName : {setUp.Path("missing.xml"), setUp.Data()}) {
        const auto unreadable = setUp.Run({QStringLiteral("--import"), fileName});
        QCOMPARE(unreadable.exitCode, 2);
        QCOMPARE(unreadable.ErrorLines().size(), 1);
        QVERIFY2(unreadable.error.contains(fileName), qPrintable(unreadable.error));
        QCOMPARE(setUp.Entries(), before);
    }
}

void TestVexelHostLists::importIsUndoneWhenAnAddFails()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("one")});
    const QJsonArray before = setUp.Entries();
    setUp.Write(setUp.Path("good.xml"), HostSetUp::ListDocument({QStringLiteral("two"), QStringLiteral("three")}));
    const auto result = setUp.Run(
        {QStringLiteral("--import"), setUp.Path("good.xml"), QStringLiteral("--add"), setUp.Path("missing.xml")});
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(result.ErrorLines().size(), 1);
    QVERIFY2(result.error.contains(setUp.Path("missing.xml")), qPrintable(result.error));
    QCOMPARE(setUp.Entries(), before);
}

void TestVexelHostLists::exportThenImportGivesAnEqualList()
{
    HostSetUp setUp;
    const QString samples = QStringLiteral(PROGRAM_DIRECTORY "/../share/vexel/connections.xml");
    const QString odd = QStringLiteral("<&> \"quoted\"\ttab\n\U0001F4E1 \u00e4");
    setUp.Write(setUp.Path("odd.xml"), HostSetUp::ListDocument({odd, QString(), odd}, {odd}));
    QCOMPARE(setUp.Run({QStringLiteral("--import"), samples, QStringLiteral("--add"), setUp.Path("odd.xml")}).exitCode,
             0);
    const QJsonArray entries = setUp.Entries();
    QCOMPARE(entries.size(), 21);

    const auto exported = setUp.Run({QStringLiteral("--export"), setUp.Path("out.xml")});
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
    QCOMPARE(setUp.Run({QStringLiteral("--export"), setUp.Path("out.xml")}).exitCode, 0);
    QFile file(setUp.Path("out.xml"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray document = file.readAll();
    QVERIFY2(document.contains("<ConnectionEntries/>"), document.constData());
}

void TestVexelHostLists::exportReplacesAFile()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("one")});
    // In one run also the file that was read.
    const QString fileName = setUp.Path("list.xml");
    setUp.Write(fileName, HostSetUp::ListDocument({QStringLiteral("two")}) + QByteArray(100'000, ' '));
    QCOMPARE(setUp.Run({QStringLiteral("--add"), fileName, QStringLiteral("--export"), fileName}).exitCode, 0);
    QVERIFY(QFileInfo(fileName).size() < 10'000);
    HostSetUp other;
    QCOMPARE(other.Run({QStringLiteral("--import"), fileName}).exitCode, 0);
    QCOMPARE(other.Names(), QStringList({QStringLiteral("one"), QStringLiteral("two")}));
}

void TestVexelHostLists::exportToStandardOutput()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("M\u00e4st \U0001F4E1")});
    // The document is UTF-8, whatever the terminal speaks.
    setUp.Environment().insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    const auto printed = setUp.Run({QStringLiteral("--export"), QStringLiteral("-")});
    QCOMPARE(printed.error, QString());
    QCOMPARE(printed.exitCode, 0);
    QCOMPARE(setUp.Run({QStringLiteral("--export"), QStringLiteral("out.xml")}).exitCode, 0);
    QFile file(setUp.Path("out.xml"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(printed.output, QString::fromUtf8(file.readAll()));
    QVERIFY(printed.output.contains(QStringLiteral("<![CDATA[M\u00e4st \U0001F4E1]]>")));
    QVERIFY(!QFileInfo::exists(setUp.Path("-")));
}

void TestVexelHostLists::exportThatFailsLeavesTheFileAsItWas()
{
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("one")});
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
