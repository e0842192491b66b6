// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/hostsession.h"
#include "tests/support/system/errorsto.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QDesktopServices>
#include <QMenu>
#include <QMessageBox>
#include <QProcess>
#include <QSignalSpy>
#include <QSystemTrayIcon>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <memory>
#include <optional>

namespace {

/// A session without a tray, and without anybody at standard error.
struct Session : HostSession
{
    explicit Session(const MenuSettings& settings = {})
        : HostSession(settings)
    {
    }

    QAction* Action(const QString& text) const
    {
        for (QAction* action : session->findChild<QSystemTrayIcon*>()->contextMenu()->actions())
            if (action->text() == text)
                return action;
        return nullptr;
    }

    const ErrorsTo errors{QProcess::nullDevice()};
};

QMessageBox* Question()
{
    return qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
}

void Answer(const QString& text)
{
    QVERIFY(Question());
    for (QAbstractButton* button : Question()->buttons()) {
        if (button->text() == text) {
            button->click();
            return;
        }
    }
    QFAIL(qPrintable(text));
}

QMessageBox* NoticeOnScreen()
{
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->objectName() == QLatin1String("m_noticeBox") && widget->isVisible())
            return qobject_cast<QMessageBox*>(widget);
    return nullptr;
}

const QString kNotSaved = QStringLiteral("The configuration could not be saved.\n\nthe disk is full\n\n");

} // namespace

class TestDialogSession : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (QSystemTrayIcon::isSystemTrayAvailable())
            QSKIP("There is a tray here.");
        QApplication::setQuitOnLastWindowClosed(false);
    }
    void cleanup()
    {
        QVERIFY(!Question());
        QVERIFY(!NoticeOnScreen());
    }

    void closingSavesAndEnds();
    void closingAsksWhenSavingFails();
    void quittingAsksWhenSavingFails();
    void failedSaveWhileInUseIsShown();
    void failedSaveOnHidingIsShownAgain();
    void failedSaveFromTheTrayIsShown();
    void errorIsForgottenWhenAllIsSaved();
    void changesAreSavedWhileTheDialogIsOpen();
    void failedSavesOfChangesAreShownOnce();
    void stayingHiddenIsShown();
    void nothingIsShownWhereStandardErrorIsRead();
    void earlierNoticesAreShownWithTheDialog();
    void severalNoticesShareABox();
    void helpOpensTheGuide();
    void helpNeedsAGuide();
    void samplesAreToldInABox();
};

void TestDialogSession::closingSavesAndEnds()
{
    Session host;
    host.session->Start();
    // Decisions queued at the start are made.
    QCoreApplication::processEvents();
    host.fake.close();
    QTRY_COMPARE(host.end->count(), 1);
    QVERIFY(host.saved > 0);
}

void TestDialogSession::closingAsksWhenSavingFails()
{
    Session host;
    host.session->Start();
    host.canSave = false;
    host.fake.close();
    QTRY_VERIFY(Question());
    QVERIFY2(Question()->text().startsWith(kNotSaved), qPrintable(Question()->text()));
    QCOMPARE(host.end->count(), 0);
    // After "Cancel" the dialog is back, with all entries.
    Answer(QStringLiteral("Cancel"));
    QTRY_VERIFY(host.fake.isVisible());
    QVERIFY(!Question());

    host.fake.close();
    QTRY_VERIFY(Question());
    Answer(QStringLiteral("Quit"));
    QTRY_COMPARE(host.end->count(), 1);

    // With room again, it is as if nothing had been.
    host.fake.show();
    host.canSave = true;
    host.fake.close();
    QTRY_COMPARE(host.end->count(), 2);
}

void TestDialogSession::quittingAsksWhenSavingFails()
{
    Session host;
    host.session->Start();
    host.canSave = false;
    host.fake.SetStatus(0, 1);
    const QMenu* menu = host.session->findChild<QSystemTrayIcon*>()->contextMenu();
    menu->actions().constLast()->trigger();
    QTRY_VERIFY(Question());
    QVERIFY2(Question()->text().contains(QLatin1String("in use")), qPrintable(Question()->text()));
    Answer(QStringLiteral("Quit"));
    QTRY_VERIFY(Question());
    QVERIFY2(Question()->text().startsWith(kNotSaved), qPrintable(Question()->text()));
    QCOMPARE(host.end->count(), 0);
    Answer(QStringLiteral("Quit"));
    QCOMPARE(host.end->count(), 1);
}

