// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/desktop/trayicon.h"
#include "host/plugin/statusmonitor.h"
#include "tests/support/fakedialog.h"
#include "tests/support/testmain.h"

#include <QPainter>
#include <QSignalSpy>
#include <QTest>

#include <utility>

namespace {

/// The icon on a list of two entries, as a person would find it in the tray.
struct InTray
{
    InTray()
    {
        fake.Add(QStringLiteral("mast"));
        fake.Add(QStringLiteral("pier"));
    }

    QSystemTrayIcon* Icon() const { return tray.findChild<QSystemTrayIcon*>(); }
    QAction* Action(const QString& text) const
    {
        for (QAction* action : Icon()->contextMenu()->actions())
            if (action->text() == text)
                return action;
        return nullptr;
    }
    QImage Picture() const { return Icon()->icon().pixmap(22).toImage(); }

    FakeDialog fake;
    StatusMonitor monitor{FindDialog()};
    TrayIcon tray{monitor};
    QSignalSpy dialog{&tray, &TrayIcon::ShowRequested};
    QSignalSpy save{&tray, &TrayIcon::SaveRequested};
    QSignalSpy end{&tray, &TrayIcon::QuitRequested};
};

/// The darkest and the brightest grey.
std::pair<int, int> Extremes(const QImage& image)
{
    std::pair<int, int> extremes{255, 0};
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            extremes = {qMin(extremes.first, qGray(image.pixel(x, y))),
                        qMax(extremes.second, qGray(image.pixel(x, y)))};
    return extremes;
}

} // namespace

class TestTrayIcon : public QObject
{
    Q_OBJECT

private slots:
    void tipShowsTheNumberInUse();
    void tipAtTheStart();
    void menuEmitsTheSignals();
    void clickCallsTheDialog();
    void pictureShowsWhetherAnEntryIsInUse();
    void pictureIsVisibleOnEveryPanel_data();
    void pictureIsVisibleOnEveryPanel();
    void helpNeedsAGuide();
    void autostartIsTickedAndRequested();
    void withoutATray();
};

void TestTrayIcon::tipShowsTheNumberInUse()
{
    const QString name = QStringLiteral("Vexel - Connect Dialog\n");
    InTray inTray;
    QCOMPARE(inTray.Icon()->toolTip(), name + QStringLiteral("no entry in use"));
    inTray.fake.SetStatus(0, 1);
    QCOMPARE(inTray.Icon()->toolTip(), name + QStringLiteral("1 entry in use"));
    inTray.fake.SetStatus(1, 1);
    QCOMPARE(inTray.Icon()->toolTip(), name + QStringLiteral("2 entries in use"));
    inTray.fake.entries.removeRows(0, 2);
    QCOMPARE(inTray.Icon()->toolTip(), name + QStringLiteral("no entry in use"));
}

void TestTrayIcon::tipAtTheStart()
{
    InTray inTray;
    inTray.fake.SetStatus(0, 1);
    const TrayIcon later(inTray.monitor);
    QVERIFY(later.findChild<QSystemTrayIcon*>()->toolTip().endsWith(QLatin1String("1 entry in use")));
}

void TestTrayIcon::menuEmitsTheSignals()
{
    const InTray inTray;
    const auto counts = [&] {
        return QList<qsizetype>{inTray.dialog.count(), inTray.save.count(), inTray.end.count()};
    };
    QVERIFY(inTray.Action(QStringLiteral("Show connect dialog")));
    QVERIFY(inTray.Action(QStringLiteral("Save now")));
    QVERIFY(inTray.Action(QStringLiteral("Quit")));
    inTray.Action(QStringLiteral("Show connect dialog"))->trigger();
    QCOMPARE(counts(), QList<qsizetype>({1, 0, 0}));
    inTray.Action(QStringLiteral("Save now"))->trigger();
    QCOMPARE(counts(), QList<qsizetype>({1, 1, 0}));
    inTray.Action(QStringLiteral("Quit"))->trigger();
    QCOMPARE(counts(), QList<qsizetype>({1, 1, 1}));
}

