// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/host/hostsetup.h"
#include "tests/support/testmain.h"

/// The host without a display.
class TestVexelHostUnix : public QObject
{
    Q_OBJECT

private slots:
    void missingDisplayIsReported()
    {
        HostSetUp setUp;
        const auto result = setUp.RunHost({});
        COMPARE_FAILURE(result, 2, QLatin1String("no display"));
        QVERIFY(!QFileInfo::exists(setUp.Config()));
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelHostUnix)
#include "tst_vexelhost_unix.moc"
