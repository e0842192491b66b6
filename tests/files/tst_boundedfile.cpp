// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/boundedfile.h"
#include "tests/support/files.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

class TestBoundedFile : public QObject
{
    Q_OBJECT

private slots:
    void contentIsRead_data();
    void contentIsRead();
    void largerThanLimitIsRefused();
    void defaultLimitIsRespected();
    void otherThanRegularFilesAreRefused_data();
    void otherThanRegularFilesAreRefused();
    void pipeIsNotOpened();

private:
    QString Path(const char* name) const { return m_directory.filePath(QLatin1String(name)); }
    QString Write(const char* name, const QByteArray& content) const
    {
        return Files::Write(Path(name), content) ? Path(name) : QString();
    }

    QTemporaryDir m_directory;
};

void TestBoundedFile::contentIsRead_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one byte") << QByteArray("x");
    QTest::newRow("binary with NUL and CR LF") << QByteArray("a\0b\r\n\xff", 6);
    QTest::newRow("several megabytes") << QByteArray(3 * 1024 * 1024 + 17, 'z');
}

void TestBoundedFile::contentIsRead()
{
    QFETCH(const QByteArray, content);
    const auto read = ReadRegularFile(Write("content", content));
    QVERIFY(read.has_value());
    QCOMPARE(*read, content);
}

void TestBoundedFile::largerThanLimitIsRefused()
{
    const QString path = Write("limited", QByteArray(1000, 'x'));
    QCOMPARE(ReadRegularFile(path, 1000).value_or("nothing").size(), 1000);
    QString error;
    QVERIFY(!ReadRegularFile(path, 999, &error).has_value());
    QCOMPARE(error, QStringLiteral("larger than 999 bytes"));
    QVERIFY(!ReadRegularFile(path, 0).has_value());
}

void TestBoundedFile::defaultLimitIsRespected()
{
    // A sparse file, refused because of its size.
    QFile file(Path("huge"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(kMaximumFileSize + 1));
    file.close();
    QString error;
    QVERIFY(!ReadRegularFile(file.fileName(), kMaximumFileSize, &error).has_value());
    QCOMPARE(error, QStringLiteral("larger than 64 MiB"));
    QVERIFY(file.resize(kMaximumFileSize));
    const auto atLimit = ReadRegularFile(file.fileName());
    QVERIFY(atLimit.has_value());
    QCOMPARE(atLimit->size(), kMaximumFileSize);
}

void TestBoundedFile::otherThanRegularFilesAreRefused_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("error");
    const QString missing = QStringLiteral("no such file");
    const QString irregular = QStringLiteral("not a regular file");
    QTest::newRow("no name") << QString() << missing;
    QTest::newRow("missing") << Path("missing") << missing;
    QTest::newRow("directory") << m_directory.path() << irregular;
    const QStringList devices = System::Devices();
    for (const QString& device : devices)
        QTest::newRow(qPrintable(device)) << device << (QFileInfo::exists(device) ? irregular : missing);
}

void TestBoundedFile::otherThanRegularFilesAreRefused()
{
    QFETCH(const QString, path);
    QFETCH(const QString, error);
    QString found;
    QVERIFY(!ReadRegularFile(path, kMaximumFileSize, &found).has_value());
    QCOMPARE(found, error);
}

void TestBoundedFile::pipeIsNotOpened()
{
    const QString pipe = System::MakePipe(Path("pipe"));
    QVERIFY(!pipe.isEmpty());
    // It has no writer: opening it would block.
    QVERIFY(!ReadRegularFile(pipe).has_value());
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestBoundedFile)
#include "tst_boundedfile.moc"
