#include "host/listfile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class TestListFile : public QObject
{
    Q_OBJECT

private slots:
    void ReadsAFileWhole();
    void RefusesWhatIsNoFile_data();
    void RefusesWhatIsNoFile();
    void ReadsUpToTheLimitAndNoFurther();
};

void TestListFile::ReadsAFileWhole()
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

void TestListFile::RefusesWhatIsNoFile_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::newRow("missing") << QStringLiteral("/no/such/list.xml");
    QTest::newRow("directory") << QCoreApplication::applicationDirPath();
#ifdef Q_OS_UNIX
    // Reading it would never end.
    QTest::newRow("device") << QStringLiteral("/dev/zero");
#endif
}

void TestListFile::RefusesWhatIsNoFile()
{
    QFETCH(const QString, fileName);
    const ListFile read = ReadListFile(fileName);
    QVERIFY(read.content.isEmpty());
    QVERIFY2(read.error.contains(fileName), qPrintable(read.error));
}

void TestListFile::ReadsUpToTheLimitAndNoFurther()
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

QTEST_GUILESS_MAIN(TestListFile)
#include "tst_listfile.moc"
