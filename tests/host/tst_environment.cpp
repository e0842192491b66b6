#include "host/environment.h"

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
    void init() { qunsetenv(s_name); }

    void EveryLetterIsKept_data() { Texts(); }
    void EveryLetterIsKept()
    {
        QFETCH(const QString, text);
        Environment::Set(s_name, text);
        COMPARE_VARIABLE(s_name, text);
        Environment::Set(s_name, QStringLiteral("another"));
        COMPARE_VARIABLE(s_name, QStringLiteral("another"));
    }

    void TheFirstOfAList_data() { Texts(); }
    void TheFirstOfAList()
    {
        QFETCH(const QString, text);
        Environment::Prepend(s_name, text);
        COMPARE_VARIABLE(s_name, text);
        // Those that are there keep their letters, too.
        Environment::Prepend(s_name, QStringLiteral("/first"));
        COMPARE_VARIABLE(s_name, QStringLiteral("/first") + QDir::listSeparator() + text);
    }

    void LongListsAreKept()
    {
        const QString text(20'000, QChar(0x5317));
        Environment::Prepend(s_name, text);
        Environment::Prepend(s_name, QStringLiteral("/first"));
        COMPARE_VARIABLE(s_name, QStringLiteral("/first") + QDir::listSeparator() + text);
    }

#ifdef Q_OS_UNIX
    void BytesThatAreNoTextAreKept()
    {
        qputenv(s_name, "/a\xff\xfe");
        Environment::Prepend(s_name, QStringLiteral("/first"));
        QCOMPARE(qgetenv(s_name), QByteArray("/first:/a\xff\xfe"));
    }
#endif

private:
    static constexpr const char* s_name = "VEXEL_TEST_ENVIRONMENT";

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

QTEST_GUILESS_MAIN(TestEnvironment)
#include "tst_environment.moc"
