// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/configversions.h"
#include "tests/host/hostinprocess.h"
#include "tests/support/launcherfixture.h"
#include "tests/support/testmain.h"

#include <QTest>

/// What "Connect" does to the earlier versions of the stored documents. With the real plug-in and real processes.
class TestConnectVersions : public QObject
{
    Q_OBJECT

private slots:
    void connectKeepsTheVersionBeforeAnImport();
};

void TestConnectVersions::connectKeepsTheVersionBeforeAnImport()
{
    TestChild child;
    const DataDirectory data;
    QVERIFY(data.Install({{QStringLiteral("Kite"), {4}}}, TestChild::Program()));
    Host host;
    host.options.dataDirectory = data.Path();
    const auto versions = [](View view, const QString& document) {
        QStringList files;
        const QList<ConfigVersion> list = ConfigVersions(view, document).List();
        for (const ConfigVersion& version : list)
            files.append(version.file);
        return files;
    };
    const auto ofList = [&] {
        return versions(View::Application, QString());
    };
    const auto ofRecords = [&] {
        return versions(View::Shared, QStringLiteral("KiteResources/ConnectData"));
    };

    host.Run([](const ConnectDialog& dialog) { AddEntry(dialog, QStringLiteral("before")); });
    host.Run([](const ConnectDialog& dialog) {
        dialog.Entries()->removeRows(0, 1);
        AddEntry(dialog, QStringLiteral("imported"), true);
    });
    host.Run([&](const ConnectDialog& dialog) {
        const QStringList before = ofList();
        QVERIFY(!before.isEmpty());
        for (int click = 0; click < 5; ++click) {
            ConnectButton(dialog)->click(); // hides the dialog, which saves
            QCOMPARE(dialog.Status(0), 1);
            QTRY_COMPARE(dialog.Status(0), ConnectDialog::kFree);
            QTRY_VERIFY(dialog.Window()->isVisible());
        }
        QCOMPARE(child.Count(), 5);
        QCOMPARE(ofList(), before);
        QVERIFY(ofRecords().isEmpty());
    });
}

VEXEL_TEST(QTEST_MAIN, TestConnectVersions)
#include "tst_connectversions.moc"
