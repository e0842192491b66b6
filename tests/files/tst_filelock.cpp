#include "files/filelock.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <future>
#include <memory>

using namespace std::chrono_literals;
using Result = FileLock::Result;

class TestFileLock : public QObject
{
    Q_OBJECT

private slots:
    void secondLockIsBusyUntilTheFirstIsReleased()
    {
        auto first = std::make_unique<FileLock>();
        FileLock second;
        QCOMPARE(first->TryLock(m_path, &m_error), Result::Locked);
        QCOMPARE(second.TryLock(m_path, &m_error), Result::Busy);
        QCOMPARE(second.Lock(m_path, 20ms, &m_error), Result::Busy);
        first.reset();
        QCOMPARE(second.TryLock(m_path, &m_error), Result::Locked);
    }

    void lockWaitsForItsRelease()
    {
        auto first = std::make_unique<FileLock>();
        QCOMPARE(first->TryLock(m_path, &m_error), Result::Locked);
        auto second = std::async(std::launch::async, [this] {
            FileLock lock;
            QString error;
            return lock.Lock(m_path, 60s, &error);
        });
        QCOMPARE(second.wait_for(0s), std::future_status::timeout);
        first.reset();
        QCOMPARE(second.get(), Result::Locked);
    }

    void releaseRemovesTheFile()
    {
        {
            FileLock lock;
            QCOMPARE(lock.TryLock(m_path, &m_error), Result::Locked);
            QVERIFY(QFile::exists(m_path));
        }
        QVERIFY(QDir(m_directory.path()).isEmpty());
    }

    void queryTellsLockedFromFree()
    {
        QCOMPARE(FileLock::Query(m_path), FileLock::State::Free);
        {
            FileLock lock;
            QCOMPARE(lock.TryLock(m_path, &m_error), Result::Locked);
            QCOMPARE(FileLock::Query(m_path), FileLock::State::Locked);
        }
        QCOMPARE(FileLock::Query(m_path), FileLock::State::Free);
    }

    void writtenContentCanBeReadByOthers()
    {
        FileLock lock;
        QCOMPARE(lock.TryLock(m_path, &m_error), Result::Locked);
        lock.Write("a longer owner");
        lock.Write("owner");
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("owner"));
    }

    void missingFolderFailsWithAReason()
    {
        FileLock lock;
        QCOMPARE(lock.TryLock(m_directory.filePath(QStringLiteral("missing/lock")), &m_error), Result::Failed);
        QVERIFY(!m_error.isEmpty());
    }

    void folderInItsPlaceFails()
    {
        QVERIFY(QDir().mkdir(m_path));
        FileLock lock;
        QCOMPARE(lock.TryLock(m_path, &m_error), Result::Failed);
        QVERIFY(!m_error.isEmpty());
        QCOMPARE(FileLock::Query(m_path), FileLock::State::Free);
        QVERIFY(QDir().rmdir(m_path));
    }

private:
    const QTemporaryDir m_directory;
    const QString m_path = m_directory.filePath(QStringLiteral("lock"));
    QString m_error;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestFileLock)
#include "tst_filelock.moc"
