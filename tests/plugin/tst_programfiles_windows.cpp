// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/plugin/fileresources_windows.h"
#include "tests/plugin/pefile.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QDomDocument>
#include <QMap>
#include <QTest>
#include <QtEndian>

#include <winuser.h>

namespace {

QString InPrograms(const QString& name)
{
    return QDir(QStringLiteral(VEXEL_PROGRAMS)).filePath(name);
}

template <typename Integer>
Integer Number(const QByteArray& content, qsizetype offset)
{
    if (content.size() < offset + qsizetype{sizeof(Integer)})
        return 0;
    return qFromLittleEndian<Integer>(content.constData() + offset);
}

/// The images of an icon file, one after another: each entry has 16 bytes and ends with the offset of its image.
QList<QByteArray> ImagesOfFile(const QByteArray& content)
{
    QList<QByteArray> images;
    for (int i = 0; i < Number<quint16>(content, 4); ++i) {
        const qsizetype entry = 6 + 16 * i;
        images.append(content.mid(Number<quint32>(content, entry + 12), Number<quint32>(content, entry + 8)));
    }
    return images;
}

/// The same for one among resources: each entry has 14 bytes and ends with the number of its image.
QList<QByteArray> ImagesOfResource(const FileResources& resources, int id)
{
    const QByteArray group = resources.Content(RT_GROUP_ICON, id);
    QList<QByteArray> images;
    for (int i = 0; i < Number<quint16>(group, 4); ++i)
        images.append(resources.Content(RT_ICON, Number<quint16>(group, 6 + 14 * i + 12)));
    return images;
}

const QStringList kSamples{
    QStringLiteral("heroncontrol"),     QStringLiteral("kitealphafinchcontrol"), QStringLiteral("kitebravocontrol"),
    QStringLiteral("kitecobracontrol"), QStringLiteral("kitecontrol"),           QStringLiteral("kitefjordcontrol"),
    QStringLiteral("linnetdfcontrol"),  QStringLiteral("pipitcontrol"),          QStringLiteral("wrendcontrol"),
};

} // namespace

/// Subsystem, version, manifest and icon of the built programs.
class TestProgramFiles : public QObject
{
    Q_OBJECT

private slots:
    void programsHaveNoConsole_data() { AddPrograms(); }
    void programsHaveNoConsole();
    void filesHaveVersionInformation_data();
    void filesHaveVersionInformation();
    void manifestHasSettings_data() { AddPrograms(); }
    void manifestHasSettings();
    void iconIsEmbedded_data() { AddPrograms(); }
    void iconIsEmbedded();
    void exampleHasConsole();

private:
    static void AddPrograms();
};

void TestProgramFiles::AddPrograms()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("host") << QStringLiteral("vexelhost");
    QTest::newRow("starter") << QStringLiteral("kitestarter");
    for (const QString& name : kSamples)
        QTest::newRow(qPrintable(name)) << name;
}

void TestProgramFiles::programsHaveNoConsole()
{
    QFETCH(const QString, name);
    const PeFile file(Files::Read(InPrograms(name + QStringLiteral(".exe"))));
    QCOMPARE(file.Subsystem(), quint16{IMAGE_SUBSYSTEM_WINDOWS_GUI});
}

void TestProgramFiles::filesHaveVersionInformation_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("description");
    QTest::addColumn<long>("type");
    QTest::newRow("host") << QStringLiteral("vexelhost.exe") << QStringLiteral("Vexel connect dialog") << VFT_APP;
    QTest::newRow("starter") << QStringLiteral("kitestarter.exe")
                             << QStringLiteral("Starter of the Vexel connect dialog") << VFT_APP;
    for (const QString& name : kSamples) {
        QTest::newRow(qPrintable(name)) << QString(name + QStringLiteral(".exe"))
                                        << QStringLiteral("Sample application of the Vexel product") << VFT_APP;
    }
    QTest::newRow("platform library") << QStringLiteral("vexelplatform.dll")
                                      << QStringLiteral("Services of the Vexel product") << VFT_DLL;
}

void TestProgramFiles::filesHaveVersionInformation()
{
    QFETCH(const QString, file);
    QFETCH(const QString, description);
    QFETCH(const long, type);
    const FileResources resources(InPrograms(file));
    QCOMPARE(resources.VersionText(QStringLiteral("FileVersion")), QStringLiteral(VEXEL_VERSION));
    QCOMPARE(resources.VersionText(QStringLiteral("ProductVersion")), QStringLiteral(VEXEL_VERSION));
    QVERIFY(resources.VersionText(QStringLiteral("LegalCopyright")).contains(QLatin1String("Vexel")));
    QCOMPARE(resources.VersionNumbers(), QStringLiteral(VEXEL_VERSION));
    QCOMPARE(resources.VersionText(QStringLiteral("FileDescription")), description);
    QCOMPARE(resources.VersionText(QStringLiteral("OriginalFilename")), file);
    QCOMPARE(resources.Type(), static_cast<DWORD>(type));
}

/// Windows reads the manifest with the number 1.
void TestProgramFiles::manifestHasSettings()
{
    QFETCH(const QString, name);
    const FileResources resources(InPrograms(name + QStringLiteral(".exe")));
    QCOMPARE(resources.Ids(RT_MANIFEST), QList<int>{1});
    QDomDocument document;
    QVERIFY(document.setContent(resources.Content(RT_MANIFEST, 1), true));

    // Each setting belongs to the namespace of the Windows version that introduced it.
    const QString settings = QStringLiteral("http://schemas.microsoft.com/SMI/%1/WindowsSettings");
    const auto setting = [&](const char* year, const char* key) {
        return document.elementsByTagNameNS(settings.arg(QLatin1String(year)), QLatin1String(key))
            .item(0)
            .toElement()
            .text();
    };
    QCOMPARE(setting("2005", "dpiAware"), QStringLiteral("true/pm"));
    QCOMPARE(setting("2016", "dpiAwareness"), QStringLiteral("PerMonitorV2, PerMonitor"));
    QCOMPARE(setting("2019", "activeCodePage"), QStringLiteral("UTF-8"));
    QCOMPARE(setting("2016", "longPathAware"), QStringLiteral("true"));
    const QDomElement level = document.elementsByTagName(QStringLiteral("requestedExecutionLevel")).item(0).toElement();
    QCOMPARE(level.attribute(QStringLiteral("level")), QStringLiteral("asInvoker"));
}

/// File managers show the icon with the lowest number.
void TestProgramFiles::iconIsEmbedded()
{
    QFETCH(const QString, name);
    const FileResources resources(InPrograms(name + QStringLiteral(".exe")));
    QCOMPARE(resources.Ids(RT_GROUP_ICON), QList<int>{1});
    const QString icon = kSamples.contains(name) ? QStringLiteral("sample.ico") : QStringLiteral("program.ico");
    const QList<QByteArray> images = ImagesOfFile(Files::Read(QStringLiteral(VEXEL_ICONS "/") + icon));
    QCOMPARE(images.size(), 8);
    QVERIFY(!images.contains(QByteArray()));
    QCOMPARE(ImagesOfResource(resources, 1), images);
}

/// It reports errors in the console from which it was started.
void TestProgramFiles::exampleHasConsole()
{
    const PeFile file(Files::Read(InPrograms(QStringLiteral("integration.exe"))));
    QCOMPARE(file.Subsystem(), quint16{IMAGE_SUBSYSTEM_WINDOWS_CUI});
}

VEXEL_TEST(QTEST_APPLESS_MAIN, TestProgramFiles)
#include "tst_programfiles_windows.moc"
