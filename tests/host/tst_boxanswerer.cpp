#include "host/boxanswerer.h"

#include <QDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

class TestBoxAnswerer : public QObject
{
    Q_OBJECT

private slots:
    void AnswersAndTellsWhatItSaid();
    void PressesTheDefaultButton();
    void AnswersEveryBox();
    void LeavesOtherWindowsAlone();
};

void TestBoxAnswerer::AnswersAndTellsWhatItSaid()
{
    const BoxAnswerer answerer;
    QSignalSpy opened(&answerer, &BoxAnswerer::BoxOpened);
    QCOMPARE(QMessageBox::information(nullptr, QStringLiteral("Problem"), QStringLiteral("Could not\n\nconnect")),
             QMessageBox::Ok);
    QCOMPARE(opened.count(), 1);
    QCOMPARE(opened.at(0).at(0).toString(), QStringLiteral("Problem"));
    QCOMPARE(opened.at(0).at(1).toString(), QStringLiteral("Could not\n\nconnect"));
}

void TestBoxAnswerer::PressesTheDefaultButton()
{
    const BoxAnswerer answerer;
    QCOMPARE(QMessageBox::question(nullptr, QStringLiteral("t"), QStringLiteral("q"),
                                   QMessageBox::Yes | QMessageBox::No, QMessageBox::No),
             QMessageBox::No);
}

void TestBoxAnswerer::AnswersEveryBox()
{
    const BoxAnswerer answerer;
    QSignalSpy opened(&answerer, &BoxAnswerer::BoxOpened);
    for (int i = 0; i < 3; ++i)
        QMessageBox::information(nullptr, QStringLiteral("t"), QString::number(i));
    QCOMPARE(opened.count(), 3);
    QCOMPARE(opened.at(2).at(1).toString(), QStringLiteral("2"));
}

void TestBoxAnswerer::LeavesOtherWindowsAlone()
{
    const BoxAnswerer answerer;
    QSignalSpy opened(&answerer, &BoxAnswerer::BoxOpened);
    QDialog dialog;
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QCOMPARE(opened.count(), 0);
    QVERIFY(dialog.isVisible());
}

QTEST_MAIN(TestBoxAnswerer)
#include "tst_boxanswerer.moc"
