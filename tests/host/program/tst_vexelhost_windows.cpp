// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/host/hostsetup.h"
#include "tests/support/testmain.h"

/// Host and vexelctl with names and places as only Windows has them.
class TestVexelHostWindows : public QObject
{
    Q_OBJECT

private slots:
    void pluginIsLoadedFromANonAsciiPath()
    {
        HostSetUp setUp;
        const QString folder = setUp.Data() + QString::fromUtf8("/\xd0\x9f\xd0\xb5\xd0\xbb \xe6\x96\xb9\xe4\xbd\x8d "
                                                                "\xf0\x9f\x93\xa1");
        QVERIFY(QDir().mkpath(folder));
        const QString plugin = folder + QStringLiteral("/vexelconnectdlg.dll");
        QVERIFY(QFile::copy(QStringLiteral(VEXEL_PLUGIN), plugin));
        setUp.Fill("mast");
        for (const QString& name : {plugin, QDir::toNativeSeparators(plugin)}) {
            const auto result =
                setUp.Run({QStringLiteral("screenshot"), QStringLiteral("--plugin"), name, setUp.Path("a.png")});
            QCOMPARE(result.error, QString());
            QCOMPARE(result.exitCode, 0);
        }
    }

    void missingPluginIsReported_data() { Places(); }
    void missingPluginIsReported()
    {
        QFETCH(const QString, place);
        HostSetUp setUp;
        setUp.Fill("mast");
        const auto result =
            setUp.Run({QStringLiteral("screenshot"), QStringLiteral("--plugin"), place, setUp.Path("a.png")});
        COMPARE_FAILURE(result, 2, QLatin1String("plug-in"));
    }

    void unusableConfigurationIsReported_data() { Places(); }
    void unusableConfigurationIsReported()
    {
        QFETCH(const QString, place);
        HostSetUp setUp;
        const QString list = setUp.Path("list.xml");
        setUp.Write(list, HostSetUp::ListDocument({QStringLiteral("mast")}));
        // The last value counts. A directory that cannot be used is not stored.
        for (const QStringList& work : {Words("list"), {QStringLiteral("add"), list}}) {
            const auto result = setUp.Run(work + QStringList{QStringLiteral("--config"), place});
            COMPARE_FAILURE(result, 2, QLatin1String("configuration directory"));
        }
        QVERIFY(QFile::exists(list));
        // Nor is it taken for a folder of this machine.
        QVERIFY(!QFile::exists(QDir::rootPath() + QStringLiteral("no-such-host")));
    }

    void missingDataDirectoryIsReported_data() { Places(); }
    void missingDataDirectoryIsReported()
    {
        QFETCH(const QString, place);
        HostSetUp setUp;
        const auto result = setUp.RunHost({QStringLiteral("--data"), place});
        COMPARE_FAILURE(result, 1, place);
        // Before anything is made.
        QVERIFY(!QFile::exists(setUp.Config()));
    }

    // As when the share or the drive was there once.
    void lostDataDirectoryIsKeptInTheConfiguration_data() { Places(); }
    void lostDataDirectoryIsKeptInTheConfiguration()
    {
        QFETCH(const QString, place);
        HostSetUp setUp;
        setUp.Fill("mast");
        setUp.Write(setUp.Config() + QStringLiteral("/application/Administration.json"),
                    "{\"values\": {\"VexelDataDir\": \"" + place.toUtf8() + "\"}}");
        const auto result = setUp.Run("screenshot a.png --trace");
        QCOMPARE(result.exitCode, 0);
        const QString trace = QStringLiteral("Could not open %1/CfgVEXEL.xml for reading").arg(place);
        QVERIFY2(result.error.contains(trace), qPrintable(result.error));

        // The host works without it and keeps the stored path: the drive may come back.
        const QString list = setUp.Path("list.xml");
        setUp.Write(list, HostSetUp::ListDocument({QStringLiteral("pier")}));
        const auto added = setUp.Run({QStringLiteral("add"), list});
        QCOMPARE(added.error, QString());
        QCOMPARE(added.exitCode, 0);
        QCOMPARE(setUp.Names(), (Words("mast pier")));
        QVERIFY(setUp.StoredText().contains("VexelDataDir\": \"" + place.toUtf8()));
    }

    void unusableApplicationIsReported_data()
    {
        QTest::addColumn<QString>("program");
        for (const char* name : {"NUL", "CON", "Q:/nowhere/app.exe", "//no-such-host/share/app.exe", "C:/nowhere/ "})
            QTest::newRow(name) << QString::fromLatin1(name);
    }
    void unusableApplicationIsReported()
    {
        QFETCH(const QString, program);
        HostSetUp setUp;
        setUp.Install(program, 1);
        setUp.Fill("mast");
        const auto result = setUp.Run("connect mast --trace");
        QCOMPARE(result.exitCode, 3);
        const QString trace =
            QStringLiteral("ApplicationInstance::Start(): Application <%1> could not be started").arg(program);
        QVERIFY2(result.error.contains(trace), qPrintable(result.error));
        QVERIFY2(result.error.contains(QLatin1String("\"mast\" could not be connected")), qPrintable(result.error));
    }

    void applicationsDoNotKeepTheOutputOpen()
    {
        HostSetUp setUp;
        setUp.Install(QDir().absoluteFilePath(QStringLiteral(VEXEL_TESTCHILD)), 1);
        setUp.Fill("mast");
        const QDir reports(setUp.Path("reports"));
        QVERIFY(reports.mkpath(QStringLiteral(".")));
        setUp.Environment().insert(QStringLiteral("VEXEL_TESTCHILD_REPORTS"), reports.path());
        const auto result = setUp.Run("connect mast");
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(reports.entryList(QDir::Files).size(), 1);
        QFile file(reports.filePath(reports.entryList(QDir::Files).constFirst()));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QJsonArray inherited = QJsonDocument::fromJson(file.readAll()).object().value(u"inherited").toArray();
        // The streams of the host are pipes here; files are those that the caller of the tests left open.
        for (const QJsonValue& handle : inherited)
            QVERIFY2(!handle.toString().endsWith(QLatin1String("of type 3")), qPrintable(handle.toString()));
    }

    // Here names end before the blanks at their end, so this one is there.
    void applicationWithATrailingBlank()
    {
        HostSetUp setUp;
        const QString program = QDir().absoluteFilePath(QStringLiteral(VEXEL_TESTCHILD)) + u' ';
        setUp.Install(program, 1);
        setUp.Fill("mast");
        const QDir reports(setUp.Path("reports"));
        QVERIFY(reports.mkpath(QStringLiteral(".")));
        setUp.Environment().insert(QStringLiteral("VEXEL_TESTCHILD_REPORTS"), reports.path());
        const auto result = setUp.Run("connect mast --trace");
        QCOMPARE(result.exitCode, 0);
        const QString trace = QStringLiteral("ApplicationInstance::Start(): Started application <%1>").arg(program);
        QVERIFY2(result.error.contains(trace), qPrintable(result.error));
        QCOMPARE(reports.entryList(QDir::Files).size(), 1);
    }

private:
    static void Places()
    {
        QTest::addColumn<QString>("place");
        QTest::newRow("drive") << QStringLiteral("Q:/nowhere");
        QTest::newRow("share") << QStringLiteral("//no-such-host/share");
        QTest::newRow("machine") << QStringLiteral("//no-such-host");
        for (const char* device : {"NUL", "CON", "COM1", "//./NUL", "NUL/folder", "C:/CON", "C:/windows/AUX"})
            QTest::newRow(device) << QString::fromLatin1(device);
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelHostWindows)
#include "tst_vexelhost_windows.moc"
