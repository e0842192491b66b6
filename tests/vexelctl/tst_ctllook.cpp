// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/host/hostsetup.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <map>

// vexelctl: commands that only look leave everything as it is.
class TestCtlLook : public QObject
{
    Q_OBJECT

private slots:
    void lookingChangesNothing_data();
    void lookingChangesNothing();
    void lookingMakesNoConfiguration_data();
    void lookingMakesNoConfiguration();
    void lookingNeedsNoLock();

private:
    static void AddCommands();
    /// Every file and folder of the set-up, with content and time of change.
    static std::map<QString, QByteArray> Tree(const HostSetUp& setUp);
};

void TestCtlLook::AddCommands()
{
    QTest::addColumn<QString>("arguments");
    for (const char* arguments :
         {"list", "list --json", "status", "status --json", "export -", "backups", "backups --json",
          "restore 1 --dry-run", "restore 1 --dry-run --json", "screenshot -", "screenshot - --data data"})
        QTest::newRow(arguments) << QString::fromLatin1(arguments);
}

std::map<QString, QByteArray> TestCtlLook::Tree(const HostSetUp& setUp)
{
    std::map<QString, QByteArray> tree;
    QDirIterator all(setUp.Path("."), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                     QDirIterator::Subdirectories);
    while (all.hasNext()) {
        const QFileInfo file(all.next());
        // A file that was made and removed leaves its mark on the folder.
        tree[file.filePath()] = file.lastModified().toString(Qt::ISODateWithMs).toLatin1() +
                                (file.isFile() ? Files::Read(file.filePath()) : QByteArray());
    }
    return tree;
}

void TestCtlLook::lookingChangesNothing_data()
{
    AddCommands();
}

void TestCtlLook::lookingChangesNothing()
{
    QFETCH(const QString, arguments);
    HostSetUp setUp;
    setUp.Fill("one");
    setUp.Fill("two");
    const std::map<QString, QByteArray> whole = Tree(setUp);
    const auto result = setUp.Run(arguments.split(u' '));
    QCOMPARE(result.exitCode, 0);
    QVERIFY(Tree(setUp) == whole);

    // A document that is damaged, and one that is missing, stay as they are for the next start.
    setUp.Write(setUp.Document(), "damage");
    const std::map<QString, QByteArray> damaged = Tree(setUp);
    QCOMPARE(setUp.Run(arguments.split(u' ')).exitCode, 0);
    QVERIFY(Tree(setUp) == damaged);
    QVERIFY(QFile::remove(setUp.Document()));
    const std::map<QString, QByteArray> missing = Tree(setUp);
    QCOMPARE(setUp.Run(arguments.split(u' ')).exitCode, 0);
    QVERIFY(Tree(setUp) == missing);
}

void TestCtlLook::lookingMakesNoConfiguration_data()
{
    AddCommands();
}

void TestCtlLook::lookingMakesNoConfiguration()
{
    QFETCH(const QString, arguments);
    HostSetUp setUp;
    const std::map<QString, QByteArray> before = Tree(setUp);
    COMPARE_FAILURE(setUp.Run(arguments.split(u' ')), 2,
                    QLatin1String("there is no configuration directory ") + setUp.Config());
    QVERIFY(Tree(setUp) == before);
    // Nor with a file in its place.
    setUp.Write(setUp.Config(), "a regular file");
    COMPARE_FAILURE(setUp.Run(arguments.split(u' ')), 2,
                    QLatin1String("there is no configuration directory ") + setUp.Config());
}

void TestCtlLook::lookingNeedsNoLock()
{
    HostSetUp setUp;
    setUp.Fill("one");
    // Nobody can take this lock.
    QVERIFY(QDir().mkdir(setUp.Config() + QStringLiteral("/vexelhost.lock")));
    for (const char* arguments : {"list", "status", "export -", "screenshot -", "backups"})
        QCOMPARE(setUp.Run(arguments).exitCode, 0);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCtlLook)
#include "tst_ctllook.moc"
