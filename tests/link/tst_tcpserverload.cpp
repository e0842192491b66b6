// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/interfaces.h"
#include "platform/link/readbudget.h"
#include "starter/linkcall.h"
#include "tests/link/flood.h"
#include "tests/support/linkfixture.h"
#include "tests/support/linkport.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"
#include "userinterface/vexelconnectdlg/tcpserver.h"

#include <QApplication>
#include <QDialog>
#include <QDir>

#include <atomic>
#include <cstdlib>
#include <future>
#include <memory>
#include <new>
#include <vector>

using namespace std::chrono_literals;

namespace {

std::atomic<std::size_t> kBytesAllocated = 0; // for arrays

const QString kCalled = QStringLiteral("TCPServer::OnOpen(): Received call from KiteStarter.");
const QString kClosed = QStringLiteral("TCPServer::OnClose(): Connection to KiteStarter closed.");

} // namespace

void* operator new[](std::size_t size)
{
    kBytesAllocated += size;
    void* const array = std::malloc(size); // NOLINT(cppcoreguidelines-no-malloc)
    if (!array)
        throw std::bad_alloc();
    return array;
}

void operator delete[](void* array) noexcept
{
    std::free(array); // NOLINT(cppcoreguidelines-no-malloc)
}

void operator delete[](void* array, std::size_t) noexcept
{
    std::free(array); // NOLINT(cppcoreguidelines-no-malloc)
}

// The dialog's link at its real port, with the callers that a machine may have.
class TestTcpServerLoad : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void starterIsAnsweredOnceTheDialogIsUp();
    void floodCostsBoundedMemory();
    void nothingIsLeftOpen();

private:
    static std::unique_ptr<QTcpSocket> Call() { return CallerOf(LinkPort::kNumber); }
};

void TestTcpServerLoad::cleanup()
{
    // The next test needs the port.
    QTRY_VERIFY_WITH_TIMEOUT(LinkPort::IsFree(), 30'000);
}

void TestTcpServerLoad::starterIsAnsweredOnceTheDialogIsUp()
{
    NEED_PORT();
    /// Another thread can ask whether it is shown.
    class Window : public QDialog
    {
    public:
        std::atomic<bool> isShown = false;

    protected:
        void showEvent(QShowEvent* event) override
        {
            // A window that takes its time.
            QThread::msleep(20);
            QDialog::showEvent(event);
            isShown = true;
        }
    };
    Window window;
    const TCPServer server(&window);
    for (int call = 0; call < 5; ++call) {
        window.hide();
        window.isShown = false;
        auto isAnswered = std::async(
            std::launch::async,
            [&] { return CallLink(LinkPort::kNumber, QDeadlineTimer(30s)) == LinkAnswer::Accepted && window.isShown; });
        QVERIFY(QTest::qWaitFor([&] { return isAnswered.wait_for(0s) == std::future_status::ready; }, 30'000));
        QVERIFY(isAnswered.get());
    }
}

void TestTcpServerLoad::floodCostsBoundedMemory()
{
    NEED_PORT();
    QDialog window;
    const TraceRecorder traces(0);
    const auto start = ReadBudget::Clock::now();
    const std::size_t atFirst = kBytesAllocated;
    const TCPServer server(&window);
    constexpr qint64 gibibyte = 1LL << 30U;
    for (int flood = 0; flood < 30; ++flood) {
        const std::size_t before = kBytesAllocated;
        Flood stranger(LinkPort::kNumber, gibibyte);
        QTRY_VERIFY(stranger.Unsent() < gibibyte); // it has begun
        QTRY_COMPARE_WITH_TIMEOUT(stranger.socket.state(), QAbstractSocket::UnconnectedState, 30'000);
        // The server never frees its buffers, so one peer costs this much for good.
        if (flood < 3)
            QVERIFY(kBytesAllocated - before >= CInterfaceCreator::kMaximumBytesPerCall);
        QVERIFY2(kBytesAllocated - before < CInterfaceCreator::kMaximumBytesPerCall + 4096,
                 QByteArray::number(quint64(kBytesAllocated - before)).constData());
    }
    const auto time = std::chrono::ceil<std::chrono::seconds>(ReadBudget::Clock::now() - start);
    QVERIFY2(static_cast<qint64>(kBytesAllocated - atFirst) <=
                 CInterfaceCreator::kReadBurst + time.count() * CInterfaceCreator::kReadBytesPerSecond,
             QByteArray::number(quint64(kBytesAllocated - atFirst)).constData());
    window.hide();
    const auto caller = Call();
    QTRY_VERIFY(window.isVisible());
}

void TestTcpServerLoad::nothingIsLeftOpen()
{
    NEED_PORT();
    QDialog window;
    window.show();
    const auto before = System::OpenHandles();
    {
        const TraceRecorder traces;
        const TCPServer server(&window);
        std::vector<std::unique_ptr<QTcpSocket>> callers;
        for (int call = 0; call < 100; ++call) {
            callers.push_back(Call());
            if (call % 4 == 0)
                callers.back()->disconnectFromHost();
        }
        QTRY_COMPARE_WITH_TIMEOUT(traces.Count(kCalled), 100, 30'000);
    }
    // The server has gone with some of them there.
    QTRY_COMPARE(System::OpenHandles(), before);
}

VEXEL_TEST(QTEST_MAIN, TestTcpServerLoad)
#include "tst_tcpserverload.moc"
