// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Measures a call over the starter link, compared with a minimal server that accepts and writes one line. This program
// creates a dialog and the plug-in's server on the real port, which must be free.

#include "platform/interfaces.h"
#include "platform/starterport.h"
#include "starter/linksocket.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/tcpserver.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlggui.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QLoggingCategory>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <future>
#include <memory>
#include <vector>

namespace {

using namespace std::chrono_literals;

constexpr int kRepeats = 500;
constexpr int kRounds = 20;
constexpr int kCrowd = 200;
constexpr int kProcesses = 30;

/// Runs the blocking `work` on another thread while this thread's event loop runs.
void Beside(const std::function<void()>& work)
{
    QEventLoop loop;
    const auto done = std::async(std::launch::async, [&] {
        work();
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
}

double Median(std::vector<double> figures)
{
    std::sort(figures.begin(), figures.end());
    return figures.empty() ? 0 : figures.at(figures.size() / 2);
}

/// Connects to `port`. Returns the milliseconds until the server has answered or closed the connection.
double CallOnce(quint16 port)
{
    QElapsedTimer timer;
    timer.start();
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, port);
    if (!socket.waitForConnected()) {
        std::fprintf(stderr, "No connection to port %d\n", port);
        std::exit(1);
    }
    ShutdownSending(socket.socketDescriptor());
    if (WaitForPeer(socket.socketDescriptor(), QDeadlineTimer(60s)) == PeerEvent::None) {
        std::fprintf(stderr, "No answer from port %d\n", port);
        std::exit(1);
    }
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// The median time of consecutive calls. `before` runs before each call, on the servers' thread.
double MeasureCalls(quint16 port, const std::function<void()>& before = {})
{
    std::vector<double> figures;
    for (int call = 0; call < kRepeats; ++call) {
        if (before)
            before();
        Beside([&] { figures.push_back(CallOnce(port)); });
    }
    return Median(figures);
}

/// The median time until all of `kCrowd` simultaneous calls are answered.
double MeasureCrowd(quint16 port)
{
    std::vector<double> figures;
    for (int round = 0; round < kRounds; ++round) {
        Beside([&] {
            QElapsedTimer timer;
            timer.start();
            std::vector<std::unique_ptr<QTcpSocket>> callers;
            for (int call = 0; call < kCrowd; ++call) {
                callers.push_back(std::make_unique<QTcpSocket>());
                callers.back()->connectToHost(QHostAddress::LocalHost, port);
            }
            for (const auto& caller : callers) {
                caller->waitForConnected();
                ShutdownSending(caller->socketDescriptor());
            }
            for (const auto& caller : callers)
                if (WaitForPeer(caller->socketDescriptor(), QDeadlineTimer(60s)) == PeerEvent::None)
                    std::exit(1);
            figures.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        });
    }
    return Median(figures);
}

/// The time of one call while `kCrowd` silent peers are connected.
double MeasureAmongSilentOnes(quint16 port)
{
    double figure = 0;
    Beside([&] {
        std::vector<std::unique_ptr<QTcpSocket>> silent;
        for (int call = 0; call < kCrowd; ++call) {
            silent.push_back(std::make_unique<QTcpSocket>());
            silent.back()->connectToHost(QHostAddress::LocalHost, port);
            silent.back()->waitForConnected();
        }
        figure = CallOnce(port);
    });
    return figure;
}

double MeasureStarter(const QString& program)
{
    std::vector<double> figures;
    for (int call = 0; call < kProcesses; ++call) {
        Beside([&] {
            QElapsedTimer timer;
            timer.start();
            if (QProcess::execute(program, {QStringLiteral("--call-only")}) != 0)
                std::exit(1);
            figures.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        });
    }
    return Median(figures);
}

/// Resident memory in KiB; 0 if /proc is not available.
qint64 ResidentMemory()
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = file.readAll();
    const qsizetype begin = text.indexOf("VmRSS:");
    return begin < 0 ? 0 : text.mid(begin + 6).simplified().split(' ').constFirst().toLongLong();
}

/// Sends `total` bytes in as many calls as needed, but at most `calls`. Returns the number of bytes the system
/// accepted.
qint64 Flood(quint16 port, qint64 total, int calls, int& made)
{
    const QByteArray block(CInterfaceCreator::kMaximumBytesPerCall, 'x');
    qint64 taken = 0;
    for (made = 0; made < calls && taken < total; ++made) {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, port);
        if (!socket.waitForConnected())
            break;
        while (taken < total && socket.state() == QAbstractSocket::ConnectedState) {
            socket.write(block);
            if (!socket.waitForBytesWritten(20'000))
                break;
            taken += block.size() - socket.bytesToWrite();
        }
    }
    return taken;
}

/// A minimal server: accepts a call, writes one line, and closes the connection.
class BareServer : public QTcpServer
{
public:
    BareServer()
    {
        setListenBacklogSize(kCrowd + 50);
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* const socket = nextPendingConnection()) {
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
                socket->write("here\n");
                socket->disconnectFromHost();
            }
        });
        if (!listen(QHostAddress(QHostAddress::LocalHost)))
            std::exit(1);
    }
};

