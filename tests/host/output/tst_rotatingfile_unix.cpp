// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/output/rotatingfile.h"
#include "host/system/otherusers_unix.h"
#include "tests/support/files.h"
#include "tests/support/system/filesizelimit.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qint64 kLargest = 1000;
constexpr uid_t kOtherUser = 12345;

/// The permission bits of a file or folder; 0 if there is none.
unsigned Mode(const QString& name)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(name).constData(), &status) == 0 ? status.st_mode & 07777U : 0;
}

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
    void filesAreAccessibleToTheUserOnly();
    void linkInAnOwnFolderIsFollowed();
    void plantedFileInASharedFolderIsRefused_data();
    void plantedFileInASharedFolderIsRefused();
    void ownFileInASharedFolderIsWritten();
    void folderOfAnotherUserIsShared();
    void linkPlantedLaterIsNotFollowed();
    void danglingLinkInPlaceOfAnEarlierFileIsNotFollowed();

private:
    /// Creates a file named `m_name`, of a kind that another user could plant there. Returns false if this user cannot.
    bool Plant(const QString& kind) const;
    void ShareFolder(mode_t mode = 01777) const
    {
        const QByteArray folder = QFile::encodeName(m_directory->path());
        if ((mode & S_IWOTH) == 0 && ::chown(folder.constData(), static_cast<uid_t>(-1), kOtherUser) != 0 &&
            IsGroupOfUser(::getegid(), ::geteuid()))
            QSKIP("This user cannot give a folder to another group.");
        QCOMPARE(::chmod(folder.constData(), mode), 0);
    }
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

void TestRotatingFileUnix::filesAreAccessibleToTheUserOnly()
{
    const mode_t before = ::umask(0);
    const auto restore = qScopeGuard([before] { ::umask(before); });
    RotatingFile file;
    QCOMPARE(file.Open(m_name, 10), QString());
    for (int i = 0; i < 3; ++i)
        QCOMPARE(file.Append("seven..\n"), QString());
    for (const QString& name : {m_name, m_name + QStringLiteral(".1"), m_name + QStringLiteral(".2")})
        QCOMPARE(Mode(name), 0600U);
}

void TestRotatingFileUnix::linkInAnOwnFolderIsFollowed()
{
    const QString target = m_directory->filePath(QStringLiteral("target"));
    QVERIFY(QFile::link(target, m_name));
    RotatingFile file;
    QCOMPARE(file.Open(m_name, kLargest), QString());
    QCOMPARE(file.Append("one\n"), QString());
    QCOMPARE(Files::Read(target), QByteArray("one\n"));
}

bool TestRotatingFileUnix::Plant(const QString& kind) const
{
    const QByteArray name = QFile::encodeName(m_name);
    const QByteArray mine = QFile::encodeName(m_directory->filePath(QStringLiteral("mine")));
    if (kind == QLatin1String("link") || kind == QLatin1String("dangling link"))
        return ::symlink(mine.constData(), name.constData()) == 0;
    if (kind == QLatin1String("hard link"))
        return ::link(mine.constData(), name.constData()) == 0;
    if (kind == QLatin1String("pipe"))
        return !System::MakePipe(m_name).isEmpty();
    return Files::Write(m_name, "theirs\n") && ::chmod(name.constData(), 0666) == 0 &&
           ::chown(name.constData(), kOtherUser, kOtherUser) == 0;
}

void TestRotatingFileUnix::plantedFileInASharedFolderIsRefused_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<mode_t>("mode");
    QTest::addColumn<QString>("error");
    const auto refusal = [](const char* what) {
        return QLatin1String(what) + QStringLiteral(", and other users can create files in its folder");
    };
    for (const auto& [name, mode] :
         {std::pair{"sticky", 01777U}, std::pair{"world-writable", 0777U}, std::pair{"group-writable", 0770U}}) {
        const auto row = [name = QByteArray(name)](const char* kind) -> QTestData& {
            return QTest::newRow((name + ", " + kind).constData()) << kind;
        };
        row("link") << mode_t(mode) << refusal("it is a symbolic link");
        row("dangling link") << mode_t(mode) << refusal("it is a symbolic link");
        row("hard link") << mode_t(mode) << refusal("it has several names (hard links)");
        row("pipe") << mode_t(mode) << refusal("it is not a regular file");
        row("file of another user") << mode_t(mode) << refusal("it belongs to another user");
    }
}

