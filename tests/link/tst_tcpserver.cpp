// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/interfaces.h"
#include "tests/support/linkport.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"
#include "userinterface/vexelconnectdlg/tcpserver.h"

#include <QApplication>
#include <QDialog>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>
#include <stdexcept>

namespace {

constexpr quint16 kPort = LinkPort::kNumber;
const QString kSourceFile = QStringLiteral("userinterface/vexelconnectdlg/tcpserver");

// The arrays that the server allocates.
std::atomic<int> s_arraysAllocated = 0;
std::atomic<const void*> s_watchedArray = nullptr;
std::atomic<bool> s_watchedArrayReleased = false;

void ReleaseArray(void* array) noexcept
{
    if (array && array == s_watchedArray)
        s_watchedArrayReleased = true;
    std::free(array); // NOLINT(cppcoreguidelines-no-malloc): the counterpart of the allocation below
}

} // namespace

void* operator new[](std::size_t size)
{
    ++s_arraysAllocated;
    // A sanitizer ends the process rather than to answer that there is no such amount.
    constexpr std::size_t beyondAnyMemory = std::size_t{1} << 40U;
    void* const array = size < beyondAnyMemory ? std::malloc(size) : nullptr; // NOLINT(cppcoreguidelines-no-malloc)
    if (!array)
        throw std::bad_alloc();
    return array;
}

void operator delete[](void* array) noexcept
{
    ReleaseArray(array);
}

void operator delete[](void* array, std::size_t) noexcept
{
    ReleaseArray(array);
}

namespace {

/// An interface whose read does as it is told, and which fails the test when anything else is asked of it.
class FakeInterface : public IInterface
{
public:
    bool Open() override { return Unexpected(); }
    void Close() override { Unexpected(); }
    bool IsOpen() const override { return Unexpected(); }
    void Write(const char*, quint64) override { Unexpected(); }
    void Read(char* buffer, quint64* length, bool flag) override
    {
        ++reads;
        lengthGiven = *length;
        flagGiven = flag;
        s_watchedArray = buffer;
        s_watchedArrayReleased = false;
        if (read)
            read(buffer, length);
    }

    std::function<void(char*, quint64*)> read;
    int reads = 0;
    quint64 lengthGiven = 0;
    bool flagGiven = true;
    mutable int unexpected = 0;

private:
    bool Unexpected() const
    {
        ++unexpected;
        return false;
    }
};

/// Records the order of show and activation.
class Window : public QDialog
{
public:
    void setVisible(bool visible) override
    {
        QDialog::setVisible(visible);
        if (visible && activeAfterShow)
            activeAfterShow->activateWindow();
    }

    QList<QEvent::Type> seen;
    QWidget* activeAfterShow = nullptr; // as on a system that does not activate a shown window

protected:
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::Show || event->type() == QEvent::WindowActivate)
            seen.append(event->type());
        return QDialog::event(event);
    }
};

} // namespace

/// The last report is this trace of the server.
#define COMPARE_TRACE(traces, text, lineNumber)                                                                        \
    do {                                                                                                               \
        QVERIFY(!(traces).Reports().isEmpty());                                                                        \
        const auto report = (traces).Reports().constLast();                                                            \
        QCOMPARE(report.message, QStringLiteral(text));                                                                \
        QCOMPARE(report.sourceFile, kSourceFile);                                                                      \
        QCOMPARE(report.line, lineNumber);                                                                             \
        QCOMPARE(report.kind, ErrorHandler::Trace);                                                                    \
    } while (false)

class TestTcpServer : public QObject
{
    Q_OBJECT

private slots:
    void metacast();
    void hasNoParent();

    void listening();
    void creationFails();
    void creationFailsQuietly();
    void destructionGivesThePortBack();
    void destructionLeavesTheWidget();

    void onOpenShowsAndActivates();
    void onOpenRaisesTheVisibleWindowEachTime();
    void onOpenActivatesAfterTheShow();

    void onReadOfZeroBytesDoesNothing();
    void onReadTakesAllBytes();
    void onReadKeepsItsBuffer();
    void onReadCatchesEveryException_data();
    void onReadCatchesEveryException();
    void onReadSurvivesALackOfMemory();

    void onCloseOnlyTraces();
    void onErrorAndOnWrittenLeaveTheWindowAlone();
    void tracesOnlyWithTheirBit_data();
    void tracesOnlyWithTheirBit();

