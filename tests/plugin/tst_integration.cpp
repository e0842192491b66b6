// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// The example's main function creates the application object; the test runs inside it.
#define main ExampleMain // NOLINT(cppcoreguidelines-macro-usage)
#include "samples/integration/main.cpp"
#undef main

#include "tests/support/confignodes.h"
#include "tests/support/system/errorsto.h"
#include "tests/support/testmain.h"

#include <QAbstractButton>
#include <QAction>
#include <QDir>
#include <QTemporaryDir>
#include <QTemporaryFile>
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

struct Outcome
{
    int code = -1;
    QString complaint; // what was printed on standard error
};

Outcome RunExample(const QStringList& arguments)
{
    std::vector<QByteArray> texts = {"integration"};
    for (const QString& argument : arguments)
        texts.push_back(argument.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& text : texts)
        argv.push_back(text.data());
    argv.push_back(nullptr);

    QTemporaryFile complaint;
    if (!complaint.open())
        return {};
    Outcome outcome;
    {
        const ErrorsTo file(complaint.fileName());
        outcome.code = ExampleMain(static_cast<int>(texts.size()), argv.data());
    }
    outcome.complaint = QString::fromLocal8Bit(complaint.readAll()).trimmed();
    return outcome;
}

QString StoredEntries(const QString& directory)
{
    if (!CfgCenter::Open(directory))
        return QStringLiteral("no configuration");
    return ConfigNodes::StoredSet(QStringLiteral("none"));
}

} // namespace

/// The example of a program that loads the plug-in.
class TestIntegration : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { CfgCenter::Close(); }

    void dialogIsShownAndEntriesSaved_data();
    void dialogIsShownAndEntriesSaved();
    void wrongCommandLineIsReported();
    void invalidConfigurationIsReported();
    void configurationIsLocked();
    void invalidPluginIsReported_data();
    void invalidPluginIsReported();
    void failedSaveIsReported();
};

void TestIntegration::dialogIsShownAndEntriesSaved_data()
{
    QTest::addColumn<bool>("byButton");
    QTest::newRow("Close") << true;
    QTest::newRow("title bar") << false;
}

void TestIntegration::dialogIsShownAndEntriesSaved()
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
    const Outcome outcome = RunExample({QStringLiteral(VEXEL_PLUGIN), directory.path()});
    QVERIFY2(outcome.code == 0, qPrintable(outcome.complaint));
    QVERIFY(cameBack);
    QVERIFY(QByteArray::fromHex(StoredEntries(directory.path()).toLatin1()).contains("<ConnectionName>"));
}

void TestIntegration::wrongCommandLineIsReported()
{
    const Outcome outcome = RunExample({QStringLiteral(VEXEL_PLUGIN)});
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.complaint.contains(QLatin1String("usage: ")), qPrintable(outcome.complaint));
}

void TestIntegration::invalidConfigurationIsReported()
{
    QTemporaryFile notAFolder;
    QVERIFY(notAFolder.open());
    for (const QString& directory : {QString(), notAFolder.fileName()}) {
        const Outcome outcome = RunExample({QStringLiteral(VEXEL_PLUGIN), directory});
        QCOMPARE(outcome.code, 2);
        QVERIFY2(outcome.complaint.contains(QLatin1String("configuration directory")), qPrintable(outcome.complaint));
    }
}

void TestIntegration::configurationIsLocked()
{
    const QTemporaryDir directory;
    s_withTheDialog = [](QWidget* dialog) {
        dialog->close();
    };
    {
        InstanceLock other;
        QCOMPARE(other.TryLock(directory.path()), InstanceLock::Result::Locked);
        const Outcome outcome = RunExample({QStringLiteral(VEXEL_PLUGIN), directory.path()});
        QCOMPARE(outcome.code, 2);
        QVERIFY2(outcome.complaint.contains(QLatin1String("another host")), qPrintable(outcome.complaint));
    }
    // The example locks the directory itself.
    InstanceLock::Result meanwhile = InstanceLock::Result::Locked;
    s_withTheDialog = [&](QWidget* dialog) {
        InstanceLock other;
        meanwhile = other.TryLock(directory.path());
        dialog->close();
    };
    QCOMPARE(RunExample({QStringLiteral(VEXEL_PLUGIN), directory.path()}).code, 0);
    QCOMPARE(meanwhile, InstanceLock::Result::Busy);
}

void TestIntegration::invalidPluginIsReported_data()
{
    QTest::addColumn<QString>("plugin");
    QTest::addColumn<QString>("complaint");
    QTest::newRow("missing") << QStringLiteral("none.dll") << QStringLiteral("no plug-in: ");
    QTest::newRow("no exports") << QStringLiteral(LIBRARY_NOEXPORTS) << QStringLiteral("no plug-in: ");
    QTest::newRow("one export only") << QStringLiteral(LIBRARY_ONLYCREATE) << QStringLiteral("no plug-in: ");
    QTest::newRow("no instance") << QStringLiteral(PLUGIN_REFUSING) << QStringLiteral("the plug-in cannot be used");
    QTest::newRow("not available") << QStringLiteral(PLUGIN_UNAVAILABLE)
                                   << QStringLiteral("the plug-in cannot be used");
    QTest::newRow("no dialog") << QStringLiteral(PLUGIN_PLAIN) << QStringLiteral("the plug-in has no connect dialog");
}

void TestIntegration::invalidPluginIsReported()
{
    QFETCH(const QString, plugin);
    QFETCH(const QString, complaint);
    const QTemporaryDir directory;
    const Outcome outcome = RunExample({plugin, directory.filePath(QStringLiteral("config"))});
    QCOMPARE(outcome.code, 3);
    QVERIFY2(outcome.complaint.contains(complaint), qPrintable(outcome.complaint));
}

void TestIntegration::failedSaveIsReported()
{
    const QTemporaryDir directory;
    s_withTheDialog = [&](QWidget* dialog) {
        dialog->findChild<QAction*>(QStringLiteral("m_pNewAction"))->trigger();
        // From now on the store is read-only.
        CfgCenter::OpenReadOnly(directory.path());
        dialog->close();
    };
    const Outcome outcome = RunExample({QStringLiteral(VEXEL_PLUGIN), directory.path()});
    QCOMPARE(outcome.code, 4);
    QVERIFY2(outcome.complaint.contains(QLatin1String("could not be saved")), qPrintable(outcome.complaint));
}

VEXEL_TEST(QTEST_APPLESS_MAIN, TestIntegration)
#include "tst_integration.moc"
