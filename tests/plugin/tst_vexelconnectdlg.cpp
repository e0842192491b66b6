// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/translationcenter.h"
#include "tests/support/confignodes.h"
#include "tests/support/files.h"
#include "tests/support/linkport.h"
#include "tests/support/messageboxes.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlg.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlggui.h"

#include <QAbstractProxyModel>
#include <QApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <QUrl>
#include <QWindow>

#include <functional>
#include <memory>
#include <utility>

/// One instance of the plug-in, from `ARCreateEx` to `ARDestroy`.
class TestVexelConnectDlg : public QObject
{
    Q_OBJECT

private slots:
    // Native file dialogs do not show up as modal widgets.
    void initTestCase() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
    void init() { CfgCenter::Close(); }
    void cleanup()
    {
        TranslationCenter::Instance().SetLocale(QLocale::c());
        CfgCenter::Close();
    }

    void destroyOfNullDoesNothing();
    // First, because other instances keep the port.
    void starterShowsDialogUntilInstanceIsDestroyed();
    void destroyDeletesPartsInOrder();
    void createBuildsHiddenDialog();
    void instanceNameIsUsedForConfiguration();
    void saveStoresFilterAndEntries();
    void saveStoresFilterFirst();
    void saveDuringImportBoxStoresOldEntries();
    void saveDoesNotWriteToDisk();
    void destroyStoresFilterThenEntries();
    void destroyClosesOpenBoxes_data();
    void destroyClosesOpenBoxes();
    void destroyDuringConnectStartsNothingMore();
    void destroyDuringImportBoxStoresOldEntries();
    void translationsAreRegisteredAndUnregistered();
    void translationsAreRegisteredBeforeEntriesAreLoaded();
    void twoInstancesAreIndependent();

private:
    static void StoreTwoEntries()
    {
        Connection first;
        first.ConnectionName = QStringLiteral("first");
        first.ConnectionStatus = Connection::InUse;
        first.Selected = true;
        Connection second;
        second.ConnectionName = QStringLiteral("second");
        second.ConnectionStatus = 7;
        ConfigNodes::StoreSet(ConnectionList::Write({&first, &second}));
    }
    static QString StoredEntries() { return ConfigNodes::StoredSet(QStringLiteral("none")); }
    static QString StoredPattern()
    {
        return ConfigNodes::Filter()->GetString(QStringLiteral("FilterPattern"), QStringLiteral("none"), 0);
    }
    static QString TranslatedClose() { return QCoreApplication::translate("VexelConnectDlg", "Close"); }
    /// Calls `work` once a modal window is open.
    static void WhenABoxIsOpen(const std::function<void()>& work)
    {
        auto* const timer = new QTimer(qApp);
        connect(timer, &QTimer::timeout, timer, [timer, work] {
            if (!QApplication::activeModalWidget())
                return;
            timer->stop();
            timer->deleteLater();
            work();
        });
        timer->start(1);
    }
    static void Drop(const QList<QUrl>& urls)
    {
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(FindDialog(), &enter);
        QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(FindDialog(), &drop);
    }
    static VexelConnectDlgGUI* FindDialog()
    {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* const dialog = qobject_cast<VexelConnectDlgGUI*>(widget))
                return dialog;
        return nullptr;
    }
    static ConnectionsModel* FindModel()
    {
        const auto* const proxy = qobject_cast<QAbstractProxyModel*>(FindDialog()->m_pBasicView->model());
        return qobject_cast<ConnectionsModel*>(proxy->sourceModel());
    }
};

void TestVexelConnectDlg::destroyOfNullDoesNothing()
{
    ARDestroy(nullptr);
    QVERIFY(!FindDialog());
}

void TestVexelConnectDlg::createBuildsHiddenDialog()
{
    IDllInstance* const instance = ARCreateEx(L"VexelConnectDlg");
    QVERIFY(FindDialog());
    QVERIFY(!FindDialog()->isVisible());
    QVERIFY(!FindDialog()->parent());
    QCOMPARE(FindModel()->objectName(), QStringLiteral("ConnectionsModel"));
    QVERIFY(!FindModel()->parent());
    QCOMPARE(FindModel()->rowCount(), 0);
    QVERIFY(instance->IsAvailable());
    ARDestroy(instance);
    QVERIFY(!FindDialog());
}