    void starterRaisesTheHiddenDialog();
    void starterCallsAgain();
    void starterCallsOverEitherAddress();
};

void TestTcpServer::metacast()
{
    QWidget widget;
    TCPServer server(&widget);
    QCOMPARE(server.qt_metacast("TCPServer"), static_cast<void*>(&server));
    QCOMPARE(server.qt_metacast("IInterfaceCallback"), static_cast<void*>(static_cast<IInterfaceCallback*>(&server)));
    QCOMPARE(server.qt_metacast("QObject"), static_cast<void*>(static_cast<QObject*>(&server)));
    QCOMPARE(server.qt_metacast("IInterface"), nullptr);
    QCOMPARE(server.qt_metacast("QWidget"), nullptr);
    QCOMPARE(server.qt_metacast(nullptr), nullptr);
    QVERIFY(server.inherits("TCPServer"));
}

void TestTcpServer::hasNoParent()
{
    QWidget widget;
    const TCPServer server(&widget);
    QCOMPARE(server.parent(), nullptr);
    QVERIFY(widget.children().isEmpty());
}

void TestTcpServer::listening()
{
    NEED_PORT();
    QWidget widget;
    const TraceRecorder traces;
    const TCPServer server(&widget);
    QCOMPARE(traces.Messages(kSourceFile).size(), 1);
    COMPARE_TRACE(traces, "TCPServer(): Server TCP interface created.", 49);
    QVERIFY(!LinkPort::IsFree());
    QVERIFY(!widget.isVisible());
}

void TestTcpServer::creationFails()
{
    QTcpServer other;
    if (!other.listen(QHostAddress(QHostAddress::LocalHost), kPort))
        QCOMPARE(other.serverError(), QAbstractSocket::AddressInUseError); // taken already, then
    Window window;
    const TraceRecorder traces;
    {
        TCPServer server(&window);
        QCOMPARE(traces.Messages(kSourceFile).size(), 1);
        COMPARE_TRACE(traces, "TCPServer(): Creation of Server TCP interface failed.", 54);

        // Usable, but not called by anyone.
        QVERIFY(!window.isVisible());
        server.OnOpen(nullptr);
        QVERIFY(window.isVisible());
        QTcpSocket caller;
        window.hide();
        caller.connectToHost(QHostAddress::LocalHost, kPort);
        QTRY_COMPARE(caller.state(), QAbstractSocket::ConnectedState);
        caller.write("x");
        QVERIFY(caller.waitForBytesWritten());
        QCoreApplication::processEvents();
        QVERIFY(!window.isVisible());
    }
    // Its end says nothing and leaves the port to its holder.
    QCOMPARE(traces.Messages(kSourceFile).size(), 2);
    QVERIFY(!LinkPort::IsFree());
}

void TestTcpServer::creationFailsQuietly()
{
    QTcpServer other;
    if (!other.listen(QHostAddress(QHostAddress::LocalHost), kPort))
        QCOMPARE(other.serverError(), QAbstractSocket::AddressInUseError);
    QWidget widget;
    const TraceRecorder traces(ErrorHandler::Assertion);
    const TCPServer server(&widget);
    QVERIFY2(traces.Reports().isEmpty(), traces.Text().constData());
    QCOMPARE(QApplication::activeModalWidget(), nullptr);
}

void TestTcpServer::destructionGivesThePortBack()
{
    NEED_PORT();
    QWidget widget;
    {
        const TCPServer server(&widget);
        QVERIFY(!LinkPort::IsFree());
    }
    QVERIFY(LinkPort::IsFree());
}

void TestTcpServer::destructionLeavesTheWidget()
{
    NEED_PORT();
    auto widget = std::make_unique<QWidget>();
    auto server = std::make_unique<TCPServer>(widget.get());
    QTcpSocket caller;
    caller.connectToHost(QHostAddress::LocalHost, kPort);
    QTRY_VERIFY(widget->isVisible());
    widget->hide();
    QTcpSocket late;
    late.connectToHost(QHostAddress::LocalHost, kPort);
    QVERIFY(late.waitForConnected());
    // The plug-in deletes the dialog first; a waiting call then does nothing.
    widget.reset();
    server.reset();
    QTRY_COMPARE(caller.state(), QAbstractSocket::UnconnectedState);
    QTRY_VERIFY(LinkPort::HasEnded(late));
}

