#include "tests/host/hostsetup.h"
#include "tests/support/filesizelimit.h"
#include "tests/support/testmain.h"

/// The host with and without a display.
class TestVexelHostUnix : public QObject
{
    Q_OBJECT

private slots:
    void missingDisplayIsReported()
    {
        HostSetUp setUp;
        const auto result = setUp.Run({});
        COMPARE_FAILURE(result, 2, QLatin1String("no display"));
    }

    void applicationsOfAHeadlessHostUseTheDisplay()
    {
        // The host shows nothing, but the user at the display works with the applications.
        HostSetUp setUp;
        const QString program = setUp.Path("application");
        setUp.Write(program, "#!/bin/sh\nenv >environment.part && mv environment.part environment\n");
        QVERIFY(QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        setUp.Install(program, 1);
        setUp.Fill("mast");
        for (const bool hasDesktop : {true, false}) {
            if (hasDesktop)
                setUp.Environment().insert(QStringLiteral("DISPLAY"), QStringLiteral(":4711"));
            else
                setUp.Environment().remove(QStringLiteral("DISPLAY"));
            QFile::remove(setUp.Path("environment"));
            const auto result = setUp.Run("--connect mast --wait");
            QCOMPARE(result.exitCode, 0);
            QFile environment(setUp.Path("environment"));
            QVERIFY(environment.open(QIODevice::ReadOnly));
            QCOMPARE(environment.readAll().contains("QT_QPA_PLATFORM=offscreen"), !hasDesktop);
        }
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelHostUnix)
#include "tst_vexelhost_unix.moc"
