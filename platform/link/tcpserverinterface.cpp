// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

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
// Connections waiting in the system's queue, for each of the two addresses. If it is full, the caller's system tries
// again after a second.
constexpr int kBacklog = 256;
// Delay after a failed accept, for lack of handles or memory.
constexpr auto kRetryDelay = 200ms;
// How long it counts as pressure that a peer had to be closed for another one.
constexpr auto kPressureTime = 1s;

/// Accepts one connection at a time and leaves the others in the system's queue, where they take neither memory nor
/// handles of this process.
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
        DisableInheritance(handle);
        auto* const socket = new QTcpSocket(this);
        // Before the socket has its handle, because data may arrive before the peer gets a place.
        TcpConnection::LimitReadBuffer(socket);
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
    m_evictionTimer.setSingleShot(true);
    connect(&m_evictionTimer, &QTimer::timeout, this, &TcpServerInterface::AcceptPending);
    m_retryTimer.setSingleShot(true);
    m_retryTimer.setInterval(kRetryDelay);
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
              [] { return QStringLiteral("TcpServerInterface::Open(): Servers are not allowed in this process"); });
        return false;
    }
    const ListenResult four = Listen(QHostAddress(QHostAddress::LocalHost));
    const ListenResult six = four == ListenResult::PortTaken ? four : Listen(QHostAddress(QHostAddress::LocalHostIPv6));
    // A machine may lack one of the two. But if another program has the port on one of them, callers could reach either
    // program.
    if (six == ListenResult::PortTaken)
        m_listeners.clear();
    return IsOpen();
}

void TcpServerInterface::Close()
{
    m_listeners.clear();
    m_evictionTimer.stop();
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
    throw std::runtime_error("TcpServerInterface::Read(): A server cannot be read, only its peers");
}

ListenResult TcpServerInterface::Listen(const QHostAddress& address)
{
    auto listener = std::make_unique<Listener>();
    QString error;
    const ListenResult result = ListenExclusively(*listener, address, m_uPort, &error);
    if (result != ListenResult::Ok) {
        Trace(kSource, __LINE__, [&] {
            return QStringLiteral("TcpServerInterface::Listen(): Could not listen on %1, port %2: %3")
                .arg(address.toString())
                .arg(m_uPort)
                .arg(error);
        });
        return result;
    }
    connect(listener.get(), &QTcpServer::newConnection, this, &TcpServerInterface::AcceptPending);
    connect(listener.get(), &QTcpServer::acceptError, this, &TcpServerInterface::AcceptFailed);
    m_listeners.push_back(std::move(listener));
    return ListenResult::Ok;
}

void TcpServerInterface::AcceptPending()
{
    const auto hasPending = [](const auto& listener) {
        return listener->hasPendingConnections();
    };
    for (;;) {
        const auto listener = std::find_if(m_listeners.begin(), m_listeners.end(), hasPending);
        if (listener == m_listeners.end() || !MakeRoom())
            return;
        const auto& peer = m_peers.emplace_back(
            std::make_unique<TcpConnection>((*listener)->nextPendingConnection(), m_pCallback, m_timeOut, &m_budget));
        // Queued, because the peer emits the signal from within its own function.
        connect(peer.get(), &TcpConnection::Ended, this, &TcpServerInterface::RemoveEndedPeers, Qt::QueuedConnection);
        // Otherwise a flood of connections on one address could block the other forever.
        std::rotate(listener, listener + 1, m_listeners.end());
    }
}

bool TcpServerInterface::MakeRoom()
{
    if (m_peers.size() < CInterfaceCreator::kMaximumPeers)
        return true;
    const auto isDisconnected = [](const auto& peer) {
        return peer->IsDisconnected();
    };
    if (std::any_of(m_peers.cbegin(), m_peers.cend(), isDisconnected))
        return false;

    TcpConnection& oldest = *m_peers.front();
    const qint64 remaining = PeerTime() - oldest.Age();
    if (remaining > 0) {
        m_evictionTimer.start(static_cast<int>(remaining));
        return false;
    }
    Trace(kSource, __LINE__, [] {
        return QStringLiteral(
                   "TcpServerInterface::MakeRoom(): %1 peers are connected and another one calls: the oldest "
                   "is closed")
            .arg(CInterfaceCreator::kMaximumPeers);
    });
    m_iPeerTime = std::max(PeerTime() / 2, CInterfaceCreator::kShortestPeerTime);
    m_pressure.setRemainingTime(kPressureTime);
    oldest.Close();
    return false;
}

int TcpServerInterface::PeerTime() const
{
    return m_pressure.hasExpired() ? CInterfaceCreator::kMinimumPeerTime : m_iPeerTime;
}

void TcpServerInterface::RemoveEndedPeers()
{
    std::erase_if(m_peers, [](const auto& peer) { return peer->HasEnded(); });
    AcceptPending();
}

void TcpServerInterface::AcceptFailed()
{
    Trace(kSource, __LINE__, [] {
        return QStringLiteral("TcpServerInterface::AcceptFailed(): A connection could not be accepted; trying again");
    });
    m_retryTimer.start();
    // Queued, because the callback may delete this server while its listener emits the signal.
    QMetaObject::invokeMethod(
        this, [this] { m_pCallback->OnError(this); }, Qt::QueuedConnection);
}
