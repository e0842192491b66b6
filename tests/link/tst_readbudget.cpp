// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/link/readbudget.h"
#include "tests/support/testmain.h"

#include <QTest>

using namespace std::chrono_literals;

namespace {

constexpr qint64 kDay = 24 * 60 * 60; // s

/// What reports of `bytes` each may cost in a day: the bytes, and what an allocation takes besides.
struct Taken
{
    qint64 bytes = 0;
    qint64 reports = 0;
};

/// Takes as many reports of `bytes` as there are, every `pause` for as long as `time`.
Taken TakeAll(ReadBudget& budget, qint64 bytes, std::chrono::milliseconds time, std::chrono::milliseconds pause)
{
    Taken taken;
    for (auto now = ReadBudget::Clock::time_point(1h), end = now + time; now <= end; now += pause) {
        while (budget.Take(bytes, now)) {
            taken.bytes += bytes;
            ++taken.reports;
        }
    }
    return taken;
}

} // namespace

class TestReadBudget : public QObject
{
    Q_OBJECT

private slots:
    void burst_data();
    void burst();
    void longRun_data();
    void longRun();
    void restRefillsTheBurstOnce();
    void shortPausesCount();
    void largeReportLeavesRoomForASmallOne();
};

void TestReadBudget::burst_data()
{
    QTest::addColumn<qint64>("bytes");
    for (const qint64 bytes : {1, 12, 4096, 65'536})
        QTest::addRow("%lld bytes each", static_cast<long long>(bytes)) << bytes;
}

void TestReadBudget::burst()
{
    QFETCH(const qint64, bytes);
    ReadBudget budget;
    const Taken taken = TakeAll(budget, bytes, 0s, 1s);
    const qint64 cost = taken.bytes + taken.reports * ReadBudget::kReportCost;
    QVERIFY2(cost <= CInterfaceCreator::kReadBurst, QByteArray::number(cost).constData());
    QVERIFY(cost + bytes + ReadBudget::kReportCost > CInterfaceCreator::kReadBurst);
}

void TestReadBudget::longRun_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<qint64>("pause"); // ms
    for (const qint64 bytes : {1, 100, 4096})
        for (const qint64 pause : {110, 1000})
            QTest::addRow("%lld bytes every %lld ms", static_cast<long long>(bytes), static_cast<long long>(pause))
                << bytes << pause;
}

void TestReadBudget::longRun()
{
    QFETCH(const qint64, bytes);
    QFETCH(const qint64, pause);
    ReadBudget budget;
    const Taken taken = TakeAll(budget, bytes, std::chrono::seconds(kDay), std::chrono::milliseconds(pause));
    QVERIFY(taken.bytes <= CInterfaceCreator::kReadBurst + kDay * CInterfaceCreator::kReadBytesPerSecond);
    // The block that a usual allocator takes: a multiple of 16 bytes, 8 of them its own, and at least 32.
    const qint64 block = std::max<qint64>(32, (bytes + 8 + 15) / 16 * 16);
    QVERIFY2(taken.reports * block < 400'000'000, QByteArray::number(taken.reports * block).constData());
    // Nothing is lost to rounding, either.
    const qint64 cost = taken.reports * (bytes + ReadBudget::kReportCost);
    QVERIFY2(cost > kDay * CInterfaceCreator::kReadBytesPerSecond, QByteArray::number(cost).constData());
}

void TestReadBudget::restRefillsTheBurstOnce()
{
    ReadBudget budget;
    const auto start = ReadBudget::Clock::time_point(1h);
    const auto takeAll = [&](ReadBudget::Clock::time_point now) {
        int count = 0;
        while (budget.Take(4064, now))
            ++count;
        return count;
    };
    QCOMPARE(takeAll(start), 256);
    QCOMPARE(takeAll(start), 0);
    QCOMPARE(takeAll(start + 10s), 10);
    QCOMPARE(takeAll(start + 1h), 256);
    QCOMPARE(takeAll(start + 1000h), 256);
}

void TestReadBudget::shortPausesCount()
{
    // The time between two attempts earns less than a byte.
    ReadBudget budget;
    auto now = ReadBudget::Clock::time_point(1h);
    while (budget.Take(4064, now)) {
    }
    int taken = 0;
    for (const auto end = now + 10s; now < end; now += 100us)
        taken += budget.Take(4064, now) ? 1 : 0;
    QVERIFY2(taken == 9 || taken == 10, QByteArray::number(taken).constData());
}

void TestReadBudget::largeReportLeavesRoomForASmallOne()
{
    ReadBudget budget;
    const auto now = ReadBudget::Clock::time_point(1h);
    while (budget.Take(4000, now)) {
    }
    QVERIFY(!budget.Take(4000, now));
    QVERIFY(budget.Take(12, now));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestReadBudget)
#include "tst_readbudget.moc"