void TestTrayIcon::clickCallsTheDialog()
{
    const InTray inTray;
    emit inTray.Icon()->activated(QSystemTrayIcon::Trigger);
    QCOMPARE(inTray.dialog.count(), 1);
    // The second half of a double click, and the click that opens the menu.
    emit inTray.Icon()->activated(QSystemTrayIcon::DoubleClick);
    emit inTray.Icon()->activated(QSystemTrayIcon::Context);
    QCOMPARE(inTray.dialog.count(), 1);
    QCOMPARE(inTray.save.count() + inTray.end.count(), 0);
}

void TestTrayIcon::pictureShowsWhetherAnEntryIsInUse()
{
    InTray inTray;
    const QImage free = inTray.Picture();
    inTray.fake.SetStatus(0, 1);
    const QImage inUse = inTray.Picture();
    QVERIFY(free != inUse);
    inTray.fake.SetStatus(0, 0);
    QCOMPARE(inTray.Picture(), free);
}

void TestTrayIcon::pictureIsVisibleOnEveryPanel_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {16, 22, 24, 32, 48, 64})
        QTest::addRow("%d", size) << size;
}

void TestTrayIcon::pictureIsVisibleOnEveryPanel()
{
    QFETCH(const int, size);
    const InTray inTray;
    // Drawn for this size, not scaled to it.
    QVERIFY(inTray.Icon()->icon().availableSizes().contains(QSize(size, size)));
    for (const Qt::GlobalColor panel : {Qt::white, Qt::black}) {
        QImage image(size, size, QImage::Format_RGB32);
        image.fill(panel);
        QPainter(&image).drawPixmap(0, 0, inTray.Icon()->icon().pixmap(size));
        const auto [darkest, brightest] = Extremes(image);
        QVERIFY(brightest > 220);
        QVERIFY(darkest < 100);
    }
}

void TestTrayIcon::helpNeedsAGuide()
{
    InTray inTray;
    const QSignalSpy help(&inTray.tray, &TrayIcon::HelpRequested);
    QAction* action = inTray.Action(QStringLiteral("Help"));
    QVERIFY(action);
    QCOMPARE(action->shortcut(), QKeySequence(Qt::Key_F1));
    QVERIFY(!action->isEnabled());
    inTray.tray.SetHelpAvailable(true);
    action->trigger();
    QCOMPARE(help.count(), 1);
}

void TestTrayIcon::autostartIsTickedAndRequested()
{
    InTray inTray;
    const QSignalSpy shown(&inTray.tray, &TrayIcon::MenuShown);
    const QSignalSpy autostart(&inTray.tray, &TrayIcon::AutostartRequested);
    QAction* action = inTray.Action(QStringLiteral("Start at login"));
    QVERIFY(action);
    QVERIFY(action->isCheckable() && !action->isChecked());
    inTray.tray.SetAutostart(true);
    QVERIFY(action->isChecked());
    QCOMPARE(autostart.count(), 0);
    action->trigger();
    QCOMPARE(autostart.count(), 1);
    QCOMPARE(autostart.at(0).at(0).toBool(), false);
    emit inTray.Icon()->contextMenu()->aboutToShow();
    QCOMPARE(shown.count(), 1);
}

void TestTrayIcon::withoutATray()
{
    if (QSystemTrayIcon::isSystemTrayAvailable())
        QSKIP("There is a tray here.");
    InTray inTray;
    QVERIFY(!inTray.tray.IsAvailable());
    const QSignalSpy available(&inTray.tray, &TrayIcon::AvailabilityChanged);
    inTray.tray.ShowMessage(QStringLiteral("nobody hears this"), QSystemTrayIcon::Information);
    QCoreApplication::processEvents();
    QCOMPARE(available.count(), 0);
}

VEXEL_TEST(QTEST_MAIN, TestTrayIcon)
#include "tst_trayicon.moc"
