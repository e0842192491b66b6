#include "platform/link/tcpserverinterface.h"

#include "platform/link/tcpconnection.h"
#include "platform/tracing.h"

#include <QNetworkProxy>
#include <QTcpServer>
#include <QTcpSocket>

#include <algorithm>
#include <stdexcept>

namespace {

using namespace std::chrono_literals;

constexpr auto kSource = "platform/link/tcpserverinterface";
// How many may wait in the system's queue, for each of the two addresses. Who finds it full is not lost either: the
// caller's system tries again after a second.
constexpr int kBacklog = 256;
// When a call could not be taken, for want of handles or memory, how long until the next try.
constexpr auto kRetryTime = 200ms;

/// Takes a single caller out of the system's queue at a time and leaves the others there: nothing is read from those,
/// and they cost this process neither memory nor handles.
class Listener : public QTcpServer
{
public:
    Listener()
    {
        setProxy(QNetworkProxy::NoProxy);
        setMaxPendingConnections(1);
        setListenBacklogSize(kBacklog);
    }

protected:
    void incomingConnection(qintptr handle) override
    {
        KeepToThisProcess(handle);
        auto* const socket = new QTcpSocket(this);
        // Before it has its handle: the caller may have begun to send, and may have to wait for its place.
        TcpConnection::BoundReadBuffer(socket);
        if (socket->setSocketDescriptor(handle))
            addPendingConnection(socket);
        else
            delete socket;
    }
};

} // namespace

TcpServerInterface::TcpServerInterface(quint16 port, IInterfaceCallback* callback, std::chrono::milliseconds timeOut)
    : m_uPort(port)
    , m_pCallback(callback)
    , m_timeOut(timeOut)
{
    m_placeTimer.setSingleShot(true);
    connect(&m_placeTimer, &QTimer::timeout, this, &TcpServerInterface::Admit);
    m_retryTimer.setSingleShot(true);
    m_retryTimer.setInterval(kRetryTime);
    connect(&m_retryTimer, &QTimer::timeout, this, [this] {
        for (const auto& listener : m_listeners)
            listener->resumeAccepting();
    });
}

TcpServerInterface::~TcpServerInterface() = default;

bool TcpServerInterface::Open()
{
    if (IsOpen())
        return true;
    if (!CInterfaceCreator::AreServersAllowed()) {
        Trace(kSource, __LINE__,
              [] { return QStringLiteral("TcpServerInterface::Open(): This process is not to be called"); });
        return false;
    }
    const Listening four = Listen(QHostAddress(QHostAddress::LocalHost));
    const Listening six = four == Listening::Taken ? four : Listen(QHostAddress(QHostAddress::LocalHostIPv6));
    // A machine may lack one of the two. But where another program has the port on one of them, callers would find
    // either program, by chance.
    if (six == Listening::Taken)
        m_listeners.clear();
    return IsOpen();
}

void TcpServerInterface::Close()
{
    m_listeners.clear();
    m_placeTimer.stop();
    m_retryTimer.stop();
    for (const auto& peer : m_peers)
        peer->Close();
}

bool TcpServerInterface::IsOpen() const
{
    return !m_listeners.empty();
}

void TcpServerInterface::Write(const char* data, quint64 length)
{
    for (const auto& peer : m_peers)
        peer->Write(data, length);
}

void TcpServerInterface::Read(char* /*buffer*/, quint64* /*length*/, bool /*flag*/)
{
    throw std::runtime_error("TcpServerInterface::Read(): A server has nothing to read, its peers have");
}

Listening TcpServerInterface::Listen(const QHostAddress& address)
{
    auto listener = std::make_unique<Listener>();
    QString error;
    const Listening result = ListenAlone(*listener, address, m_uPort, &error);
    if (result != Listening::Yes) {
        Trace(kSource, __LINE__, [&] {
            return QStringLiteral("TcpServerInterface::Listen(): Could not listen on %1, port %2: %3")
                .arg(address.toString())
                .arg(m_uPort)
                .arg(error);
        });
        return result;
    }
    connect(listener.get(), &QTcpServer::newConnection, this, &TcpServerInterface::Admit);
    connect(listener.get(), &QTcpServer::acceptError, this, &TcpServerInterface::AcceptFailed);
    m_listeners.push_back(std::move(listener));
    return Listening::Yes;
}

void TcpServerInterface::Admit()
{
    const auto isCalled = [](const auto& listener) {
        return listener->hasPendingConnections();
    };
    for (;;) {
        const auto called = std::find_if(m_listeners.begin(), m_listeners.end(), isCalled);
        if (called == m_listeners.end() || !HasPlace())
            return;
        const auto& peer = m_peers.emplace_back(
            std::make_unique<TcpConnection>((*called)->nextPendingConnection(), m_pCallback, m_timeOut));
        // Not at once: the peer that reports its end is still at work.
        connect(peer.get(), &TcpConnection::Ended, this, &TcpServerInterface::ForgetEnded, Qt::QueuedConnection);
        // Else a flood on one address would keep the callers of the other waiting for ever.
        std::rotate(called, called + 1, m_listeners.end());
    }
}

bool TcpServerInterface::HasPlace()
{
    if (m_peers.size() < CInterfaceCreator::kMaximumPeers)
        return true;
    const auto isEnding = [](const auto& peer) {
        return peer->IsEnding();
    };
    if (std::any_of(m_peers.cbegin(), m_peers.cend(), isEnding))
        return false;

    TcpConnection& oldest = *m_peers.front();
    const qint64 assured = CInterfaceCreator::kAssuredTime - oldest.Age();
    if (assured > 0) {
        m_placeTimer.start(static_cast<int>(assured));
        return false;
    }
    Trace(kSource, __LINE__, [] {
        return QStringLiteral("TcpServerInterface::HasPlace(): %1 peers are there and another calls: the one that was "
                              "there first is closed")
            .arg(CInterfaceCreator::kMaximumPeers);
    });
    oldest.Close();
    return false;
}

void TcpServerInterface::ForgetEnded()
{
    std::erase_if(m_peers, [](const auto& peer) { return peer->HasEnded(); });
    Admit();
}

void TcpServerInterface::AcceptFailed()
{
    Trace(kSource, __LINE__, [] {
        return QStringLiteral("TcpServerInterface::AcceptFailed(): A call could not be taken; it is tried again");
    });
    m_retryTimer.start();
    // Queued: the callback may delete this server, whose listener is still at work.
    QMetaObject::invokeMethod(
        this, [this] { m_pCallback->OnError(this); }, Qt::QueuedConnection);
}
