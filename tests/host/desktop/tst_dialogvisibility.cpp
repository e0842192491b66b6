// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/desktop/dialogvisibility.h"
#include "host/plugin/statusmonitor.h"
#include "tests/support/fakedialog.h"
#include "tests/support/testmain.h"

#include <QHideEvent>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

namespace {

/// Processes all queued events.
void Settle()
{
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
}

/// The dialog under control of DialogVisibility, shown, with one entry.
struct Kept
{
    Kept()
    {
        fake.Add(QStringLiteral("mast"), true);
        dialog = FindDialog();
        monitor = std::make_unique<StatusMonitor>(FindDialog());
        keeper = std::make_unique<DialogVisibility>(*dialog, *monitor);
        hidden = std::make_unique<QSignalSpy>(keeper.get(), &DialogVisibility::DialogHidden);
        end = std::make_unique<QSignalSpy>(keeper.get(), &DialogVisibility::QuitRequested);
        stays = std::make_unique<QSignalSpy>(keeper.get(), &DialogVisibility::StaysHidden);
        wentToTray = std::make_unique<QSignalSpy>(keeper.get(), &DialogVisibility::WentToTray);
        asks = std::make_unique<QSignalSpy>(keeper.get(), &DialogVisibility::QuitNeedsConfirmation);
        fake.show();
    }

    /// Connects as the plug-in does, and calls `meanwhile`.
    void Connect(const std::function<void()>& meanwhile)
    {
        fake.setProperty("isConnecting", true);
        fake.hide();
        meanwhile();
        fake.setProperty("isConnecting", QVariant());
    }

    /// Connects the entry.
    void Connect()
    {
        Connect([this] { fake.SetStatus(0, 1); });
        Settle();
    }

    FakeDialog fake;
    std::optional<ConnectDialog> dialog;
    std::unique_ptr<StatusMonitor> monitor;
    std::unique_ptr<DialogVisibility> keeper;
    std::unique_ptr<QSignalSpy> hidden;
    std::unique_ptr<QSignalSpy> end;
    std::unique_ptr<QSignalSpy> stays;
    std::unique_ptr<QSignalSpy> wentToTray;
    std::unique_ptr<QSignalSpy> asks;
};

} // namespace

class TestDialogVisibility : public QObject
{
    Q_OBJECT

private slots:
    void closingWithNothingInUseEndsTheHost_data();
    void closingWithNothingInUseEndsTheHost();
    void closingWhileInUseStaysAndComesBack();
    void connectingHidesUntilTheLastHasEnded();
    void connectingInVainShowsTheDialogAgain();
    void eventsDuringConnectDoNotEndTheHost();
    void connectInsideAnotherDecidesNothing();
    void dialogShownDuringConnectStays();
    void problemBoxDoesNotEndTheHost();
    void applicationMayEndDuringTheProblemBox();
    void applicationMayEndWhileTheDialogIsShown();
    void minimisingIsNotClosing();

    void closingToTheTray_data();
    void closingToTheTray();
    void trayIsExplainedOnce();
    void connectingWithATrayComesBack();
    void calledFromTheTrayWhileWaiting();
    void connectingInTheTrayStaysThere();
    void calledFromTheTrayWhileMinimized();
    void lostTrayShowsTheHiddenDialog();
    void lostTrayKeepsTheDialogHiddenWhileInUse();
    void lostTrayKeepsTheShownDialog();
    void newTrayDoesNotKeepTheDialogHidden();
    void askToEndAsksOnlyWhileInUse();
    void answeredBoxNoLongerDelays();
};

void TestDialogVisibility::closingWithNothingInUseEndsTheHost_data()
{
    QTest::addColumn<bool>("byButton");
    QTest::newRow("hidden by its button") << true;
    QTest::newRow("closed by the window manager") << false;
}

void TestDialogVisibility::closingWithNothingInUseEndsTheHost()
{
    QFETCH(const bool, byButton);
    Kept kept;
    if (byButton)
        kept.fake.hide();
    else
        kept.fake.close();
    QTRY_COMPARE(kept.end->count(), 1);
    QCOMPARE(kept.hidden->count(), 1);
    QCOMPARE(kept.stays->count(), 0);
}

