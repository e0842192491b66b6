// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/atomicfile.h"
#include "tests/support/files.h"
#include "tests/support/system/filesizelimit.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// A file in a folder that this process cannot write. As root, this process becomes another user meanwhile.
class ClosedFolder
{
public:
    explicit ClosedFolder(const QByteArray& content, mode_t mode = 0666)
    {
        if (!Files::Write(File(), content) || ::chmod(qPrintable(File()), mode) != 0 ||
            ::chmod(qPrintable(m_directory.path()), 0555) != 0)
            qFatal("cannot set up %s", qPrintable(m_directory.path()));
        constexpr uid_t kNobody = 65534;
        if (::geteuid() == 0 && ::seteuid(kNobody) != 0)
            qFatal("cannot become another user");
    }
    ~ClosedFolder()
    {
        [[maybe_unused]] const int isUser = ::seteuid(::getuid());
        [[maybe_unused]] const int isOpen = ::chmod(qPrintable(m_directory.path()), 0755);
    }
    Q_DISABLE_COPY_MOVE(ClosedFolder)

    QString File() const { return m_directory.filePath(QStringLiteral("list.xml")); }
    bool IsClosed() const { return ::faccessat(AT_FDCWD, qPrintable(m_directory.path()), W_OK, AT_EACCESS) != 0; }

private:
    const QTemporaryDir m_directory;
};

} // namespace

/// Full disks, closed folders, links and pipes.
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

    void aFileIsWrittenInAFolderThatCannotBe_data()
    {
        QTest::addColumn<QByteArray>("former");
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("longer") << QByteArray("<old/>") << QByteArray(100'000, 'x');
        QTest::newRow("shorter") << QByteArray(100'000, 'o') << QByteArray("<a/>");
        QTest::newRow("as long") << QByteArray("<old/>") << QByteArray("<new/>");
        QTest::newRow("empty") << QByteArray("<old/>") << QByteArray();
        QTest::newRow("into an empty one") << QByteArray() << QByteArray("<new/>");
    }
    void aFileIsWrittenInAFolderThatCannotBe()
    {
        QFETCH(const QByteArray, former);
        QFETCH(const QByteArray, content);
        const ClosedFolder folder(former);
        if (!folder.IsClosed())
            QSKIP("This user may write every folder.");
        // Documents of the configuration are replaced as a whole or not at all.
        QVERIFY(!WriteWithRetries(folder.File(), content, FileAccess::Shared).isEmpty());
        QCOMPARE(Files::Read(folder.File()), former);

        QCOMPARE(ReplaceRegularFile(folder.File(), content), QString());
        QCOMPARE(Files::Read(folder.File()), content);
        const QString missing = folder.File() + QStringLiteral(".new");
        QVERIFY(!ReplaceRegularFile(missing, content).isEmpty());
        QVERIFY(!QFileInfo::exists(missing));
    }

    void aFullDiskLeavesAFileAsItWasInAFolderThatCannotBeWritten_data()
    {
        QTest::addColumn<qsizetype>("former");
        QTest::addColumn<qsizetype>("content");
        QTest::newRow("longer") << qsizetype{6} << qsizetype{100'000};
        // Fails after 1000 bytes have been overwritten.
        QTest::newRow("shorter") << qsizetype{5000} << qsizetype{3000};
        QTest::newRow("as long") << qsizetype{3000} << qsizetype{3000};
    }
    void aFullDiskLeavesAFileAsItWasInAFolderThatCannotBeWritten()
    {
        QFETCH(const qsizetype, former);
        QFETCH(const qsizetype, content);
        const ClosedFolder folder(QByteArray(former, 'o'));
        if (!folder.IsClosed())
            QSKIP("This user may write every folder.");
        {
            const FileSizeLimit limit(1000);
            QCOMPARE(ReplaceRegularFile(folder.File(), QByteArray(content, 'x')), qt_error_string(EFBIG));
        }
        QCOMPARE(Files::Read(folder.File()), QByteArray(former, 'o'));
    }

    void aProtectedFileIsLeftAloneInAFolderThatCannotBeWritten()
    {
        const ClosedFolder folder("<old/>", 0444);
        if (!folder.IsClosed())
            QSKIP("This user may write every folder.");
        QVERIFY(!ReplaceRegularFile(folder.File(), "<a/>").isEmpty());
        QCOMPARE(Files::Read(folder.File()), QByteArray("<old/>"));
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
