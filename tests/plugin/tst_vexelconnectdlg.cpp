#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "platform/translationcenter.h"
#include "tests/support/linkport.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"
#include "userinterface/vexelconnectdlg/connectionlist.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlg.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlggui.h"

#include <QAbstractProxyModel>
#include <QApplication>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include <memory>

/// One instance of the plug-in, from `ARCreateEx` to `ARDestroy`.
class TestVexelConnectDlg : public QObject
{
    Q_OBJECT

private slots:
    void init() { CfgCenter::Close(); }
    void cleanup() { CfgCenter::Close(); }

    void destroyingNothingDoesNothing();
    // Before any other instance could have kept the port.
    void aStarterCallsTheDialogUntilTheInstanceIsGone();
    void buildsEverythingHidden();
    void everyEntryIsFreeWhateverWasStored();
    void nameReachesTheInstanceAndItsConfiguration();
    void saveStoresFilterAndEntries();
    void saveStoresTheFilterFirst();
    void saveDuringTheBoxOfAFailedImportStoresTheOldEntries();
    void destroyStoresFilterAndEntries();
    void registersItsTranslationsAndTakesThemBack();
    void twoInstancesLiveSideBySide();

private:
    static std::unique_ptr<ICfg> Node(View view, const char* name)
    {
        return std::unique_ptr<ICfg>(CfgCenter::GetAppCfg(view)->OpenChild(QString::fromLatin1(name), 0));
    }
    static void StoreTwoEntries()
    {
        Connection first;
        first.ConnectionName = QStringLiteral("first");
        first.ConnectionStatus = Connection::InUse;
        first.Selected = true;
        Connection second;
        second.ConnectionName = QStringLiteral("second");
        second.ConnectionStatus = 7;
        const QByteArray document = ConnectionList::Write({&first, &second});
        Node(View::Application, "ConnectionsModel")
            ->SetString(QStringLiteral("ModelMimeData"), QString::fromLatin1(document.toHex()), 0);
    }
    static QString StoredEntries()
    {
        return Node(View::Application, "ConnectionsModel")
            ->GetString(QStringLiteral("ModelMimeData"), QStringLiteral("none"), 0);
    }
    static QString StoredPattern()
    {
        return Node(View::User, "FilterSettings")
            ->GetString(QStringLiteral("FilterPattern"), QStringLiteral("none"), 0);
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

void TestVexelConnectDlg::destroyingNothingDoesNothing()
{
    ARDestroy(nullptr);
    QVERIFY(!FindDialog());
}

void TestVexelConnectDlg::buildsEverythingHidden()
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

void TestVexelConnectDlg::everyEntryIsFreeWhateverWasStored()
{
    StoreTwoEntries();
    IDllInstance* const instance = ARCreateEx(L"VexelConnectDlg");
    QCOMPARE(FindModel()->rowCount(), 2);
    QCOMPARE(FindModel()->GetConnection(0).ConnectionStatus, 0);
    QCOMPARE(FindModel()->GetConnection(1).ConnectionStatus, 0);
    QVERIFY(FindModel()->GetConnection(0).Selected);
    ARDestroy(instance);
}

void TestVexelConnectDlg::nameReachesTheInstanceAndItsConfiguration()
{
    // The instance's name is the configuration that may name the mapping file: seen in what the registry could not
    // open.
    QTemporaryDir data;
    QFile machine(data.filePath(QStringLiteral("CfgVEXEL.xml")));
    QVERIFY(machine.open(QIODevice::WriteOnly));
    machine.write("<Machine/>");
    machine.close();
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

void TestVexelConnectDlg::saveStoresTheFilterFirst()
{
    IDllInstance* const instance = ARCreateEx(L"VexelConnectDlg");
    FindDialog()->m_pFilterPatternLineEdit->setText(QStringLiteral("abc"));
    // Without a name the model cannot store its entries, and says so: by then the filter must be stored.
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

void TestVexelConnectDlg::saveDuringTheBoxOfAFailedImportStoresTheOldEntries()
{
    StoreTwoEntries();
    IDllInstance* const instance = ARCreateEx(L"VexelConnectDlg");
    const QByteArray entries = FindModel()->ToByteArray();
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write("no list");
    QVERIFY(file.flush());

    // The box is opened while the event loop waits in it; the save comes then, and only then it is answered.
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

void TestVexelConnectDlg::registersItsTranslationsAndTakesThemBack()
{
    TranslationCenter::Instance().SetDirectory(QStringLiteral(VEXEL_TRANSLATIONS));
    TranslationCenter::Instance().SetLocale(QLocale(QLocale::German, QLocale::Germany));
    const auto close = [] {
        return QCoreApplication::translate("VexelConnectDlg", "Close");
    };
    QCOMPARE(close(), QStringLiteral("Close"));
    IDllInstance* const instance = ARCreateEx(L"VexelConnectDlg");
    QCOMPARE(close(), QStringLiteral("Schlie\u00dfen"));
    QCOMPARE(FindDialog()->m_pCloseButton->text(), close());
    ARDestroy(instance);
    QCOMPARE(close(), QStringLiteral("Close"));
    TranslationCenter::Instance().SetLocale(QLocale::c());
}

void TestVexelConnectDlg::destroyStoresFilterAndEntries()
{
    StoreTwoEntries();
    IDllInstance* const instance = ARCreateEx(L"VexelConnectDlg");
    FindDialog()->m_pFilterPatternLineEdit->setText(QStringLiteral("xyz"));
    FindModel()->removeRows(0, 1);
    const QString expected = QString::fromLatin1(FindModel()->ToByteArray().toHex());
    const QString before = StoredEntries();
    // The dialog goes first, and with it the filter is stored; then the model, and with it the entries.
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

void TestVexelConnectDlg::twoInstancesLiveSideBySide()
{
    IDllInstance* const first = ARCreateEx(L"first");
    IDllInstance* const second = ARCreateEx(L"second");
    QCOMPARE(first->Name(), QStringLiteral("first"));
    ARDestroy(first);
    QVERIFY(FindDialog());
    ARDestroy(second);
    QVERIFY(!FindDialog());
}

void TestVexelConnectDlg::aStarterCallsTheDialogUntilTheInstanceIsGone()
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
