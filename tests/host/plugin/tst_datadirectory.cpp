// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/plugin/datadirectory.h"
#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "tests/support/testmain.h"

#include <QFileInfo>
#include <QTest>

class TestDataDirectory : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void setDirectoryIsReadByThePlugin();
    void fallbackIsRemovedWithItsObject();
    void fallbackKeepsAStoredDirectory();
    void noFallbackWithoutADirectory();
    void samplesAreFoundBesideTheProgram();

private:
    static QString Read();
};

QString TestDataDirectory::Read()
{
    return CfgCenter::CreateCfg(QStringLiteral("Administration"), View::Application, QString())
        ->GetString(QStringLiteral("VexelDataDir"), QStringLiteral("(none)"), 0);
}

void TestDataDirectory::init()
{
    CfgCenter::Close();
    QCOMPARE(Read(), QStringLiteral("(none)"));
}

void TestDataDirectory::setDirectoryIsReadByThePlugin()
{
    DataDirectory::Set(QStringLiteral("/given"));
    QCOMPARE(Read(), QStringLiteral("/given"));
}

void TestDataDirectory::fallbackIsRemovedWithItsObject()
{
    {
        const DataDirectory::Fallback fallback(QStringLiteral("/samples"));
        QCOMPARE(Read(), QStringLiteral("/samples"));
    }
    QCOMPARE(Read(), QStringLiteral("(none)"));
}

void TestDataDirectory::fallbackKeepsAStoredDirectory()
{
    DataDirectory::Set(QStringLiteral("/stored"));
    {
        const DataDirectory::Fallback fallback(QStringLiteral("/samples"));
        QCOMPARE(Read(), QStringLiteral("/stored"));
    }
    QCOMPARE(Read(), QStringLiteral("/stored"));
}

void TestDataDirectory::noFallbackWithoutADirectory()
{
    const DataDirectory::Fallback fallback{QString()};
    QCOMPARE(Read(), QStringLiteral("(none)"));
}

void TestDataDirectory::samplesAreFoundBesideTheProgram()
{
    const QString directory = DataDirectory::InstalledSamples(QStringLiteral(PROGRAM_DIRECTORY));
    QVERIFY(QFileInfo(directory + QStringLiteral("/CfgVEXEL.xml")).isFile());
    QVERIFY(DataDirectory::InstalledSamples(QStringLiteral("/no/such/place/bin")).isEmpty());
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestDataDirectory)
#include "tst_datadirectory.moc"