void PrintRow(const char* what, double link, double bare)
{
    std::printf("%-58s%10.3f%10.3f%10.2f\n", what, link, bare, link / bare);
}

void PrintFlood(const char* what, int calls)
{
    constexpr qint64 gibibyte = 1024LL * 1024 * 1024;
    int made = 0;
    qint64 taken = 0;
    const qint64 before = ResidentMemory();
    Beside([&] { taken = Flood(kStarterPort, gibibyte, calls, made); });
    QCoreApplication::processEvents();
    std::printf("%-42s%8d%14.1f%12lld%12lld\n", what, made, static_cast<double>(taken) / 1024 / 1024,
                static_cast<long long>(before), static_cast<long long>(ResidentMemory()));
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false"));

    ConnectionsModel model(nullptr, QStringLiteral("ConnectionsModel"));
    AppCounter appCounter(&model, QStringLiteral("VexelConnectDlg"));
    VexelConnectDlgGUI dialog(nullptr, &model, &appCounter);
    {
        QTcpServer probe;
        if (!probe.listen(QHostAddress(QHostAddress::LocalHost), kStarterPort)) {
            std::fprintf(stderr, "Another program has port %d: nothing can be measured\n", kStarterPort);
            return 1;
        }
    }
    const TCPServer server(&dialog);
    const BareServer bareServer;
    const quint16 barePort = bareServer.serverPort();

    // Warm up both servers.
    Beside([&] {
        CallOnce(kStarterPort);
        CallOnce(barePort);
    });

    std::printf("%-58s%10s%10s%10s\n", "milliseconds from the connection to the answer, median", "link", "bare",
                "ratio");
    const double bare = MeasureCalls(barePort);
    PrintRow("one call, dialog visible", MeasureCalls(kStarterPort), bare);
    PrintRow("one call, dialog hidden", MeasureCalls(kStarterPort, [&] { dialog.hide(); }), bare);
    PrintRow("200 at once, until the last is answered", MeasureCrowd(kStarterPort), MeasureCrowd(barePort));
    std::printf("%-58s%10.3f\n", "one call behind 200 silent peers", MeasureAmongSilentOnes(kStarterPort));
    std::printf("%-58s%10.3f\n\n", "a whole run of kitestarter",
                MeasureStarter(QCoreApplication::applicationDirPath() + QStringLiteral("/" VEXEL_STARTER)));

    std::printf("%-42s%8s%14s%12s%12s\n", "one peer sends 1 GiB; resident memory", "calls", "MiB taken", "KiB before",
                "KiB after");
    // The first call also allocates memory that is needed in any case.
    PrintFlood("in one call, first time", 1);
    PrintFlood("in one call", 1);
    PrintFlood("in as many calls as needed", 100'000);
    return 0;
}
