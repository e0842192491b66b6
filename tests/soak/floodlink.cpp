// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Floods the starter link of a dialog for a while and reports what that costs:
//
//     vexel_flood_link SECONDS            runs a dialog with its link on the real port, which must be free
//     vexel_flood_link flood MANNER PORT  a stranger, started by the first form; ends when it is killed
//
// Each manner of flood gets an equal share of the time. Meanwhile kitestarter calls the dialog again and again.

#include "platform/errorhandler.h"
#include "platform/starterport.h"
#include "tests/soak/measuring.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/tcpserver.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlggui.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLoggingCategory>
#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

struct Manner
{
    const char* name;
    const char* what;
    int sockets;
    std::size_t block;  // bytes of one write, as often as possible; 0 for none
    bool closesAtOnce;  // after the first write
    bool retriesAtOnce; // instead of leaving it to the system to connect again, which takes a second or more
    int pauseMs;        // between two rounds
};

constexpr std::array kManners{
    Manner{"big", "big writes", 32, std::size_t{64} * 1024, false, false, 0},
    Manner{"bytes", "one-byte writes", 64, 1, false, false, 1},
    Manner{"calls", "connect, one byte, close", 64, 1, true, false, 0},
    Manner{"silent", "1000 silent peers", 1000, 0, false, false, 0},
    Manner{"stubborn", "1000 silent, stubborn peers", 1000, 0, false, true, 0},
};

// The stranger. Works with the system's sockets, to be as fast as can be.

int Connect(quint16 port)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (socket == -1)
        return -1;
    const int yes = 1;
    (void)setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 && errno != EINPROGRESS) {
        ::close(socket);
        return -1;
    }
    return socket;
}

bool IsConnected(int socket)
{
    sockaddr_in peer{};
    socklen_t size = sizeof peer;
    return getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &size) == 0;
}

[[noreturn]] void Flood(const Manner& manner, quint16 port)
{
    (void)std::signal(SIGPIPE, SIG_IGN);
    rlimit files{};
    if (getrlimit(RLIMIT_NOFILE, &files) == 0) {
        files.rlim_cur = files.rlim_max;
        (void)setrlimit(RLIMIT_NOFILE, &files);
    }
    const std::vector<char> block(manner.block, 'x');
    std::vector<pollfd> sockets(static_cast<std::size_t>(manner.sockets), pollfd{-1, 0, 0});
    for (;;) {
        for (pollfd& socket : sockets) {
            if (socket.fd == -1)
                socket.fd = Connect(port);
            socket.events = manner.block > 0 ? POLLIN | POLLOUT : POLLIN;
        }
        (void)poll(sockets.data(), sockets.size(), manner.retriesAtOnce ? 1 : 1000);
        for (pollfd& socket : sockets) {
            // The link never sends anything.
            bool isOver = (socket.revents & (POLLERR | POLLHUP | POLLIN)) != 0 ||
                          (manner.retriesAtOnce && !IsConnected(socket.fd));
            if (!isOver && (socket.revents & POLLOUT) != 0) {
                const ssize_t sent = send(socket.fd, block.data(), block.size(), MSG_NOSIGNAL);
                isOver = manner.closesAtOnce || (sent < 0 && errno != EAGAIN);
            }
            if (isOver) {
                ::close(socket.fd);
                socket.fd = -1;
            }
        }
        if (manner.pauseMs > 0)
            (void)poll(nullptr, 0, manner.pauseMs);
    }
}

// The dialog.

struct Traces
{
    qint64 calls = 0; // lines that report a call
    qint64 lines = 0;
    qint64 bytes = 0;
};

/// Calls the dialog with kitestarter, one call after the other.
class Starter
{
public:
    Starter()
    {
        QObject::connect(
            &m_process, &QProcess::finished,
            [this](int code, QProcess::ExitStatus status) {
                const double seconds = static_cast<double>(m_timer.elapsed()) / 1000;
                slowest = std::max(slowest, seconds);
                ++calls;
                if (status == QProcess::NormalExit && code == 0) {
                    ++answered;
                    return;
                }
                std::printf("  after %.1f s: exit code %d: %s", seconds, code,
                            m_process.readAllStandardError().constData());
            });
        m_again.callOnTimeout([this] { Call(); });
        m_again.start(250);
    }

