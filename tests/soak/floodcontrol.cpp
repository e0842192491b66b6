// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Floods the control channel of a host for a while and reports what that costs:
//
//     vexel_flood_control SECONDS [MANNER...]   runs the host, the flood and vexelctl
//     vexel_flood_control host DIRECTORY        the host; answers each line on standard input with its longest stall
//     vexel_flood_control flood MANNER ADDRESS  a stranger; ends when it is killed
//
// Each manner of flood gets an equal share of the time. Meanwhile vexelctl lists the entries again and again.

#include "control/controlline.h"
#include "host/application.h"
#include "platform/instancelock.h"
#include "tests/soak/measuring.h"
#include "vexelctl/listfiles.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QProcess>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr int kEntries = 10'000;
constexpr int kPatienceMs = 60'000;

enum class After {
    Repeat, // send the same again
    Stay,   // send no more, and read nothing
    Close   // connect again
};

struct Manner
{
    const char* name;
    const char* what;
    int sockets;
    std::string text;
    After after;
};

std::string Request(const char* command)
{
    return ControlLine::Write({{QStringLiteral("protocol"), ControlLine::kProtocol},
                               {QStringLiteral("command"), QLatin1String(command)}})
        .toStdString();
}

/// A request with 32 MiB of text that is no list.
std::string BigImport()
{
    QByteArray lines = ControlLine::Write({{QStringLiteral("protocol"), ControlLine::kProtocol},
                                           {QStringLiteral("command"), QStringLiteral("import")},
                                           {QStringLiteral("hasDocument"), true}});
    lines += ControlLine::WriteParts(QString(32 * 1024 * 1024, u'x'), {});
    lines += ControlLine::Write({{QStringLiteral("end"), true}});
    return lines.toStdString();
}

/// Made by each process: the texts are big.
std::vector<Manner> Manners()
{
    return {
        {"none", "no flood", 0, {}, After::Stay},
        {"endless", "lines without end", 32, std::string(64 * 1024, 'x'), After::Repeat},
        {"garbage", "lines that are no JSON", 32, "garbage\n", After::Repeat},
        {"half", "half a request", 64, R"({"protocol":1,"comm)", After::Stay},
        {"calls", "connect, close", 64, {}, After::Close},
        {"silent", "1000 silent peers", 1000, {}, After::Stay},
        {"list", "list, not read", 64, Request("list"), After::Stay},
        {"export", "export, not read", 64, Request("export"), After::Stay},
        {"watch", "watch, not read", 64, Request("watch"), After::Stay},
        {"hasty", "list, not waited for", 64, Request("list"), After::Close},
        {"documents", "32 MiB that are no list", 32, BigImport(), After::Repeat},
    };
}

// The stranger. Works with the system's sockets, to be as fast as can be.

struct Peer
{
    std::size_t sent = 0;
};

int Connect(const char* address)
{
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    std::strncpy(name.sun_path, address, sizeof name.sun_path - 1);
    if (socket != -1 && connect(socket, reinterpret_cast<const sockaddr*>(&name), sizeof name) == 0)
        return socket;
    // The queue of those that wait to be accepted is full.
    if (socket != -1)
        ::close(socket);
    return -1;
}

/// Returns whether the connection is over.
bool SendOn(int socket, const Manner& manner, Peer& peer)
{
    if (peer.sent == manner.text.size()) {
        if (manner.after != After::Repeat)
            return manner.after == After::Close;
        peer.sent = 0;
    }
    const ssize_t sent = send(socket, manner.text.data() + peer.sent, manner.text.size() - peer.sent, MSG_NOSIGNAL);
    if (sent > 0)
        peer.sent += static_cast<std::size_t>(sent);
    return (sent < 0 && errno != EAGAIN) || (manner.after == After::Close && peer.sent == manner.text.size());
}

