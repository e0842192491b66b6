// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/commands/dialogpicture.h"
#include "tests/support/fakedialog.h"
#include "tests/support/testmain.h"

#include <QImage>
#include <QScrollBar>
#include <QTest>

class TestDialogPicture : public QObject
{
    Q_OBJECT

private slots:
    void enlargedPictureShowsAllRowsAndColumns();
    void visibilityOfTheDialogIsKept();
    void enlargedPictureOfALongListIsBounded();
    void dialogIsNotChangedByItsPicture();
};

namespace {

QImage Enlarged(const ConnectDialog& dialog)
{
    QString error;
    const QByteArray picture = EnlargedDialogPicture(dialog, &error);
    return error.isEmpty() ? QImage::fromData(picture, "PNG") : QImage();
}

} // namespace

void TestDialogPicture::enlargedPictureShowsAllRowsAndColumns()
{
    FakeDialog fake;
    fake.resize(100, 80);
    for (int i = 0; i < 18; ++i)
        fake.Add(QStringLiteral("a mast with a name that needs some room, number %1").arg(i));
    const QImage image = Enlarged(FindDialog());
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
    QVERIFY(!Enlarged(dialog).isNull());
    QVERIFY(fake.isHidden());
    dialog.Window()->show();
    QVERIFY(!Enlarged(dialog).isNull());
    QVERIFY(fake.isVisible());
}

void TestDialogPicture::enlargedPictureOfALongListIsBounded()
{
    FakeDialog fake;
    for (int i = 0; i < 200; ++i)
        fake.Add(QString(1000, QLatin1Char('w')));
    const QImage image = Enlarged(FindDialog());
    QVERIFY(!image.isNull());
    QVERIFY(image.width() <= 2400);
    QVERIFY(image.height() <= 1600);
}

// The user works with it.
void TestDialogPicture::dialogIsNotChangedByItsPicture()
{
    FakeDialog fake;
    fake.resize(200, 180);
    for (const bool isVisible : {false, true}) {
        fake.setVisible(isVisible);
        const QSize size = fake.size();
        QString error;
        const QImage image = QImage::fromData(DialogPicture(FindDialog(), &error), "PNG");
        QCOMPARE(error, QString());
        QCOMPARE(image.size(), size);
        QCOMPARE(fake.size(), size);
        QCOMPARE(fake.isVisible(), isVisible);
    }
}

VEXEL_TEST(QTEST_MAIN, TestDialogPicture)
#include "tst_dialogpicture.moc"
