// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "control/controladdress.h"
#include "control/controlserver.h"
#include "platform/instancelock.h"
#include "tests/host/hostinprocess.h"
#include "tests/support/files.h"
#include "tests/support/system/errorsto.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"

#include <QAction>
#include <QApplication>
#include <QDirIterator>
#include <QFileDialog>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QSessionManager>
#include <QSystemTrayIcon>
#include <QTest>
#include <QTimer>

#include <array>
#include <functional>
#include <utility>

namespace {

/// Emits what Qt emits when the session manager ends the session, without a session manager.
void EndSession()
{
    const QMetaObject& meta = QGuiApplication::staticMetaObject;
    const QMetaMethod signal = meta.method(meta.indexOfSignal("commitDataRequest(QSessionManager&)"));
    alignas(std::max_align_t) std::array<char, sizeof(QSessionManager)> nobody = {};
    QVERIFY(signal.invoke(qApp, Qt::DirectConnection, QGenericArgument("QSessionManager&", nobody.data())));
}

void Terminate()
{
    QVERIFY(System::AskToEnd(QCoreApplication::applicationPid()));
}

/// The menu of the icon in the tray, whether a tray shows it or not.
QAction* TrayAction(const QString& text)
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() != QLatin1String("m_trayMenu"))
            continue;
        for (QAction* action : widget->findChildren<QAction*>())
            if (action->text() == text)
                return action;
    }
    return nullptr;
}

/// Whether Qt's own texts can be found: installed with Qt, or with the product.
bool HasTextsOfQt()
{
    const QString file = QStringLiteral("/qtbase_de.qm");
    return QFileInfo::exists(QLibraryInfo::path(QLibraryInfo::TranslationsPath) + file) ||
           QFileInfo::exists(QCoreApplication::applicationDirPath() + QStringLiteral("/../share/vexel/translations") +
                             file);
}

/// Calls `work` once a message box is open.
void WhenABoxIsOpen(const std::function<void(QMessageBox&)>& work)
{
    auto* timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, work] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            timer->stop();
            timer->deleteLater();
            work(*box);
        }
    });
    timer->start(1);
}

} // namespace

class TestApplication : public QObject
{
    Q_OBJECT

private slots:
    void endOfSessionSavesEverything();
    void changesAreSavedWhileTheDialogIsOpen();
    void requestToEndClosesAnOpenBox_data();
    void requestToEndClosesAnOpenBox();
    void saveNowSavesSoon();
    void quitEndsTheHost();
    void closingWithoutATrayEndsTheHost();
    void closingThatCannotSaveAsks_data();
    void closingThatCannotSaveAsks();
    void damagedConfigurationIsShownInABox();
    void trayMenuIsTranslated();
    void buttonsAndFileDialogsAreTranslated();
    void sizeOutlivesTheRun_data();
    void sizeOutlivesTheRun();
    void unusableSizeKeepsTheWindowOnTheScreen_data();
    void unusableSizeKeepsTheWindowOnTheScreen();
    void secondHostShowsTheRunningDialog();
    void holderWithoutADialogIsReported();
    void useOfTheSamplesIsToldOnce();
};

void TestApplication::endOfSessionSavesEverything()
{
    Host host;
    const ExitCode code = host.Run([&](const ConnectDialog& dialog) {
        AddEntry(dialog, QStringLiteral("Session mast"));
        auto* pattern = dialog.Window()->findChild<QLineEdit*>(QStringLiteral("m_pFilterPatternLineEdit"));
        QVERIFY(pattern);
        pattern->setText(QStringLiteral("SessionPattern"));
        dialog.Window()->resize(611, 317);
        QVERIFY(!host.HasStored("Session mast"));
        EndSession();
        // The process may be gone after this.
        QVERIFY(host.HasStored("Session mast"));
        QVERIFY(host.Stored().contains("FilterPattern\": \"SessionPattern\""));
        QVERIFY(host.Stored().contains("Width\": \"611\""));
        QVERIFY(host.Stored().contains("Height\": \"317\""));
        // Or live on: ending a session can be called off.
        QVERIFY(dialog.Window()->isVisible());
    });
    QCOMPARE(code, ExitCode::Done);
}