void TestVexelConnectDlg::instanceNameIsUsedForConfiguration()
{
    // The configuration with the name of the instance can contain the path of the mapping file.
    QTemporaryDir data;
    QVERIFY(Files::Write(data.filePath(QStringLiteral("CfgVEXEL.xml")), "<Machine/>"));
    CfgCenter::CreateCfg(QStringLiteral("Administration"), View::Application, QString())
        ->SetString(QStringLiteral("VexelDataDir"), data.path(), 0);
    CfgCenter::CreateCfg(QString::fromUtf8("N\xc3\xa4me \xf0\x9f\x93\xa1"), View::Application, QString())
        ->SetString(QStringLiteral("TypeApplicationMappings"), QStringLiteral("/no/such/mapping.xml"), 0);
    TraceRecorder traces;
#ifdef Q_OS_WIN
    IDllInstance* const instance = ARCreateEx(L"N\u00e4me \xd83d\xdce1");
#else
    IDllInstance* const instance = ARCreateEx(L"N\u00e4me \U0001F4E1");
#endif
    QCOMPARE(instance->Name(), QString::fromUtf8("N\xc3\xa4me \xf0\x9f\x93\xa1"));
    QCOMPARE(traces.Count(QStringLiteral(
                 "AppCounter::UpdateTypeDeviceMappings(): Could not open /no/such/mapping.xml for reading")),
             1);
    ARDestroy(instance);
}

void TestVexelConnectDlg::saveStoresFilterAndEntries()
{
    IDllInstance* const instance = ARCreateEx(L"VexelConnectDlg");
    FindModel()->AddConnection(Connection());
    FindDialog()->m_pFilterPatternLineEdit->setText(QStringLiteral("abc"));
    QCOMPARE(StoredPattern(), QStringLiteral("none"));
    QCOMPARE(StoredEntries(), QStringLiteral("none"));
    instance->SaveSettings();
    QCOMPARE(StoredPattern(), QStringLiteral("abc"));
    QCOMPARE(StoredEntries(), QString::fromLatin1(FindModel()->ToByteArray().toHex()));
    ARDestroy(instance);
}

void TestVexelConnectDlg::saveStoresFilterFirst()
{
    IDllInstance* const instance = ARCreateEx(L"VexelConnectDlg");
    FindDialog()->m_pFilterPatternLineEdit->setText(QStringLiteral("abc"));
    // The model without a name traces that it cannot store its entries. By then the filter must be stored.
    FindModel()->setObjectName(QString());
    QStringList patterns;
    const unsigned kinds = ErrorHandler::Instance().EnabledKinds();
    ErrorHandler::Instance().SetSink(
        [&patterns](ErrorHandler::Kind, const QString&, const QString&, quint16) { patterns += StoredPattern(); });
    ErrorHandler::Instance().SetEnabledKinds(ErrorHandler::Trace);
    instance->SaveSettings();
    ErrorHandler::Instance().SetEnabledKinds(kinds);
    ErrorHandler::Instance().SetSink({});
    QCOMPARE(patterns, QStringList{QStringLiteral("abc")});
    ARDestroy(instance);
}

void TestVexelConnectDlg::saveDuringImportBoxStoresOldEntries()
{
    StoreTwoEntries();
    IDllInstance* const instance = ARCreateEx(L"VexelConnectDlg");
    QCOMPARE(FindModel()->rowCount(), 2);
    QCOMPARE(FindModel()->CountInUse(), 0);
    QCOMPARE(FindModel()->CountSelected(), 1);
    const QByteArray entries = FindModel()->ToByteArray();
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write("no list");
    QVERIFY(file.flush());

    // Saves while the message box is open, then closes it.
    bool isSaved = false;
    QTimer::singleShot(0, FindDialog(), [&] {
        QVERIFY(QApplication::activeModalWidget());
        QCOMPARE(FindModel()->rowCount(), 0);
        instance->SaveSettings();
        isSaved = true;
        QCOMPARE(StoredEntries(), QString::fromLatin1(entries.toHex()));
        QApplication::activeModalWidget()->close();
    });
    QVERIFY(!FindDialog()->Import(file.fileName()));
    QVERIFY(isSaved);
    QCOMPARE(FindModel()->ToByteArray(), entries);
    ARDestroy(instance);
    QCOMPARE(StoredEntries(), QString::fromLatin1(entries.toHex()));
}

