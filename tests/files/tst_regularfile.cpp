#include "files/regularfile.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <thread>

class TestRegularFile : public QObject
{
    Q_OBJECT

private slots:
    void onlyExistingOtherThanFilesCount()
    {
        const QTemporaryDir directory;
        const QString file = directory.filePath(QStringLiteral("方位.lock"));
        QVERIFY(!IsNotRegularFile(file));
        QVERIFY(!IsNotRegularFile(directory.filePath(QStringLiteral("no folder/file"))));
        QVERIFY(IsNotRegularFile(directory.path()));
        QVERIFY(Files::Write(file, "content"));
        QVERIFY(!IsNotRegularFile(file));
        QVERIFY(!IsNotRegularFile(file + QStringLiteral("/below a file")));
#ifdef Q_OS_UNIX
        // Links are followed.
        const QString link = directory.filePath(QStringLiteral("link"));
        QVERIFY(QFile::link(file, link));
        QVERIFY(!IsNotRegularFile(link));
        QVERIFY(QFile::remove(file));
        QVERIFY(IsNotRegularFile(link));
        QVERIFY(QDir().mkdir(file));
        QVERIFY(IsNotRegularFile(link));
#endif
    }

    /// Other processes create and remove lock files at any time.
    void fileCreatedAndRemovedConcurrentlyIsRegular()
    {
        const QTemporaryDir directory;
        const QString file = directory.filePath(QStringLiteral("lock"));
        std::atomic<bool> isOver = false;
        std::atomic<int> changes = 0;
        std::thread other([&] {
            while (!isOver)
                if (Files::Write(file, {}) && QFile::remove(file))
                    ++changes;
        });
        int blocked = 0;
        for (int i = 0; i < 20000 || changes < 1000; ++i)
            blocked += IsNotRegularFile(file) ? 1 : 0;
        isOver = true;
        other.join();
        QCOMPARE(blocked, 0);
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestRegularFile)
#include "tst_regularfile.moc"
