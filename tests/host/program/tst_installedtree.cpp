// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

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
    const auto run = [&](const QStringList& arguments) {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(place + QStringLiteral("/" VEXEL_BINDIR "/vexelctl"),
                      arguments + QStringList{QStringLiteral("--config"), setUp.Path("moved-config"),
                                              QStringLiteral("--language"), QStringLiteral("de")});
        return HostSetUp::End(process);
    };
    const auto added = run({QStringLiteral("add"), place + QStringLiteral("/" VEXEL_DATADIR "/connections.xml")});
    QVERIFY2(added.exitCode == 0, qPrintable(added.error));
    const auto list = run({QStringLiteral("list")});
    QCOMPARE(list.error, QString());
    QVERIFY2(list.output.contains(QStringLiteral("Ger\u00e4tetyp")), qPrintable(list.output));
    // With the installed data directory, application and translation.
    const auto connected = run({QStringLiteral("connect"), QStringLiteral("North Ridge mast")});
    QVERIFY2(connected.exitCode == 0, qPrintable(connected.error));
    QVERIFY2(connected.output.contains(QStringLiteral("North Ridge mast: Frei -> In Benutzung (kitecontrol, ")),
             qPrintable(connected.output));
    QVERIFY2(connected.output.contains(QStringLiteral("North Ridge mast: In Benutzung -> Frei (Exit-Code 0)")),
             qPrintable(connected.output));
}

VEXEL_TEST(QTEST_MAIN, TestInstalledTree)
#include "tst_installedtree.moc"
