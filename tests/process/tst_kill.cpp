// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/kill.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>

class TestKill : public QObject
{
    Q_OBJECT

private slots:
    void processEndsAtOnce();
    void processThatDoesNotRun();
};

void TestKill::processEndsAtOnce()
{
    const QTemporaryDir reports;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("VEXEL_TESTCHILD_REPORTS"), reports.path());
    environment.insert(QStringLiteral("VEXEL_TESTCHILD_MODE"), QStringLiteral("stay"));
    process.setProcessEnvironment(environment);
    process.start(QDir().absoluteFilePath(QStringLiteral(VEXEL_TESTCHILD)), QStringList());
    QVERIFY(process.waitForStarted());
    const QSignalSpy ends(&process, &QProcess::finished);
    bool areOthersCalled = false;
    QMetaObject::invokeMethod(
        this, [&] { areOthersCalled = true; }, Qt::QueuedConnection);

    KillAndWait(process);
    QCOMPARE(process.state(), QProcess::NotRunning);
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(ends.size(), 1);
    QVERIFY(!areOthersCalled);
    QTRY_VERIFY(areOthersCalled);
    QCOMPARE(ends.size(), 1);
}

void TestKill::processThatDoesNotRun()
{
    QProcess process;
    const QSignalSpy changes(&process, &QProcess::stateChanged);
    KillAndWait(process);
    QCOMPARE(process.state(), QProcess::NotRunning);
    QCOMPARE(changes.size(), 0);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestKill)
#include "tst_kill.moc"
