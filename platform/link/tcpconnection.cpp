// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/link/tcpconnection.h"

#include "platform/link/readbudget.h"
#include "platform/tracing.h"

#include <QNetworkProxy>
#include <QPointer>
#include <QTcpSocket>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace {

constexpr auto kSource = "platform/link/tcpconnection";

} // namespace

TcpConnection::TcpConnection(QTcpSocket* socket, IInterfaceCallback* callback, std::chrono::milliseconds timeOut,
                             ReadBudget* budget)
    : TcpConnection(socket, TcpAddress{QString(), 0}, callback, timeOut, budget)
{
    m_phase = Phase::Connecting;
    Connected();
}

TcpConnection::TcpConnection(const TcpAddress& address, IInterfaceCallback* callback, std::chrono::milliseconds timeOut)
    : TcpConnection(new QTcpSocket, address, callback, timeOut, nullptr)
{
    LimitReadBuffer(m_pSocket);
    m_pSocket->setProxy(QNetworkProxy::NoProxy);
}

TcpConnection::TcpConnection(QTcpSocket* socket, TcpAddress address, IInterfaceCallback* callback,
                             std::chrono::milliseconds timeOut, ReadBudget* budget)
    : m_pSocket(socket)
    , m_address(std::move(address))
    , m_pCallback(callback)
    , m_pBudget(budget)
{
    m_pSocket->setParent(this);
    m_timeOut.setSingleShot(true);
    m_timeOut.setInterval(timeOut);

    connect(&m_timeOut, &QTimer::timeout, this, &TcpConnection::TimedOut);
    connect(m_pSocket, &QTcpSocket::connected, this, &TcpConnection::Connected);
    connect(m_pSocket, &QTcpSocket::readyRead, this, &TcpConnection::Schedule);
    connect(m_pSocket, &QTcpSocket::disconnected, this, &TcpConnection::Schedule);
    connect(m_pSocket, &QTcpSocket::bytesWritten, this, [this](qint64 bytes) {
        m_uWritten += static_cast<quint64>(bytes);
        Schedule();
    });
    connect(m_pSocket, &QTcpSocket::errorOccurred, this, [this](QAbstractSocket::SocketError error) {
        // A disconnect by the peer, even a reset, is not an error, unless the client is still connecting.
        const bool isConnecting = m_phase == Phase::Connecting && !m_bConnected;
        if (error != QAbstractSocket::RemoteHostClosedError || isConnecting)
            Fail(m_pSocket->errorString());
    });
}

TcpConnection::~TcpConnection()
{
    // The socket's destructor must not record a disconnect.
    m_pSocket->disconnect(this);
}

void TcpConnection::LimitReadBuffer(QTcpSocket* socket)
{
    socket->setReadBufferSize(CInterfaceCreator::kMaximumBytesPerRead);
}

bool TcpConnection::Open()
{
    if (m_pSocket->state() != QAbstractSocket::UnconnectedState)
        return true;
    if (m_phase != Phase::Idle || m_address.port == 0) {
        Trace(kSource, __LINE__, [] {
            return QStringLiteral(
                "TcpConnection::Open(): The previous connection has not ended yet, or this is a peer of a server");
        });
        return false;
    }
    m_phase = Phase::Connecting;
    m_bConnected = false;
    m_bFailed = false;
    RestartTimeOut();
    m_pSocket->connectToHost(m_address.host, m_address.port);
    return true;
}

void TcpConnection::Close()
{
    if (m_phase == Phase::Connecting) {
        m_phase = Phase::Idle;
        m_timeOut.stop();
    }
    m_iUnread = 0;
    m_pSocket->flush();
    m_pSocket->abort();
    Schedule();
}

bool TcpConnection::IsOpen() const
{
    return m_phase == Phase::Open && m_pSocket->state() == QAbstractSocket::ConnectedState;
}

bool TcpConnection::IsDisconnected() const
{
    return m_pSocket->state() != QAbstractSocket::ConnectedState;
}

void TcpConnection::Write(const char* data, quint64 length)
{
    if (!IsOpen() || length == 0)
        return;
    const auto unsent = static_cast<quint64>(m_pSocket->bytesToWrite());
    if (length > CInterfaceCreator::kMaximumBytesUnsent || unsent + length > CInterfaceCreator::kMaximumBytesUnsent) {
        Fail(QStringLiteral("more than %1 bytes waiting to be sent").arg(CInterfaceCreator::kMaximumBytesUnsent));
        return;
    }
    m_pSocket->write(data, static_cast<qint64>(length));
}

void TcpConnection::Read(char* buffer, quint64* length, bool flag)
{
    if (!buffer || !length)
        throw std::runtime_error("TcpConnection::Read(): No buffer");
    if (m_phase != Phase::Open || !m_pSocket->isOpen())
        throw std::runtime_error("TcpConnection::Read(): The connection is not open");

    const auto wanted = static_cast<qint64>(std::min(*length, static_cast<quint64>(m_iUnread)));
    if (flag) {
        *length = static_cast<quint64>(m_pSocket->peek(buffer, wanted));
        return;
    }
    const qint64 count = m_pSocket->read(buffer, wanted);
    m_iUnread -= count;
    *length = static_cast<quint64>(count);
}

