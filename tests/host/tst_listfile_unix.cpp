#include "host/headless/listfile.h"
#include "tests/dialog/filesizelimit.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

/// Files for lists where a process can be kept from writing large ones.
class TestListFileUnix : public QObject
{
    Q_OBJECT

private slots:
    void fullDiskKeepsTheOldFile()
    {
        const QTemporaryDir directory;
        const QString fileName = directory.filePath(QStringLiteral("list.xml"));
        QCOMPARE(WriteListFile(fileName, "<old/>"), QString());
        {
            const FileSizeLimit limit(1000);
            const QString error = WriteListFile(fileName, QByteArray(100'000, 'x'));
            QCOMPARE(error, QStringLiteral("cannot write %1: no room").arg(fileName));
        }
        QCOMPARE(ReadListFile(fileName).content, QByteArray("<old/>"));
        QCOMPARE(QDir(directory.path()).entryList(QDir::Files), QStringList(QStringLiteral("list.xml")));
    }
};

QTEST_GUILESS_MAIN(TestListFileUnix)
#include "tst_listfile_unix.moc"