void TestRotatingFileUnix::plantedFileInASharedFolderIsRefused()
{
    QFETCH(const QString, kind);
    QFETCH(const mode_t, mode);
    QFETCH(const QString, error);
    const QString mine = m_directory->filePath(QStringLiteral("mine"));
    const bool isDangling = kind == QLatin1String("dangling link");
    if (!isDangling)
        QVERIFY(Files::Write(mine, "mine\n"));
    if (!Plant(kind))
        QSKIP("this user cannot plant such a file");
    const int reader = ::open(QFile::encodeName(m_name).constData(), O_RDONLY | O_NONBLOCK);
    const auto close = qScopeGuard([reader] { ::close(reader); });
    ShareFolder(mode);

    RotatingFile file;
    QCOMPARE(file.Open(m_name, kLargest), error);
    QVERIFY(!file.IsOpen());
    QCOMPARE(file.Append("one\n"), QString());
    QCOMPARE(Files::Read(mine), isDangling ? QByteArray() : QByteArray("mine\n"));
    QCOMPARE(QFileInfo::exists(mine), !isDangling);
    std::array<char, 100> received = {};
    if (kind == QLatin1String("pipe"))
        QCOMPARE(::read(reader, received.data(), received.size()), ssize_t(0));
}

void TestRotatingFileUnix::ownFileInASharedFolderIsWritten()
{
    ShareFolder();
    for (const QByteArray& expected : {QByteArray("one\n"), QByteArray("one\none\n")}) {
        RotatingFile file;
        QCOMPARE(file.Open(m_name, kLargest), QString());
        QCOMPARE(file.Append("one\n"), QString());
        QCOMPARE(Files::Read(m_name), expected);
    }
}

void TestRotatingFileUnix::folderOfAnotherUserIsShared()
{
    QVERIFY(Plant(QStringLiteral("dangling link")));
    if (::chown(QFile::encodeName(m_directory->path()).constData(), kOtherUser, kOtherUser) != 0)
        QSKIP("only root can give a folder away");
    RotatingFile file;
    QVERIFY(file.Open(m_name, kLargest).startsWith(QLatin1String("it is a symbolic link")));
}

void TestRotatingFileUnix::linkPlantedLaterIsNotFollowed()
{
    ShareFolder(0777);
    RotatingFile file;
    QCOMPARE(file.Open(m_name, kLargest), QString());
    QCOMPARE(file.Append("one\n"), QString());
    QVERIFY(QFile::remove(m_name));
    QVERIFY(Plant(QStringLiteral("dangling link")));
    const QString trouble = file.Append("two\n");
    QVERIFY2(trouble.contains(QLatin1String("recreated: it is a symbolic link")), qPrintable(trouble));
    QVERIFY(!QFileInfo::exists(m_directory->filePath(QStringLiteral("mine"))));
}

void TestRotatingFileUnix::danglingLinkInPlaceOfAnEarlierFileIsNotFollowed()
{
    const QString target = m_directory->filePath(QStringLiteral("target"));
    QVERIFY(QFile::link(target, m_name + QStringLiteral(".1")));
    RotatingFile file;
    QCOMPARE(file.Open(m_name, 10), QString());
    QCOMPARE(file.Append("seven..\n"), QString());
    const QString trouble = file.Append("eight..\n");
    QVERIFY2(trouble.contains(QLatin1String(".1 is not a regular file")), qPrintable(trouble));
    QVERIFY(!QFileInfo::exists(target));
    QCOMPARE(Files::Read(m_name), QByteArray("seven..\neight..\n"));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestRotatingFileUnix)
#include "tst_rotatingfile_unix.moc"
