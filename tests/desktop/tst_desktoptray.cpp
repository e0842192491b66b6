// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/autostart.h"
#include "tests/desktop/desktop.h"
#include "tests/desktop/panel.h"
#include "tests/support/hostsession.h"
#include "tests/support/system/errorsto.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QProcess>
#include <QScopeGuard>
#include <QScreen>
#include <QSignalSpy>
#include <QSystemTrayIcon>
#include <QTemporaryDir>

#include <memory>
#include <optional>

namespace {

/// A session of the host with its dialog.
struct Session : HostSession
{
    Session()
    {
        fake.setWindowTitle(QStringLiteral("Vexel - Connect Dialog"));
        session->Start();
    }

    QSystemTrayIcon* Icon() const { return session->findChild<QSystemTrayIcon*>(); }
    /// The place of the icon on the screen.
    QRect Place() const { return Icon()->geometry(); }

    /// Whether the panel has embedded the icon and has moved to its final place.
    bool IsDocked() const { return Panel::Place().contains(Place()); }

    /// Opens the menu with the mouse and clicks on the item `text`.
    void Choose(const QString& text) const
    {
        Desktop::MoveTo(Place().center());
        Desktop::Do({QStringLiteral("click"), QStringLiteral("3")});
        const QMenu* menu = Icon()->contextMenu();
        QTRY_VERIFY(menu->isVisible());
        for (QAction* action : menu->actions()) {
            if (action->text() == text) {
                Desktop::Click(menu->mapToGlobal(menu->actionGeometry(action).center()));
                QTRY_VERIFY(!menu->isVisible());
                return;
            }
        }
        QFAIL(qPrintable(text));
    }
};

/// The message beside the icon.
QWidget* Balloon()
{
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->inherits("QBalloonTip") && widget->isVisible())
            return widget;
    return nullptr;
}

bool BalloonBegins(const QString& text)
{
    const QWidget* balloon = Balloon();
    if (!balloon)
        return false;
    for (const QLabel* label : balloon->findChildren<QLabel*>())
        if (label->text().startsWith(text))
            return true;
    return false;
}

} // namespace

/// The host's icon in a real system tray, worked with the mouse.
class TestDesktopTray : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        // The server may still announce a panel that has just ended.
        QTRY_VERIFY(!QSystemTrayIcon::isSystemTrayAvailable());
    }

    void iconIsShown();
    void closingHidesToTheTray();
    void clickShowsTheDialog();
    void samplesAreToldInABalloon();
    void startAtLoginIsSwitchedInTheMenu();
    void quitAsksWhileInUse();
    void onlyAFailedSaveIsReported();
    void noticesAreShownInBalloons();
    void restartedPanelTakesTheIcon();
    void laterPanelTakesTheIcon();
};

void TestDesktopTray::iconIsShown()
{
    const Panel panel;
    Session session;
    QTRY_VERIFY(session.IsDocked());
    QTRY_VERIFY(session.fake.isVisible());
    // The screen shows the blue background of the icon, not an empty place.
    const QColor blue(0x1f, 0x5f, 0x9e);
    const auto hasBlue = [&] {
        const QImage image = session.fake.screen()
                                 ->grabWindow(0, session.Place().x(), session.Place().y(), session.Place().width(),
                                              session.Place().height())
                                 .toImage();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                if (image.pixelColor(x, y) == blue)
                    return true;
        }
        return false;
    };
    QTRY_VERIFY(hasBlue());
}

void TestDesktopTray::closingHidesToTheTray()
{
    const Panel panel;
    Session session;
    QTRY_VERIFY(session.IsDocked());
    session.fake.close();
    const QString text = QStringLiteral("The connect dialog stays here until you choose \"Quit\".");
    QTRY_VERIFY(BalloonBegins(text));
    QVERIFY(session.fake.isHidden());
    QTRY_COMPARE(session.autoSaved, 1);
    QCOMPARE(session.end->count(), 0);

    Balloon()->close();
    emit session.Icon()->activated(QSystemTrayIcon::Trigger);
    QTRY_VERIFY(session.fake.isVisible());
    session.fake.close();
    QTRY_COMPARE(session.autoSaved, 2);
    // Once is enough.
    QVERIFY(!Balloon());
    QCOMPARE(session.end->count(), 0);
}

void TestDesktopTray::clickShowsTheDialog()
{
    const Panel panel;
    Session session;
    QTRY_VERIFY(session.IsDocked());
    session.fake.close();
    QTRY_COMPARE(session.autoSaved, 1);
    Desktop::Click(session.Place().center());
    QTRY_VERIFY(session.fake.isVisible());
    QTRY_VERIFY(session.fake.isActiveWindow());
}