[[noreturn]] void Flood(const Manner& manner, const char* address)
{
    rlimit files{};
    if (getrlimit(RLIMIT_NOFILE, &files) == 0) {
        files.rlim_cur = files.rlim_max;
        (void)setrlimit(RLIMIT_NOFILE, &files);
    }
    std::vector<pollfd> sockets(static_cast<std::size_t>(manner.sockets), pollfd{-1, 0, 0});
    std::vector<Peer> peers(sockets.size());
    for (;;) {
        bool isAnyMissing = false;
        for (std::size_t i = 0; i < sockets.size(); ++i) {
            pollfd& socket = sockets[i];
            if (socket.fd == -1) {
                socket.fd = Connect(address);
                peers[i] = {};
            }
            isAnyMissing = isAnyMissing || socket.fd == -1;
            const bool sends = manner.after != After::Stay || peers[i].sent < manner.text.size();
            socket.events = sends ? POLLOUT : 0;
        }
        (void)poll(sockets.data(), sockets.size(), isAnyMissing ? 1 : 1000);
        for (std::size_t i = 0; i < sockets.size(); ++i) {
            pollfd& socket = sockets[i];
            if (socket.fd == -1)
                continue;
            const bool isOver = (socket.revents & (POLLERR | POLLHUP)) != 0 ||
                                ((socket.revents & POLLOUT) != 0 && SendOn(socket.fd, manner, peers[i]));
            if (isOver) {
                ::close(socket.fd);
                socket.fd = -1;
            }
        }
    }
}

// The host.

int RunHost(int argc, char* argv[], const QString& directory)
{
    const QApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false"));
    Stalls stalls;
    QFile input;
    if (!input.open(STDIN_FILENO, QIODevice::ReadOnly | QIODevice::Unbuffered))
        return 1;
    const QSocketNotifier notifier(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &application, [&] {
        if (input.readLine().isEmpty())
            return QCoreApplication::exit();
        std::printf("%lld\n", static_cast<long long>(stalls.longest));
        (void)std::fflush(stdout);
        stalls.longest = 0;
    });
    HostOptions options;
    options.configDirectory = directory;
    options.plugin = QStringLiteral(VEXELCONNECTDLG);
    return static_cast<int>(Application(options).Run());
}

class Host
{
public:
    explicit Host(const QString& directory)
        : m_directory(directory)
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("host"), directory});
        m_process.waitForStarted();
        while (Address().isEmpty() && !m_process.waitForFinished(10))
            ;
    }
    ~Host()
    {
        m_process.closeWriteChannel();
        m_process.waitForFinished();
    }

    QString Address() const { return InstanceLock::Query(m_directory).address; }
    double ResidentMiB() const { return ::ResidentMiB(QString::number(m_process.processId())); }
    bool IsRunning() const { return m_process.state() == QProcess::Running; }

    /// The longest stall since the last call, in ms; -1 if the host does not answer.
    int LongestStall()
    {
        m_process.write("\n");
        while (!m_process.canReadLine())
            if (!m_process.waitForReadyRead(kPatienceMs))
                return -1;
        return m_process.readLine().trimmed().toInt();
    }

private:
    const QString m_directory;
    QProcess m_process;
};

/// Lists the entries, one call after the other.
class Lister
{
public:
    explicit Lister(const QTemporaryDir& directory, const QString& configuration)
        : m_output(directory.filePath(QStringLiteral("list.json")))
        , m_configuration(configuration)
    {
    }

    /// Returns whether the call was answered. One that hangs is killed, and counted as lost.
    bool Call()
    {
        QElapsedTimer timer;
        timer.start();
        QProcess process;
        process.setStandardOutputFile(m_output);
        process.start(QStringLiteral(VEXELCTL),
                      {QStringLiteral("list"), QStringLiteral("--json"), QStringLiteral("--config"), m_configuration});
        const bool hasEnded = process.waitForFinished(kPatienceMs);
        longest = std::max(longest, static_cast<double>(timer.elapsed()) / 1000);
        ++calls;
        const int code = hasEnded && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        const qint64 size = QFileInfo(m_output).size();
        if (m_size == 0)
            m_size = size;
        if (code == 0 && size > 0 && size == m_size) {
            ++answered;
            return true;
        }
        const QByteArray error = process.readAllStandardError();
        if (code == 4)
            ++refused;
        else
            std::printf("  exit code %d, %lld bytes: %s\n", code, static_cast<long long>(size), error.constData());
        process.kill();
        process.waitForFinished();
        return false;
    }
    bool IsGood() const { return calls > 0 && answered + refused == calls; }

    int calls = 0;
    int answered = 0;
    int refused = 0;
    double longest = 0; // s

    /// Forgets everything but the size of the answer.
    void Reset()
    {
        calls = answered = refused = 0;
        longest = 0;
    }

private:
    const QString m_output;
    const QString m_configuration;
    qint64 m_size = 0; // of an answer; the list does not change
};

