// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/commands/messageboxautoresponder.h"
#include "tests/support/testmain.h"

#include <QDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

class TestMessageBoxAutoResponder : public QObject
{
    Q_OBJECT

private slots:
    void boxIsAnsweredAndReported();
    void defaultButtonIsPressed();
    void everyBoxIsAnswered();
    void otherWindowsAreIgnored();
};

void TestMessageBoxAutoResponder::boxIsAnsweredAndReported()
{
    const MessageBoxAutoResponder answerer;
    QSignalSpy opened(&answerer, &MessageBoxAutoResponder::BoxOpened);
    QCOMPARE(QMessageBox::information(nullptr, QStringLiteral("Problem"), QStringLiteral("Could not\n\nconnect")),
             QMessageBox::Ok);
    QCOMPARE(opened.count(), 1);
    QCOMPARE(opened.at(0).at(0).toString(), QStringLiteral("Problem"));
    QCOMPARE(opened.at(0).at(1).toString(), QStringLiteral("Could not\n\nconnect"));
}

void TestMessageBoxAutoResponder::defaultButtonIsPressed()
{
    const MessageBoxAutoResponder answerer;
    QCOMPARE(QMessageBox::question(nullptr, QStringLiteral("t"), QStringLiteral("q"),
                                   QMessageBox::Yes | QMessageBox::No, QMessageBox::No),
             QMessageBox::No);
}

void TestMessageBoxAutoResponder::everyBoxIsAnswered()
{
    const MessageBoxAutoResponder answerer;
    QSignalSpy opened(&answerer, &MessageBoxAutoResponder::BoxOpened);
    for (int i = 0; i < 3; ++i)
        QMessageBox::information(nullptr, QStringLiteral("t"), QString::number(i));
    QCOMPARE(opened.count(), 3);
    QCOMPARE(opened.at(2).at(1).toString(), QStringLiteral("2"));
}

void TestMessageBoxAutoResponder::otherWindowsAreIgnored()
{
    const MessageBoxAutoResponder answerer;
    QSignalSpy opened(&answerer, &MessageBoxAutoResponder::BoxOpened);
    QDialog dialog;
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QCOMPARE(opened.count(), 0);
    QVERIFY(dialog.isVisible());
}

VEXEL_TEST(QTEST_MAIN, TestMessageBoxAutoResponder)
#include "tst_messageboxautoresponder.moc"
