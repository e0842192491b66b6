#include "files/atomicfile.h"
#include "tests/support/files.h"
#include "tests/support/filesizelimit.h"
#include "tests/support/system.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>

/// Full disks, links and pipes.
class TestAtomicFileUnix : public QObject
{
    Q_OBJECT

private slots:
    void aFullDiskLeavesTheFileAsItWas()
    {
        const QTemporaryDir directory;
        const QString fileName = directory.filePath(QStringLiteral("list.xml"));
        QCOMPARE(ReplaceRegularFile(fileName, "<old/>"), QString());
        {
            const FileSizeLimit limit(1000);
            QCOMPARE(ReplaceRegularFile(fileName, QByteArray(100'000, 'x')), qt_error_string(EFBIG));
            QCOMPARE(CreationObstacle(directory.path(), "fits"), QString());
            QVERIFY(!CreationObstacle(directory.path(), QByteArray(100'000, 'x')).isEmpty());
        }
        QCOMPARE(Files::Read(fileName), QByteArray("<old/>"));
        QCOMPARE(QDir(directory.path()).entryList(QDir::Files | QDir::Hidden), QStringList(QStringLiteral("list.xml")));
    }

    void aLinkStaysAndItsTargetIsReplaced()
    {
        const QTemporaryDir directory;
        const QString target = directory.filePath(QStringLiteral("target.xml"));
        const QString link = directory.filePath(QStringLiteral("list.xml"));
        QVERIFY(QFile::link(target, link));
        // At first the target does not exist.
        for (const char* content : {"<a/>", "<b/>"}) {
            QCOMPARE(ReplaceRegularFile(link, content), QString());
            QVERIFY(QFileInfo(link).isSymbolicLink());
            QVERIFY(!QFileInfo(target).isSymbolicLink());
            QCOMPARE(Files::Read(target), QByteArray(content));
        }
    }

    void aPipeIsLeftAlone()
    {
        const QTemporaryDir directory;
        const QString pipe = System::MakePipe(directory.filePath(QStringLiteral("pipe")));
        QVERIFY(!pipe.isEmpty());
        QCOMPARE(ReplaceRegularFile(pipe, "<a/>"), QStringLiteral("not a regular file"));
        QVERIFY(QFileInfo::exists(pipe) && !QFileInfo(pipe).isFile());
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestAtomicFileUnix)
#include "tst_atomicfile_unix.moc"
