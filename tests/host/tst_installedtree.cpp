#include "tests/host/hostsetup.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QProcess>
#include <QTest>

/// The result of `cmake --install`, moved to another folder.
class TestInstalledTree : public QObject
{
    Q_OBJECT

private slots:
    void installedTreeCanBeMoved();
};

void TestInstalledTree::installedTreeCanBeMoved()
{
    QDir installed(QStringLiteral(VEXEL_INSTALLED));
    const QString place = installed.absoluteFilePath(QStringLiteral("second place"));
    QVERIFY(QDir(place).removeRecursively());
    QVERIFY(installed.rename(QStringLiteral("first"), QStringLiteral("second place")));
    HostSetUp setUp;

    QProcessEnvironment environment = setUp.Environment();
    environment.insert(QStringLiteral("KITECONTROL_SECONDS"), QStringLiteral("0.2"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(place + QStringLiteral("/" VEXEL_BINDIR "/vexelhost"),
                  {QStringLiteral("--config"), setUp.Path("moved-config"), QStringLiteral("--language"),
                   QStringLiteral("de"), QStringLiteral("--add"),
                   place + QStringLiteral("/" VEXEL_DATADIR "/connections.xml"), QStringLiteral("--list"),
                   QStringLiteral("--connect"), QStringLiteral("North Ridge mast"), QStringLiteral("--wait")});
    const auto result = HostSetUp::End(process);
    QVERIFY2(result.exitCode == 0, qPrintable(result.error));
    QCOMPARE(result.error, QString());
    // With the installed data directory, application and translation.
    QVERIFY2(result.output.contains(QStringLiteral("Ger\u00e4tetyp")), qPrintable(result.output));
    QVERIFY2(result.output.contains(QStringLiteral("North Ridge mast: Frei -> In Benutzung")),
             qPrintable(result.output));
    QVERIFY2(result.output.contains(QStringLiteral("North Ridge mast: In Benutzung -> Frei")),
             qPrintable(result.output));
}

VEXEL_TEST(QTEST_MAIN, TestInstalledTree)
#include "tst_installedtree.moc"
