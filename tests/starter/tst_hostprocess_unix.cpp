// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/starter/startedhost.h"
#include "tests/support/testmain.h"

/// The host as Unix keeps processes apart.
class TestHostProcessUnix : public QObject
{
    Q_OBJECT

private slots:
    // The end of the starter's session is not the host's.
    void hostGetsANewSession()
    {
        const FakeHostRun run;
        HostProcess process;
        (void)Started(process, run, run.Arguments(QStringLiteral("hang"), 1));
        QFile file(QStringLiteral("/proc/%1/stat").arg(process.Id()));
        if (!file.open(QIODevice::ReadOnly))
            QSKIP("This system does not tell");
        // After the name, which stands in parentheses: state, parent, process group, session.
        const QByteArrayList fields = file.readAll().split(')').constLast().simplified().split(' ');
        QCOMPARE(fields.at(3).toLongLong(), process.Id());
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestHostProcessUnix)
#include "tst_hostprocess_unix.moc"
