#include "host/rotatingfile.h"
#include "tests/dialog/filesizelimit.h"
#include "tests/support/files.h"
#include "tests/support/system.h"

#include <QDir>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace {

constexpr qint64 s_largest = 1000;

} // namespace

/// The file that lines are appended to, where a file that is open can be removed and renamed, where pipes are among the
/// files, and where a process can be kept from writing large files.
class TestRotatingFileUnix : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_Directory = std::make_unique<QTemporaryDir>();
        m_Name = m_Directory->filePath(QStringLiteral("trace.log"));
    }

    void ARemovedFileIsMadeAnew();
    void ARenamedFileIsLeftToWhoeverRenamedIt();
    void ANewFileIsBoundedAsWell();
    void AFileThatCannotBeMadeAnewIsToldOnce();
    void AFileReplacedByAPipeIsNotWaitedFor();
    void ALineWithoutRoomDoesNotTakeTheNextOneAlong();
    void ATornLineOfAnEarlierRun();
    void APipeWithoutAReaderIsRefused();
    void APipeWithAReader();
    void APipeInTheLocksPlace();

private:
    std::unique_ptr<QTemporaryDir> m_Directory;
    QString m_Name;
};

void TestRotatingFileUnix::ARemovedFileIsMadeAnew()
{
    RotatingFile file;
    QCOMPARE(file.Open(m_Name, s_largest), QString());
    QCOMPARE(file.Append("one\n"), QString());
    QVERIFY(QFile::remove(m_Name));
    QCOMPARE(file.Append("two\n"), QString());
    QCOMPARE(file.Append("three\n"), QString());
    QCOMPARE(Files::Read(m_Name), QByteArray("two\nthree\n"));
}

void TestRotatingFileUnix::ARenamedFileIsLeftToWhoeverRenamedIt()
{
    const QString aside = m_Directory->filePath(QStringLiteral("mine"));
    RotatingFile file;
    QCOMPARE(file.Open(m_Name, s_largest), QString());
    QCOMPARE(file.Append("one\n"), QString());
    QVERIFY(QFile::rename(m_Name, aside));
    // A file that somebody else has put there is appended to.
    QVERIFY(Files::Write(m_Name, "zero\n"));
    QCOMPARE(file.Append("two\n"), QString());
    QCOMPARE(Files::Read(aside), QByteArray("one\n"));
    QCOMPARE(Files::Read(m_Name), QByteArray("zero\ntwo\n"));
}

void TestRotatingFileUnix::ANewFileIsBoundedAsWell()
{
    RotatingFile file;
    QCOMPARE(file.Open(m_Name, s_largest), QString());
    QCOMPARE(file.Append("one\n"), QString());
    QVERIFY(QFile::remove(m_Name));
    const QByteArray line = QByteArray(99, 'x') + '\n';
    for (int i = 0; i < 11; ++i)
        QCOMPARE(file.Append(line), QString());
    QCOMPARE(Files::Read(m_Name), line);
    QCOMPARE(Files::Read(m_Name + QStringLiteral(".1")).size(), 1000);
}

void TestRotatingFileUnix::AFileThatCannotBeMadeAnewIsToldOnce()
{
    RotatingFile file;
    QCOMPARE(file.Open(m_Name, s_largest), QString());
    QCOMPARE(file.Append("one\n"), QString());
    QVERIFY(QFile::remove(m_Name));
    QVERIFY(QDir().mkdir(m_Name));
    const QString trouble = file.Append("two\n");
    QVERIFY2(trouble.contains(QLatin1String("removed")), qPrintable(trouble));
    for (int i = 0; i < 300; ++i)
        QCOMPARE(file.Append("three\n"), QString());
    // With the way free again it works again.
    QVERIFY(QDir().rmdir(m_Name));
    QCOMPARE(file.Append("four\n"), QString());
    QCOMPARE(Files::Read(m_Name), QByteArray("four\n"));
}

