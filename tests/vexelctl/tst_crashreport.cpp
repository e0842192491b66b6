// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"
#include "vexelctl/support/crashreport.h"

#include <QTest>

class TestCrashReport : public QObject
{
    Q_OBJECT

private slots:
    void placeOfCoreDumps_data();
    void placeOfCoreDumps();
};

void TestCrashReport::placeOfCoreDumps_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("place");

    const auto row = [](const char* name, const char* pattern, const char* place) {
        QTest::newRow(name) << QString::fromLatin1(pattern) << QString::fromLatin1(place);
    };
    row("none", "", "switched off");
    row("current directory", "core",
        "files core in the current directory of the program, if \"ulimit -c\" allows them");
    row("a folder", "/var/crash/core.%e.%p", "files /var/crash/core.%e.%p, if \"ulimit -c\" allows them");
    row("systemd", "|/usr/lib/systemd/systemd-coredump %P %u %g %s %t %c %h",
        "kept by systemd: \"coredumpctl list vexelhost\" lists them");
    row("another program", "|/usr/share/apport/apport -p%p", "given to the program /usr/share/apport/apport");
}

void TestCrashReport::placeOfCoreDumps()
{
    QFETCH(const QString, pattern);
    QFETCH(const QString, place);
    QCOMPARE(CoreDumpPlace(pattern), place);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCrashReport)
#include "tst_crashreport.moc"
