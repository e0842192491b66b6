// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/retry.h"
#include "tests/support/testmain.h"

#include <QTest>

class TestRetry : public QObject
{
    Q_OBJECT

private slots:
    void repeatsWhileBusy_data()
    {
        QTest::addColumn<int>("busy"); // number of busy attempts
        QTest::addColumn<int>("last"); // result of the following attempt
        QTest::addColumn<bool>("isDone");
        QTest::addColumn<int>("attempts");
        QTest::newRow("first attempt") << 0 << int(Attempt::Done) << true << 1;
        QTest::newRow("first attempt fails") << 0 << int(Attempt::Failed) << false << 1;
        QTest::newRow("after three busy attempts") << 3 << int(Attempt::Done) << true << 4;
        QTest::newRow("fails after three busy attempts") << 3 << int(Attempt::Failed) << false << 4;
        QTest::newRow("last attempt") << 9 << int(Attempt::Done) << true << 10;
        QTest::newRow("too many busy attempts") << 10 << int(Attempt::Done) << false << 10;
    }
    void repeatsWhileBusy()
    {
        QFETCH(int, busy);
        QFETCH(int, last);
        QFETCH(int, attempts);
        int count = 0;
        const bool isDone = Retry([&] {
            ++count;
            return count <= busy ? Attempt::Busy : static_cast<Attempt>(last);
        });
        QTEST(isDone, "isDone");
        QCOMPARE(count, attempts);
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestRetry)
#include "tst_retry.moc"