void TestDialogSession::failedSaveWhileInUseIsShown()
{
    Session host;
    host.session->Start();
    host.canSave = false;
    host.fake.SetStatus(0, 1);
    host.fake.close();
    QTRY_VERIFY(NoticeOnScreen() && NoticeOnScreen()->text().contains(kNotSaved));
    QVERIFY(!Question());
    QCOMPARE(host.end->count(), 0);
}

// The failed save of a change has been shown before; somebody who hides the dialog believes that it saves.
void TestDialogSession::failedSaveOnHidingIsShownAgain()
{
    Session host;
    host.session->Start();
    host.AutoSaveTimer()->setInterval(0);
    host.canSave = false;
    host.fake.SetStatus(0, 1);
    host.fake.Add(QStringLiteral("pier"));
    QTRY_VERIFY(NoticeOnScreen());
    NoticeOnScreen()->close();
    host.fake.close();
    QTRY_VERIFY(NoticeOnScreen() && NoticeOnScreen()->text().contains(kNotSaved));
    NoticeOnScreen()->close();
    QCOMPARE(host.saved, 0); // nothing that keeps the window waiting
}

void TestDialogSession::failedSaveFromTheTrayIsShown()
{
    Session host;
    host.session->Start();
    host.canSave = false;
    QSystemTrayIcon* const tray = host.session->findChild<QSystemTrayIcon*>();
    QVERIFY(host.Action(QStringLiteral("Save now")));
    host.Action(QStringLiteral("Save now"))->trigger();
    QTRY_COMPARE(host.autoSaved, 1);
    QVERIFY(tray);
    QCoreApplication::processEvents();
    QVERIFY(!NoticeOnScreen()); // the tray shows it
    QCOMPARE(host.saved, 0);
}

void TestDialogSession::errorIsForgottenWhenAllIsSaved()
{
    Session host;
    host.session->Start();
    host.AutoSaveTimer()->setInterval(60'000);
    host.fake.SetStatus(0, 1);
    host.fake.close();
    QVERIFY(host.session->Save().isEmpty()); // takes over what hiding asked for
    QTRY_VERIFY(NoticeOnScreen());
    NoticeOnScreen()->close(); // tells that the entry is in use
    host.canSave = false;
    host.AutoSaveTimer()->setInterval(0);
    host.fake.Add(QStringLiteral("pier"));
    QTRY_VERIFY(NoticeOnScreen());
    NoticeOnScreen()->close();
    const int before = host.autoSaved;
    host.fake.Add(QStringLiteral("quay"));
    QTRY_COMPARE(host.autoSaved, before + 1);
    QCoreApplication::processEvents();
    QVERIFY(!NoticeOnScreen());
}

void TestDialogSession::changesAreSavedWhileTheDialogIsOpen()
{
    Session host;
    host.session->Start();
    host.AutoSaveTimer()->setInterval(0);
    host.fake.Add(QStringLiteral("pier"));
    QTRY_COMPARE(host.autoSaved, 1);
    QCOMPARE(host.saved, 0);

    // A save of everything makes one of the change superfluous.
    host.AutoSaveTimer()->setInterval(60'000);
    host.fake.Add(QStringLiteral("quay"));
    QVERIFY(host.AutoSaveTimer()->isActive());
    host.session->Save();
    QVERIFY(!host.AutoSaveTimer()->isActive());
    QCOMPARE(host.saved, 1);
}

void TestDialogSession::failedSavesOfChangesAreShownOnce()
{
    Session host;
    host.session->Start();
    host.AutoSaveTimer()->setInterval(0);
    host.canSave = false;
    host.fake.Add(QStringLiteral("pier"));
    QTRY_VERIFY(NoticeOnScreen() && NoticeOnScreen()->text().startsWith(kNotSaved));
    NoticeOnScreen()->close();
    host.fake.Add(QStringLiteral("quay"));
    QTRY_COMPARE(host.autoSaved, 2);
    QCoreApplication::processEvents();
    QVERIFY(!NoticeOnScreen());

    host.canSave = true;
    host.fake.Add(QStringLiteral("dock"));
    QTRY_COMPARE(host.autoSaved, 3);
    host.canSave = false;
    host.fake.Add(QStringLiteral("mole"));
    QTRY_VERIFY(NoticeOnScreen());
    NoticeOnScreen()->close();

    host.canSave = true;
    QVERIFY(host.session->Save().isEmpty());
    host.canSave = false;
    host.fake.Add(QStringLiteral("weir"));
    QTRY_VERIFY(NoticeOnScreen());
    NoticeOnScreen()->close();
}

void TestDialogSession::stayingHiddenIsShown()
{
    Session host;
    host.session->Start();
    host.fake.SetStatus(0, 1);
    host.fake.close();
    QTRY_VERIFY(NoticeOnScreen());
    for (const QString& part : {QStringLiteral("1 entry is still in use."), QStringLiteral("kitestarter")})
        QVERIFY2(NoticeOnScreen()->text().contains(part), qPrintable(NoticeOnScreen()->text()));
    QVERIFY(host.fake.isHidden());
    // The notice does not keep the dialog from coming back.
    host.fake.SetStatus(0, 0);
    QTRY_VERIFY(host.fake.isVisible());
    QVERIFY(NoticeOnScreen());
    NoticeOnScreen()->close();
    QCOMPARE(host.end->count(), 0);
}

void TestDialogSession::nothingIsShownWhereStandardErrorIsRead()
{
    const QTemporaryDir directory;
    const QString fileName = directory.filePath(QStringLiteral("errors"));
    {
        Session host;
        const ErrorsTo errors(fileName);
        host.session->Start();
        host.canSave = false;
        host.fake.SetStatus(0, 1);
        host.fake.close();
        QTRY_VERIFY(host.autoSaved > 0);
        QCoreApplication::processEvents();
        QVERIFY(!NoticeOnScreen());
    }
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray said = file.readAll();
    QVERIFY2(said.contains(": 1 entry is still in use"), said.constData());
}

void TestDialogSession::earlierNoticesAreShownWithTheDialog()
{
    Session host;
    host.notices.Report(QStringLiteral("the document <b>was</b> damaged"));
    QVERIFY(!NoticeOnScreen());
    host.session->Start();
    QTRY_VERIFY(NoticeOnScreen());
    QCOMPARE(NoticeOnScreen()->text(), QStringLiteral("the document <b>was</b> damaged"));
    QCOMPARE(NoticeOnScreen()->textFormat(), Qt::PlainText);
    // The dialog can be used meanwhile.
    QVERIFY(host.fake.isVisible());
    QVERIFY(!QApplication::activeModalWidget());
}

void TestDialogSession::severalNoticesShareABox()
{
    Session host;
    host.session->Start();
    host.notices.Report(QStringLiteral("one"));
    const QMessageBox* box = NoticeOnScreen();
    QVERIFY(box);
    host.notices.Report(QStringLiteral("two"));
    QCOMPARE(NoticeOnScreen(), box);
    QCOMPARE(box->text(), QStringLiteral("one\n\ntwo"));
    NoticeOnScreen()->close();
    host.notices.Report(QStringLiteral("three"));
    QVERIFY(NoticeOnScreen());
    QCOMPARE(NoticeOnScreen()->text(), QStringLiteral("three"));
}

/// Takes the place of the user's browser.
class Browser : public QObject
{
    Q_OBJECT

public:
    Browser() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "Open"); }
    ~Browser() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

    QList<QUrl> opened;

public slots:
    void Open(const QUrl& url) { opened.append(url); }
};

