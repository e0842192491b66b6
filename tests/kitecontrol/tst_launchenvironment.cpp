// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"
#include "userinterface/kitecontrol/launchenvironment.h"

#include <QTest>

#include <limits>

class TestLaunchEnvironment : public QObject
{
    Q_OBJECT

private slots:
    void emptyEnvironment();
    void directoriesAreRead();
    void secondsAreConverted_data();
    void secondsAreConverted();
};

void TestLaunchEnvironment::emptyEnvironment()
{
    const LaunchEnvironment environment = LaunchEnvironment::From(QProcessEnvironment());
    QVERIFY(environment.configuration.isEmpty());
    QVERIFY(environment.reportDirectory.isEmpty());
    QVERIFY(!environment.lifetime.has_value());
    QVERIFY(environment.warnings.isEmpty());
}

void TestLaunchEnvironment::directoriesAreRead()
{
    QProcessEnvironment variables;
    variables.insert(QStringLiteral("VEXEL_CONFIG_DIR"), QStringLiteral("/store"));
    variables.insert(QStringLiteral("KITECONTROL_REPORT_DIR"), QStringLiteral("/reports"));
    const LaunchEnvironment environment = LaunchEnvironment::From(variables);
    QCOMPARE(environment.configuration, QStringLiteral("/store"));
    QCOMPARE(environment.reportDirectory, QStringLiteral("/reports"));
}

void TestLaunchEnvironment::secondsAreConverted_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("milliseconds"); // -1: none
    QTest::addColumn<bool>("complains");
    QTest::newRow("integer") << QStringLiteral("3") << qint64(3000) << false;
    QTest::newRow("fraction") << QStringLiteral("2.25") << qint64(2250) << false;
    QTest::newRow("zero") << QStringLiteral("0") << qint64(0) << false;
    QTest::newRow("empty") << QString() << qint64(-1) << false;
    QTest::newRow("larger than the maximum of a timer")
        << QStringLiteral("1e300") << qint64(std::numeric_limits<int>::max()) << false;
    QTest::newRow("negative") << QStringLiteral("-1") << qint64(-1) << true;
    QTest::newRow("text") << QStringLiteral("soon") << qint64(-1) << true;
    QTest::newRow("comma") << QStringLiteral("2,5") << qint64(-1) << true;
    QTest::newRow("infinite") << QStringLiteral("inf") << qint64(-1) << true;
    QTest::newRow("NaN") << QStringLiteral("nan") << qint64(-1) << true;
}

void TestLaunchEnvironment::secondsAreConverted()
{
    QFETCH(QString, text);
    QFETCH(qint64, milliseconds);
    QProcessEnvironment variables;
    variables.insert(QStringLiteral("KITECONTROL_SECONDS"), text);
    const LaunchEnvironment environment = LaunchEnvironment::From(variables);
    QCOMPARE(environment.lifetime ? qint64(environment.lifetime->count()) : qint64(-1), milliseconds);
    QTEST(!environment.warnings.isEmpty(), "complains");
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestLaunchEnvironment)
#include "tst_launchenvironment.moc"