// The process may end at any moment.
void TestApplication::changesAreSavedWhileTheDialogIsOpen()
{
    static const QRegularExpression list(QStringLiteral("\"ConnectionsModel/ModelMimeData\": \"([0-9a-f]+)\""));
    Host host;
    const auto storedList = [&host] {
        return list.match(QString::fromUtf8(host.Stored())).captured(1);
    };
    QString saved;
    host.Run([&](const ConnectDialog& dialog) {
        AddEntry(dialog, QStringLiteral("Sudden mast"), true);
        AddEntry(dialog, QStringLiteral("Sudden pier"));
        QTRY_VERIFY_WITH_TIMEOUT(host.HasStored("Sudden mast"), 60'000);
        saved = storedList();
    });
    QVERIFY(!saved.isEmpty());
    QCOMPARE(storedList(), saved); // the plug-in itself stores the same
}

void TestApplication::requestToEndClosesAnOpenBox_data()
{
    QTest::addColumn<QString>("title");
    QTest::newRow("info") << QStringLiteral("Info");
    QTest::newRow("problem") << QStringLiteral("Problem");
    QTest::newRow("two problems to come") << QStringLiteral("Problem");
    QTest::newRow("question whether to quit") << QStringLiteral("Vexel - Connect Dialog");
}

void TestApplication::requestToEndClosesAnOpenBox()
{
    QFETCH(const QString, title);
    Host host;
    bool wasOpen = false;
    const ExitCode code = host.Run(
        [&](const ConnectDialog& dialog) {
            AddEntry(dialog, QStringLiteral("Box mast"), true);
            AddEntry(dialog, QStringLiteral("Box pier"), qstrcmp(QTest::currentDataTag(), "two problems to come") == 0);
            WhenABoxIsOpen([&, title](const QMessageBox& box) {
                QCOMPARE(box.windowTitle(), title);
                wasOpen = true;
                Terminate();
            });
            if (title == QLatin1String("Info")) {
                dialog.Views().constFirst()->clearSelection();
                dialog.Window()->findChild<QAction*>(QStringLiteral("m_pDeleteAction"))->trigger();
            } else if (title == QLatin1String("Problem")) {
                ConnectButton(dialog)->click();
            } else {
                dialog.Entries()->setData(dialog.Entries()->index(0, static_cast<int>(EntryColumn::Status)), 1);
                TrayAction(QStringLiteral("Quit"))->trigger();
            }
        },
        true);
    QCOMPARE(code, ExitCode::Done);
    QVERIFY(wasOpen);
    QVERIFY(!QApplication::activeModalWidget());
    QVERIFY(host.HasStored("Box mast"));
}

void TestApplication::saveNowSavesSoon()
{
    Host host;
    host.Run([&](const ConnectDialog& dialog) {
        AddEntry(dialog, QStringLiteral("Now mast"));
        QVERIFY(!host.HasStored("Now mast"));
        TrayAction(QStringLiteral("Save now"))->trigger();
        QTRY_VERIFY(host.HasStored("Now mast"));
        QVERIFY(dialog.Window()->isVisible());
    });
}

void TestApplication::quitEndsTheHost()
{
    Host host;
    const ExitCode code = host.Run(
        [&](const ConnectDialog& dialog) {
            AddEntry(dialog, QStringLiteral("Quit mast"));
            TrayAction(QStringLiteral("Quit"))->trigger();
            QVERIFY(!QApplication::activeModalWidget());
        },
        true);
    QCOMPARE(code, ExitCode::Done);
    QVERIFY(host.HasStored("Quit mast"));
}

void TestApplication::closingWithoutATrayEndsTheHost()
{
    if (QSystemTrayIcon::isSystemTrayAvailable())
        QSKIP("There is a tray here.");
    Host host;
    const ExitCode code = host.Run(
        [&](const ConnectDialog& dialog) {
            AddEntry(dialog, QStringLiteral("Close mast"));
            dialog.Window()->close();
        },
        true);
    QCOMPARE(code, ExitCode::Done);
    QVERIFY(host.HasStored("Close mast"));
}

void TestApplication::closingThatCannotSaveAsks_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("failure");
    QTest::addColumn<QString>("advice");
    QTest::newRow("English") << QStringLiteral("en_GB") << QStringLiteral("The configuration could not be saved.")
                             << QStringLiteral("keep the list with \"Export...\" in another folder.");
    QTest::newRow("German") << QStringLiteral("de_DE")
                            << QStringLiteral("Die Konfiguration konnte nicht gespeichert werden.")
                            << QStringLiteral("mit \"Exportieren...\" in einem anderen Ordner.");
}