void TestDialogVisibility::closingWhileInUseStaysAndComesBack()
{
    Kept kept;
    kept.fake.SetStatus(0, 1);
    kept.fake.hide();
    QTRY_COMPARE(kept.stays->count(), 1);
    QCOMPARE(kept.stays->at(0).at(0).toInt(), 1);
    QCOMPARE(kept.hidden->count(), 1);
    QVERIFY(kept.fake.isHidden());

    kept.fake.SetStatus(0, 0);
    QTRY_VERIFY(kept.fake.isVisible());
    QCOMPARE(kept.end->count(), 0);
    QCOMPARE(kept.stays->count(), 1);

    kept.fake.hide();
    QTRY_COMPARE(kept.end->count(), 1);
}

void TestDialogVisibility::connectingHidesUntilTheLastHasEnded()
{
    Kept kept;
    kept.fake.Add(QStringLiteral("pier"), true);
    kept.Connect([&] {
        kept.fake.SetStatus(0, 1);
        kept.fake.SetStatus(1, 1);
    });
    Settle();
    QVERIFY(kept.fake.isHidden());
    QCOMPARE(kept.hidden->count(), 1);
    // The person asked for that, there is nothing to say.
    QCOMPARE(kept.stays->count(), 0);

    kept.fake.SetStatus(0, 0);
    Settle();
    QVERIFY(kept.fake.isHidden());
    kept.fake.SetStatus(1, 0);
    QTRY_VERIFY(kept.fake.isVisible());
    QCOMPARE(kept.end->count(), 0);
}

void TestDialogVisibility::connectingInVainShowsTheDialogAgain()
{
    Kept kept;
    kept.Connect([] {});
    QTRY_VERIFY(kept.fake.isVisible());
    Settle();
    QCOMPARE(kept.end->count(), 0);
    QVERIFY(kept.fake.isVisible());
}

// The dialog handles events while it connects, before the first entry is in use.
void TestDialogVisibility::eventsDuringConnectDoNotEndTheHost()
{
    Kept kept;
    kept.Connect([&kept] {
        Settle();
        QCOMPARE(kept.hidden->count(), 0);
        kept.fake.SetStatus(0, 1);
    });
    Settle();
    QCOMPARE(kept.end->count(), 0);
    QCOMPARE(kept.hidden->count(), 1);
    QVERIFY(kept.fake.isHidden());
    kept.fake.SetStatus(0, 0);
    QTRY_VERIFY(kept.fake.isVisible());
}

void TestDialogVisibility::connectInsideAnotherDecidesNothing()
{
    Kept kept;
    kept.Connect([&kept] {
        // Its own, and the value before.
        kept.fake.setProperty("isConnecting", true);
        kept.fake.setProperty("isConnecting", true);
        Settle();
        QCOMPARE(kept.hidden->count(), 0);
        QVERIFY(kept.fake.isHidden());
    });
    QCOMPARE(kept.hidden->count(), 1);
    QTRY_VERIFY(kept.fake.isVisible());
    QCOMPARE(kept.end->count(), 0);
}

void TestDialogVisibility::dialogShownDuringConnectStays()
{
    Kept kept;
    kept.Connect([&kept] {
        kept.keeper->ShowDialog();
        kept.fake.SetStatus(0, 1);
    });
    Settle();
    QVERIFY(kept.fake.isVisible());
    QCOMPARE(kept.hidden->count(), 0);
}

void TestDialogVisibility::problemBoxDoesNotEndTheHost()
{
    Kept kept;
    bool endedDuringBox = false;
    kept.Connect([&] {
        QMessageBox box;
        QTimer::singleShot(0, &box, [&] {
            Settle();
            endedDuringBox = kept.end->count() != 0 || kept.fake.isVisible();
            box.accept();
        });
        box.exec();
        kept.fake.SetStatus(0, 1);
    });
    Settle();
    QVERIFY(!endedDuringBox);
    QCOMPARE(kept.end->count(), 0);
    QVERIFY(kept.fake.isHidden());
}

