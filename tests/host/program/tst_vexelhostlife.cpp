// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/host/hostsetup.h"
#include "tests/support/testmain.h"

// Several hosts on one configuration directory.
class TestVexelHostLife : public QObject
{
    Q_OBJECT

private slots:
    void secondStartShowsTheRunningDialog();
    void hostThatHangsIsReported();
    void hostStartsAfterAKilledOne();
};

void TestVexelHostLife::secondStartShowsTheRunningDialog()
{
    HostSetUp setUp;
    setUp.Fill("one");
    QProcess first;
    setUp.StartDialog(first);
    // Then the host has stored its address and its data directory.
    QCOMPARE(setUp.Run("save").exitCode, 0);
    const QByteArray before = setUp.StoredText();

    for (const char* arguments : {"", "--data .", "--hidden"}) {
        setUp.Write(setUp.Path("CfgVEXEL.xml"), "<CfgVEXEL/>");
        const auto second = setUp.RunHost(arguments);
        QCOMPARE(second.exitCode, 0);
        QCOMPARE(second.output, QString());
        // Qt may have its say about the offscreen platform.
        QCOMPARE(second.ErrorLines().filter(QStringLiteral("vexelhost: ")), QStringList());
        QCOMPARE(setUp.StoredText(), before);
    }
    first.terminate();
    QCOMPARE(HostSetUp::End(first).exitCode, 0);
    QCOMPARE(setUp.Names(), Words("one"));
}

void TestVexelHostLife::hostThatHangsIsReported()
{
    HostSetUp setUp;
    setUp.Fill("one");
    QProcess first;
    setUp.StartDialog(first);
    QCOMPARE(setUp.Run("status").exitCode, 0); // it can be reached
    if (!System::Suspend(first.processId())) {
        first.kill();
        HostSetUp::End(first);
        QSKIP("processes cannot be stopped here");
    }
    const auto list = setUp.Run("list");
    System::Resume(first.processId());
    COMPARE_FAILURE(list, 4, QLatin1String("does not answer"));
    // Nothing is lost.
    QCOMPARE(setUp.Names(), Words("one"));
    first.terminate();
    QCOMPARE(HostSetUp::End(first).exitCode, 0);
}

void TestVexelHostLife::hostStartsAfterAKilledOne()
{
    HostSetUp setUp;
    setUp.Fill("one");
    for (int run = 0; run < 2; ++run) {
        QProcess host;
        setUp.StartDialog(host);
        QCOMPARE(setUp.Names(), Words("one"));
        host.kill();
        HostSetUp::End(host);
    }
    const auto next = setUp.Run("list");
    QCOMPARE(next.exitCode, 0);
    QCOMPARE(next.error, QString());
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelHostLife)
#include "tst_vexelhostlife.moc"