// It says why, and what to do.
void TestApplication::closingThatCannotSaveAsks()
{
    if (QSystemTrayIcon::isSystemTrayAvailable())
        QSKIP("There is a tray here.");
    QFETCH(const QString, language);
    QFETCH(const QString, failure);
    QFETCH(const QString, advice);
    Host host;
    host.options.language = QLocale(language);
    // The one above it cannot be taken away everywhere, since a file in it is open.
    const QString folder = host.options.configDirectory + QStringLiteral("/application");
    const QString aside = host.directory.filePath(QStringLiteral("aside"));
    QStringList asked;
    const ExitCode code = host.Run(
        [&](const ConnectDialog& dialog) {
            AddEntry(dialog, QStringLiteral("Kept mast"));
            QVERIFY(QDir().mkpath(folder));
            QVERIFY(QDir().rename(folder, aside));
            QFile blocker(folder);
            QVERIFY(blocker.open(QIODevice::WriteOnly));
            blocker.close();
            QWidget* const window = dialog.Window();
            WhenABoxIsOpen([&, window](QMessageBox& box) {
                asked.append(box.text());
                // The user makes room, and closes again.
                QVERIFY(QFile::remove(folder));
                QVERIFY(QDir().rename(aside, folder));
                box.reject();
                QVERIFY(window->isVisible());
                window->close();
            });
            window->close();
        },
        true);
    QCOMPARE(asked.size(), 1);
    const QStringList paragraphs = asked.constFirst().split(QStringLiteral("\n\n"));
    QCOMPARE(paragraphs.size(), 4); // the last one says what is lost
    QCOMPARE(paragraphs.at(0), failure);
    QVERIFY2(paragraphs.at(1).contains(folder + QStringLiteral(" cannot be created")), qPrintable(paragraphs.at(1)));
    QVERIFY2(paragraphs.at(2).endsWith(advice), qPrintable(paragraphs.at(2)));
    QCOMPARE(code, ExitCode::Done);
    QVERIFY(host.HasStored("Kept mast"));
}

void TestApplication::damagedConfigurationIsShownInABox()
{
    Host host;
    for (const char* name : {"First mast", "Second mast"})
        host.Run([&](const ConnectDialog& dialog) { AddEntry(dialog, QString::fromLatin1(name)); });
    QFile document(host.options.configDirectory + QStringLiteral("/application/@application.json"));
    QVERIFY(document.open(QIODevice::ReadWrite));
    QVERIFY(document.resize(0) && document.write(QByteArray(1000, '\0')) == 1000);
    document.close();

    const ErrorsTo nobody(QProcess::nullDevice());
    QString shown;
    host.Run([&](const ConnectDialog&) {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName() == QLatin1String("m_noticeBox") && widget->isVisible())
                shown = qobject_cast<QMessageBox*>(widget)->text();
    });
    QVERIFY2(shown.contains(QLatin1String("damaged")), qPrintable(shown));
    // It goes with the host.
    for (const QWidget* widget : QApplication::topLevelWidgets())
        QVERIFY(widget->objectName() != QLatin1String("m_noticeBox"));
}

