// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTest>

/// The built plug-in file, as the loader sees it.
class TestPluginFile : public QObject
{
    Q_OBJECT

private slots:
    void exportsExactlyTwoFunctions()
    {
        const QString nm = QStandardPaths::findExecutable(QStringLiteral("nm"));
        QVERIFY2(!nm.isEmpty(), "nm comes with the compiler");
        QProcess process;
        process.start(nm, {QStringLiteral("-D"), QStringLiteral("--defined-only"), QStringLiteral("--format=posix"),
                           QStringLiteral(VEXEL_PLUGIN)});
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitCode(), 0);
        QStringList symbols;
        for (const QString& line : QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\n')))
            if (!line.isEmpty())
                symbols += line.section(QLatin1Char(' '), 0, 1);
        symbols.sort();
        QCOMPARE(symbols, (QStringList{QStringLiteral("ARCreateEx T"), QStringLiteral("ARDestroy T")}));
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestPluginFile)
#include "tst_pluginfile_unix.moc"
