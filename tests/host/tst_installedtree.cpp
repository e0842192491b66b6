#include "tests/host/hostsetup.h"

#include <QDir>
#include <QProcess>
#include <QTest>

/// What `cmake --install` makes, moved elsewhere and run from there.
class TestInstalledTree : public QObject
{
    Q_OBJECT

private slots:
    void RunsAfterItWasMoved();
};

void TestInstalledTree::RunsAfterItWasMoved()
{
    HostSetUp setUp;
    QProcess install;
    install.start(QStringLiteral(VEXEL_CMAKE), {QStringLiteral("--install"), QStringLiteral(VEXEL_BUILD_DIR),
                                                QStringLiteral("--prefix"), setUp.Path("first")});
    QVERIFY(install.waitForFinished(60000));
    QVERIFY2(install.exitCode() == 0, install.readAllStandardError().constData());
    QVERIFY(QDir().rename(setUp.Path("first"), setUp.Path("second place")));

    QProcessEnvironment environment = setUp.Environment();
    environment.insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("0.2"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(setUp.Path("second place/" VEXEL_BINDIR "/vexelhost"),
                  {QStringLiteral("--config"), setUp.Path("moved-config"), QStringLiteral("--language"),
                   QStringLiteral("de"), QStringLiteral("--add"),
                   setUp.Path("second place/" VEXEL_DATADIR "/connections.xml"), QStringLiteral("--list"),
                   QStringLiteral("--connect"), QStringLiteral("North Ridge mast"), QStringLiteral("--wait")});
    const auto result = HostSetUp::End(process);
    QVERIFY2(result.exitCode == 0, qPrintable(result.error));
    QCOMPARE(result.error, QString());
    // Its own data directory, application and translation.
    QVERIFY2(result.output.contains(QStringLiteral("Ger\u00e4tetyp")), qPrintable(result.output));
    QVERIFY2(result.output.contains(QStringLiteral("North Ridge mast: Frei -> In Benutzung")),
             qPrintable(result.output));
    QVERIFY2(result.output.contains(QStringLiteral("North Ridge mast: In Benutzung -> Frei")),
             qPrintable(result.output));
}

QTEST_MAIN(TestInstalledTree)
#include "tst_installedtree.moc"
