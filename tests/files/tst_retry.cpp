#include "files/retry.h"
#include "tests/support/testmain.h"

#include <QTest>

class TestRetry : public QObject
{
    Q_OBJECT

private slots:
    void attempts_data()
    {
        QTest::addColumn<int>("held"); // attempts that are refused in a way that may pass
        QTest::addColumn<int>("last"); // what the one after them gives
        QTest::addColumn<bool>("isDone");
        QTest::addColumn<int>("attempts");
        QTest::newRow("at once") << 0 << int(Attempt::Done) << true << 1;
        QTest::newRow("fails for good") << 0 << int(Attempt::Failed) << false << 1;
        QTest::newRow("later") << 3 << int(Attempt::Done) << true << 4;
        QTest::newRow("fails later") << 3 << int(Attempt::Failed) << false << 4;
        QTest::newRow("with the last attempt") << 9 << int(Attempt::Done) << true << 10;
        QTest::newRow("too late") << 10 << int(Attempt::Done) << false << 10;
    }
    void attempts()
    {
        QFETCH(int, held);
        QFETCH(int, last);
        QFETCH(int, attempts);
        int count = 0;
        const bool isDone = Retry([&] {
            ++count;
            return count <= held ? Attempt::Busy : static_cast<Attempt>(last);
        });
        QTEST(isDone, "isDone");
        QCOMPARE(count, attempts);
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestRetry)
#include "tst_retry.moc"