void TestDialogVisibility::applicationMayEndDuringTheProblemBox()
{
    Kept kept;
    kept.Connect([&] {
        kept.fake.SetStatus(0, 1);
        QMessageBox box;
        QTimer::singleShot(0, &box, [&] {
            kept.fake.SetStatus(0, 0);
            Settle();
            box.accept();
        });
        box.exec();
    });
    QTRY_VERIFY(kept.fake.isVisible());
    QCOMPARE(kept.end->count(), 0);
}

void TestDialogVisibility::applicationMayEndWhileTheDialogIsShown()
{
    Kept kept;
    kept.fake.SetStatus(0, 1);
    kept.fake.SetStatus(0, 0);
    Settle();
    QVERIFY(kept.fake.isVisible());
    QCOMPARE(kept.end->count(), 0);
    QCOMPARE(kept.hidden->count(), 0);
}

void TestDialogVisibility::minimisingIsNotClosing()
{
    Kept kept;
    kept.fake.showMinimized();
    // Sent to the content of a minimised window.
    QHideEvent spontaneous;
    QCoreApplication::sendEvent(&kept.fake, &spontaneous);
    Settle();
    QCOMPARE(kept.end->count(), 0);
    QCOMPARE(kept.hidden->count(), 0);
}

void TestDialogVisibility::closingToTheTray_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("nothing in use") << 0;
    QTest::newRow("in use") << 1;
}

void TestDialogVisibility::closingToTheTray()
{
    QFETCH(const int, status);
    Kept kept;
    kept.keeper->SetTrayAvailable(true);
    kept.fake.SetStatus(0, status);
    kept.fake.close();
    QTRY_COMPARE(kept.hidden->count(), 1);
    QCOMPARE(kept.wentToTray->count(), 1);

    // Only the user calls it back; the end of an application does not.
    kept.fake.SetStatus(0, 1);
    Settle();
    kept.fake.SetStatus(0, 0);
    Settle();
    QVERIFY(kept.fake.isHidden());
    QCOMPARE(kept.end->count(), 0);
    QCOMPARE(kept.stays->count(), 0);
    QCOMPARE(kept.hidden->count(), 1);

    kept.keeper->ShowDialog();
    QVERIFY(kept.fake.isVisible());
    Settle();
    QCOMPARE(kept.end->count(), 0);
}

void TestDialogVisibility::trayIsExplainedOnce()
{
    Kept kept;
    kept.keeper->SetTrayAvailable(true);
    for (int i = 1; i <= 3; ++i) {
        kept.fake.close();
        QTRY_COMPARE(kept.hidden->count(), i);
        QCOMPARE(kept.wentToTray->count(), 1);
        kept.keeper->ShowDialog();
    }
    QCOMPARE(kept.end->count(), 0);
}

void TestDialogVisibility::connectingWithATrayComesBack()
{
    Kept kept;
    kept.keeper->SetTrayAvailable(true);
    kept.Connect();
    QVERIFY(kept.fake.isHidden());
    // It was not sent away, it made room.
    QCOMPARE(kept.wentToTray->count(), 0);
    kept.fake.SetStatus(0, 0);
    QTRY_VERIFY(kept.fake.isVisible());

    kept.Connect([] {});
    QTRY_VERIFY(kept.fake.isVisible());
    QCOMPARE(kept.end->count(), 0);
}

void TestDialogVisibility::connectingInTheTrayStaysThere()
{
    Kept kept;
    kept.keeper->SetTrayAvailable(true);
    kept.fake.hide();
    QTRY_COMPARE(kept.hidden->count(), 1);
    kept.Connect();
    // The list is saved.
    QCOMPARE(kept.hidden->count(), 2);
    kept.fake.SetStatus(0, 0);
    Settle();
    QVERIFY(kept.fake.isHidden());
    QCOMPARE(kept.end->count(), 0);
}

void TestDialogVisibility::calledFromTheTrayWhileMinimized()
{
    Kept kept;
    kept.keeper->SetTrayAvailable(true);
    kept.fake.showMinimized();
    kept.keeper->ShowDialog();
    QVERIFY(kept.fake.isVisible());
    QVERIFY(!kept.fake.isMinimized());
}