    void Call()
    {
        if (m_process.state() != QProcess::NotRunning)
            return;
        m_timer.start();
        m_process.start(QStringLiteral(VEXEL_KITESTARTER), {QStringLiteral("--call-only")});
    }
    /// Waits until the present call has ended.
    void Finish()
    {
        m_again.stop();
        while (m_process.state() != QProcess::NotRunning)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    int calls = 0;
    int answered = 0;
    double slowest = 0; // s

private:
    QProcess m_process;
    QTimer m_again;
    QElapsedTimer m_timer;
};

/// Returns whether the starter got through each time.
bool Suffer(const Manner& manner, double seconds, Traces& traces)
{
    const double before = ResidentMiB();
    traces = {};
    QProcess stranger;
    stranger.setProcessChannelMode(QProcess::ForwardedChannels);
    stranger.start(QCoreApplication::applicationFilePath(),
                   {QStringLiteral("flood"), QString::fromLatin1(manner.name), QString::number(kStarterPort)});
    if (!stranger.waitForStarted())
        qFatal("No flood");
    Stalls stalls;
    Starter starter;
    QEventLoop loop;
    QTimer::singleShot(static_cast<int>(seconds * 1000), &loop, &QEventLoop::quit);
    loop.exec();
    // The last call is made beside the flood, too.
    starter.Finish();
    const bool wasThere = stranger.state() == QProcess::Running;
    stranger.kill();
    stranger.waitForFinished();
    std::printf("%-28s%10.1f%10.1f%9d%10d%11.1f%10lld%10lld%12lld%13.1f\n", manner.what, before, ResidentMiB(),
                starter.calls, starter.answered, starter.slowest, static_cast<long long>(stalls.longest),
                static_cast<long long>(traces.calls), static_cast<long long>(traces.lines),
                static_cast<double>(traces.bytes) / 1024 / 1024);
    (void)std::fflush(stdout);
    return wasThere && starter.calls > 0 && starter.answered == starter.calls;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc == 4 && std::string_view(argv[1]) == "flood") {
        for (const Manner& manner : kManners)
            if (std::string_view(argv[2]) == manner.name)
                Flood(manner, static_cast<quint16>(std::atoi(argv[3])));
        return 2;
    }
    const int seconds = argc == 2 ? std::atoi(argv[1]) : 0;
    if (seconds < 1) {
        std::fputs("usage: vexel_flood_link SECONDS\n", stderr);
        return 2;
    }

    const QApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false"));
    Traces traces;
    bool isListening = false;
    ErrorHandler::Instance().SetSink([&](ErrorHandler::Kind, const QString& message, const QString&, quint16) {
        ++traces.lines;
        traces.bytes += message.size() + 1;
        traces.calls += message.contains(QLatin1String("Received call")) ? 1 : 0;
        isListening = isListening || message.contains(QLatin1String("interface created"));
    });
    ErrorHandler::Instance().SetEnabledKinds(ErrorHandler::Trace);

    ConnectionsModel model(nullptr, QStringLiteral("ConnectionsModel"));
    AppCounter appCounter(&model, QStringLiteral("VexelConnectDlg"));
    VexelConnectDlgGUI dialog(nullptr, &model, &appCounter);
    const TCPServer server(&dialog);
    if (!isListening) {
        std::fprintf(stderr, "Another program has port %d\n", kStarterPort);
        return 1;
    }
    {
        // Makes the allocations that the first call makes in any case.
        Starter first;
        first.Call();
        first.Finish();
        if (first.answered != 1)
            return 1;
    }

    std::printf("%-28s%20s%19s%11s%10s%35s\n", "", "resident MiB", "starter's calls", "slowest", "longest", "traces");
    std::printf("%-28s%10s%10s%9s%10s%11s%10s%10s%12s%13s\n", "flood", "before", "after", "made", "answered", "s",
                "stall ms", "calls", "lines", "MiB");
    const double before = ResidentMiB();
    bool isGood = true;
    for (const Manner& manner : kManners)
        isGood = Suffer(manner, static_cast<double>(seconds) / kManners.size(), traces) && isGood;
    std::printf("resident memory: %.1f MiB before, %.1f MiB after %d s\n", before, ResidentMiB(), seconds);
    std::printf("starter: %s\n", isGood ? "every call got through" : "a call did not get through");
    ErrorHandler::Instance().SetSink({});
    return isGood ? 0 : 1;
}