void TestRotatingFileUnix::AFileReplacedByAPipeIsNotWaitedFor()
{
    RotatingFile file;
    QCOMPARE(file.Open(m_Name, s_largest), QString());
    QVERIFY(QFile::remove(m_Name));
    QCOMPARE(System::MakePipe(m_Name), m_Name);
    QVERIFY(file.Append("one\n").contains(QLatin1String("nobody reads from it")));
    QCOMPARE(file.Append("two\n"), QString());
}

void TestRotatingFileUnix::ALineWithoutRoomDoesNotTakeTheNextOneAlong()
{
    RotatingFile file;
    QCOMPARE(file.Open(m_Name, s_largest), QString());
    QCOMPARE(file.Append("one\n"), QString());
    {
        const FileSizeLimit limit(7);
        const QString trouble = file.Append("second\n");
        QVERIFY2(trouble.startsWith(QLatin1String("cannot be written: ")), qPrintable(trouble));
        QVERIFY2(!trouble.contains(QLatin1String("Unknown")), qPrintable(trouble));
        // Told once.
        QCOMPARE(file.Append("third\n"), QString());
        QCOMPARE(Files::Read(m_Name), QByteArray("one\nsec"));
    }
    QCOMPARE(file.Append("fourth\n"), QString());
    QCOMPARE(file.Append("fifth\n"), QString());
    QCOMPARE(Files::Read(m_Name), QByteArray("one\nsec\nfourth\nfifth\n"));
}

void TestRotatingFileUnix::ATornLineOfAnEarlierRun()
{
    QVERIFY(Files::Write(m_Name, "one\ntw"));
    RotatingFile file;
    QCOMPARE(file.Open(m_Name, s_largest), QString());
    QCOMPARE(file.Append("three\n"), QString());
    QCOMPARE(Files::Read(m_Name), QByteArray("one\ntw\nthree\n"));
}

void TestRotatingFileUnix::APipeWithoutAReaderIsRefused()
{
    QCOMPARE(System::MakePipe(m_Name), m_Name);
    RotatingFile file;
    QCOMPARE(file.Open(m_Name, s_largest), QStringLiteral("nobody reads from it"));
    QVERIFY(!file.IsOpen());
}

void TestRotatingFileUnix::APipeWithAReader()
{
    QCOMPARE(System::MakePipe(m_Name), m_Name);
    const int reader = ::open(QFile::encodeName(m_Name).constData(), O_RDONLY | O_NONBLOCK);
    QVERIFY(reader != -1);
    const auto close = qScopeGuard([reader] { ::close(reader); });
    RotatingFile file;
    QCOMPARE(file.Open(m_Name, 10), QString());
    for (int i = 0; i < 3; ++i)
        QCOMPARE(file.Append("seven..\n"), QString());
    QByteArray received(100, '\0');
    received.truncate(::read(reader, received.data(), 100));
    QCOMPARE(received, QByteArray("seven..\nseven..\nseven..\n"));
    // Never put aside.
    QCOMPARE(QDir(m_Directory->path()).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size(), 1);
}

void TestRotatingFileUnix::APipeInTheLocksPlace()
{
    const QString pipe = m_Name + QStringLiteral(".lock");
    QCOMPARE(System::MakePipe(pipe), pipe);
    RotatingFile file;
    QCOMPARE(file.Open(m_Name, 10), QString());
    QCOMPARE(file.Append("seven..\n"), QString());
    const QString trouble = file.Append("eight..\n");
    QVERIFY2(trouble.startsWith(QLatin1String("is full and cannot be put aside: ")) && trouble.contains(pipe),
             qPrintable(trouble));
    QCOMPARE(Files::Read(m_Name), QByteArray("seven..\neight..\n"));
}

QTEST_GUILESS_MAIN(TestRotatingFileUnix)
#include "tst_rotatingfile_unix.moc"
