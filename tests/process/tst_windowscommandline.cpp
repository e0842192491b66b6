// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/windowscommandline.h"
#include "tests/support/testmain.h"

#include <QTest>

class TestWindowsCommandLine : public QObject
{
    Q_OBJECT

private slots:
    void argumentsAreQuoted_data();
    void argumentsAreQuoted();
    void quotedArgumentsAreParsedBack();
};

namespace {

/// Takes a command line apart by the rules of the C run time on Windows.
QStringList TakeApart(const QString& text)
{
    QStringList arguments;
    QString argument;
    bool isQuoted = false;
    bool isBegun = false;
    qsizetype backslashes = 0;
    const auto flush = [&] {
        argument += QString(backslashes, u'\\');
        backslashes = 0;
    };
    for (const QChar unit : text) {
        if (unit == u'\\') {
            ++backslashes;
            isBegun = true;
            continue;
        }
        if (unit == u'"') {
            argument += QString(backslashes / 2, u'\\');
            const bool isLiteral = backslashes % 2 == 1;
            backslashes = 0;
            isBegun = true;
            if (isLiteral)
                argument += unit;
            else
                isQuoted = !isQuoted;
            continue;
        }
        flush();
        if ((unit == u' ' || unit == u'\t') && !isQuoted) {
            if (isBegun)
                arguments.append(argument);
            argument.clear();
            isBegun = false;
            continue;
        }
        argument += unit;
        isBegun = true;
    }
    flush();
    if (isBegun)
        arguments.append(argument);
    return arguments;
}

} // namespace

void TestWindowsCommandLine::argumentsAreQuoted_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << QStringLiteral("--config") << QStringLiteral("--config");
    QTest::newRow("empty") << QString() << QStringLiteral("\"\"");
    QTest::newRow("space") << QStringLiteral("a b") << QStringLiteral("\"a b\"");
    QTest::newRow("tab") << QStringLiteral("a\tb") << QStringLiteral("\"a\tb\"");
    QTest::newRow("quote") << QStringLiteral("a\"b") << QStringLiteral("\"a\\\"b\"");
    QTest::newRow("path") << QStringLiteral("C:\\a\\") << QStringLiteral("C:\\a\\");
    QTest::newRow("path with a space") << QStringLiteral("C:\\a b\\") << QStringLiteral("\"C:\\a b\\\\\"");
    QTest::newRow("backslashes and a quote") << QStringLiteral("\\\\\"") << QStringLiteral("\"\\\\\\\\\\\"\"");
    QTest::newRow("not for a shell") << QStringLiteral("%PATH%&^|<>") << QStringLiteral("%PATH%&^|<>");
    QTest::newRow("not Latin") << QStringLiteral("\u5317 \u0441") << QStringLiteral("\"\u5317 \u0441\"");
}

void TestWindowsCommandLine::argumentsAreQuoted()
{
    QFETCH(const QString, argument);
    QFETCH(const QString, text);
    QCOMPARE(WindowsCommandLine({argument}), text);
    QCOMPARE(WindowsCommandLine({QStringLiteral("x"), argument, QStringLiteral("y")}),
             QStringLiteral("x ") + text + QStringLiteral(" y"));
}

void TestWindowsCommandLine::quotedArgumentsAreParsedBack()
{
    // Every text of these five characters, up to five long.
    const QString characters = QStringLiteral("\\\" \ta");
    for (int number = 0; number < 5 * 5 * 5 * 5 * 5; ++number) {
        QString argument;
        for (int rest = number; rest > 0; rest /= 5)
            argument += characters.at(rest % 5);
        const QStringList arguments{QStringLiteral("C:\\Program Files\\x.exe"), argument, QStringLiteral("--last")};
        QCOMPARE(TakeApart(WindowsCommandLine(arguments)), arguments);
    }
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestWindowsCommandLine)
#include "tst_windowscommandline.moc"
