// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/link/readbudget.h"
#include "tests/link/flood.h"
#include "tests/support/linkfixture.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"

#include <QRegularExpression>
#include <QTest>

using Kind = RecordingCallback::Kind;

namespace {

constexpr qint64 kMebibyte = 1024LL * 1024;
// Sanitizers keep freed memory for a while, so the resident size says nothing.
#ifdef VEXEL_SANITIZED
constexpr bool kCanMeasure = false;
constexpr qint64 kFlood = 64 * kMebibyte;
#else
constexpr bool kCanMeasure = true;
constexpr qint64 kFlood = 1024 * kMebibyte;
#endif
// Includes the buffers of the sender, which is in this process, and memory kept by the allocator.
constexpr qint64 kMostKiB = 6L * 1024;

} // namespace

/// A gigabyte from a stranger, and the memory of this process.
class TestInterfaceFlood : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void onePeerCostsBoundedMemory_data();
    void onePeerCostsBoundedMemory();
    void manyCallsCostBoundedMemory();
    void busyCallbackCostsBoundedMemory();

private:
    qint64 m_iBefore = 0;
};

void TestInterfaceFlood::initTestCase()
{
    // The first flood makes the one-time allocations.
    TestServer server;
    Flood flood(server.port, 4 * kMebibyte);
    QTRY_COMPARE(server.callback.Count(Kind::Close), 1);
    QTRY_COMPARE(flood.socket.state(), QAbstractSocket::UnconnectedState);
}

void TestInterfaceFlood::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
    m_iBefore = System::ResidentKiB();
    QVERIFY(m_iBefore > 0);
}

void TestInterfaceFlood::cleanup()
{
    const qint64 more = System::ResidentKiB() - m_iBefore;
    if (kCanMeasure)
        QVERIFY2(more < kMostKiB, qPrintable(QStringLiteral("%1 KiB more").arg(more)));
}

void TestInterfaceFlood::onePeerCostsBoundedMemory_data()
{
    QTest::addColumn<bool>("isRead");
    QTest::newRow("read") << true;
    QTest::newRow("left unread") << false;
}

void TestInterfaceFlood::onePeerCostsBoundedMemory()
{
    QFETCH(const bool, isRead);
    TestServer server(10'000);
    if (!isRead) {
        server.callback.onRead = [](IInterface*, quint64) {
        };
    }
    Flood flood(server.port, kFlood);
    QTRY_COMPARE(server.callback.Count(Kind::Close), 1);
    QTRY_COMPARE(flood.socket.state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(server.callback.Length(Kind::Read), CInterfaceCreator::kMaximumBytesPerCall);
    QVERIFY(flood.Unsent() > kFlood / 2);
}

void TestInterfaceFlood::manyCallsCostBoundedMemory()
{
    const auto start = ReadBudget::Clock::now();
    TestServer server(10'000);
    qint64 given = 0;
    server.callback.onRead = [&given](IInterface*, quint64 length) {
        given += static_cast<qint64>(length);
    };
    qint64 left = kFlood;
    while (left > 0) {
        Flood flood(server.port, left);
        QVERIFY(WaitUntil(
            [&] { return flood.socket.state() == QAbstractSocket::UnconnectedState || flood.Taken() == left; }));
        QVERIFY2(flood.Taken() > 0, "It was not even heard");
        left -= flood.Taken();
        server.callback.events.clear();
    }
    QTRY_COMPARE(server.callback.now, 0);
    const auto time = std::chrono::ceil<std::chrono::seconds>(ReadBudget::Clock::now() - start);
    QVERIFY2(given <= CInterfaceCreator::kReadBurst + time.count() * CInterfaceCreator::kReadBytesPerSecond,
             QByteArray::number(given).constData());
    QVERIFY(server.server->IsOpen());
}

void TestInterfaceFlood::busyCallbackCostsBoundedMemory()
{
    TestServer server;
    TestServer clock(500);
    qint64 most = 0;
    std::unique_ptr<Flood> flood;
    server.callback.onOpen = [&](IInterface*) {
        // Long enough to send it all if the server read it.
        const auto silent = CallerOf(clock.port);
        QTRY_COMPARE(clock.callback.Count(Kind::Close), 1);
        QVERIFY(flood->Unsent() > kFlood / 2);
        most = System::ResidentKiB() - m_iBefore;
    };
    flood = std::make_unique<Flood>(server.port, kFlood);
    QTRY_COMPARE(server.callback.Count(Kind::Close), 1);
    if (kCanMeasure)
        QVERIFY2(most < kMostKiB, qPrintable(QStringLiteral("%1 KiB more").arg(most)));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestInterfaceFlood)
#include "tst_interfaceflood.moc"