void TestApplication::trayMenuIsTranslated()
{
    Host host;
    host.options.language = QLocale(QStringLiteral("de_AT"));
    host.Run([&](const ConnectDialog&) {
        QVERIFY(TrayAction(QStringLiteral("Jetzt speichern")));
        QVERIFY(TrayAction(QStringLiteral("Beim Anmelden starten")));
        QVERIFY(TrayAction(QStringLiteral("Hilfe")));
        QVERIFY(TrayAction(QStringLiteral("Beenden")));
        QVERIFY(!TrayAction(QStringLiteral("Quit")));
    });
    // And takes it back.
    host.options.language = QLocale(QStringLiteral("en_GB"));
    host.Run([&](const ConnectDialog&) { QVERIFY(TrayAction(QStringLiteral("Quit"))); });
}

void TestApplication::buttonsAndFileDialogsAreTranslated()
{
    if (!HasTextsOfQt())
        QSKIP("Qt's translations are not installed.");
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    const auto texts = [] {
        const QMessageBox box(QMessageBox::Question, {}, {}, QMessageBox::Save | QMessageBox::Cancel);
        const QFileDialog fileDialog;
        return QStringList{box.button(QMessageBox::Save)->text(), box.button(QMessageBox::Cancel)->text(),
                           fileDialog.labelText(QFileDialog::FileName)};
    };
    const QStringList english = texts();
    Host host;
    host.options.language = QLocale(QStringLiteral("de"));
    QStringList german;
    host.Run([&](const ConnectDialog&) { german = texts(); });
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs, false);
    QCOMPARE(german,
             (QStringList{QStringLiteral("Speichern"), QStringLiteral("Abbrechen"), QStringLiteral("Datei&name:")}));
    QCOMPARE(texts(), english);
}

void TestApplication::sizeOutlivesTheRun_data()
{
    QTest::addColumn<bool>("details");
    QTest::newRow("without details") << false;
    QTest::newRow("with details") << true;
}

void TestApplication::sizeOutlivesTheRun()
{
    QFETCH(const bool, details);
    Host host;
    const QSize size(703, 409);
    host.Run([&](const ConnectDialog& dialog) {
        QVERIFY(dialog.Window()->size() != size);
        dialog.Window()->findChild<QAction*>(QStringLiteral("m_pDetailsAction"))->setChecked(details);
        QCOMPARE(dialog.Views().constLast()->isVisible(), details);
        dialog.Window()->resize(size);
    });
    for (int run = 0; run < 2; ++run)
        host.Run([&](const ConnectDialog& dialog) { QCOMPARE(dialog.Window()->size(), size); });
}

void TestApplication::unusableSizeKeepsTheWindowOnTheScreen_data()
{
    QTest::addColumn<QString>("width");
    QTest::addColumn<QString>("height");
    QTest::newRow("larger than the screen") << QStringLiteral("9000") << QStringLiteral("9000");
    QTest::newRow("words") << QStringLiteral("broad") << QStringLiteral("@ByteArray(x)");
    QTest::newRow("negative") << QStringLiteral("-5") << QStringLiteral("-5");
    QTest::newRow("far too large") << QStringLiteral("99999999999999999999") << QStringLiteral("2147483647");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("tiny") << QStringLiteral("1") << QStringLiteral("1");
}

void TestApplication::unusableSizeKeepsTheWindowOnTheScreen()
{
    QFETCH(const QString, width);
    QFETCH(const QString, height);
    Host host;
    host.Run([](const ConnectDialog&) {});
    // Edited by hand.
    int values = 0;
    QDirIterator documents(host.options.configDirectory, {QStringLiteral("*.json")}, QDir::Files,
                           QDirIterator::Subdirectories);
    while (documents.hasNext()) {
        const QString fileName = documents.next();
        if (fileName.contains(QLatin1String("versions")))
            continue;
        QString text = QString::fromUtf8(Files::Read(fileName));
        const auto set = [&](const char* key, const QString& value) {
            const QRegularExpression member(QStringLiteral("(/%1\": )\"\\d+\"").arg(QLatin1String(key)));
            values += static_cast<int>(text.count(member));
            text.replace(member, QStringLiteral("\\1\"%1\"").arg(value));
        };
        set("Width", width);
        set("Height", height);
        QVERIFY(Files::Write(fileName, text.toUtf8()));
    }
    QCOMPARE(values, 2);
    host.Run([&](const ConnectDialog& dialog) {
        const QWidget* window = dialog.Window();
        const QSize screen = window->screen()->availableSize();
        // All of it can be reached.
        QVERIFY2(window->width() <= screen.width() && window->height() <= screen.height(),
                 qPrintable(QStringLiteral("%1x%2").arg(window->width()).arg(window->height())));
        const QWidget* const button = ConnectButton(dialog);
        QVERIFY(window->rect().contains(QRect(button->mapTo(window, QPoint()), button->size())));
        QVERIFY(dialog.Views().constFirst()->height() > 20);
    });
}

