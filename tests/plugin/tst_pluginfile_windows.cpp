#include "tests/plugin/pefile.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <array>
#include <string>

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

/// The built plug-in file, as Windows and whoever looks at its properties see it.
class tst_PluginFile : public QObject
{
    Q_OBJECT

private slots:
    void exportsExactlyTwoFunctions()
    {
        QCOMPARE(Plugin().Exports(), (QStringList{QStringLiteral("ARCreateEx"), QStringLiteral("ARDestroy")}));
    }

    void needsNothingElse()
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

    void tellsItsVersion()
    {
        const std::wstring file = QStringLiteral(VEXEL_PLUGIN).toStdWString();
        DWORD ignored = 0;
        std::vector<char> block(GetFileVersionInfoSizeW(file.c_str(), &ignored));
        QVERIFY(!block.empty());
        QVERIFY(GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(block.size()), block.data()));

        const auto text = [&block](const wchar_t* name) {
            void* value = nullptr;
            UINT length = 0;
            const std::wstring path = std::wstring(L"\\StringFileInfo\\040904B0\\") + name;
            if (!VerQueryValueW(block.data(), path.c_str(), &value, &length))
                return QString();
            return QString::fromWCharArray(static_cast<const wchar_t*>(value));
        };
        QCOMPARE(text(L"FileVersion"), QStringLiteral(VEXEL_VERSION));
        QCOMPARE(text(L"ProductVersion"), QStringLiteral(VEXEL_VERSION));
        QCOMPARE(text(L"FileDescription"), QStringLiteral("Connect dialog of the Vexel product"));
        QCOMPARE(text(L"OriginalFilename"), QStringLiteral("vexelconnectdlg.dll"));

        void* numbers = nullptr;
        UINT length = 0;
        QVERIFY(VerQueryValueW(block.data(), L"\\", &numbers, &length));
        const auto* const fixed = static_cast<const VS_FIXEDFILEINFO*>(numbers);
        QCOMPARE(QStringLiteral("%1.%2.%3")
                     .arg(HIWORD(fixed->dwFileVersionMS))
                     .arg(LOWORD(fixed->dwFileVersionMS))
                     .arg(HIWORD(fixed->dwFileVersionLS)),
                 QStringLiteral(VEXEL_VERSION));
        QCOMPARE(fixed->dwFileType, DWORD{VFT_DLL});
    }
};

QTEST_APPLESS_MAIN(tst_PluginFile)
#include "tst_pluginfile_windows.moc"