void TestVexelConnectDlg::saveDoesNotWriteToDisk()
{
    // The host saves the configuration.
    const QTemporaryDir store;
    QVERIFY(CfgCenter::Open(store.path()));
    const auto files = [&store] {
        return QDir(store.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    };
    const QStringList before = files();
    IDllInstance* const instance = ARCreateEx(L"VexelConnectDlg");
    FindModel()->AddConnection(Connection());
    FindDialog()->m_pFilterPatternLineEdit->setText(QStringLiteral("abc"));
    instance->SaveSettings();
    QCOMPARE(StoredPattern(), QStringLiteral("abc"));
    QCOMPARE(files(), before);
    ARDestroy(instance);
    QCOMPARE(files(), before);
    QVERIFY(CfgCenter::SaveDocument());
    QVERIFY(files() != before);
}

void TestVexelConnectDlg::translationsAreRegisteredAndUnregistered()
{
    TranslationCenter::Instance().SetDirectory(QStringLiteral(VEXEL_TRANSLATIONS));
    TranslationCenter::Instance().SetLocale(QLocale(QLocale::German, QLocale::Germany));
    QCOMPARE(TranslatedClose(), QStringLiteral("Close"));
    IDllInstance* const instance = ARCreateEx(L"VexelConnectDlg");
    QCOMPARE(TranslatedClose(), QStringLiteral("Schlie\u00dfen"));
    QCOMPARE(FindDialog()->m_pCloseButton->text(), TranslatedClose());
    ARDestroy(instance);
    QCOMPARE(TranslatedClose(), QStringLiteral("Close"));
}

void TestVexelConnectDlg::translationsAreRegisteredBeforeEntriesAreLoaded()
{
    TranslationCenter::Instance().SetDirectory(QStringLiteral(VEXEL_TRANSLATIONS));
    TranslationCenter::Instance().SetLocale(QLocale(QLocale::German, QLocale::Germany));
    // The model traces that it cannot read the stored entries.
    ConfigNodes::StoreSet("<broken");
    QStringList texts;
    const unsigned kinds = ErrorHandler::Instance().EnabledKinds();
    ErrorHandler::Instance().SetSink([&texts](ErrorHandler::Kind, const QString&, const QString& sourceFile, quint16) {
        if (sourceFile == QLatin1String("userinterface/vexelconnectdlg/connectionsmodel"))
            texts += TranslatedClose();
    });
    ErrorHandler::Instance().SetEnabledKinds(ErrorHandler::Trace);
    ARDestroy(ARCreateEx(L"VexelConnectDlg"));
    ErrorHandler::Instance().SetEnabledKinds(kinds);
    ErrorHandler::Instance().SetSink({});
    QCOMPARE(texts, QStringList{QStringLiteral("Schlie\u00dfen")});
}

void TestVexelConnectDlg::destroyStoresFilterThenEntries()
{
    StoreTwoEntries();
    IDllInstance* const instance = ARCreateEx(L"VexelConnectDlg");
    FindDialog()->m_pFilterPatternLineEdit->setText(QStringLiteral("xyz"));
    FindModel()->removeRows(0, 1);
    const QString expected = QString::fromLatin1(FindModel()->ToByteArray().toHex());
    const QString before = StoredEntries();
    // The dialog stores the filter and is deleted before the model, which stores the entries.
    QStringList order;
    connect(FindDialog(), &QObject::destroyed, this, [&] {
        order += QStringLiteral("dialog");
        QCOMPARE(StoredPattern(), QStringLiteral("xyz"));
        QCOMPARE(StoredEntries(), before);
    });
    connect(FindModel(), &QObject::destroyed, this, [&] {
        order += QStringLiteral("model");
        QCOMPARE(StoredEntries(), expected);
    });
    ARDestroy(instance);
    QCOMPARE(order, (QStringList{QStringLiteral("dialog"), QStringLiteral("model")}));
    QCOMPARE(StoredPattern(), QStringLiteral("xyz"));
    QCOMPARE(StoredEntries(), expected);
}

namespace {

/// Finds the launcher when it creates the first application instance, its child.
class LauncherFinder : public QObject
{
public:
    LauncherFinder() { qApp->installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::ChildAdded && !launcher)
            launcher = qobject_cast<AppCounter*>(watched);
        return QObject::eventFilter(watched, event);
    }

    QPointer<AppCounter> launcher;
};

} // namespace

