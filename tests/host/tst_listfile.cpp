#include "host/headless/listfile.h"
#include "tests/support/system.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

class TestListFile : public QObject
{
    Q_OBJECT

private slots:
    void wholeFileIsRead();
    void unreadableFileIsRefused_data();
    void unreadableFileIsRefused();
    void fileBeyondTheLimitIsRefused();
    void writingReplacesTheFile();
    void unwritableFileIsReported();
};

void TestListFile::wholeFileIsRead()
{
    const QTemporaryDir directory;
    QFile file(directory.filePath(QStringLiteral("list.xml")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QByteArray content("<a/>\r\n\0<b/>", 12);
    file.write(content);
    file.close();
    const ListFile read = ReadListFile(file.fileName());
    QCOMPARE(read.error, QString());
    QCOMPARE(read.content, content);
}

void TestListFile::unreadableFileIsRefused_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::newRow("missing") << QStringLiteral("/no/such/list.xml");
    QTest::newRow("directory") << QCoreApplication::applicationDirPath();
    // Reading some of them would never end.
    const QStringList devices = System::Devices();
    for (const QString& device : devices)
        QTest::newRow(qPrintable(device)) << device;
}

void TestListFile::unreadableFileIsRefused()
{
    QFETCH(const QString, fileName);
    const ListFile read = ReadListFile(fileName);
    QVERIFY(read.content.isEmpty());
    QVERIFY2(read.error.contains(fileName), qPrintable(read.error));
}

void TestListFile::fileBeyondTheLimitIsRefused()
{
    constexpr qint64 limit = 64LL * 1024 * 1024;
    const QTemporaryDir directory;
    QFile file(directory.filePath(QStringLiteral("list.xml")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    // A file with a hole takes no room on most disks.
    QVERIFY(file.resize(limit));
    QCOMPARE(ReadListFile(file.fileName()).content.size(), limit);
    QVERIFY(file.resize(limit + 1));
    const ListFile read = ReadListFile(file.fileName());
    QVERIFY(read.content.isEmpty());
    QVERIFY2(read.error.contains(QLatin1String("64 MiB")), qPrintable(read.error));
}

void TestListFile::writingReplacesTheFile()
{
    const QTemporaryDir directory;
    const QString fileName = directory.filePath(QStringLiteral("list.xml"));
    const QByteArray content("<a/>\r\n\0<b/>", 12);
    QCOMPARE(WriteListFile(fileName, QByteArray(1000, 'x')), QString());
    QCOMPARE(WriteListFile(fileName, content), QString());
    QCOMPARE(ReadListFile(fileName).content, content);
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files), QStringList(QStringLiteral("list.xml")));
}

void TestListFile::unwritableFileIsReported()
{
    const QTemporaryDir directory;
    QVERIFY(QDir(directory.path()).mkdir(QStringLiteral("folder")));
    const QString folder = directory.filePath(QStringLiteral("folder"));
    const QString missing = directory.filePath(QStringLiteral("missing/list.xml"));
    for (const QString& fileName : {folder, missing}) {
        const QString error = WriteListFile(fileName, "<a/>");
        QVERIFY2(error.contains(fileName), qPrintable(error));
        // It says why; there would be room.
        QVERIFY2(!error.endsWith(QLatin1String(": ")) && !error.contains(QLatin1String("room")), qPrintable(error));
    }
    QVERIFY(QFileInfo(folder).isDir());
    QVERIFY(!QFileInfo::exists(missing));
}

QTEST_GUILESS_MAIN(TestListFile)
#include "tst_listfile.moc"
