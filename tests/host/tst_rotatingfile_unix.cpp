#include "host/output/rotatingfile.h"
#include "tests/support/files.h"
#include "tests/support/filesizelimit.h"
#include "tests/support/system.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace {

constexpr qint64 kLargest = 1000;

} // namespace

/// The file that lines are appended to, where a file that is open can be removed and renamed, where pipes are among the
/// files, and where a process can be kept from writing large files.
class TestRotatingFileUnix : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_name = m_directory->filePath(QStringLiteral("trace.log"));
    }

    void removedFileIsRecreated();
    void renamedFileIsLeftAlone();
    void recreatedFileIsBounded();
    void failedRecreationIsReportedOnce();
    void fileReplacedByAPipeDoesNotBlock();
    void partialLineDoesNotSpoilTheNext();
    void partialLineOfAnEarlierRunIsEnded();
    void pipeWithoutAReaderIsRefused();
    void pipeWithAReaderIsWritten();
    void pipeInPlaceOfTheLockDoesNotBlock();

private:
    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_name;
};

void TestRotatingFileUnix::removedFileIsRecreated()
{
    RotatingFile file;
    QCOMPARE(file.Open(m_name, kLargest), QString());
    QCOMPARE(file.Append("one\n"), QString());
    QVERIFY(QFile::remove(m_name));
    QCOMPARE(file.Append("two\n"), QString());
    QCOMPARE(file.Append("three\n"), QString());
    QCOMPARE(Files::Read(m_name), QByteArray("two\nthree\n"));
}

void TestRotatingFileUnix::renamedFileIsLeftAlone()
{
    const QString aside = m_directory->filePath(QStringLiteral("mine"));
    RotatingFile file;
    QCOMPARE(file.Open(m_name, kLargest), QString());
    QCOMPARE(file.Append("one\n"), QString());
    QVERIFY(QFile::rename(m_name, aside));
    // A file that another process has created there is appended to.
    QVERIFY(Files::Write(m_name, "zero\n"));
    QCOMPARE(file.Append("two\n"), QString());
    QCOMPARE(Files::Read(aside), QByteArray("one\n"));
    QCOMPARE(Files::Read(m_name), QByteArray("zero\ntwo\n"));
}

void TestRotatingFileUnix::recreatedFileIsBounded()
{
    RotatingFile file;
    QCOMPARE(file.Open(m_name, kLargest), QString());
    QCOMPARE(file.Append("one\n"), QString());
    QVERIFY(QFile::remove(m_name));
    const QByteArray line = QByteArray(99, 'x') + '\n';
    for (int i = 0; i < 11; ++i)
        QCOMPARE(file.Append(line), QString());
    QCOMPARE(Files::Read(m_name), line);
    QCOMPARE(Files::Read(m_name + QStringLiteral(".1")).size(), 1000);
}

void TestRotatingFileUnix::failedRecreationIsReportedOnce()
{
    RotatingFile file;
    QCOMPARE(file.Open(m_name, kLargest), QString());
    QCOMPARE(file.Append("one\n"), QString());
    QVERIFY(QFile::remove(m_name));
    QVERIFY(QDir().mkdir(m_name));
    const QString trouble = file.Append("two\n");
    QVERIFY2(trouble.contains(QLatin1String("removed")), qPrintable(trouble));
    for (int i = 0; i < 300; ++i)
        QCOMPARE(file.Append("three\n"), QString());
    // With the way free again it works again.
    QVERIFY(QDir().rmdir(m_name));
    QCOMPARE(file.Append("four\n"), QString());
    QCOMPARE(Files::Read(m_name), QByteArray("four\n"));
}

void TestRotatingFileUnix::fileReplacedByAPipeDoesNotBlock()
{
    RotatingFile file;
    QCOMPARE(file.Open(m_name, kLargest), QString());
    QVERIFY(QFile::remove(m_name));
    QCOMPARE(System::MakePipe(m_name), m_name);
    QVERIFY(file.Append("one\n").contains(QLatin1String("no process is reading from it")));
    QCOMPARE(file.Append("two\n"), QString());
}

void TestRotatingFileUnix::partialLineDoesNotSpoilTheNext()
{
    RotatingFile file;
    QCOMPARE(file.Open(m_name, kLargest), QString());
    QCOMPARE(file.Append("one\n"), QString());
    {
        const FileSizeLimit limit(7);
        const QString trouble = file.Append("second\n");
        QVERIFY2(trouble.startsWith(QLatin1String("cannot be written: ")), qPrintable(trouble));
        QVERIFY2(!trouble.contains(QLatin1String("Unknown")), qPrintable(trouble));
        // Told once.
        QCOMPARE(file.Append("third\n"), QString());
        QCOMPARE(Files::Read(m_name), QByteArray("one\nsec"));
    }
    QCOMPARE(file.Append("fourth\n"), QString());
    QCOMPARE(file.Append("fifth\n"), QString());
    QCOMPARE(Files::Read(m_name), QByteArray("one\nsec\nfourth\nfifth\n"));
}

void TestRotatingFileUnix::partialLineOfAnEarlierRunIsEnded()
{
    QVERIFY(Files::Write(m_name, "one\ntw"));
    RotatingFile file;
    QCOMPARE(file.Open(m_name, kLargest), QString());
    QCOMPARE(file.Append("three\n"), QString());
    QCOMPARE(Files::Read(m_name), QByteArray("one\ntw\nthree\n"));
}

void TestRotatingFileUnix::pipeWithoutAReaderIsRefused()
{
    QCOMPARE(System::MakePipe(m_name), m_name);
    RotatingFile file;
    QCOMPARE(file.Open(m_name, kLargest), QStringLiteral("no process is reading from it"));
    QVERIFY(!file.IsOpen());
}

void TestRotatingFileUnix::pipeWithAReaderIsWritten()
{
    QCOMPARE(System::MakePipe(m_name), m_name);
    const int reader = ::open(QFile::encodeName(m_name).constData(), O_RDONLY | O_NONBLOCK);
    QVERIFY(reader != -1);
    const auto close = qScopeGuard([reader] { ::close(reader); });
    RotatingFile file;
    QCOMPARE(file.Open(m_name, 10), QString());
    for (int i = 0; i < 3; ++i)
        QCOMPARE(file.Append("seven..\n"), QString());
    QByteArray received(100, '\0');
    received.truncate(::read(reader, received.data(), 100));
    QCOMPARE(received, QByteArray("seven..\nseven..\nseven..\n"));
    // Never put aside.
    QCOMPARE(QDir(m_directory->path()).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size(), 1);
}

void TestRotatingFileUnix::pipeInPlaceOfTheLockDoesNotBlock()
{
    const QString pipe = m_name + QStringLiteral(".lock");
    QCOMPARE(System::MakePipe(pipe), pipe);
    RotatingFile file;
    QCOMPARE(file.Open(m_name, 10), QString());
    QCOMPARE(file.Append("seven..\n"), QString());
    const QString trouble = file.Append("eight..\n");
    QVERIFY2(trouble.startsWith(QLatin1String("is full and cannot be rotated: ")) && trouble.contains(pipe),
             qPrintable(trouble));
    QCOMPARE(Files::Read(m_name), QByteArray("seven..\neight..\n"));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestRotatingFileUnix)
#include "tst_rotatingfile_unix.moc"
