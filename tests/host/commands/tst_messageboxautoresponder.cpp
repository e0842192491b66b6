// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/commands/messageboxautoresponder.h"
#include "tests/support/testmain.h"

#include <QDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace {

const QString kName = QStringLiteral("m_problemBox");

} // namespace

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
    const MessageBoxAutoResponder answerer(kName);
    QSignalSpy opened(&answerer, &MessageBoxAutoResponder::BoxOpened);
    QMessageBox box(QMessageBox::Information, QStringLiteral("Problem"), QStringLiteral("Could not\n\nconnect"),
                    QMessageBox::Ok);
    box.setObjectName(kName);
    QCOMPARE(box.exec(), int(QMessageBox::Ok));
    QCOMPARE(opened.count(), 1);
    QCOMPARE(opened.at(0).at(0).toString(), QStringLiteral("Problem"));
    QCOMPARE(opened.at(0).at(1).toString(), QStringLiteral("Could not\n\nconnect"));
}

void TestMessageBoxAutoResponder::defaultButtonIsPressed()
{
    const MessageBoxAutoResponder answerer(kName);
    QMessageBox box(QMessageBox::Question, QStringLiteral("t"), QStringLiteral("q"),
                    QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(QMessageBox::No);
    box.setObjectName(kName);
    QCOMPARE(box.exec(), int(QMessageBox::No));
}

void TestMessageBoxAutoResponder::everyBoxIsAnswered()
{
    const MessageBoxAutoResponder answerer(kName);
    QSignalSpy opened(&answerer, &MessageBoxAutoResponder::BoxOpened);
    for (int i = 0; i < 3; ++i) {
        QMessageBox box(QMessageBox::Information, QStringLiteral("t"), QString::number(i));
        box.setObjectName(kName);
        box.exec();
    }
    QCOMPARE(opened.count(), 3);
    QCOMPARE(opened.at(2).at(1).toString(), QStringLiteral("2"));
}

void TestMessageBoxAutoResponder::otherWindowsAreIgnored()
{
    const MessageBoxAutoResponder answerer(kName);
    QSignalSpy opened(&answerer, &MessageBoxAutoResponder::BoxOpened);
    QDialog dialog;
    dialog.setObjectName(kName);
    dialog.show();
    QMessageBox box(QMessageBox::Question, QStringLiteral("t"), QStringLiteral("q"));
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    QCoreApplication::processEvents();
    QCOMPARE(opened.count(), 0);
    QVERIFY(dialog.isVisible());
    QVERIFY(box.isVisible());
}

VEXEL_TEST(QTEST_MAIN, TestMessageBoxAutoResponder)
#include "tst_messageboxautoresponder.moc"