void TestDialogSession::helpOpensTheGuide()
{
    const Browser browser;
    const QTemporaryDir folder;
    const QString guide = folder.filePath(QStringLiteral("a guide.html"));
    Session host({guide, {}});
    host.session->Start();
    QVERIFY(host.Action(QStringLiteral("Help")));
    host.Action(QStringLiteral("Help"))->trigger();
    QCOMPARE(browser.opened, QList<QUrl>{QUrl::fromLocalFile(guide)});
    // In the dialog, wherever the focus is.
    QTRY_VERIFY(QTest::qWaitForWindowActive(&host.fake));
    QTest::keyClick(host.fake.views.constLast(), Qt::Key_F1);
    QCOMPARE(browser.opened.size(), 2);
}

void TestDialogSession::helpNeedsAGuide()
{
    const Browser browser;
    Session host;
    host.session->Start();
    QVERIFY(!host.Action(QStringLiteral("Help"))->isEnabled());
    QTRY_VERIFY(QTest::qWaitForWindowActive(&host.fake));
    QTest::keyClick(&host.fake, Qt::Key_F1);
    QVERIFY(browser.opened.isEmpty());
}

void TestDialogSession::samplesAreToldInABox()
{
    Session host;
    QVERIFY(!host.session->ShowSamplesAreUsed());
    QVERIFY(!NoticeOnScreen());
    host.session->Start();
    QVERIFY(host.session->ShowSamplesAreUsed());
    QVERIFY(NoticeOnScreen());
    QVERIFY2(NoticeOnScreen()->text().contains(QLatin1String("sample applications")),
             qPrintable(NoticeOnScreen()->text()));
    // The dialog stays usable.
    QVERIFY(!Question());
}

VEXEL_TEST(QTEST_MAIN, TestDialogSession)
#include "tst_dialogsession.moc"