/// Returns whether all calls ended as they may.
bool Suffer(const Manner& manner, double seconds, Host& host, Lister& lister)
{
    const double before = host.ResidentMiB();
    host.LongestStall();
    lister.Reset();
    QProcess stranger;
    stranger.setProcessChannelMode(QProcess::ForwardedChannels);
    stranger.start(QCoreApplication::applicationFilePath(),
                   {QStringLiteral("flood"), QString::fromLatin1(manner.name), host.Address()});
    if (!stranger.waitForStarted())
        qFatal("No flood");
    QElapsedTimer timer;
    timer.start();
    double peak = before;
    do {
        lister.Call();
        peak = std::max(peak, host.ResidentMiB());
    } while (static_cast<double>(timer.elapsed()) < seconds * 1000);
    const bool wasThere = stranger.state() == QProcess::Running;
    stranger.kill();
    stranger.waitForFinished();
    const int stall = host.LongestStall();
    const Lister during = lister;

    timer.restart();
    while (!lister.Call() && timer.elapsed() < kPatienceMs)
        ;
    const double recovered = static_cast<double>(timer.elapsed()) / 1000;
    const bool isBack = lister.answered > during.answered;
    std::printf("%-26s%9.1f%9.1f%9.1f%9d%9d%9d%11.2f%11d%11.2f\n", manner.what, before, peak, host.ResidentMiB(),
                during.calls, during.answered, during.refused, during.longest, stall, recovered);
    (void)std::fflush(stdout);
    return wasThere && during.IsGood() && stall >= 0 && isBack;
}

bool Fill(const QTemporaryDir& directory, const QString& configuration)
{
    Entries entries;
    for (int i = 0; i < kEntries; ++i) {
        Connection entry;
        entry.ConnectionName = QStringLiteral("Station %1").arg(i);
        entry.DeviceAddress = QStringLiteral("192.0.2.%1").arg(i % 254 + 1);
        entry.DeviceType = i % Connection::kDeviceTypeCount;
        entries.push_back(entry);
    }
    const QString list = directory.filePath(QStringLiteral("list.xml"));
    QFile file(list);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(ToDocument(entries));
    file.close();
    return QProcess::execute(QStringLiteral(VEXELCTL),
                             {QStringLiteral("add"), QStringLiteral("--config"), configuration, list}) == 0;
}

int Run(int seconds, const QStringList& names)
{
    const QTemporaryDir directory;
    // For the socket.
    qputenv("XDG_RUNTIME_DIR", directory.path().toUtf8());
    const QString configuration = directory.filePath(QStringLiteral("configuration"));
    if (!Fill(directory, configuration))
        return 1;
    Host host(configuration);
    Lister lister(directory, configuration);
    // Makes the allocations that the first call makes in any case.
    if (!host.IsRunning() || !lister.Call())
        return 1;

    std::vector<Manner> manners = Manners();
    const auto isUnwanted = [&names](const Manner& manner) {
        return !names.isEmpty() && !names.contains(QLatin1String(manner.name));
    };
    manners.erase(std::remove_if(manners.begin(), manners.end(), isUnwanted), manners.end());
    if (manners.empty())
        return 2;
    std::printf("%-26s%27s%27s%11s%11s%11s\n", "", "host's resident MiB", "calls of vexelctl", "longest", "longest",
                "answered");
    std::printf("%-26s%9s%9s%9s%9s%9s%9s%11s%11s%11s\n", "flood", "before", "peak", "after", "made", "answered",
                "refused", "call s", "stall ms", "again s");
    const double before = host.ResidentMiB();
    bool isGood = true;
    for (const Manner& manner : manners)
        isGood =
            Suffer(manner, static_cast<double>(seconds) / static_cast<double>(manners.size()), host, lister) && isGood;
    std::printf("resident memory: %.1f MiB before, %.1f MiB after\n", before, host.ResidentMiB());
    std::printf("vexelctl: %s\n", isGood ? "every call was answered or refused" : "a call was lost");
    return isGood ? 0 : 1;
}

} // namespace

int main(int argc, char* argv[])
{
    const std::string_view first = argc > 1 ? argv[1] : "";
    if (argc == 4 && first == "flood") {
        for (const Manner& manner : Manners())
            if (std::string_view(argv[2]) == manner.name)
                Flood(manner, argv[3]);
        return 2;
    }
    if (argc == 3 && first == "host")
        return RunHost(argc, argv, QFile::decodeName(argv[2]));
    const int seconds = argc >= 2 ? std::atoi(argv[1]) : 0;
    if (seconds < 1) {
        std::fputs("usage: vexel_flood_control SECONDS [MANNER...]\n", stderr);
        return 2;
    }
    const QCoreApplication application(argc, argv);
    return Run(seconds, QCoreApplication::arguments().mid(2));
}
