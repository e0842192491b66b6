// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/system/brokenoutput_unix.h"
#include "tests/support/testmain.h"

/// The executable of the starter with outputs that cannot be written, and with a path that is not text.
class TestKiteStarterUnix : public QObject
{
    Q_OBJECT

private slots:
    void unwritableOutputFails_data() { AddBrokenOutputs({{QStringLiteral("--help")}, {QStringLiteral("--version")}}); }
    void unwritableOutputFails()
    {
        QFETCH(const BrokenOutput::Kind, kind);
        QFETCH(const QStringList, arguments);
        const BrokenOutput output(kind);
        QProcess starter;
        output.Give(starter, STDOUT_FILENO);
        starter.start(QStringLiteral(VEXEL_KITESTARTER), arguments);
        QVERIFY(starter.waitForFinished());
        QCOMPARE(starter.exitStatus(), QProcess::NormalExit);
        QCOMPARE(starter.exitCode(), 1);
        QCOMPARE(starter.readAllStandardError(),
                 QByteArray("kitestarter: cannot write everything to standard output\n"));
    }

    void unwritableErrorOutputKeepsTheExitCode_data() { AddBrokenOutputs({{QStringLiteral("--no-such-option")}}); }
    void unwritableErrorOutputKeepsTheExitCode()
    {
        QFETCH(const BrokenOutput::Kind, kind);
        QFETCH(const QStringList, arguments);
        const BrokenOutput errors(kind);
        QProcess starter;
        errors.Give(starter, STDERR_FILENO);
        starter.start(QStringLiteral(VEXEL_KITESTARTER), arguments);
        QVERIFY(starter.waitForFinished());
        QCOMPARE(starter.exitStatus(), QProcess::NormalExit);
        QCOMPARE(starter.exitCode(), 1);
    }

    void pathThatIsNotTextIsRefused()
    {
        // QProcess passes valid text only.
        QProcess starter;
        starter.start(QStringLiteral("/bin/sh"),
                      {QStringLiteral("-c"), QStringLiteral("exec \"$0\" --call-only --host \"$(printf 'caf\\351')\""),
                       QStringLiteral(VEXEL_KITESTARTER)});
        QVERIFY(starter.waitForFinished());
        QCOMPARE(starter.exitCode(), 1);
        const QByteArray error = starter.readAllStandardError();
        QVERIFY2(error.startsWith("kitestarter: argument 3 is not valid UTF-8: \"caf"), error.constData());
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestKiteStarterUnix)
#include "tst_kitestarter_unix.moc"
