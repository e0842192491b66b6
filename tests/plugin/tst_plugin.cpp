// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "platform/idllinstance.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QDialog>
#include <QLibrary>
#include <QTest>

/// The built plug-in file, used through its exports only.
class TestPlugin : public QObject
{
    Q_OBJECT

private slots:
    void worksThroughItsExports();

private:
    QDialog* FindDialog() const
    {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName() == QLatin1String("VexelConnectDlgGUI"))
                return qobject_cast<QDialog*>(widget);
        return nullptr;
    }
};

void TestPlugin::worksThroughItsExports()
{
    QLibrary library(QStringLiteral(VEXEL_PLUGIN));
    QVERIFY2(library.load(), qPrintable(library.errorString()));
    const auto create = reinterpret_cast<IDllInstance* (*)(const wchar_t*)>(library.resolve("ARCreateEx"));
    const auto destroy = reinterpret_cast<void (*)(IDllInstance*)>(library.resolve("ARDestroy"));
    QVERIFY(create && destroy);
    destroy(nullptr);

    IDllInstance* const instance = create(L"VexelConnectDlg \u00fc\u4e2d");
    QVERIFY(instance);
    QCOMPARE(instance->Name(), QStringLiteral("VexelConnectDlg \u00fc\u4e2d"));
    QVERIFY(instance->IsAvailable());
    instance->Notify();
    QVERIFY(FindDialog());
    QVERIFY(!FindDialog()->isVisible());
    FindDialog()->show();
    QVERIFY(QTest::qWaitForWindowExposed(FindDialog()));
    instance->SaveSettings();
    destroy(instance);
    QVERIFY(!FindDialog());

    // All objects of the library are deleted, so it can be unloaded.
    QVERIFY(library.unload());
    CfgCenter::Close();
}

VEXEL_TEST(QTEST_MAIN, TestPlugin)
#include "tst_plugin.moc"
