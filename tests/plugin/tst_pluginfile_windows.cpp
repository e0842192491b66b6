// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/plugin/fileresources_windows.h"
#include "tests/plugin/pefile.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <array>

#include <windows.h>

namespace {

PeFile Plugin()
{
    QFile file(QStringLiteral(VEXEL_PLUGIN));
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("there is no such file");
    return PeFile(file.readAll());
}

QString SystemFolder()
{
    std::array<wchar_t, MAX_PATH> folder = {};
    GetSystemDirectoryW(folder.data(), static_cast<UINT>(folder.size()));
    return QDir::fromNativeSeparators(QString::fromWCharArray(folder.data()));
}

} // namespace

/// Exports, imports and version of the built plug-in file.
class TestPluginFile : public QObject
{
    Q_OBJECT

private slots:
    void exportsExactlyTwoFunctions()
    {
        QCOMPARE(Plugin().Exports(), (QStringList{QStringLiteral("ARCreateEx"), QStringLiteral("ARDestroy")}));
    }

    void importsKnownLibrariesOnly()
    {
        const QStringList imports = Plugin().Imports();
        QVERIFY(imports.contains(QStringLiteral("vexelplatform.dll")));
        const QStringList companions{QStringLiteral("vexelplatform.dll"), QStringLiteral("libstdc++-6.dll"),
                                     QStringLiteral("libgcc_s_seh-1.dll"), QStringLiteral("libwinpthread-1.dll")};
        const QDir system(SystemFolder());
        QVERIFY(system.exists(QStringLiteral("kernel32.dll")));
        for (const QString& name : imports) {
            const bool isExpected =
                companions.contains(name) || name.startsWith(QLatin1String("Qt6")) || system.exists(name);
            QVERIFY2(isExpected, qPrintable(name));
        }
    }

    void hasVersionInformation()
    {
        const FileResources resources(QStringLiteral(VEXEL_PLUGIN));
        QCOMPARE(resources.VersionText(QStringLiteral("FileVersion")), QStringLiteral(VEXEL_VERSION));
        QCOMPARE(resources.VersionText(QStringLiteral("ProductVersion")), QStringLiteral(VEXEL_VERSION));
        QCOMPARE(resources.VersionNumbers(), QStringLiteral(VEXEL_VERSION));
        QCOMPARE(resources.VersionText(QStringLiteral("FileDescription")),
                 QStringLiteral("Connect dialog of the Vexel product"));
        QCOMPARE(resources.VersionText(QStringLiteral("OriginalFilename")), QStringLiteral("vexelconnectdlg.dll"));
        QCOMPARE(resources.Type(), DWORD{VFT_DLL});
    }
};

VEXEL_TEST(QTEST_APPLESS_MAIN, TestPluginFile)
#include "tst_pluginfile_windows.moc"
