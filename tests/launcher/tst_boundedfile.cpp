#include "tests/support/system.h"
#include "userinterface/vexelconnectdlg/boundedfile.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

class tst_BoundedFile : public QObject
{
    Q_OBJECT

private slots:
    void WholeContent_data();
    void WholeContent();
    void AboveLimit();
    void HugeFile();
    void NotRegular_data();
    void NotRegular();
    void PipeIsNotOpened();

private:
    QString Path(const char* name) const { return m_Directory.filePath(QLatin1String(name)); }
    QString Write(const char* name, const QByteArray& content) const
    {
        QFile file(Path(name));
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? file.fileName() : QString();
    }

    QTemporaryDir m_Directory;
};

void tst_BoundedFile::WholeContent_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one byte") << QByteArray("x");
    QTest::newRow("binary with NUL and CR LF") << QByteArray("a\0b\r\n\xff", 6);
    QTest::newRow("more than one piece") << QByteArray(3 * 1024 * 1024 + 17, 'z');
}

void tst_BoundedFile::WholeContent()
{
    QFETCH(const QByteArray, content);
    const auto read = ReadRegularFile(Write("content", content));
    QVERIFY(read.has_value());
    QCOMPARE(*read, content);
}

void tst_BoundedFile::AboveLimit()
{
    const QString path = Write("limited", QByteArray(1000, 'x'));
    QCOMPARE(ReadRegularFile(path, 1000).value_or("nothing").size(), 1000);
    QVERIFY(!ReadRegularFile(path, 999).has_value());
    QVERIFY(!ReadRegularFile(path, 0).has_value());
}

void tst_BoundedFile::HugeFile()
{
    // Without content on disk; its size alone is refused.
    QFile file(Path("huge"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(MaximumFileSize + 1));
    file.close();
    QVERIFY(!ReadRegularFile(file.fileName()).has_value());
    QVERIFY(file.resize(MaximumFileSize));
    const auto atLimit = ReadRegularFile(file.fileName());
    QVERIFY(atLimit.has_value());
    QCOMPARE(atLimit->size(), MaximumFileSize);
}

void tst_BoundedFile::NotRegular_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("no name") << QString();
    QTest::newRow("missing") << Path("missing");
    QTest::newRow("directory") << m_Directory.path();
    const QStringList devices = System::Devices();
    for (const QString& device : devices)
        QTest::newRow(qPrintable(device)) << device;
}

void tst_BoundedFile::NotRegular()
{
    QFETCH(const QString, path);
    QVERIFY(!ReadRegularFile(path).has_value());
}

void tst_BoundedFile::PipeIsNotOpened()
{
    const QString pipe = System::MakePipe(Path("pipe"));
    QVERIFY(!pipe.isEmpty());
    // Nobody writes to it: opening it would wait for ever.
    QVERIFY(!ReadRegularFile(pipe).has_value());
}

QTEST_GUILESS_MAIN(tst_BoundedFile)
#include "tst_boundedfile.moc"
