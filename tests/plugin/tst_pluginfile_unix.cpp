// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"

#include <QProcess>
#include <QTest>

/// The built plug-in file, as the loader sees it.
class TestPluginFile : public QObject
{
    Q_OBJECT

private slots:
    void exportsExactlyTwoFunctions()
    {
        QCOMPARE(Symbols({QStringLiteral("--defined-only"), QStringLiteral("--format=posix")}),
                 (QStringList{QStringLiteral("ARCreateEx T"), QStringLiteral("ARDestroy T")}));
    }

    // A platform library with these three functions is enough.
    void needsThreeFunctionsOfTheConfiguration()
    {
        QCOMPARE(
            Symbols(
                {QStringLiteral("--undefined-only"), QStringLiteral("--demangle"), QStringLiteral("--just-symbols")})
                .filter(QStringLiteral("CfgCenter")),
            (QStringList{QStringLiteral("CfgCenter::CreateCfg(QString const&, View, QString const&)"),
                         QStringLiteral("CfgCenter::GetAppCfg(View)"), QStringLiteral("CfgCenter::SaveDocument()")}));
    }

private:
    static QStringList Symbols(const QStringList& options)
    {
        QProcess process;
        process.start(QStringLiteral("nm"),
                      QStringList{QStringLiteral("-D")} + options + QStringList{QStringLiteral(VEXEL_PLUGIN)});
        if (!process.waitForFinished() || process.exitCode() != 0)
            qFatal("nm, which comes with the compiler, failed");
        QStringList symbols;
        for (const QString& line : QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\n')))
            if (!line.isEmpty())
                symbols +=
                    options.contains(QStringLiteral("--format=posix")) ? line.section(QLatin1Char(' '), 0, 1) : line;
        symbols.sort();
        return symbols;
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestPluginFile)
#include "tst_pluginfile_unix.moc"