void TestApplication::secondHostShowsTheRunningDialog()
{
    Host host;
    host.Run([&](const ConnectDialog& dialog) {
        AddEntry(dialog, QStringLiteral("First mast"));
        TrayAction(QStringLiteral("Save now"))->trigger();
        QTRY_VERIFY(host.HasStored("First mast") && host.Stored().contains("FilterSettings"));
        const QByteArray before = host.Stored();
        dialog.Window()->hide();
        QProcess second;
        second.start(QStringLiteral(VEXELHOST), {QStringLiteral("--config"), host.options.configDirectory,
                                                 QStringLiteral("--language"), QStringLiteral("de")});
        QTRY_COMPARE(second.state(), QProcess::NotRunning);
        QCOMPARE(second.exitCode(), 0);
        QVERIFY(dialog.Window()->isVisible());
        QCOMPARE(host.Stored(), before);
    });
}

void TestApplication::holderWithoutADialogIsReported()
{
    Host host;
    InstanceLock lock;
    QCOMPARE(lock.TryLock(host.options.configDirectory), InstanceLock::Result::Locked);
    ControlServer server(0, QStringLiteral("vexelctl"));
    const QString address = NewControlAddress(host.options.configDirectory);
    QCOMPARE(server.Listen(address), QString());
    lock.SetAddress(address);
    connect(&server, &ControlServer::Requested, this, [](const ControlRequest& request, ControlReply* reply) {
        QCOMPARE(request.content.value(QLatin1String("command")).toString(), QStringLiteral("show"));
        reply->End(4, QStringLiteral("no dialog here"));
    });
    QProcess second;
    second.start(QStringLiteral(VEXELHOST), {QStringLiteral("--config"), host.options.configDirectory});
    QTRY_COMPARE(second.state(), QProcess::NotRunning);
    QCOMPARE(second.exitCode(), 4);
    const QByteArray said = second.readAllStandardError();
    QVERIFY2(said.contains("vexelhost: no dialog here"), said.constData());
}

void TestApplication::useOfTheSamplesIsToldOnce()
{
    if (QSystemTrayIcon::isSystemTrayAvailable())
        QSKIP("The message is in the tray here.");
    const auto notices = [] {
        QStringList texts;
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* box = qobject_cast<QMessageBox*>(widget); box && box->isVisible())
                texts.append(box->text());
        return texts;
    };
    QStringList told;
    const auto look = [&](const ConnectDialog&) {
        told = notices();
    };
    Host host;
    const QString directory = std::exchange(host.options.dataDirectory, QString());
    // Nobody sees a hidden host, so it keeps the message for the next one.
    host.options.hidden = true;
    QCOMPARE(host.Run(look), ExitCode::Done);
    QCOMPARE(told, QStringList());
    host.options.hidden = false;
    // A directory of the settings files.
    host.options.defaultDataDirectory = directory;
    QCOMPARE(host.Run(look), ExitCode::Done);
    QCOMPARE(told, QStringList());
    host.options.defaultDataDirectory.clear();
    QCOMPARE(host.Run(look), ExitCode::Done);
    QCOMPARE(told.size(), 1);
    QVERIFY2(told.constFirst().startsWith(QLatin1String("No data directory is set")), qPrintable(told.constFirst()));
    QCOMPARE(host.Run(look), ExitCode::Done);
    QCOMPARE(told, QStringList());
}

VEXEL_TEST(QTEST_MAIN, TestApplication)
#include "tst_application.moc"
