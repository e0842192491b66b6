// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/desktop/quitquestion.h"
#include "tests/support/testmain.h"

#include <QAbstractButton>
#include <QApplication>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace {

QMessageBox* OpenBox()
{
    return qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
}

QAbstractButton* Button(const QString& text)
{
    for (QAbstractButton* button : OpenBox()->buttons())
        if (button->text() == text)
            return button;
    return nullptr;
}

} // namespace

class TestQuitQuestion : public QObject
{
    Q_OBJECT

private slots:
    void textNamesTheNumberInUse_data();
    void textNamesTheNumberInUse();
    void unsavedQuestionDefaultsToCancel();
    void answerIsReported_data();
    void answerIsReported();
    void asksOnceAtATime();
    void boxIsClosedWithItsObject();
};

void TestQuitQuestion::textNamesTheNumberInUse_data()
{
    QTest::addColumn<int>("inUse");
    QTest::addColumn<QString>("text");
    QTest::newRow("one") << 1 << QStringLiteral("1 entry is in use.");
    QTest::newRow("three") << 3 << QStringLiteral("3 entries are in use.");
}

void TestQuitQuestion::textNamesTheNumberInUse()
{
    QFETCH(const int, inUse);
    QFETCH(const QString, text);
    QuitQuestion question;
    question.Ask(inUse);
    QVERIFY(OpenBox());
    QCOMPARE(OpenBox()->text().section(QLatin1Char('\n'), 0, 0), text);
    QVERIFY(OpenBox()->text().contains(QLatin1String("will be closed")));
}

void TestQuitQuestion::unsavedQuestionDefaultsToCancel()
{
    QuitQuestion question;
    const QSignalSpy answered(&question, &QuitQuestion::Answered);
    question.AskUnsaved(QStringLiteral("the disk is full"));
    QVERIFY(OpenBox());
    QVERIFY(
        OpenBox()->text().startsWith(QLatin1String("The configuration could not be saved.\n\nthe disk is full\n\n")));
    QVERIFY(Button(QStringLiteral("Quit")));
    // Nothing is lost by chance.
    QTest::keyClick(OpenBox(), Qt::Key_Return);
    QCOMPARE(answered.count(), 1);
    QVERIFY(!answered.at(0).at(0).toBool());
}

void TestQuitQuestion::answerIsReported_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("quit");
    QTest::newRow("Quit") << QStringLiteral("Quit") << 0 << true;
    QTest::newRow("Cancel") << QStringLiteral("Cancel") << 0 << false;
    QTest::newRow("Enter") << QString() << static_cast<int>(Qt::Key_Return) << false;
    QTest::newRow("Escape") << QString() << static_cast<int>(Qt::Key_Escape) << false;
    QTest::newRow("the window's own cross") << QString() << 0 << false;
}

void TestQuitQuestion::answerIsReported()
{
    QFETCH(const QString, button);
    QFETCH(const int, key);
    QFETCH(const bool, quit);
    QuitQuestion question;
    QSignalSpy answered(&question, &QuitQuestion::Answered);
    bool boxDuringAnswer = true;
    connect(&question, &QuitQuestion::Answered, &question, [&] { boxDuringAnswer = OpenBox() != nullptr; });
    question.Ask(2);
    QVERIFY(OpenBox());
    if (!button.isEmpty()) {
        QVERIFY(Button(button));
        Button(button)->click();
    } else if (key != 0) {
        QTest::keyClick(OpenBox(), static_cast<Qt::Key>(key));
    } else {
        OpenBox()->close();
    }
    QCOMPARE(answered.count(), 1);
    QCOMPARE(answered.at(0).at(0).toBool(), quit);
    QVERIFY(!boxDuringAnswer);

    // It can be asked again.
    question.Ask(1);
    QVERIFY(OpenBox());
    Button(QStringLiteral("Cancel"))->click();
    QCOMPARE(answered.count(), 2);
}

void TestQuitQuestion::asksOnceAtATime()
{
    QuitQuestion question;
    const QSignalSpy answered(&question, &QuitQuestion::Answered);
    question.Ask(1);
    const QMessageBox* box = OpenBox();
    question.Ask(1);
    QCOMPARE(OpenBox(), box);
    Button(QStringLiteral("Quit"))->click();
    QVERIFY(!OpenBox());
    QCOMPARE(answered.count(), 1);
}

void TestQuitQuestion::boxIsClosedWithItsObject()
{
    auto question = std::make_unique<QuitQuestion>();
    const QSignalSpy answered(question.get(), &QuitQuestion::Answered);
    question->Ask(1);
    QVERIFY(OpenBox());
    question.reset();
    QVERIFY(!OpenBox());
    QCOMPARE(answered.count(), 0);
}

VEXEL_TEST(QTEST_MAIN, TestQuitQuestion)
#include "tst_quitquestion.moc"
