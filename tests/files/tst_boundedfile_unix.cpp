// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/boundedfile.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

/// Links, and files of the proc file system.
class TestBoundedFileUnix : public QObject
{
    Q_OBJECT

private slots:
    void linkIsFollowed()
    {
        const QTemporaryDir directory;
        const QString target = directory.filePath(QStringLiteral("target"));
        QVERIFY(Files::Write(target, "abc"));
        const QString link = directory.filePath(QStringLiteral("link"));
        QVERIFY(QFile::link(target, link));
        QCOMPARE(ReadRegularFile(link).value_or("nothing"), QByteArray("abc"));
    }

    void procFileWithoutSizeIsRead()
    {
        // Its size is 0 although it has content.
        const QString path = QStringLiteral("/proc/self/status");
        if (!QFileInfo(path).isFile() || QFileInfo(path).size() != 0)
            QSKIP("this system has no such file");
        QVERIFY(ReadRegularFile(path).value_or(QByteArray()).startsWith("Name:"));
        QVERIFY(!ReadRegularFile(path, 10).has_value());
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestBoundedFileUnix)
#include "tst_boundedfile_unix.moc"
