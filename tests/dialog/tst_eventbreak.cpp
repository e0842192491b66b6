// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/connect/eventbreak.h"

#include <QCoreApplication>
#include <QTest>
#include <QTimer>

/// A break in which events are handled.
class TestEventBreak : public QObject
{
    Q_OBJECT

private slots:
    void isDueAfterAWhile();
    void handlesEvents();
    void tellsThatTheProgramEnds();
    void nothingEndsWithoutAnEventLoop();
};

void TestEventBreak::isDueAfterAWhile()
{
    EventBreak eventBreak;
    QTRY_VERIFY(eventBreak.IsDue());
    QTRY_VERIFY(eventBreak.Take() && !eventBreak.IsDue());
}

void TestEventBreak::handlesEvents()
{
    EventBreak eventBreak;
    bool isHandled = false;
    QTimer::singleShot(0, this, [&isHandled] { isHandled = true; });
    QVERIFY(eventBreak.Take());
    QVERIFY(isHandled);
}

void TestEventBreak::tellsThatTheProgramEnds()
{
    EventBreak eventBreak;
    bool goesOnBefore = false;
    bool goesOn = true;
    QTimer::singleShot(0, this, [&] {
        goesOnBefore = eventBreak.Take();
        QTimer::singleShot(0, this, [] { QCoreApplication::exit(3); });
        goesOn = eventBreak.Take();
    });
    QCOMPARE(QCoreApplication::exec(), 3);
    QVERIFY(goesOnBefore);
    QVERIFY(!goesOn);
}

// Last, because Qt ends every later event loop at once.
void TestEventBreak::nothingEndsWithoutAnEventLoop()
{
    EventBreak eventBreak;
    QTimer::singleShot(0, this, [] { QCoreApplication::exit(); });
    QVERIFY(eventBreak.Take());
}

VEXEL_TEST(QTEST_MAIN, TestEventBreak)
#include "tst_eventbreak.moc"
