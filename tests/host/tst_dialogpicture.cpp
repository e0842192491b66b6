#include "host/commands/dialogpicture.h"
#include "tests/support/fakedialog.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QImage>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>

class TestDialogPicture : public QObject
{
    Q_OBJECT

private slots:
    void pictureShowsAllRowsAndColumns();
    void visibilityOfTheDialogIsKept();
    void pictureOfALongListIsBounded();
    void unwritableFileIsReported();
};

void TestDialogPicture::pictureShowsAllRowsAndColumns()
{
    FakeDialog fake;
    fake.resize(100, 80);
    for (int i = 0; i < 18; ++i)
        fake.Add(QStringLiteral("a mast with a name that needs some room, number %1").arg(i));
    const ConnectDialog dialog = FindDialog();

    const QTemporaryDir directory;
    // The form does not depend on the name.
    const QString fileName = directory.filePath(QStringLiteral("picture"));
    QCOMPARE(WriteDialogPicture(dialog, fileName), QString());
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.peek(8).startsWith("\x89PNG"));
    const QImage image = QImage::fromData(file.readAll(), "PNG");
    QCOMPARE(image.size(), fake.size());
    QVERIFY(image.width() > 600);
    for (const QTreeView* view : fake.views) {
        QCOMPARE(view->verticalScrollBar()->maximum(), 0);
        QCOMPARE(view->horizontalScrollBar()->maximum(), 0);
    }
}

void TestDialogPicture::visibilityOfTheDialogIsKept()
{
    const FakeDialog fake;
    const ConnectDialog dialog = FindDialog();
    const QTemporaryDir directory;
    QCOMPARE(WriteDialogPicture(dialog, directory.filePath(QStringLiteral("a.png"))), QString());
    QVERIFY(fake.isHidden());
    dialog.Window()->show();
    QCOMPARE(WriteDialogPicture(dialog, directory.filePath(QStringLiteral("b.png"))), QString());
    QVERIFY(fake.isVisible());
}

void TestDialogPicture::pictureOfALongListIsBounded()
{
    FakeDialog fake;
    for (int i = 0; i < 200; ++i)
        fake.Add(QString(1000, QLatin1Char('w')));
    const ConnectDialog dialog = FindDialog();
    const QTemporaryDir directory;
    const QString fileName = directory.filePath(QStringLiteral("a.png"));
    QCOMPARE(WriteDialogPicture(dialog, fileName), QString());
    const QImage image(fileName);
    QVERIFY(!image.isNull());
    QVERIFY(image.width() <= 2400);
    QVERIFY(image.height() <= 1600);
}

void TestDialogPicture::unwritableFileIsReported()
{
    const FakeDialog fake;
    const ConnectDialog dialog = FindDialog();
    const QTemporaryDir directory;
    for (const QString& fileName : {directory.filePath(QStringLiteral("no/such/folder/a.png")), directory.path()}) {
        const QString said = WriteDialogPicture(dialog, fileName);
        QVERIFY2(said.contains(fileName), qPrintable(said));
    }
    QVERIFY(QDir(directory.path()).isEmpty());
}

VEXEL_TEST(QTEST_MAIN, TestDialogPicture)
#include "tst_dialogpicture.moc"
