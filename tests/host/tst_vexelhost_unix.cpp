#include "tests/host/hostsetup.h"
#include "tests/support/filesizelimit.h"
#include "tests/support/testmain.h"

/// The host with and without a display, and with names that are not text.
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

    void pathThatIsNotTextIsRefused()
    {
        HostSetUp setUp;
        for (const char* option : {"--config", "--trace-file", "--export"}) {
            // QProcess passes valid text only.
            QProcess host;
            host.setProcessEnvironment(setUp.Environment());
            host.setWorkingDirectory(setUp.Path("."));
            host.start(QStringLiteral("/bin/sh"),
                       {QStringLiteral("-c"), QStringLiteral("exec \"$0\" --list \"$1\" \"$(printf 'caf\\351')\""),
                        QStringLiteral(VEXELHOST), QString::fromLatin1(option)});
            COMPARE_FAILURE(HostSetUp::End(host), 1, QLatin1String("argument 3 is not valid UTF-8: \"caf"));
            QCOMPARE(QDir(setUp.Path(".")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), Words("data"));
        }
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelHostUnix)
#include "tst_vexelhost_unix.moc"
