// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/plugin/pluginlibrary.h"
#include "tests/support/testmain.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>

class TestPluginLibrary : public QObject
{
    Q_OBJECT

private slots:
    void goodPlugin();
    void nameArrivesWhole_data();
    void nameArrivesWhole();
    void missingFile();
    void missingFileIsNotLookedForUnderOtherNames();
    void notALibrary();
    void libraryWithoutTheFunctions();
    void libraryWithOneOfTheFunctions();
    void pluginThatGivesNoInstance();
    void defaultFileIsRelativeToTheProgram();
    void versionIsInTheFile();
};

void TestPluginLibrary::goodPlugin()
{
    PluginLibrary library;
    QCOMPARE(library.Load(QStringLiteral(PLUGIN_PLAIN)), PluginLibrary::Error::None);
    QCOMPARE(library.ErrorText(), QString());

    QCoreApplication::instance()->setProperty("plainInstanceDestroyed", false);
    PluginLibrary::Instance instance = library.Create(QStringLiteral("VexelConnectDlg"));
    QVERIFY(instance);
    QVERIFY(instance->IsAvailable());
    QVERIFY(!QCoreApplication::instance()->property("plainInstanceDestroyed").toBool());
    instance.reset();
    QVERIFY(QCoreApplication::instance()->property("plainInstanceDestroyed").toBool());
}

void TestPluginLibrary::nameArrivesWhole_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << QStringLiteral("VexelConnectDlg");
    QTest::newRow("umlauts") << QStringLiteral("Zweites Gerät");
    QTest::newRow("astral") << QStringLiteral("Mast \U0001F4E1 north");
}

void TestPluginLibrary::nameArrivesWhole()
{
    QFETCH(const QString, name);
    PluginLibrary library;
    QCOMPARE(library.Load(QStringLiteral(PLUGIN_PLAIN)), PluginLibrary::Error::None);
    const PluginLibrary::Instance instance = library.Create(name);
    QVERIFY(instance);
    QCOMPARE(instance->Name(), name);
}

void TestPluginLibrary::missingFile()
{
    PluginLibrary library;
    QCOMPARE(library.Load(QStringLiteral("/no/such/plugin.so")), PluginLibrary::Error::Missing);
    QVERIFY(library.ErrorText().contains(QLatin1String("/no/such/plugin.so")));
}

void TestPluginLibrary::missingFileIsNotLookedForUnderOtherNames()
{
    // QLibrary by itself would find "plugin.so" when it is asked for "plugin".
    QString name = QStringLiteral(PLUGIN_PLAIN);
    name.truncate(name.lastIndexOf(QLatin1Char('.')));
    PluginLibrary library;
    QCOMPARE(library.Load(name), PluginLibrary::Error::Missing);
}

void TestPluginLibrary::notALibrary()
{
    const QTemporaryDir directory;
    PluginLibrary library;
    QCOMPARE(library.Load(directory.path()), PluginLibrary::Error::NotAFile);
    QVERIFY(library.ErrorText().contains(directory.path()));
    QFile file(directory.filePath(QStringLiteral("plugin.so")));
    for (const qint64 size : {0, 4096}) {
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(size, 'x'));
        file.close();
        QCOMPARE(library.Load(file.fileName()), PluginLibrary::Error::NotLoadable);
        QVERIFY(library.ErrorText().contains(file.fileName()));
    }
}

void TestPluginLibrary::libraryWithoutTheFunctions()
{
    PluginLibrary library;
    QCOMPARE(library.Load(QStringLiteral(LIBRARY_NOEXPORTS)), PluginLibrary::Error::MissingExports);
    QVERIFY(library.ErrorText().contains(QLatin1String("ARCreateEx")));
    QVERIFY(library.ErrorText().contains(QLatin1String("ARDestroy")));
}

void TestPluginLibrary::libraryWithOneOfTheFunctions()
{
    PluginLibrary library;
    QCOMPARE(library.Load(QStringLiteral(LIBRARY_ONLYCREATE)), PluginLibrary::Error::MissingExports);
}

void TestPluginLibrary::pluginThatGivesNoInstance()
{
    PluginLibrary library;
    QCOMPARE(library.Load(QStringLiteral(PLUGIN_REFUSING)), PluginLibrary::Error::None);
    QVERIFY(!library.Create(QStringLiteral("VexelConnectDlg")));
}

void TestPluginLibrary::defaultFileIsRelativeToTheProgram()
{
    const QString file = PluginLibrary::DefaultFile(QStringLiteral(PROGRAM_DIRECTORY));
    QVERIFY(QDir::isAbsolutePath(file));
    QCOMPARE(file, QDir::cleanPath(QStringLiteral(REAL_PLUGIN)));
}

void TestPluginLibrary::versionIsInTheFile()
{
    QCOMPARE(PluginLibrary::VersionIn(QStringLiteral(REAL_PLUGIN)), QStringLiteral(VEXEL_VERSION));
    QCOMPARE(PluginLibrary::VersionIn(QStringLiteral(PLUGIN_PLAIN)), QString());
    QCOMPARE(PluginLibrary::VersionIn(QStringLiteral("/no/such/plugin.so")), QString());
    QTemporaryFile cut;
    QVERIFY(cut.open());
    cut.write("@(#)vexelconnectdlg 1.");
    cut.close();
    QCOMPARE(PluginLibrary::VersionIn(cut.fileName()), QString());
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestPluginLibrary)
#include "tst_pluginlibrary.moc"
