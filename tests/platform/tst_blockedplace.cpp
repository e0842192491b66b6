#include "platform/blockedplace.h"
#include "tests/support/files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <thread>

class TestBlockedPlace : public QObject
{
    Q_OBJECT

private slots:
    void OnlyWhatIsNoFileIsInTheWay()
    {
        const QTemporaryDir directory;
        const QString file = directory.filePath(QStringLiteral("方位.lock"));
        QVERIFY(!IsBlocked(file));
        QVERIFY(!IsBlocked(directory.filePath(QStringLiteral("no folder/file"))));
        QVERIFY(IsBlocked(directory.path()));
        QVERIFY(Files::Write(file, "content"));
        QVERIFY(!IsBlocked(file));
        QVERIFY(!IsBlocked(file + QStringLiteral("/below a file")));
#ifdef Q_OS_UNIX
        // A link is what it leads to.
        const QString link = directory.filePath(QStringLiteral("link"));
        QVERIFY(QFile::link(file, link));
        QVERIFY(!IsBlocked(link));
        QVERIFY(QFile::remove(file));
        QVERIFY(IsBlocked(link));
        QVERIFY(QDir().mkdir(file));
        QVERIFY(IsBlocked(link));
#endif
    }

    /// A lock is a file that other processes make and remove all the time.
    void AFileThatComesAndGoesIsNeverInTheWay()
    {
        const QTemporaryDir directory;
        const QString file = directory.filePath(QStringLiteral("lock"));
        std::atomic<bool> isOver = false;
        std::atomic<int> changes = 0;
        std::thread other([&] {
            while (!isOver) {
                if (Files::Write(file, {}) && QFile::remove(file))
                    ++changes;
            }
        });
        int blocked = 0;
        for (int i = 0; i < 20000 || changes < 1000; ++i)
            blocked += IsBlocked(file) ? 1 : 0;
        isOver = true;
        other.join();
        QCOMPARE(blocked, 0);
    }
};

QTEST_GUILESS_MAIN(TestBlockedPlace)
#include "tst_blockedplace.moc"
