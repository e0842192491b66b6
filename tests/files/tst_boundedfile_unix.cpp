#include "files/boundedfile.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

/// Files as they are not everywhere: links, and what the system makes up while it is read.
class TestBoundedFileUnix : public QObject
{
    Q_OBJECT

private slots:
    void linkIsFollowed()
    {
        const QTemporaryDir directory;
        QFile target(directory.filePath(QStringLiteral("target")));
        QVERIFY(target.open(QIODevice::WriteOnly));
        QCOMPARE(target.write("abc"), 3);
        target.close();
        const QString link = directory.filePath(QStringLiteral("link"));
        QVERIFY(target.link(link));
        QCOMPARE(ReadRegularFile(link).value_or("nothing"), QByteArray("abc"));
    }

    void fileWithoutSize()
    {
        // A regular file that says it is empty, and is not: neither cut off nor read beyond the limit.
        const QString path = QStringLiteral("/proc/self/status");
        if (!QFileInfo(path).isFile() || QFileInfo(path).size() != 0)
            QSKIP("this system has no such file");
        QVERIFY(ReadRegularFile(path).value_or(QByteArray()).startsWith("Name:"));
        QVERIFY(!ReadRegularFile(path, 10).has_value());
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestBoundedFileUnix)
#include "tst_boundedfile_unix.moc"
