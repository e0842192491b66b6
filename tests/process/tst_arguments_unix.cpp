// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/arguments.h"
#include "tests/support/testmain.h"

#include <QTest>

#include <vector>

/// Arguments with bytes that are not UTF-8.
class TestArgumentsUnix : public QObject
{
    Q_OBJECT

private slots:
    void validArgumentsAreAccepted()
    {
        QCOMPARE(Error({"--config", "caf\xc3\xa9", "", "\xf0\x9f\x93\xa1", "\xef\xbf\xbd"}), QString());
        QCOMPARE(Error({}), QString());
    }

    void invalidArgumentIsRefused_data()
    {
        QTest::addColumn<QByteArray>("argument");
        QTest::newRow("Latin 1") << QByteArray("caf\xe9");
        QTest::newRow("incomplete character") << QByteArray("caf\xc3");
        QTest::newRow("half of a character") << QByteArray("\xed\xa0\xbd");
        QTest::newRow("behind the sign of equality") << QByteArray("--config=\xff");
    }
    void invalidArgumentIsRefused()
    {
        QFETCH(const QByteArray, argument);
        const QString error = Error({"--config", argument});
        QVERIFY2(error.startsWith(QLatin1String("argument 2 is not valid UTF-8: \"")), qPrintable(error));
    }

    void nameOfTheProgramIsIgnored()
    {
        QByteArray program("/caf\xe9/program");
        char* argv[] = {program.data(), nullptr};
        QCOMPARE(ArgumentsError(1, argv), QString());
    }

private:
    static QString Error(QList<QByteArray> arguments)
    {
        arguments.prepend("program");
        std::vector<char*> argv;
        for (QByteArray& argument : arguments)
            argv.push_back(argument.data());
        return ArgumentsError(static_cast<int>(argv.size()), argv.data());
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestArgumentsUnix)
#include "tst_arguments_unix.moc"
