// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/host/hostsetup.h"
#include "tests/support/files.h"
#include "tests/support/system/filesizelimit.h"
#include "tests/support/testmain.h"

#include <sys/stat.h>

// vexelctl on a configuration that is hard to read or cannot be written.
class TestCtlStoreUnix : public QObject
{
    Q_OBJECT

private slots:
    void worksWithoutATemporaryFolder();
    void temporaryFolderStaysEmpty();
    void fullDiskAllowsListAndExport();
    void readOnlyConfigurationCanBeListed();
    void pipeInPlaceOfTheLockDoesNotBlock();
    void unreadableListIsNotExported();
    void oversizedDocumentIsDamaged();
    void unreadableDocumentIsNotCalledDamaged();

private:
    /// Two versions of one and two entries, and a present list of three.
    static void FillThrice(HostSetUp& setUp)
    {
        for (const QString& name : {QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")})
            setUp.Fill({name});
    }
    static const QStringList kAllNames;
};

const QStringList TestCtlStoreUnix::kAllNames = {QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")};

void TestCtlStoreUnix::worksWithoutATemporaryFolder()
{
    HostSetUp setUp;
    FillThrice(setUp);
    setUp.Environment().insert(QStringLiteral("TMPDIR"), QStringLiteral("/no/such/folder"));
    QCOMPARE(setUp.Names(), kAllNames);
    const auto exported = setUp.Run("export out.xml");
    QCOMPARE(exported.error, QString());
    QCOMPARE(exported.exitCode, 0);
    QCOMPARE(Files::Read(setUp.Path("out.xml")).count("<Connection>"), 3);
    const auto backups = setUp.Run("backups");
    QCOMPARE(backups.OutputLines().size(), 4);
    QVERIFY2(!backups.output.contains(QLatin1String("damaged")), qPrintable(backups.output));
    const auto diagnosis = setUp.Run("diagnose");
    QVERIFY2(!diagnosis.output.contains(QLatin1String("DAMAGED")), qPrintable(diagnosis.output));
    QCOMPARE(setUp.Run("restore 2").exitCode, 0);
    QCOMPARE(setUp.Names(), kAllNames.first(1));
}

void TestCtlStoreUnix::temporaryFolderStaysEmpty()
{
    HostSetUp setUp;
    FillThrice(setUp);
    const QString folder = setUp.Path("temporary");
    QVERIFY(QDir().mkdir(folder));
    setUp.Environment().insert(QStringLiteral("TMPDIR"), folder);
    QProcess host;
    setUp.StartDialog(host);
    host.kill();
    QVERIFY(host.waitForFinished());
    QCOMPARE(setUp.Run("screenshot a.png").exitCode, 0);
    QCOMPARE(QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList());
}

void TestCtlStoreUnix::fullDiskAllowsListAndExport()
{
    HostSetUp setUp;
    FillThrice(setUp);
    setUp.WriteList("more.xml", "four");
    const QByteArray stored = setUp.StoredText();
    {
        // Files can be made, and hold nothing.
        const FileSizeLimit limit(0);
        QCOMPARE(setUp.Names(), kAllNames);
        const auto exported = setUp.Run("export -");
        QCOMPARE(exported.error, QString());
        QCOMPARE(exported.exitCode, 0);
        QCOMPARE(exported.output.count(QLatin1String("<Connection>")), 3);
        QCOMPARE(setUp.Run("backups").OutputLines().size(), 4);

        const auto added = setUp.Run("add more.xml");
        QCOMPARE(added.exitCode, 2);
        QVERIFY2(added.error.contains(QLatin1String("could not be saved")), qPrintable(added.error));
        QCOMPARE(setUp.Run("restore 1").exitCode, 2);
    }
    QCOMPARE(setUp.StoredText(), stored);
    QCOMPARE(setUp.Names(), kAllNames);
}

// Like a read-only disk. A folder in the way stops even an administrator from writing.
void TestCtlStoreUnix::readOnlyConfigurationCanBeListed()
{
    HostSetUp setUp;
    FillThrice(setUp);
    const QByteArray stored = setUp.StoredText();
    QVERIFY(QDir().mkdir(setUp.Config() + QStringLiteral("/vexelhost.lock")));

    const auto listed = setUp.Run("list");
    QCOMPARE(listed.error, QString());
    QCOMPARE(listed.OutputLines().size(), 4);
    QCOMPARE(setUp.Run("export out.xml").error, QString());
    QCOMPARE(Files::Read(setUp.Path("out.xml")).count("<Connection>"), 3);
    QCOMPARE(setUp.Run("screenshot a.png").error, QString());

    setUp.WriteList("more.xml", "four");
    for (const char* arguments : {"add more.xml", "import more.xml", "restore 1", "connect one"})
        COMPARE_FAILURE(setUp.Run(arguments), 2, QLatin1String("cannot be used: "));
    QCOMPARE(setUp.StoredText(), stored);
}

void TestCtlStoreUnix::pipeInPlaceOfTheLockDoesNotBlock()
{
    HostSetUp setUp;
    FillThrice(setUp);
    const QString lock = setUp.Document() + QStringLiteral(".lock");
    QCOMPARE(mkfifo(QFile::encodeName(lock).constData(), 0600), 0);
    setUp.WriteList("more.xml", "four");
    const auto added = setUp.Run("add more.xml");
    QCOMPARE(added.exitCode, 2);
    QVERIFY2(added.error.contains(QLatin1String("could not be saved")), qPrintable(added.error));
    QCOMPARE(setUp.Names(), kAllNames);
}

// It would replace a good file by an empty list.
void TestCtlStoreUnix::unreadableListIsNotExported()
{
    HostSetUp setUp;
    setUp.Fill("one");
    const QString out = setUp.Path("out.xml");
    QCOMPARE(setUp.Run({QStringLiteral("export"), out}).exitCode, 0);
    const QByteArray before = Files::Read(out);
    QVERIFY(before.contains("one"));

    // Damaged, without a version, and nothing can be moved aside.
    QVERIFY(QDir(setUp.Document() + QStringLiteral(".versions")).removeRecursively());
    setUp.Write(setUp.Document(), "damage");
    QVERIFY(QDir().mkdir(setUp.Document() + QStringLiteral(".lock")));
    setUp.WriteList("more.xml", "four");
    for (const char* arguments :
         {"export out.xml", "list", "status", "add more.xml", "connect one", "screenshot a.png"}) {
        const auto result = setUp.Run(arguments);
        QCOMPARE(result.exitCode, 2);
        QCOMPARE(result.output, QString());
        QVERIFY2(result.error.contains(setUp.Document()), qPrintable(result.error));
    }
    QCOMPARE(Files::Read(out), before);
    QCOMPARE(Files::Read(setUp.Document()), QByteArray("damage"));
}

void TestCtlStoreUnix::oversizedDocumentIsDamaged()
{
    HostSetUp setUp;
    FillThrice(setUp);
    if (!QFile::resize(setUp.Document(), qint64(60) << 30))
        QSKIP("This file system has no sparse files.");
    const auto result = setUp.Run("list");
    COMPARE_NOTICE(result, QLatin1String("), and is left as it is"));
    QCOMPARE(result.OutputLines().size(), 3); // the version of two entries
    setUp.WriteList("more.xml", "four");
    const auto added = setUp.Run("add more.xml");
    COMPARE_NOTICE(added, QLatin1String("), quarantined as "));
    QCOMPARE(setUp.Names(), Words("one two four"));
}

// It may be intact: only reading fails.
void TestCtlStoreUnix::unreadableDocumentIsNotCalledDamaged()
{
    HostSetUp setUp;
    FillThrice(setUp);
    QVERIFY(QFile::remove(setUp.Document()));
    QVERIFY(QFile::link(QStringLiteral("/proc/self/mem"), setUp.Document()));
    const auto backups = setUp.Run("backups");
    QVERIFY2(backups.OutputLines().value(1).contains(QLatin1String("cannot be read")), qPrintable(backups.output));
    QVERIFY2(!backups.output.contains(QLatin1String("damaged")), qPrintable(backups.output));
    const auto json = setUp.Run("backups --json");
    const QJsonObject now = QJsonDocument::fromJson(json.output.toUtf8())
                                .object()
                                .value(QLatin1String("versions"))
                                .toArray()
                                .first()
                                .toObject();
    QCOMPARE(now.value(QLatin1String("readable")), QJsonValue(false));
    QCOMPARE(now.value(QLatin1String("damaged")), QJsonValue(false));
    const auto diagnosis = setUp.Run("diagnose");
    QVERIFY2(diagnosis.output.contains(QLatin1String("CANNOT BE READ now")), qPrintable(diagnosis.output));
    QVERIFY2(!diagnosis.output.contains(QLatin1String("DAMAGED")), qPrintable(diagnosis.output));

    const auto restored = setUp.Run("restore 1");
    QCOMPARE(restored.exitCode, 0);
    QVERIFY2(restored.output.contains(QLatin1String("cannot be read -> 2 entries\n")), qPrintable(restored.output));
    QCOMPARE(setUp.Names(), kAllNames.first(2));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCtlStoreUnix)
#include "tst_ctlstore_unix.moc"