void TestTcpServer::onOpenShowsAndActivates()
{
    Window window;
    TCPServer server(&window);
    const TraceRecorder traces;
    server.OnOpen(nullptr);
    QVERIFY(window.isVisible());
    QTRY_COMPARE(window.seen, (QList<QEvent::Type>{QEvent::Show, QEvent::WindowActivate}));
    QVERIFY(window.isActiveWindow());
    COMPARE_TRACE(traces, "TCPServer::OnOpen(): Received call from KiteStarter.", 68);
}

void TestTcpServer::onOpenRaisesTheVisibleWindowEachTime()
{
    QWidget other;
    Window window;
    window.show();
    TCPServer server(&window);
    for (int call = 0; call < 3; ++call) {
        other.show();
        other.activateWindow();
        QTRY_VERIFY(other.isActiveWindow());
        QVERIFY(window.isVisible());
        server.OnOpen(nullptr);
        QTRY_VERIFY(window.isActiveWindow());
        QVERIFY(window.isVisible());
    }
    window.hide();
    server.OnOpen(nullptr);
    QVERIFY(window.isVisible());
}

void TestTcpServer::onOpenActivatesAfterTheShow()
{
    QWidget other;
    other.show();
    Window window;
    window.activeAfterShow = &other;
    window.show();
    QTRY_VERIFY(other.isActiveWindow());
    window.hide();
    TCPServer server(&window);
    server.OnOpen(nullptr);
    QTRY_VERIFY(window.isActiveWindow());
}

void TestTcpServer::onReadOfZeroBytesDoesNothing()
{
    QWidget widget;
    TCPServer server(&widget);
    FakeInterface fake;
    const TraceRecorder traces;
    const int before = s_arraysAllocated;
    server.OnRead(&fake, 0);
    QCOMPARE(int(s_arraysAllocated), before);
    QCOMPARE(fake.reads, 0);
    QVERIFY(traces.Reports().isEmpty());
    server.OnRead(nullptr, 0);
}

void TestTcpServer::onReadTakesAllBytes()
{
    QWidget widget;
    TCPServer server(&widget);
    FakeInterface fake;
    fake.read = [](char* buffer, const quint64* length) {
        std::fill_n(buffer, *length, 'x');
    };
    const TraceRecorder traces;
    const int before = s_arraysAllocated;
    server.OnRead(&fake, 4096);
    QCOMPARE(int(s_arraysAllocated), before + 1);
    QCOMPARE(fake.reads, 1);
    QCOMPARE(fake.lengthGiven, 4096);
    QCOMPARE(fake.flagGiven, false);
    QCOMPARE(fake.unexpected, 0);
    QVERIFY(s_watchedArray != nullptr);
    QVERIFY(traces.Reports().isEmpty());
    QVERIFY(!widget.isVisible());
}

void TestTcpServer::onReadKeepsItsBuffer()
{
    FakeInterface fake;
    // None of the announced bytes come.
    fake.read = [](char*, quint64* length) {
        *length = 0;
    };
    {
        QWidget widget;
        TCPServer server(&widget);
        const TraceRecorder traces;
        server.OnRead(&fake, 16);
        QCOMPARE(fake.reads, 1);
        QVERIFY(traces.Reports().isEmpty());
    }
    QVERIFY(!s_watchedArrayReleased);
}

void TestTcpServer::onReadCatchesEveryException_data()
{
    QTest::addColumn<int>("what");
    QTest::newRow("the library's exception") << 0;
    QTest::newRow("another exception") << 1;
    QTest::newRow("no exception class") << 2;
}

void TestTcpServer::onReadCatchesEveryException()
{
    QFETCH(const int, what);
    QWidget widget;
    TCPServer server(&widget);
    FakeInterface fake;
    fake.read = [what](char*, quint64* length) {
        *length = 0;
        switch (what) {
        case 0:
            throw std::runtime_error("gone");
        case 1:
            throw std::bad_alloc();
        default:
            throw 7; // NOLINT(hicpp-exception-baseclass): that is what is tried
        }
    };
    const TraceRecorder traces;
    server.OnRead(&fake, 16);
    QCOMPARE(fake.reads, 1);
    QVERIFY(s_watchedArrayReleased);
    QCOMPARE(traces.Reports().size(), 1);
    COMPARE_TRACE(traces, "KiteStarter::OnRead(): pInterface->Read exception caught!", 88);
}

