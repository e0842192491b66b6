// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/environment.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QProcessEnvironment>
#include <QTest>

// Variables as this process reads them, and as those get them that it starts.
#define COMPARE_VARIABLE(name, expected)                                                                               \
    do {                                                                                                               \
        QCOMPARE(qEnvironmentVariable(name), expected);                                                                \
        QCOMPARE(QProcessEnvironment::systemEnvironment().value(QLatin1String(name)), expected);                       \
    } while (false)

class TestEnvironment : public QObject
{
    Q_OBJECT

private slots:
    void init() { qunsetenv(kName); }

    void everyLetterIsKept_data() { Texts(); }
    void everyLetterIsKept()
    {
        QFETCH(const QString, text);
        Environment::Set(kName, text);
        COMPARE_VARIABLE(kName, text);
        Environment::Set(kName, QStringLiteral("another"));
        COMPARE_VARIABLE(kName, QStringLiteral("another"));
    }

    void firstOfAListIsUsed_data() { Texts(); }
    void firstOfAListIsUsed()
    {
        QFETCH(const QString, text);
        Environment::Prepend(kName, text);
        COMPARE_VARIABLE(kName, text);
        // Those that are there keep their letters, too.
        Environment::Prepend(kName, QStringLiteral("/first"));
        COMPARE_VARIABLE(kName, QStringLiteral("/first") + QDir::listSeparator() + text);
    }

    void longListsAreKept()
    {
        const QString text(20'000, QChar(0x5317));
        Environment::Prepend(kName, text);
        Environment::Prepend(kName, QStringLiteral("/first"));
        COMPARE_VARIABLE(kName, QStringLiteral("/first") + QDir::listSeparator() + text);
    }

#ifdef Q_OS_UNIX
    void invalidUtf8IsKept()
    {
        qputenv(kName, "/a\xff\xfe");
        Environment::Prepend(kName, QStringLiteral("/first"));
        QCOMPARE(qgetenv(kName), QByteArray("/first:/a\xff\xfe"));
    }
#endif

private:
    static constexpr const char* kName = "VEXEL_TEST_ENVIRONMENT";

    static void Texts()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("plain") << QStringLiteral("/some where");
        QTest::newRow("letters of many countries")
            << QStringLiteral("/\u00fc \u0441\u0432\u044f\u0437\u044c \u5317\u6597 \u05d0");
        QTest::newRow("beyond 16 bits") << QStringLiteral("/\U0001F4E1");
        QTest::newRow("equals sign") << QStringLiteral("/a=b");
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestEnvironment)
#include "tst_environment.moc"
