// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/kill.h"
#include "tests/support/testmain.h"
#include "tests/support/waitforend.h"

#include <QDir>
#include <QEvent>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

class TestKill : public QObject
{
    Q_OBJECT

private slots:
    void runningProcessEndsAtOnce();
    void endedProcessStaysAsItIs();

private:
    void Start(QProcess& process, const char* mode, int exitCode) const;

    const QTemporaryDir m_reports;
};

namespace {

/// Counts the notifications of an end that objects receive on Windows.
class NotificationCounter : public QObject
{
public:
    int count = 0;

protected:
    bool eventFilter(QObject* /*receiver*/, QEvent* event) override
    {
        count += event->type() == QEvent::WinEventAct;
        return false;
    }
};

} // namespace

void TestKill::Start(QProcess& process, const char* mode, int exitCode) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("VEXEL_TESTCHILD_REPORTS"), m_reports.path());
    environment.insert(QStringLiteral("VEXEL_TESTCHILD_MODE"), QString::fromLatin1(mode));
    environment.insert(QStringLiteral("VEXEL_TESTCHILD_NUMBER"), QString::number(exitCode));
    process.setProcessEnvironment(environment);
    process.start(QDir().absoluteFilePath(QStringLiteral(VEXEL_TESTCHILD)), QStringList());
    QVERIFY(process.waitForStarted());
}

void TestKill::runningProcessEndsAtOnce()
{
    QProcess process;
    Start(process, "stay", 0);
    const QSignalSpy ends(&process, &QProcess::finished);
    NotificationCounter notifications;
    for (QObject* const child : process.findChildren<QObject*>())
        child->installEventFilter(&notifications);
    bool isOtherCalled = false;
    QObject other;
    QMetaObject::invokeMethod(
        &other, [&] { isOtherCalled = true; }, Qt::QueuedConnection);

    KillAndWait(process);
    QCOMPARE(process.state(), QProcess::NotRunning);
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(ends.size(), 1);
#ifdef Q_OS_WIN
    // Otherwise it might still come.
    QCOMPARE(notifications.count, 1);
#endif
    QVERIFY(!isOtherCalled);
    QTRY_VERIFY(isOtherCalled);
    QCOMPARE(ends.size(), 1);
}

void TestKill::endedProcessStaysAsItIs()
{
    QProcess process;
    Start(process, "exit", 3);
    QVERIFY(WaitForEnd(process));
    const QSignalSpy changes(&process, &QProcess::stateChanged);
    const QSignalSpy ends(&process, &QProcess::finished);
    KillAndWait(process);
    QCOMPARE(changes.size(), 0);
    QCOMPARE(ends.size(), 0);
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 3);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestKill)
#include "tst_kill.moc"
