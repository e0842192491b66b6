// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/atomicfile.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

class TestAtomicFile : public QObject
{
    Q_OBJECT

private slots:
    void writesAFileWhole();
    void writesNothingInPlaceOfWhatIsNoFile();
    void writesNothingInPlaceOfAProtectedFile();
    void obstacleInAFolder();
};

void TestAtomicFile::writesAFileWhole()
{
    const QTemporaryDir directory;
    const QString fileName = directory.filePath(QStringLiteral("list.xml"));
    const QByteArray content("<a/>\r\n\0<b/>", 12);
    QCOMPARE(ReplaceRegularFile(fileName, QByteArray(1000, 'x')), QString());
    QCOMPARE(ReplaceRegularFile(fileName, content), QString());
    QCOMPARE(Files::Read(fileName), content);
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files | QDir::Hidden), QStringList(QStringLiteral("list.xml")));
}

void TestAtomicFile::writesNothingInPlaceOfWhatIsNoFile()
{
    const QTemporaryDir directory;
    QVERIFY(QDir(directory.path()).mkdir(QStringLiteral("folder")));
    const QString folder = directory.filePath(QStringLiteral("folder"));
    const QString missing = directory.filePath(QStringLiteral("missing/list.xml"));
    QCOMPARE(ReplaceRegularFile(folder, "<a/>"), QStringLiteral("not a regular file"));
    // The error is not about disk space.
    const QString error = ReplaceRegularFile(missing, "<a/>");
    QVERIFY2(!error.isEmpty() && !error.contains(QLatin1String("room")), qPrintable(error));
    QVERIFY(QFileInfo(folder).isDir());
    QVERIFY(!QFileInfo::exists(missing));
}

void TestAtomicFile::writesNothingInPlaceOfAProtectedFile()
{
    const QTemporaryDir directory;
    const QString fileName = directory.filePath(QStringLiteral("list.xml"));
    QVERIFY(Files::Write(fileName, "<old/>"));
    QVERIFY(QFile::setPermissions(fileName, QFileDevice::ReadOwner));
    if (QFileInfo(fileName).isWritable())
        QSKIP("This user may write every file.");
    QCOMPARE(ReplaceRegularFile(fileName, "<a/>"), QStringLiteral("it is write-protected"));
    QCOMPARE(Files::Read(fileName), QByteArray("<old/>"));
    QVERIFY(QFile::setPermissions(fileName, QFileDevice::ReadOwner | QFileDevice::WriteOwner));
}

void TestAtomicFile::obstacleInAFolder()
{
    const QTemporaryDir directory;
    QCOMPARE(CreationObstacle(directory.path()), QString());
    QCOMPARE(CreationObstacle(directory.path(), "content"), QString());
    QVERIFY(QDir(directory.path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    QVERIFY(!CreationObstacle(directory.filePath(QStringLiteral("missing"))).isEmpty());
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestAtomicFile)
#include "tst_atomicfile.moc"