void TestDesktopTray::samplesAreToldInABalloon()
{
    const Panel panel;
    Session session;
    QTRY_VERIFY(session.IsDocked());
    QVERIFY(session.session->ShowSamplesAreUsed());
    QTRY_VERIFY(BalloonBegins(QStringLiteral("No data directory is set")));
    Balloon()->close();
}

void TestDesktopTray::startAtLoginIsSwitchedInTheMenu()
{
    const QTemporaryDir folder;
    const QByteArray home = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder.path()));
    const auto restore = qScopeGuard([&home] { qputenv("XDG_CONFIG_HOME", home); });
    const Panel panel;
    Session session;
    QTRY_VERIFY(session.IsDocked());
    QVERIFY(!Autostart::IsOn());
    session.Choose(QStringLiteral("Start at login"));
    QTRY_VERIFY(Autostart::IsOn());
    session.Choose(QStringLiteral("Start at login"));
    QTRY_VERIFY(!Autostart::IsOn());
}

void TestDesktopTray::quitAsksWhileInUse()
{
    const Panel panel;
    Session session;
    QTRY_VERIFY(session.IsDocked());
    session.fake.SetStatus(0, 1);
    session.fake.close();
    QTRY_COMPARE(session.autoSaved, 1);
    session.Choose(QStringLiteral("Quit"));
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    QVERIFY(box);
    QTRY_VERIFY(box->isActiveWindow());
    Desktop::Press(QStringLiteral("Return"));
    QTRY_VERIFY(!QApplication::activeModalWidget());
    QCOMPARE(session.end->count(), 0);

    session.Choose(QStringLiteral("Quit"));
    QTRY_VERIFY(QApplication::activeModalWidget() && QApplication::activeModalWidget()->isActiveWindow());
    Desktop::Press(QStringLiteral("Tab"));
    Desktop::Press(QStringLiteral("space"));
    QTRY_COMPARE(session.end->count(), 1);
}

void TestDesktopTray::onlyAFailedSaveIsReported()
{
    const Panel panel;
    Session session;
    QTRY_VERIFY(session.IsDocked());
    session.Choose(QStringLiteral("Save now"));
    QTRY_COMPARE(session.autoSaved, 1);
    QVERIFY(!Balloon());
    session.canSave = false;
    session.Choose(QStringLiteral("Save now"));
    QTRY_VERIFY(BalloonBegins(QStringLiteral("The configuration could not be saved.\n\nthe disk is full\n\n")));
    Balloon()->close();
}

void TestDesktopTray::noticesAreShownInBalloons()
{
    const ErrorsTo nobody(QProcess::nullDevice());
    const Panel panel;
    Session session;
    QTRY_VERIFY(session.IsDocked());
    session.notices.Report(QStringLiteral("the document was damaged"));
    QTRY_VERIFY(BalloonBegins(QStringLiteral("the document was damaged")));
    Balloon()->close();
    // The host stays in the tray, so nothing is lost yet.
    session.canSave = false;
    session.fake.close();
    QTRY_VERIFY(BalloonBegins(QStringLiteral("The configuration could not be saved.\n\nthe disk is full\n\n")));
    QVERIFY(!QApplication::activeModalWidget());
    QCOMPARE(session.end->count(), 0);
    Balloon()->close();
    session.Choose(QStringLiteral("Quit"));
    QTRY_VERIFY(QApplication::activeModalWidget());
    QCOMPARE(session.end->count(), 0);
    Desktop::Press(QStringLiteral("Escape"));
    QTRY_VERIFY(session.fake.isVisible());
    QVERIFY(!QApplication::activeModalWidget());
}

void TestDesktopTray::restartedPanelTakesTheIcon()
{
    Panel panel;
    Session session;
    QTRY_VERIFY(session.IsDocked());
    session.fake.close();
    QTRY_COMPARE(session.autoSaved, 1);
    panel.Stop();
    QTRY_VERIFY(session.fake.isVisible());
    panel.Start();
    QTRY_VERIFY(session.IsDocked());
    session.Choose(QStringLiteral("Save now"));
    QTRY_COMPARE(session.autoSaved, 2);
    QCOMPARE(session.end->count(), 0);
}

void TestDesktopTray::laterPanelTakesTheIcon()
{
    Session session;
    QTRY_VERIFY(session.fake.isVisible());
    QVERIFY(!QSystemTrayIcon::isSystemTrayAvailable());
    const Panel panel;
    QTRY_VERIFY(session.IsDocked());
    session.fake.close();
    QTRY_COMPARE(session.autoSaved, 1);
    QVERIFY(session.fake.isHidden());
    QCOMPARE(session.end->count(), 0);
    session.Choose(QStringLiteral("Show connect dialog"));
    QTRY_VERIFY(session.fake.isVisible());
}

VEXEL_TEST(QTEST_MAIN, TestDesktopTray)
#include "tst_desktoptray.moc"
