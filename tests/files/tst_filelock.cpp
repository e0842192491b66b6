// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

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

    void lockedFileNamesItsHolder()
    {
        QFile file(m_path); // a killed process left a longer name
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(QByteArray(500, 'x')) == 500);
        file.close();
        QCOMPARE(FileLock::ReadHolder(m_path).process, 0);
        QVERIFY(FileLock::ReadHolder(m_path).Text().isEmpty());

        FileLock lock;
        QCOMPARE(lock.TryLock(m_path, &m_error), Result::Locked);
        const FileLock::Holder holder = FileLock::ReadHolder(m_path);
        QCOMPARE(holder.process, QCoreApplication::applicationPid());
        QCOMPARE(holder.Text(), QStringLiteral("process %1 (%2)")
                                    .arg(QString::number(holder.process), QCoreApplication::applicationName()));
    }

    void holderOnAnotherMachineIsNamedWithIt()
    {
        const FileLock::Holder holder{4711, QStringLiteral("vexelhost"), QStringLiteral("another.example"), QString()};
        QCOMPARE(holder.Text(), QStringLiteral("process 4711 (vexelhost) on another.example"));
    }

    // A number in it may belong to another process by now.
    void leftoverFileIsNoLock_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<qint64>("size");
        QTest::newRow("empty") << QByteArray() << qint64{0};
        QTest::newRow("of a running process")
            << QByteArray::number(QCoreApplication::applicationPid()) + "\nvexelhost\nsomewhere\n"
            << qint64{0};
        QTest::newRow("garbage") << QByteArray("\0\xff\n\n-1\n", 7) << qint64{0};
        QTest::newRow("of 2 GiB") << QByteArray("1\n") << qint64{2} * 1024 * 1024 * 1024;
    }
    void leftoverFileIsNoLock()
    {
        QFETCH(QByteArray, content);
        QFETCH(qint64, size);
        {
            QFile file(m_path);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush());
            QVERIFY(size == 0 || file.resize(size)); // a hole
        }
        QCOMPARE(FileLock::Query(m_path), FileLock::State::Free);
        FileLock lock;
        QCOMPARE(lock.TryLock(m_path, &m_error), Result::Locked);
        QCOMPARE(FileLock::ReadHolder(m_path).process, QCoreApplication::applicationPid());
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
