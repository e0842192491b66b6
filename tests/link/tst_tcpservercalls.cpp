// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/errorhandler.h"
#include "platform/interfaces.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"
#include "userinterface/vexelconnectdlg/tcpserver.h"

#include <QDialog>
#include <QList>
#include <QTest>

#include <memory>

namespace {

/// The calls of the server to the connections library, and the results it gets.
struct Library
{
    struct Creation
    {
        QString address;
        IInterfaceCallback* callback;
        quint64 number;
        bool flag;
    };

    QList<Creation> creations;
    bool fails = false;
    int alive = 0;
    int calls = 0;
};
Library kLibrary;

/// An interface that counts its instances and calls.
class CountedInterface : public IInterface
{
public:
    CountedInterface() { ++kLibrary.alive; }
    ~CountedInterface() override { --kLibrary.alive; }

    CountedInterface(const CountedInterface&) = delete;
    CountedInterface& operator=(const CountedInterface&) = delete;

    bool Open() override { return Called(); }
    void Close() override { Called(); }
    bool IsOpen() const override { return Called(); }
    void Write(const char*, quint64) override { Called(); }
    void Read(char*, quint64*, bool) override { Called(); }

private:
    static bool Called()
    {
        ++kLibrary.calls;
        return true;
    }
};

/// Records the traces made before it is shown.
class Window : public QDialog
{
public:
    explicit Window(const TraceRecorder& traces)
        : m_traces(traces)
    {
    }

    QStringList tracedBefore;

protected:
    void showEvent(QShowEvent* event) override
    {
        tracedBefore = m_traces.Messages();
        QDialog::showEvent(event);
    }

private:
    const TraceRecorder& m_traces;
};

} // namespace

// Replaces that of the library.
IInterface* CInterfaceCreator::CreateInterface(const QString& address, IInterfaceCallback* callback, quint64 number,
                                               bool flag)
{
    kLibrary.creations.append({address, callback, number, flag});
    return kLibrary.fails ? nullptr : new CountedInterface;
}

/// The server on a fake connections library.
class TestTcpServerCalls : public QObject
{
    Q_OBJECT

private slots:
    void init() { kLibrary = {}; }

    void createsOneOpenServer();
    void createdInterfaceIsDeleted();
    void worksWithoutAnInterface();
    void tracesBeforeItShows();
};

void TestTcpServerCalls::createsOneOpenServer()
{
    QWidget widget;
    TCPServer server(&widget);
    QCOMPARE(kLibrary.creations.size(), 1);
    const auto& creation = kLibrary.creations.constFirst();
    QCOMPARE(creation.address, QStringLiteral("TCP::8451"));
    QCOMPARE(creation.callback, static_cast<IInterfaceCallback*>(&server));
    QCOMPARE(creation.number, 10000);
    QCOMPARE(creation.flag, false);

    // No call of the starter has another one made, or touches the one that is there.
    CountedInterface peer;
    server.OnOpen(&peer);
    server.OnWritten(&peer, 1);
    server.OnError(&peer);
    server.OnClose(&peer);
    server.OnRead(&peer, 0);
    QCOMPARE(kLibrary.creations.size(), 1);
    QCOMPARE(kLibrary.calls, 0);
}

void TestTcpServerCalls::createdInterfaceIsDeleted()
{
    QWidget widget;
    auto server = std::make_unique<TCPServer>(&widget);
    QCOMPARE(kLibrary.alive, 1);
    server.reset();
    QCOMPARE(kLibrary.alive, 0);
    QCOMPARE(kLibrary.calls, 0);
    QVERIFY(!widget.isVisible());
}

void TestTcpServerCalls::worksWithoutAnInterface()
{
    kLibrary.fails = true;
    QWidget widget;
    const TraceRecorder traces;
    {
        TCPServer server(&widget);
        QCOMPARE(kLibrary.creations.size(), 1);
        server.OnOpen(nullptr);
        QVERIFY(widget.isVisible());
    }
    // It does not try again.
    QCOMPARE(kLibrary.creations.size(), 1);
    QVERIFY(!traces.Reports().isEmpty());
    QCOMPARE(traces.Reports().constFirst().message,
             QStringLiteral("TCPServer(): Creation of Server TCP interface failed."));
    QCOMPARE(traces.Reports().constFirst().line, 54);
    QCOMPARE(traces.Reports().constFirst().kind, ErrorHandler::Trace);
}

void TestTcpServerCalls::tracesBeforeItShows()
{
    const TraceRecorder traces;
    Window window(traces);
    TCPServer server(&window);
    server.OnOpen(nullptr);
    QCOMPARE(window.tracedBefore,
             (QStringList{QStringLiteral("TCPServer(): Server TCP interface created."),
                          QStringLiteral("TCPServer::OnOpen(): Received call from KiteStarter.")}));
}

VEXEL_TEST(QTEST_MAIN, TestTcpServerCalls)
#include "tst_tcpservercalls.moc"
