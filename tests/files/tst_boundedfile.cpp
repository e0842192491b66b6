#include "files/boundedfile.h"
#include "tests/support/files.h"
#include "tests/support/system.h"
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
    QVERIFY(!ReadRegularFile(path, 999).has_value());
    QVERIFY(!ReadRegularFile(path, 0).has_value());
}

void TestBoundedFile::defaultLimitIsRespected()
{
    // A sparse file, refused because of its size.
    QFile file(Path("huge"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(kMaximumFileSize + 1));
    file.close();
    QVERIFY(!ReadRegularFile(file.fileName()).has_value());
    QVERIFY(file.resize(kMaximumFileSize));
    const auto atLimit = ReadRegularFile(file.fileName());
    QVERIFY(atLimit.has_value());
    QCOMPARE(atLimit->size(), kMaximumFileSize);
}

void TestBoundedFile::otherThanRegularFilesAreRefused_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("no name") << QString();
    QTest::newRow("missing") << Path("missing");
    QTest::newRow("directory") << m_directory.path();
    const QStringList devices = System::Devices();
    for (const QString& device : devices)
        QTest::newRow(qPrintable(device)) << device;
}

void TestBoundedFile::otherThanRegularFilesAreRefused()
{
    QFETCH(const QString, path);
    QVERIFY(!ReadRegularFile(path).has_value());
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