void TestVexelConnectDlg::destroyDeletesPartsInOrder()
{
    NEED_PORT();
    TranslationCenter::Instance().SetDirectory(QStringLiteral(VEXEL_TRANSLATIONS));
    TranslationCenter::Instance().SetLocale(QLocale(QLocale::German, QLocale::Germany));
    QTemporaryDir data;
    QVERIFY(Files::Write(data.filePath(QStringLiteral("CfgVEXEL.xml")),
                         "<Machine><Kite><Startup><exe>/no/such/program</exe></Startup></Kite></Machine>"));
    QVERIFY(Files::Write(data.filePath(QStringLiteral("TypeApplicationMappings.xml")),
                         "<TypeApplicationMappings><Mapping><DeviceType>1</DeviceType><Application>Kite</Application>"
                         "</Mapping></TypeApplicationMappings>"));
    CfgCenter::CreateCfg(QStringLiteral("Administration"), View::Application, QString())
        ->SetString(QStringLiteral("VexelDataDir"), data.path(), 0);
    IDllInstance* const instance = ARCreateEx(L"VexelConnectDlg");
    QVERIFY(!LinkPort::IsFree());
    Connection entry;
    entry.DeviceType = Connection::KiteBravo;
    entry.Selected = true;
    FindModel()->AddConnection(entry);
    const LauncherFinder finder;
    FindDialog()->SlotConnect();
    QVERIFY(finder.launcher);

    QStringList order;
    connect(
        FindDialog(), &QObject::destroyed, this,
        [&order] {
            QCOMPARE(TranslatedClose(), QStringLiteral("Close"));
            order += QStringLiteral("dialog");
        });
    connect(FindModel(), &QObject::destroyed, this, [&order] { order += QStringLiteral("model"); });
    connect(finder.launcher, &QObject::destroyed, this, [&order] {
        QVERIFY(!LinkPort::IsFree());
        order += QStringLiteral("launcher");
    });
    ARDestroy(instance);
    QCOMPARE(order, (QStringList{QStringLiteral("dialog"), QStringLiteral("model"), QStringLiteral("launcher")}));
    QVERIFY(LinkPort::IsFree());
}

void TestVexelConnectDlg::destroyClosesOpenBoxes_data()
{
    // Opens a box and returns when it is closed.
    QTest::addColumn<std::function<void()>>("open");
    const auto row = [](const char* name, const std::function<void()>& open) {
        QTest::newRow(name) << open;
    };
    const auto click = [](QWidget* widget, const QPoint& at) {
        // Through the window, as the system delivers a click.
        QTest::mouseClick(widget->window()->windowHandle(), Qt::LeftButton, {}, widget->mapTo(widget->window(), at));
    };
    const auto openMenu = [] {
        auto* const menu = FindDialog()->findChild<QMenu*>(QString(), Qt::FindDirectChildrenOnly);
        menu->popup(QPoint());
        return menu;
    };
    row(
        "edit", [] { FindDialog()->m_pEditAction->trigger(); });
    row(
        "delete", [] { FindDialog()->m_pDeleteAction->trigger(); });
    row(
        "failed import", [] { FindDialog()->Import(QStringLiteral("/no/such/list.xml")); });
    row(
        "file to import", [] { FindDialog()->m_pImportAction->trigger(); });
    row("file to export", [] { FindDialog()->m_pExportAction->trigger(); });
    for (const char* name : {"m_pDeleteAction", "m_pImportAction", "m_pExportAction"}) {
        const auto action = [name] {
            return FindDialog()->findChild<QAction*>(QString::fromLatin1(name));
        };
        row(qPrintable(QStringLiteral("%1 in the menu, by mouse").arg(QLatin1String(name))), [=] {
            QMenu* const menu = openMenu();
            click(menu, menu->actionGeometry(action()).center());
        });
        row(qPrintable(QStringLiteral("%1 in the menu, by key").arg(QLatin1String(name))), [=] {
            QMenu* const menu = openMenu();
            menu->setActiveAction(action());
            QTest::keyClick(menu->windowHandle(), Qt::Key_Return);
        });
    }
    row(
        "two files dropped",
        [] {
            Drop({QUrl(QStringLiteral("file:///a")), QUrl(QStringLiteral("file:///b"))});
        });
    row(
        "bad file dropped", [] { Drop({QUrl(QStringLiteral("file:///no/such/list.xml"))}); });
    row(
        "no application", [] { FindDialog()->m_pConnectButton->click(); });
    row(
        "no application, by mouse", [=] { click(FindDialog()->m_pConnectButton, QPoint(5, 5)); });
    row("no application, by key", [] { QTest::keyClick(FindDialog()->windowHandle(), Qt::Key_Return); });
}

