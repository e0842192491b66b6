// The example's own main, which makes the application object: what the test does begins when that is there.
#define main ExampleMain // NOLINT(cppcoreguidelines-macro-usage)
#include "samples/integration/main.cpp"
#undef main

#include "platform/icfg.h"

#include <QAbstractButton>
#include <QAction>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>
#include <vector>

namespace {

std::function<void(QWidget*)> s_withTheDialog; // called once the example shows the dialog

void WatchForTheDialog()
{
    auto* const timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer] {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && window->objectName() == QLatin1String("VexelConnectDlgGUI")) {
                timer->stop();
                s_withTheDialog(window);
                return;
            }
        }
    });
    timer->start(1);
}
Q_COREAPP_STARTUP_FUNCTION(WatchForTheDialog)

int RunExample(const QStringList& arguments)
{
    std::vector<QByteArray> texts = {"integration"};
    for (const QString& argument : arguments)
        texts.push_back(argument.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& text : texts)
        argv.push_back(text.data());
    argv.push_back(nullptr);
    return ExampleMain(static_cast<int>(texts.size()), argv.data());
}

QString StoredEntries(const QString& directory)
{
    if (!CfgCenter::Open(directory))
        return QStringLiteral("no configuration");
    const std::unique_ptr<ICfg> node(
        CfgCenter::GetAppCfg(View::Application)->OpenChild(QStringLiteral("ConnectionsModel"), 0));
    return node->GetString(QStringLiteral("ModelMimeData"), QStringLiteral("none"), 0);
}

} // namespace

/// The example for those who load the plug-in into a program of their own.
class tst_Integration : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { CfgCenter::Close(); }

    void showsTheDialogAndSaves_data();
    void showsTheDialogAndSaves();
    void wrongCommandLine();
    void noPlugin();
};

void tst_Integration::showsTheDialogAndSaves_data()
{
    QTest::addColumn<bool>("byButton");
    QTest::newRow("Close") << true;
    QTest::newRow("title bar") << false;
}

void tst_Integration::showsTheDialogAndSaves()
{
    QFETCH(const bool, byButton);
    const QTemporaryDir directory;
    bool cameBack = false;
    s_withTheDialog = [&](QWidget* dialog) {
        auto* const newEntry = dialog->findChild<QAction*>(QStringLiteral("m_pNewAction"));
        QVERIFY(newEntry);
        newEntry->trigger();
        dialog->findChild<QAbstractButton*>(QStringLiteral("m_pConnectButton"))->click();
        cameBack = dialog->isVisible();
        if (byButton)
            dialog->findChild<QAbstractButton*>(QStringLiteral("m_pCloseButton"))->click();
        else
            dialog->close();
    };
    QCOMPARE(RunExample({QStringLiteral(VEXEL_PLUGIN), directory.path()}), 0);
    QVERIFY(cameBack);
    QVERIFY(QByteArray::fromHex(StoredEntries(directory.path()).toLatin1()).contains("<ConnectionName>"));
}

void tst_Integration::wrongCommandLine()
{
    QCOMPARE(RunExample({}), 1);
    QCOMPARE(RunExample({QStringLiteral(VEXEL_PLUGIN), QString()}), 1);
}

void tst_Integration::noPlugin()
{
    const QTemporaryDir directory;
    const QString notThere = directory.filePath(QStringLiteral("none.dll"));
    QCOMPARE(RunExample({notThere, directory.path()}), 2);
}

QTEST_APPLESS_MAIN(tst_Integration)
#include "tst_integration.moc"
