// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "control/controlserver.h"

#include "control/controlline.h"
#include "control/controlpeer.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <utility>

ControlServer::ControlServer(qint64 maximumDocument, QString program, QObject* parent)
    : QObject(parent)
    , m_maximumDocument(maximumDocument)
    , m_greeting{{QStringLiteral("protocol"), ControlLine::kProtocol},
                 {QStringLiteral("program"), std::move(program)},
                 {QStringLiteral("version"), QCoreApplication::applicationVersion()},
                 {QStringLiteral("process"), QCoreApplication::applicationPid()}}
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &ControlServer::Accept);
}

QString ControlServer::Listen(const QString& address)
{
    if (address.isEmpty())
        return QStringLiteral("there is no folder for the socket");
    QLocalServer::removeServer(address);
    return m_server.listen(address) ? QString() : m_server.errorString();
}

void ControlServer::Accept()
{
    while (QLocalSocket* const socket = m_server.nextPendingConnection()) {
        auto* const peer = new ControlPeer(socket, m_greeting, m_maximumDocument, this);
        if (!MakeRoom()) {
            peer->Drop(QStringLiteral("there are %1 others").arg(kMaximumPeers));
            continue;
        }
        m_peers.append(peer);
        connect(
            peer, &QObject::destroyed, this, [this, peer] { m_peers.removeOne(peer); });
        connect(peer, &ControlPeer::Requested, this,
                [this, peer](const ControlRequest& request) { emit Requested(request, peer); });
    }
}

bool ControlServer::MakeRoom()
{
    if (m_peers.size() < kMaximumPeers)
        return true;
    const auto silent =
        std::find_if(m_peers.cbegin(), m_peers.cend(), [](const ControlPeer* peer) { return !peer->HasAsked(); });
    if (silent == m_peers.cend())
        return false;
    ControlPeer* const closed = *silent;
    m_peers.removeOne(closed);
    closed->Drop(QStringLiteral("another peer needs its place"));
    return true;
}

void ControlServer::Close()
{
    constexpr std::chrono::seconds kTime{1};
    m_server.close();
    const QList<ControlPeer*> peers = m_peers;
    for (ControlPeer* const peer : peers)
        peer->End(4, QStringLiteral("the running host has ended"));
    const QDeadlineTimer deadline(kTime);
    while (!m_peers.isEmpty() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QThread::msleep(1);
    }
}