void TestDialogVisibility::calledFromTheTrayWhileWaiting()
{
    Kept kept;
    kept.keeper->SetTrayAvailable(true);
    kept.Connect();
    kept.keeper->ShowDialog();
    QVERIFY(kept.fake.isVisible());
    // Closed by now, so it stays away.
    kept.fake.close();
    QTRY_COMPARE(kept.wentToTray->count(), 1);
    kept.fake.SetStatus(0, 0);
    Settle();
    QVERIFY(kept.fake.isHidden());
    QCOMPARE(kept.end->count(), 0);
}

void TestDialogVisibility::lostTrayShowsTheHiddenDialog()
{
    Kept kept;
    kept.keeper->SetTrayAvailable(true);
    kept.fake.close();
    QTRY_COMPARE(kept.wentToTray->count(), 1);
    kept.keeper->SetTrayAvailable(false);
    QTRY_VERIFY(kept.fake.isVisible());
    QCOMPARE(kept.end->count(), 0);
    // From now on as without a tray.
    kept.fake.close();
    QTRY_COMPARE(kept.end->count(), 1);
}

void TestDialogVisibility::lostTrayKeepsTheDialogHiddenWhileInUse()
{
    Kept kept;
    kept.keeper->SetTrayAvailable(true);
    kept.fake.SetStatus(0, 1);
    kept.fake.close();
    QTRY_COMPARE(kept.wentToTray->count(), 1);
    kept.keeper->SetTrayAvailable(false);
    QTRY_COMPARE(kept.stays->count(), 1);
    QCOMPARE(kept.stays->at(0).at(0).toInt(), 1);
    QVERIFY(kept.fake.isHidden());
    kept.fake.SetStatus(0, 0);
    QTRY_VERIFY(kept.fake.isVisible());
    QCOMPARE(kept.end->count(), 0);
}

void TestDialogVisibility::lostTrayKeepsTheShownDialog()
{
    Kept kept;
    kept.keeper->SetTrayAvailable(true);
    kept.keeper->SetTrayAvailable(false);
    Settle();
    QVERIFY(kept.fake.isVisible());
    QCOMPARE(kept.hidden->count(), 0);
    QCOMPARE(kept.end->count(), 0);
    kept.fake.close();
    QTRY_COMPARE(kept.end->count(), 1);
}

void TestDialogVisibility::newTrayDoesNotKeepTheDialogHidden()
{
    Kept kept;
    kept.fake.SetStatus(0, 1);
    kept.fake.close();
    QTRY_COMPARE(kept.stays->count(), 1);
    kept.keeper->SetTrayAvailable(true);
    // It was promised to come back.
    kept.fake.SetStatus(0, 0);
    QTRY_VERIFY(kept.fake.isVisible());
    QCOMPARE(kept.wentToTray->count(), 0);
}

void TestDialogVisibility::askToEndAsksOnlyWhileInUse()
{
    Kept kept;
    kept.fake.SetStatus(0, 1);
    kept.keeper->RequestQuit();
    QCOMPARE(kept.asks->count(), 1);
    QCOMPARE(kept.asks->at(0).at(0).toInt(), 1);
    QCOMPARE(kept.end->count(), 0);

    kept.fake.SetStatus(0, 0);
    kept.keeper->RequestQuit();
    QCOMPARE(kept.asks->count(), 1);
    QCOMPARE(kept.end->count(), 1);
}

void TestDialogVisibility::answeredBoxNoLongerDelays()
{
    Kept kept;
    kept.keeper->SetTrayAvailable(true);
    kept.Connect();

    QMessageBox box;
    box.setModal(true);
    box.show();
    kept.fake.SetStatus(0, 0);
    Settle();
    QVERIFY(kept.fake.isHidden());
    box.hide();
    kept.keeper->DecideLater();
    QTRY_VERIFY(kept.fake.isVisible());
}

VEXEL_TEST(QTEST_MAIN, TestDialogVisibility)
#include "tst_dialogvisibility.moc"