void TestTcpServer::onReadSurvivesALackOfMemory()
{
    QWidget widget;
    TCPServer server(&widget);
    FakeInterface fake;
    // No memory holds so much, and no exception leaves the callback.
    server.OnRead(&fake, quint64{1} << 63U);
    QCOMPARE(fake.reads, 0);
}

void TestTcpServer::onCloseOnlyTraces()
{
    QWidget widget;
    TCPServer server(&widget);
    FakeInterface fake;
    const TraceRecorder traces;
    server.OnClose(&fake);
    COMPARE_TRACE(traces, "TCPServer::OnClose(): Connection to KiteStarter closed.", 97);
    QVERIFY(!widget.isVisible());
    QCOMPARE(fake.unexpected + fake.reads, 0);
}

void TestTcpServer::onErrorAndOnWrittenLeaveTheWindowAlone()
{
    QWidget widget;
    TCPServer server(&widget);
    FakeInterface fake;
    const TraceRecorder traces;
    for (const bool isVisible : {false, true}) {
        widget.setVisible(isVisible);
        server.OnError(&fake);
        COMPARE_TRACE(traces, "TCPServer::OnError(): error", 102);
        server.OnWritten(&fake, 10);
        QCOMPARE(widget.isVisible(), isVisible);
    }
    QCOMPARE(traces.Reports().size(), 2);
    QCOMPARE(fake.unexpected + fake.reads, 0);
}

void TestTcpServer::tracesOnlyWithTheirBit_data()
{
    QTest::addColumn<unsigned>("kinds");
    QTest::newRow("none") << 0U;
    QTest::newRow("all but theirs") << ~unsigned(ErrorHandler::Trace);
}

void TestTcpServer::tracesOnlyWithTheirBit()
{
    QFETCH(const unsigned, kinds);
    const TraceRecorder traces(kinds);
    QWidget widget;
    TCPServer server(&widget);
    FakeInterface fake;
    fake.read = [](char*, quint64*) {
        throw std::runtime_error("gone");
    };
    server.OnOpen(nullptr);
    server.OnRead(&fake, 16);
    server.OnClose(nullptr);
    server.OnError(nullptr);
    QVERIFY(widget.isVisible());
    QVERIFY(s_watchedArrayReleased);
    QVERIFY2(traces.Reports().isEmpty(), traces.Text().constData());
}

void TestTcpServer::starterRaisesTheHiddenDialog()
{
    NEED_PORT();
    QWidget other;
    other.show();
    Window window;
    const TraceRecorder traces;
    const TCPServer server(&window);
    QTcpSocket starter;
    starter.connectToHost(QHostAddress::LocalHost, kPort);
    QTRY_VERIFY(window.isVisible());
    QTRY_VERIFY(window.isActiveWindow());
    starter.write("wake up");
    starter.disconnectFromHost();
    QTRY_COMPARE(traces.Messages(kSourceFile),
                 (QStringList{QStringLiteral("TCPServer(): Server TCP interface created."),
                              QStringLiteral("TCPServer::OnOpen(): Received call from KiteStarter."),
                              QStringLiteral("TCPServer::OnClose(): Connection to KiteStarter closed.")}));
    QCOMPARE(starter.bytesAvailable(), 0); // it never answers
}

void TestTcpServer::starterCallsAgain()
{
    NEED_PORT();
    Window window;
    const TCPServer server(&window);
    const auto windows = QApplication::topLevelWidgets().size();
    for (int call = 0; call < 5; ++call) {
        QTcpSocket starter;
        starter.connectToHost(QHostAddress::LocalHost, kPort);
        QTRY_VERIFY(window.isVisible());
        window.hide();
    }
    QCOMPARE(QApplication::topLevelWidgets().size(), windows);
    QCOMPARE(window.seen.count(QEvent::Show), 5);
}

void TestTcpServer::starterCallsOverEitherAddress()
{
    NEED_PORT();
    Window window;
    const TCPServer server(&window);
    QTcpServer probe;
    QList<QHostAddress::SpecialAddress> addresses{QHostAddress::LocalHost};
    if (probe.listen(QHostAddress(QHostAddress::LocalHostIPv6)))
        addresses.append(QHostAddress::LocalHostIPv6);
    for (const auto address : addresses) {
        QTcpSocket starter;
        starter.connectToHost(address, kPort);
        QTRY_VERIFY(window.isVisible());
        window.hide();
    }
}

VEXEL_TEST(QTEST_MAIN, TestTcpServer)
#include "tst_tcpserver.moc"