void TestVexelConnectDlg::destroyClosesOpenBoxes()
{
    QFETCH(const std::function<void()>, open);
    StoreTwoEntries();
    IDllInstance* instance = ARCreateEx(L"VexelConnectDlg");
    const QString entries = QString::fromLatin1(FindModel()->ToByteArray().toHex());
    FindDialog()->show();
    QVERIFY(QTest::qWaitForWindowActive(FindDialog()));
    WhenABoxIsOpen([&] { ARDestroy(std::exchange(instance, nullptr)); });
    open();
    QVERIFY(!instance);
    QVERIFY(!FindDialog());
    QVERIFY(!QApplication::activeModalWidget());
    QCOMPARE(StoredEntries(), entries);
}

void TestVexelConnectDlg::destroyDuringConnectStartsNothingMore()
{
    IDllInstance* instance = ARCreateEx(L"VexelConnectDlg");
    for (const char* name : {"first", "second"}) {
        Connection entry;
        entry.ConnectionName = QString::fromLatin1(name);
        entry.Selected = true;
        FindModel()->AddConnection(entry);
    }
    std::unique_ptr<MessageBoxes> laterBoxes;
    WhenABoxIsOpen([&] {
        ARDestroy(std::exchange(instance, nullptr));
        laterBoxes = std::make_unique<MessageBoxes>();
    });
    FindDialog()->SlotConnect();
    QVERIFY(laterBoxes);
    QCOMPARE(laterBoxes->Count(), 0);
}

void TestVexelConnectDlg::destroyDuringImportBoxStoresOldEntries()
{
    StoreTwoEntries();
    IDllInstance* instance = ARCreateEx(L"VexelConnectDlg");
    const QString entries = QString::fromLatin1(FindModel()->ToByteArray().toHex());
    FindDialog()->m_pFilterPatternLineEdit->setText(QStringLiteral("abc"));
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write("no list");
    QVERIFY(file.flush());
    WhenABoxIsOpen([&] {
        QCOMPARE(FindModel()->rowCount(), 0);
        ARDestroy(std::exchange(instance, nullptr));
    });
    QVERIFY(!FindDialog()->Import(file.fileName()));
    QVERIFY(!instance);
    QCOMPARE(StoredEntries(), entries);
    QCOMPARE(StoredPattern(), QStringLiteral("abc"));
}

void TestVexelConnectDlg::twoInstancesAreIndependent()
{
    IDllInstance* const first = ARCreateEx(L"first");
    IDllInstance* const second = ARCreateEx(L"second");
    QCOMPARE(first->Name(), QStringLiteral("first"));
    ARDestroy(first);
    QVERIFY(FindDialog());
    ARDestroy(second);
    QVERIFY(!FindDialog());
}

void TestVexelConnectDlg::starterShowsDialogUntilInstanceIsDestroyed()
{
    NEED_PORT();
    IDllInstance* const instance = ARCreateEx(L"VexelConnectDlg");
    QVERIFY(FindDialog());
    const auto windows = QApplication::topLevelWidgets().size();
    for (int call = 0; call < 2; ++call) {
        QTcpSocket starter;
        starter.connectToHost(QHostAddress(QHostAddress::LocalHost), LinkPort::kNumber);
        QTRY_VERIFY(FindDialog()->isVisible());
        FindDialog()->hide();
    }
    QCOMPARE(QApplication::topLevelWidgets().size(), windows);
    ARDestroy(instance);
    QVERIFY(LinkPort::IsFree());
}

VEXEL_TEST(QTEST_MAIN, TestVexelConnectDlg)
#include "tst_vexelconnectdlg.moc"