void TcpConnection::Connected()
{
    m_bConnected = true;
    m_iReceived = 0;
    m_uWritten = 0;
    m_age.start();
    RestartTimeOut();
    Schedule();
}

void TcpConnection::Fail(const QString& reason)
{
    Trace(kSource, __LINE__,
          [&] { return QStringLiteral("TcpConnection::Fail(): Connection to %1 failed: %2").arg(PeerName(), reason); });
    m_bFailed = true;
    Schedule();
}

void TcpConnection::TimedOut()
{
    if (m_phase == Phase::Connecting && !m_bConnected) {
        m_pSocket->abort();
        Fail(QStringLiteral("no answer for %1 ms").arg(m_timeOut.interval()));
        return;
    }
    if (m_bReporting || m_pSocket->bytesAvailable() > 0) {
        // The callback is slow, not the peer.
        RestartTimeOut();
        return;
    }
    Trace(kSource, __LINE__, [this] {
        return QStringLiteral("TcpConnection::TimedOut(): %1 sent nothing for %2 ms and is closed")
            .arg(PeerName())
            .arg(m_timeOut.interval());
    });
    m_pSocket->abort();
}

void TcpConnection::RestartTimeOut()
{
    if (m_timeOut.interval() > 0)
        m_timeOut.start();
}

QString TcpConnection::PeerName() const
{
    if (m_address.port != 0)
        return QStringLiteral("%1, port %2").arg(m_address.host).arg(m_address.port);
    return QStringLiteral("%1, port %2").arg(m_pSocket->peerAddress().toString()).arg(m_pSocket->peerPort());
}

void TcpConnection::Schedule()
{
    if (!std::exchange(m_bScheduled, true))
        QMetaObject::invokeMethod(this, &TcpConnection::Report, Qt::QueuedConnection);
}

void TcpConnection::Report()
{
    m_bScheduled = false;
    // Called from an event loop within a callback: the loop below continues when that callback returns.
    if (m_bReporting)
        return;

    m_bReporting = true;
    const QPointer<TcpConnection> self(this);
    while (self && ReportNext()) {
    }
    if (!self)
        return;
    m_bReporting = false;
    if (HasEnded())
        emit Ended();
}

bool TcpConnection::ReportNext()
{
    if (m_phase == Phase::Connecting && m_bConnected) {
        m_phase = Phase::Open;
        m_bConnected = false;
        m_pCallback->OnOpen(this);
        return true;
    }
    if (m_phase == Phase::Connecting && m_bFailed) {
        m_phase = Phase::Idle;
        m_bFailed = false;
        m_timeOut.stop();
        m_pCallback->OnError(this);
        return true;
    }
    if (m_phase != Phase::Open)
        return false;

    if (m_uWritten > 0) {
        m_pCallback->OnWritten(this, std::exchange(m_uWritten, 0));
        return true;
    }
    if (m_pSocket->bytesAvailable() > 0)
        return ReportRead();
    if (m_bFailed) {
        m_bFailed = false;
        m_pSocket->abort();
        m_pCallback->OnError(this);
        return true;
    }
    if (m_pSocket->state() == QAbstractSocket::UnconnectedState) {
        m_phase = Phase::Idle;
        m_timeOut.stop();
        m_pCallback->OnClose(this);
        return true;
    }
    return false;
}

bool TcpConnection::ReportRead()
{
    const qint64 left = CInterfaceCreator::kMaximumBytesPerCall - m_iReceived;
    if (left == 0) {
        Trace(kSource, __LINE__, [this] {
            return QStringLiteral("TcpConnection::ReportRead(): %1 sent more than %2 bytes and is closed")
                .arg(PeerName())
                .arg(CInterfaceCreator::kMaximumBytesPerCall);
        });
        m_pSocket->abort();
        return true;
    }
    const qint64 bytes = std::min({m_pSocket->bytesAvailable(), left, qint64{CInterfaceCreator::kMaximumBytesPerRead}});
    if (m_pBudget && !m_pBudget->Take(bytes, ReadBudget::Clock::now())) {
        Trace(kSource, __LINE__, [this] {
            return QStringLiteral(
                       "TcpConnection::ReportRead(): The peers of this server send more than %1 bytes a second: %2 is "
                       "closed")
                .arg(CInterfaceCreator::kReadBytesPerSecond)
                .arg(PeerName());
        });
        m_pSocket->abort();
        return true;
    }
    m_iUnread = bytes;
    m_iReceived += bytes;
    RestartTimeOut();

    const QPointer<TcpConnection> self(this);
    m_pCallback->OnRead(this, static_cast<quint64>(m_iUnread));
    if (self && m_iUnread > 0)
        m_pSocket->skip(std::exchange(m_iUnread, 0));
    return true;
}
