#include "tests/host/hostsetup.h"
#include "tests/support/filesizelimit.h"
#include "tests/support/testmain.h"

/// The host where there may be no display, and where a process can be kept from writing large files.
class TestVexelHostUnix : public QObject
{
    Q_OBJECT

private slots:
    void noDisplay()
    {
        HostSetUp setUp;
        const auto result = setUp.Run({});
        QCOMPARE(result.exitCode, 2);
        QCOMPARE(result.ErrorLines().size(), 1);
        QVERIFY2(result.error.contains(QLatin1String("no display")), qPrintable(result.error));
    }

    void headlessHostLeavesTheDesktopToItsChildren()
    {
        // The host shows nothing, but what it starts is meant for the person at the display.
        HostSetUp setUp;
        const QString program = setUp.Path("application");
        setUp.Write(program, "#!/bin/sh\nenv >environment.part && mv environment.part environment\n");
        QVERIFY(QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        setUp.Install(program, 1);
        setUp.Fill({QStringLiteral("mast")});
        for (const bool hasDesktop : {true, false}) {
            if (hasDesktop)
                setUp.Environment().insert(QStringLiteral("DISPLAY"), QStringLiteral(":4711"));
            else
                setUp.Environment().remove(QStringLiteral("DISPLAY"));
            QFile::remove(setUp.Path("environment"));
            const auto result =
                setUp.Run({QStringLiteral("--connect"), QStringLiteral("mast"), QStringLiteral("--wait")});
            QCOMPARE(result.exitCode, 0);
            QFile environment(setUp.Path("environment"));
            QVERIFY(environment.open(QIODevice::ReadOnly));
            QCOMPARE(environment.readAll().contains("QT_QPA_PLATFORM=offscreen"), !hasDesktop);
        }
    }

    void aFullDiskKeepsTheOldList()
    {
        HostSetUp setUp;
        setUp.Fill({QStringLiteral("one")});
        const QByteArray stored = setUp.StoredText();
        setUp.Write(setUp.Path("large.xml"), HostSetUp::ListDocument({QString(200'000, QLatin1Char('x'))}));
        {
            // The host inherits the limit.
            const FileSizeLimit limit(100'000);
            const auto result =
                setUp.Run({QStringLiteral("--add"), setUp.Path("large.xml"), QStringLiteral("--trace")});
            QCOMPARE(result.exitCode, 2);
            QVERIFY2(result.error.contains(QLatin1String("vexelhost: the configuration in ") + setUp.Config() +
                                           QLatin1String(" could not be saved\n")),
                     qPrintable(result.error));
            QVERIFY2(result.error.contains(QLatin1String(" trace platform/config/configdocument:")),
                     qPrintable(result.error));

            const auto exported = setUp.Run(
                {QStringLiteral("--add"), setUp.Path("large.xml"), QStringLiteral("--export"), setUp.Path("out.xml")});
            QVERIFY2(exported.error.contains(setUp.Path("out.xml")), qPrintable(exported.error));
            QVERIFY(!QFileInfo::exists(setUp.Path("out.xml")));
        }
        QCOMPARE(setUp.StoredText(), stored);
        QCOMPARE(setUp.Names(), QStringList(QStringLiteral("one")));

        // With room again it works again.
        QCOMPARE(setUp.Run({QStringLiteral("--add"), setUp.Path("large.xml")}).error, QString());
        QCOMPARE(setUp.Names().size(), 2);
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelHostUnix)
#include "tst_vexelhost_unix.moc"
